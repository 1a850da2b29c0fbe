#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <vector>

namespace sable {

class CSableManagerDoc;

// One reversible change of the document, made by an edit: undo puts the document back as it was
// before the change, redo makes the change again.
class DocChange
{
public:
    virtual ~DocChange() = default;
    virtual void undo(CSableManagerDoc& doc) = 0;
    virtual void redo(CSableManagerDoc& doc) = 0;
};

// One edit as the administrator sees it: a description and the changes it made, in order.
struct EditStep
{
    QString description;
    std::vector<std::unique_ptr<DocChange>> changes;
    bool bModifiedBefore = false;
    bool bModifiedAfter = false;
};

// The edits that can be undone and redone. The state after the last save (or load) is the clean
// state: undoing or redoing back to it clears the modified flag, moving away from it sets it.
class EditHistory : public QObject
{
    Q_OBJECT

public:
    explicit EditHistory(CSableManagerDoc& doc);
    ~EditHistory() override;

    // Adds a step that has already been made; steps that were undone are dropped.
    void push(std::unique_ptr<EditStep> step);
    bool canUndo() const { return m_index > 0; }
    bool canRedo() const { return m_index < static_cast<int>(m_steps.size()); }
    QString undoText() const;
    QString redoText() const;
    void undo();
    void redo();

    int index() const { return m_index; }
    int count() const { return static_cast<int>(m_steps.size()); }
    void markClean();
    void clear();

Q_SIGNALS:
    void changed();

private:
    void applyModified();

    CSableManagerDoc& m_doc;
    std::vector<std::unique_ptr<EditStep>> m_steps;
    int m_index = 0;
    int m_cleanIndex = 0; // -1 when the clean state was dropped with the steps after it
};

} // namespace sable
