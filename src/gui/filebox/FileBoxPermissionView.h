#pragma once

#include "widgets/Prompter.h"

#include <QWidget>

#include <functional>

class QAbstractItemModel;
class QMenu;
class QTableView;

namespace sable {

class CSableManagerDoc;

// What the two file-box permission pages share: the page title, the permission list with its level
// cells and context menu, the home folder (read again whenever the page is shown, since the
// settings may have moved it) and the commands the main window routes to the page that is shown.
class FileBoxPermissionView : public QWidget
{
    Q_OBJECT

public:
    // Where the home folder is now; read from the registry, created with its default when missing.
    using HomeSource = std::function<QString()>;

    FileBoxPermissionView(CSableManagerDoc& doc, HomeSource home, QWidget* parent = nullptr);

    void setPrompter(Prompter prompter) { m_prompter = std::move(prompter); }
    QTableView* permissionList() const { return m_list; }

    // Reads the home folder again and shows the folders below it.
    virtual void refreshHome() = 0;
    // "권한 삭제(&D)": removes the selected permissions that can be removed here; returns how many.
    virtual int deleteSelectedPermissions() = 0;
    // "폴더 편집(&E)": opens the home folder in the system's file manager.
    void editFolders();

Q_SIGNALS:
    void selectionChanged();

protected:
    void showEvent(QShowEvent* event) override;

    // Lays out the page: its title above `content`.
    void setContent(const QString& title, QWidget* content);
    // The permission list over `model`, whose `levelColumn` is edited with the level drop-down.
    QTableView* createPermissionList(QAbstractItemModel* model, int levelColumn, QWidget* parent);
    // The rows selected in the permission list, ascending.
    std::vector<int> selectedRows() const;
    // The list's context menu: the three levels for the current row, then "권한 삭제(&D)".
    virtual void buildListMenu(QMenu& menu);
    QString currentHome() const { return m_home(); }

    CSableManagerDoc& m_doc;
    Prompter m_prompter = Prompter::messageBoxes();

private:
    HomeSource m_home;
    QTableView* m_list = nullptr;
    int m_levelColumn = 0;
};

} // namespace sable
