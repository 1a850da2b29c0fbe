#pragma once

#include <QSqlDatabase>
#include <QSqlError>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <memory>

class QSqlError;
class QSqlQuery;

namespace sable {

class DbRowSource;
class Registry;

// The rows of one statement, read forward once: test isEof(), read fields by their position in the
// SELECT list, moveNext(). A recordset must be closed or destroyed before its connection.
class DbRecordset
{
public:
    DbRecordset();
    explicit DbRecordset(std::unique_ptr<DbRowSource> rows);
    DbRecordset(DbRecordset&&) noexcept;
    DbRecordset& operator=(DbRecordset&&) noexcept;
    ~DbRecordset();

    // False for the empty recordset that a failed statement gives.
    bool isValid() const { return m_rows != nullptr; }
    bool isOpen() const { return m_rows != nullptr; }
    bool isEof() const { return m_bEof; }
    // True when the rows ended because reading failed, not because there were no more: a caller
    // that takes every row must check this after the last one (error() says why).
    bool hasFailed() const;
    QSqlError error() const;
    void moveNext();
    void close();

    bool isNull(int n) const;
    // Field n of the current row as a 32-bit integer; 0 when it is NULL or not a number.
    int fieldInt(int n) const;
    // Field n as text; "" when it is NULL.
    QString fieldText(int n) const;
    // Field n as text; "(null)" when it is NULL, as the user import expects.
    QString fieldTextOrNull(int n) const;

    int fieldCount() const;
    QString fieldName(int n) const;

    // Rows of a QSqlQuery that has run.
    static DbRecordset fromQuery(std::unique_ptr<QSqlQuery> query);

private:
    std::unique_ptr<DbRowSource> m_rows;
    bool m_bEof = true;
};

// One connection to the server's database, opened for one load or one save by one thread and closed
// again. Every failure is caught here and turned into the last-error text and a false or empty
// result; nothing escapes to the caller. Values always travel as bound parameters.
class DbConnection
{
public:
    using FailureReporter = std::function<void(const QString& caption, const QString& text)>;

    DbConnection();
    DbConnection(DbConnection&&) noexcept;
    DbConnection& operator=(DbConnection&&) noexcept;
    ~DbConnection();
    DbConnection(const DbConnection&) = delete;
    DbConnection& operator=(const DbConnection&) = delete;

    // "DSN=%s;UID=%s;PWD=%s;"; an empty connection when it cannot be opened.
    static DbConnection connectByDsn(const QString& dsn, const QString& user, const QString& password);
    // The SQL Server string from the [DBInfo] values; an empty connection on failure.
    static DbConnection connectToSqlServer(
        const QString& user, const QString& password, const QString& address, const QString& databaseName);
    // The registry's "ConnectionString", else the default string for `defaultDatabasePath`; a
    // relative database file lies beside `defaultDatabasePath`. A failure is reported through
    // `report` (caption: the driver's message; text: the error text).
    static DbConnection connectByRegistryOrDefault(
        const Registry& registry, const QString& defaultDatabasePath, const FailureReporter& report);

    // Opens `connectionString`; false on failure, with the last-error text set. A relative database
    // file is taken from `baseFolder` (the server's folder) when one is given.
    bool open(const QString& connectionString, const QString& baseFolder = QString());

    // True when no database object exists (never opened, or the open failed in a connect call).
    bool isEmpty() const { return m_name.isEmpty(); }
    bool isOpen() const;
    // 1 when open, 0 otherwise, as callers test before closing.
    int state() const { return isOpen() ? 1 : 0; }
    void close();

    // Runs a statement that returns rows; an empty recordset on failure.
    DbRecordset execute(const QString& sql, const QVariantList& values = {});
    // Runs a statement without rows; false on failure.
    bool executeNoRecords(const QString& sql, const QVariantList& values = {});

    bool beginTrans();
    // Begins a transaction in which no other writer can change `tables` until it ends, so that what
    // is read in it still holds when it writes: the embedded engine takes its write lock at once,
    // PostgreSQL and SQL Server lock the tables against writers while readers go on. Other engines
    // get a plain transaction.
    bool beginWriteTrans(const QStringList& tables);
    bool commitTrans();
    bool rollbackTrans();

    QString driverName() const;
    QStringList tables() const;
    // The open database, for writers that batch their statements.
    QSqlDatabase database() const;

    // Records `error` (from a statement run on database()) as the last error, as a failed execute does.
    void recordError(const QSqlError& error) const;

    // The text of the last database failure of the process: "(%x) %s\r\nSource - %s\r\nDesc - %s".
    static QString lastError();
    // The driver's message of that failure, the caption of its message box.
    static QString lastErrorMessage();
    // The string start-up writes when none is stored: the Access file by its full path on Windows
    // (the installed server reads it so), elsewhere the embedded file relative to the server's folder.
    static QString defaultConnectionString(const QString& defaultDatabasePath);
    // The ODBC driver that "Provider=sqloledb" strings are opened with (a setting of start-up).
    static void setSqlServerOdbcDriver(const QString& name);
    static QString sqlServerOdbcDriver();

private:
    void release();
    void useWriteAheadLog();
    bool isSqliteDatabase();

    QString m_name;
};

// The error text for a database failure, in the one format the console reports them in.
QString formatDbError(const QSqlError& error, const QString& source);

} // namespace sable
