#include "db/DbConnection.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "db/ConnectionString.h"
#include "db/DbRowSource.h"
#include "db/DbSchema.h"
#include "db/SqliteNative.h"
#include "platform/Registry.h"

#include <QFileInfo>
#include <QLoggingCategory>
#include <QMutex>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <atomic>

Q_LOGGING_CATEGORY(lcDb, "sable.db", QtWarningMsg)

namespace sable {
namespace {

QMutex g_stateMutex;
QString g_lastError;
QString g_lastMessage;
#ifdef Q_OS_WIN
QString g_sqlServerDriver = QStringLiteral("SQL Server");
#else
QString g_sqlServerDriver = QStringLiteral("FreeTDS");
#endif

QString nextConnectionName()
{
    static std::atomic<quint64> counter {0};
    return QStringLiteral("sable-db-%1").arg(++counter);
}

void setLastError(const QString& text, const QString& message)
{
    QMutexLocker lock(&g_stateMutex);
    g_lastError = maskPasswords(text);
    g_lastMessage = maskPasswords(message);
}

// The native code as the hexadecimal number the console always showed. PostgreSQL gives its
// SQLSTATE, five characters that often are all digits (42601, a syntax error): it stands as it is,
// as do codes that are not numbers at all (several ODBC codes).
QString nativeCode(const QSqlError& error, const QString& source)
{
    const QString code = error.nativeErrorCode().trimmed();
    if (source == QLatin1String("QPSQL") || error.driverText().startsWith(QLatin1String("QPSQL:")))
        return code.isEmpty() ? QStringLiteral("0") : code;
    bool ok = false;
    const qlonglong number = code.toLongLong(&ok);
    if (ok)
        return QString::number(static_cast<quint32>(number), 16);
    return code.isEmpty() ? QStringLiteral("0") : code;
}

QSqlError notConnectedError()
{
    return QSqlError(Msg::kNotConnected, Msg::kNotConnected, QSqlError::ConnectionError);
}

} // namespace

QString formatDbError(const QSqlError& error, const QString& source)
{
    return maskPasswords(QStringLiteral("(%1) %2\r\nSource - %3\r\nDesc - %4")
                             .arg(nativeCode(error, source), error.driverText(), source, error.databaseText()));
}

// --- DbRecordset -----------------------------------------------------------------------------------

namespace {

class QueryRows final : public DbRowSource
{
public:
    explicit QueryRows(std::unique_ptr<QSqlQuery> query)
        : m_query(std::move(query))
    { }
    bool next() override { return m_query->next(); }
    QSqlError error() const override { return m_query->lastError(); }
    bool isNull(int n) const override { return m_query->isNull(n); }
    qint64 integer(int n) const override
    {
        const QVariant value = m_query->value(n);
        bool ok = false;
        const qlonglong number = value.toLongLong(&ok);
        if (ok)
            return number;
        const double real = value.toDouble(&ok);
        return ok ? static_cast<qint64>(real) : 0;
    }
    QString text(int n) const override { return m_query->value(n).toString(); }
    int fieldCount() const override { return m_query->record().count(); }
    QString fieldName(int n) const override { return m_query->record().fieldName(n); }

private:
    std::unique_ptr<QSqlQuery> m_query;
};

} // namespace

DbRecordset::DbRecordset() = default;

DbRecordset::DbRecordset(std::unique_ptr<DbRowSource> rows)
    : m_rows(std::move(rows))
{
    m_bEof = !m_rows->next();
}

DbRecordset DbRecordset::fromQuery(std::unique_ptr<QSqlQuery> query)
{
    return DbRecordset(std::make_unique<QueryRows>(std::move(query)));
}

DbRecordset::DbRecordset(DbRecordset&&) noexcept = default;
DbRecordset& DbRecordset::operator=(DbRecordset&&) noexcept = default;
DbRecordset::~DbRecordset() = default;

void DbRecordset::moveNext()
{
    if (m_rows && !m_bEof)
        m_bEof = !m_rows->next();
}

bool DbRecordset::hasFailed() const
{
    return m_rows && m_bEof && m_rows->error().isValid();
}

QSqlError DbRecordset::error() const
{
    return m_rows ? m_rows->error() : QSqlError();
}

void DbRecordset::close()
{
    m_rows.reset();
    m_bEof = true;
}

bool DbRecordset::isNull(int n) const
{
    return !m_rows || m_bEof || m_rows->isNull(n);
}

int DbRecordset::fieldInt(int n) const
{
    if (!m_rows || m_bEof || m_rows->isNull(n))
        return 0;
    return static_cast<int>(m_rows->integer(n));
}

QString DbRecordset::fieldText(int n) const
{
    if (!m_rows || m_bEof || m_rows->isNull(n))
        return {};
    return m_rows->text(n);
}

QString DbRecordset::fieldTextOrNull(int n) const
{
    if (!m_rows || m_bEof)
        return {};
    return m_rows->isNull(n) ? QStringLiteral("(null)") : m_rows->text(n);
}

int DbRecordset::fieldCount() const
{
    return m_rows ? m_rows->fieldCount() : 0;
}

QString DbRecordset::fieldName(int n) const
{
    return m_rows ? m_rows->fieldName(n) : QString();
}

// --- DbConnection ----------------------------------------------------------------------------------

DbConnection::DbConnection() = default;

DbConnection::DbConnection(DbConnection&& other) noexcept
    : m_name(std::exchange(other.m_name, QString()))
{ }

DbConnection& DbConnection::operator=(DbConnection&& other) noexcept
{
    if (this != &other) {
        release();
        m_name = std::exchange(other.m_name, QString());
    }
    return *this;
}

DbConnection::~DbConnection()
{
    release();
}

void DbConnection::release()
{
    if (m_name.isEmpty())
        return;
    {
        QSqlDatabase db = QSqlDatabase::database(m_name, false);
        if (db.isOpen())
            db.close();
    }
    QSqlDatabase::removeDatabase(m_name);
    m_name.clear();
}

DbConnection DbConnection::connectByDsn(const QString& dsn, const QString& user, const QString& password)
{
    DbConnection connection;
    if (!connection.open(QStringLiteral("DSN=%1;UID=%2;PWD=%3;").arg(dsn, user, password)))
        return {};
    return connection;
}

DbConnection DbConnection::connectToSqlServer(
    const QString& user, const QString& password, const QString& address, const QString& databaseName)
{
    DbConnection connection;
    const auto q = &ConnectionString::quote;
    const QString text = QStringLiteral("Provider=sqloledb;User id=%1;password=%2;data source=%3;initial catalog=%4;")
                             .arg(q(user), q(password), q(address), q(databaseName));
    if (!connection.open(text))
        return {};
    return connection;
}

DbConnection DbConnection::connectByRegistryOrDefault(
    const Registry& registry, const QString& defaultDatabasePath, const FailureReporter& report)
{
    std::optional<QString> text;
    if (const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kDatabase))
        text = key->readString(Keys::kConnectionString, RegBuffer::kConnectionString);
    // A relative database file lies in the server's folder, the folder of the default database.
    const QString home = QFileInfo(defaultDatabasePath).absolutePath();
    DbConnection connection;
    if (connection.open(text.value_or(defaultConnectionString(defaultDatabasePath)), home))
        return connection;
    if (report)
        report(lastErrorMessage(), lastError());
    return {};
}

