#pragma once

#include "server/DatabaseChoice.h"
#include "server/StartupConfig.h"

#include <QDialog>
#include <QMessageBox>

#include <functional>

class QButtonGroup;
class QLabel;
class QLineEdit;
class QSpinBox;
class QStackedWidget;

namespace sable {

class DbConnection;

// The database settings program's dialog: the embedded database file, a SQL Server or a PostgreSQL
// server; a connection test; and on confirmation the new settings, after offering to create the
// chart tables in a database that has none and to copy the current chart into it. The dialog is
// accepted only once the settings are written; a failure at any step leaves the old ones in force.
class DatabaseSettingsDialog final : public QDialog
{
    Q_OBJECT

public:
    using Ask = std::function<QMessageBox::StandardButton(const QString& text, QMessageBox::StandardButtons buttons)>;
    using Tell = std::function<void(const QString& text)>;

    explicit DatabaseSettingsDialog(StartupConfig config, QWidget* parent = nullptr);

    // Questions and notes go through these (message boxes unless replaced).
    void setAsk(Ask ask) { m_ask = std::move(ask); }
    void setTell(Tell tell) { m_tell = std::move(tell); }

    DatabaseChoice choice() const;
    void setChoice(const DatabaseChoice& choice);

    // The text the connection test left: success, or the database's error text.
    QString testResult() const;

    void accept() override;
    void testConnection();

private:
    QWidget* createFilePage();
    QWidget* createSqlServerPage();
    QWidget* createPostgreSqlPage();
    void browse();
    // Prepares the chosen database: offers to create the tables and copy the chart where it has
    // none. False when the administrator cancelled or a step failed (already reported).
    bool prepareDatabase(DbConnection& target);
    bool copyCurrentChart(DbConnection& target);

    StartupConfig m_config;
    Ask m_ask;
    Tell m_tell;
    QButtonGroup* m_kind = nullptr;
    QStackedWidget* m_pages = nullptr;
    QLineEdit* m_file = nullptr;
    QLineEdit* m_sqlServer = nullptr;
    QLineEdit* m_sqlDatabase = nullptr;
    QLineEdit* m_sqlLogin = nullptr;
    QLineEdit* m_sqlPassword = nullptr;
    QLineEdit* m_pgHost = nullptr;
    QSpinBox* m_pgPort = nullptr;
    QLineEdit* m_pgDatabase = nullptr;
    QLineEdit* m_pgUser = nullptr;
    QLineEdit* m_pgPassword = nullptr;
    QLabel* m_result = nullptr;
};

} // namespace sable
