#pragma once

#include "document/ChartSave.h"
#include "platform/IniFile.h"

#include <QObject>
#include <QPointer>

class QProgressDialog;
class QThread;

namespace sable {

// Runs a save from the window: the checks and the question on the window's thread, the writing on a
// thread of its own behind a modal note (so the window keeps drawing and takes no edits), and what
// follows on the window's thread again. The outcome comes by signal.
class SaveRunner final : public QObject
{
    Q_OBJECT

public:
    SaveRunner(CSableManagerDoc& doc, IniFile settings, QWidget* window);
    ~SaveRunner() override;

    bool isRunning() const { return m_thread != nullptr; }
    // After a save that ended in a conflict: what the database holds now, to merge with.
    std::shared_ptr<const ChartTables> takeConflict() { return std::exchange(m_written.theirs, nullptr); }
    // Starts a save unless one runs; false when the save stopped before the writing (finished is
    // emitted either way).
    void start(const ChartSave::Collaborators& with);

Q_SIGNALS:
    void finished(sable::ChartSave::Outcome outcome);

private:
    CSableManagerDoc& m_doc;
    IniFile m_settings;
    QWidget* m_window;
    ChartSave::Collaborators m_with;
    QThread* m_thread = nullptr;
    QPointer<QProgressDialog> m_note;
    ChartSave::Written m_written;
};

} // namespace sable