bool DbConnection::open(const QString& connectionString, const QString& baseFolder)
{
    const DbTarget target = resolveConnectionString(connectionString, sqlServerOdbcDriver(), baseFolder);
    if (target.driver.isEmpty()) {
        setLastError(formatDbError(QSqlError(target.problem, target.problem, QSqlError::ConnectionError),
                         QStringLiteral("SableManager")),
            target.problem);
        return false;
    }
    release();
    m_name = nextConnectionName();
    QSqlDatabase db = QSqlDatabase::addDatabase(target.driver, m_name);
    db.setDatabaseName(target.databaseName);
    if (!target.host.isEmpty())
        db.setHostName(target.host);
    if (target.port > 0)
        db.setPort(target.port);
    db.setUserName(target.user);
    db.setPassword(target.password);
    db.setConnectOptions(target.connectOptions);
    if (!db.open()) {
        recordError(db.lastError());
        return false;
    }
    if (target.driver != QLatin1String("QSQLITE"))
        return true;
    if (!isSqliteDatabase())
        return false;
    useWriteAheadLog();
    return true;
}

void DbConnection::useWriteAheadLog()
{
    // With a write-ahead log the messenger server goes on reading while a save writes; a save waits
    // for another one instead of failing at once. Where the log cannot be made (a read-only folder)
    // the database stays as it is.
    executeNoRecords(QStringLiteral("PRAGMA busy_timeout = 60000"));
    execute(QStringLiteral("PRAGMA journal_mode = WAL"));
}

bool DbConnection::isSqliteDatabase()
{
    // The engine opens any file and only its first read finds that it holds no database: read now,
    // so that a text file fails here, as a missing one does, before anyone takes it for empty.
    QSqlError error;
    {
        QSqlQuery probe(database());
        if (probe.exec(QStringLiteral("SELECT COUNT(*) FROM sqlite_master")))
            return true;
        error = probe.lastError();
    }
    recordError(error);
    database().close();
    return false;
}

bool DbConnection::isOpen() const
{
    return !m_name.isEmpty() && QSqlDatabase::database(m_name, false).isOpen();
}

void DbConnection::close()
{
    if (!isOpen())
        return;
    QSqlDatabase::database(m_name, false).close();
}

