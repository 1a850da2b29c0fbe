#pragma once

#include "db/DbConnection.h"
#include "document/ChangeJournal.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <vector>

class QCheckBox;
class QDateEdit;
class QLabel;
class QLineEdit;
class QTableWidget;
class QThread;

namespace sable {

// The "변경 기록" view: the saves the change journal holds, newest first (when, who, with which
// program, what changed), and the rows of the save selected below them. The filters narrow both: a
// date range, the administrator's account, a department's name, a login ID and a row's number. The
// journal is read off the window's thread whenever the view is shown, a filter changes or refresh()
// is called.
class JournalView final : public QWidget
{
    Q_OBJECT

public:
    JournalView(std::function<DbConnection()> connectDatabase, QWidget* parent = nullptr);
    ~JournalView() override;

    // Reads the journal again with the filters; a read already under way is followed by another.
    void refresh();

    QTableWidget* saveList() const { return m_saves; }
    QTableWidget* rowList() const { return m_rows; }
    QCheckBox* periodBox() const { return m_period; }
    QDateEdit* fromEdit() const { return m_from; }
    QDateEdit* toEdit() const { return m_to; }
    QLineEdit* userEdit() const { return m_user; }
    QLineEdit* departmentEdit() const { return m_department; }
    QLineEdit* loginEdit() const { return m_login; }
    QLineEdit* keyEdit() const { return m_key; }
    QLabel* stateLabel() const { return m_state; }

Q_SIGNALS:
    // A read ended and the lists show what it found.
    void refreshed();

protected:
    void showEvent(QShowEvent* event) override;

private:
    struct Read
    {
        std::optional<std::vector<JournalEntry>> entries;
        QString error;
    };
    // The rows of one save, as indexes into m_entries.
    struct Save
    {
        size_t first = 0;
        size_t count = 0;
    };

    QWidget* filterBar();
    JournalFilter filter() const;
    void showRead(const Read& read, int limit);
    void showSaves(int selectSaveId);
    void showRows();
    int selectedSaveId() const;

    std::function<DbConnection()> m_connect;
    QCheckBox* m_period = nullptr;
    QDateEdit* m_from = nullptr;
    QDateEdit* m_to = nullptr;
    QLineEdit* m_user = nullptr;
    QLineEdit* m_department = nullptr;
    QLineEdit* m_login = nullptr;
    QLineEdit* m_key = nullptr;
    QTableWidget* m_saves = nullptr;
    QTableWidget* m_rows = nullptr;
    QLabel* m_state = nullptr;
    QTimer m_filterPause;
    QThread* m_worker = nullptr;
    bool m_bReadAgain = false;
    std::vector<JournalEntry> m_entries;
    std::vector<Save> m_saveRows;
};

} // namespace sable
