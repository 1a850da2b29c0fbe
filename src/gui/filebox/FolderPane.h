#pragma once

#include <QWidget>

class QLabel;
class QListWidget;
class QTreeView;

namespace sable {

class CSableManagerDoc;
class FolderTreeModel;

// The folders of the file box: the folder tree of the home folder and, when there are any, the
// folders of the folder list that are no longer on disk (greyed, with a tip). They stay in the list
// until their permissions are removed; the console never drops them by itself.
class FolderPane final : public QWidget
{
    Q_OBJECT

public:
    enum class MissingFolders
    {
        Shown,
        Hidden,
    };

    FolderPane(CSableManagerDoc& doc, MissingFolders missing, QWidget* parent = nullptr);

    // Shows the folders below `home`; the current folder is forgotten when the home changes.
    void setHome(const QString& home);
    const QString& home() const { return m_home; }

    QTreeView* tree() const { return m_tree; }
    QListWidget* missingList() const { return m_missing; }
    FolderTreeModel* model() const { return m_model; }

    // The stored path of the folder chosen last, in the tree or among the missing ones; empty for none.
    const QString& currentFolder() const { return m_current; }
    // The stored paths of the folders selected in the tree.
    QStringList selectedFolders() const;
    // Chooses the folder, in the tree once its parent has been read, or among the missing ones.
    bool selectFolder(const QString& folderPath);

    // Looks at the disk and the folder list again.
    void refresh();

Q_SIGNALS:
    void currentFolderChanged(const QString& folderPath);

private:
    void setCurrent(const QString& folderPath);
    void refreshMissing();

    CSableManagerDoc& m_doc;
    FolderTreeModel* m_model;
    QTreeView* m_tree;
    QLabel* m_missingTitle;
    QListWidget* m_missing;
    bool m_bShowMissing;
    QString m_home;
    QString m_current;
};

} // namespace sable