DbRecordset DbConnection::execute(const QString& sql, const QVariantList& values)
{
    if (!isOpen()) {
        recordError(notConnectedError());
        return {};
    }
    if (values.isEmpty()) {
        if (sqlite3* native = SqliteNative::handle(database())) {
            QSqlError error;
            std::unique_ptr<DbRowSource> rows = SqliteNative::select(native, sql, &error);
            if (!rows) {
                recordError(error);
                return {};
            }
            return DbRecordset(std::move(rows));
        }
    }
    auto query = std::make_unique<QSqlQuery>(database());
    query->setForwardOnly(true);
    bool ok = false;
    if (values.isEmpty()) {
        ok = query->exec(sql);
    } else if (query->prepare(sql)) {
        for (const QVariant& value : values)
            query->addBindValue(value);
        ok = query->exec();
    }
    if (!ok) {
        recordError(query->lastError());
        return {};
    }
    return DbRecordset::fromQuery(std::move(query));
}

bool DbConnection::executeNoRecords(const QString& sql, const QVariantList& values)
{
    if (!isOpen()) {
        recordError(notConnectedError());
        return false;
    }
    QSqlQuery query(database());
    bool ok = false;
    if (values.isEmpty()) {
        ok = query.exec(sql);
    } else if (query.prepare(sql)) {
        for (const QVariant& value : values)
            query.addBindValue(value);
        ok = query.exec();
    }
    if (!ok)
        recordError(query.lastError());
    return ok;
}

bool DbConnection::beginTrans()
{
    if (!isOpen()) {
        recordError(notConnectedError());
        return false;
    }
    QSqlDatabase db = database();
    if (db.transaction())
        return true;
    recordError(db.lastError());
    return false;
}

bool DbConnection::beginWriteTrans(const QStringList& tables)
{
    if (!isOpen()) {
        recordError(notConnectedError());
        return false;
    }
    const DbSchema::Dialect dialect = DbSchema::dialectOf(*this);
    if (dialect == DbSchema::Dialect::Sqlite && driverName() == QLatin1String("QSQLITE"))
        return executeNoRecords(QStringLiteral("BEGIN IMMEDIATE"));
    if (!beginTrans())
        return false;
    bool locked = true;
    switch (dialect) {
    case DbSchema::Dialect::PostgreSql:
        locked = executeNoRecords(
            QStringLiteral("LOCK TABLE %1 IN SHARE ROW EXCLUSIVE MODE").arg(tables.join(QStringLiteral(", "))));
        break;
    case DbSchema::Dialect::SqlServer:
        for (const QString& table : tables) {
            locked = locked
                && execute(QStringLiteral("SELECT COUNT(*) FROM %1 WITH (UPDLOCK, TABLOCK, HOLDLOCK)").arg(table))
                       .isValid();
        }
        break;
    case DbSchema::Dialect::Sqlite:
        // Through ODBC the engine begins lazily; a write that changes nothing takes its lock now.
        locked = executeNoRecords(QStringLiteral("DELETE FROM %1 WHERE 1 = 0").arg(tables.value(0)));
        break;
    case DbSchema::Dialect::Other:
        break;
    }
    if (!locked)
        rollbackTrans();
    return locked;
}

bool DbConnection::commitTrans()
{
    QSqlDatabase db = database();
    if (db.isOpen() && db.commit())
        return true;
    recordError(db.isOpen() ? db.lastError() : notConnectedError());
    return false;
}

bool DbConnection::rollbackTrans()
{
    QSqlDatabase db = database();
    if (db.isOpen() && db.rollback())
        return true;
    recordError(db.isOpen() ? db.lastError() : notConnectedError());
    return false;
}

QString DbConnection::driverName() const
{
    return m_name.isEmpty() ? QString() : database().driverName();
}

QStringList DbConnection::tables() const
{
    return isOpen() ? database().tables(QSql::Tables) : QStringList();
}

QSqlDatabase DbConnection::database() const
{
    return m_name.isEmpty() ? QSqlDatabase() : QSqlDatabase::database(m_name, false);
}

void DbConnection::recordError(const QSqlError& error) const
{
    const QString source = m_name.isEmpty() ? QStringLiteral("SableManager") : driverName();
    qCDebug(lcDb).noquote() << QStringLiteral("[ADOConnection Error] number: %1\r\n\t%2\r\n")
                                   .arg(nativeCode(error, source), maskPasswords(error.databaseText()));
    setLastError(formatDbError(error, source), error.driverText());
}

QString DbConnection::lastError()
{
    QMutexLocker lock(&g_stateMutex);
    return g_lastError;
}

QString DbConnection::lastErrorMessage()
{
    QMutexLocker lock(&g_stateMutex);
    return g_lastMessage;
}

QString DbConnection::defaultConnectionString(const QString& defaultDatabasePath)
{
#ifdef Q_OS_WIN
    return QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=%1;DefaultDir=;UID=admin;PWD=;")
        .arg(defaultDatabasePath);
#else
    // Relative to the server's folder, so that a copy of the folder works on its own copy of the
    // database instead of the original's.
    return sqliteConnectionString(QFileInfo(defaultDatabasePath).fileName());
#endif
}

void DbConnection::setSqlServerOdbcDriver(const QString& name)
{
    QMutexLocker lock(&g_stateMutex);
    g_sqlServerDriver = name;
}

QString DbConnection::sqlServerOdbcDriver()
{
    QMutexLocker lock(&g_stateMutex);
    return g_sqlServerDriver;
}

} // namespace sable
