#pragma once

#include "clientsettings/SessionServerList.h"

#include <QDialog>

class QPushButton;
class QTreeWidget;

namespace sable {

// "파일 서버 설정": the file session servers the clients use. The rows are a working copy; only
// accepting writes them (opening may already have seeded an empty list, see SessionServerList).
// Nothing here shows a message: a list that cannot be written keeps the dialog open.
class SessionServerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit SessionServerDialog(const SessionServerList& list, QWidget* parent = nullptr);

    const QList<SessionServerEntry>& rows() const { return m_rows; }

    void addServer();
    void editServer();
    void removeServers();
    void accept() override;

private:
    QList<qsizetype> selectedRows() const;
    void showRows(qsizetype selected = -1);
    void updateButtons();

    const SessionServerList& m_list;
    QList<SessionServerEntry> m_rows;
    QTreeWidget* m_view = nullptr;
    QPushButton* m_remove = nullptr;
    QPushButton* m_edit = nullptr;
};

} // namespace sable
