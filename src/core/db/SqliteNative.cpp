#include "db/SqliteNative.h"

#ifdef SABLE_SQLITE_NATIVE
#include <QSqlDriver>

#include <sqlite3.h>
#endif

namespace sable::SqliteNative {

#ifdef SABLE_SQLITE_NATIVE
namespace {

QSqlError errorOf(sqlite3* db, const QString& what)
{
    return QSqlError(what, QString::fromUtf8(sqlite3_errmsg(db)), QSqlError::StatementError,
        QString::number(sqlite3_extended_errcode(db)));
}

class Rows final : public DbRowSource
{
public:
    explicit Rows(sqlite3_stmt* statement)
        : m_statement(statement)
    { }
    ~Rows() override { sqlite3_finalize(m_statement); }

    bool next() override
    {
        const int result = sqlite3_step(m_statement);
        if (result != SQLITE_ROW && result != SQLITE_DONE)
            m_error = errorOf(sqlite3_db_handle(m_statement), QStringLiteral("Unable to fetch row"));
        return result == SQLITE_ROW;
    }
    QSqlError error() const override { return m_error; }
    bool isNull(int n) const override { return sqlite3_column_type(m_statement, n) == SQLITE_NULL; }
    qint64 integer(int n) const override
    {
        // A text that does not start with a number reads as 0, as in Qt's conversion.
        return sqlite3_column_int64(m_statement, n);
    }
    QString text(int n) const override
    {
        const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, n));
        return data ? QString::fromUtf8(data, sqlite3_column_bytes(m_statement, n)) : QString();
    }
    int fieldCount() const override { return sqlite3_column_count(m_statement); }
    QString fieldName(int n) const override { return QString::fromUtf8(sqlite3_column_name(m_statement, n)); }

private:
    sqlite3_stmt* m_statement;
    QSqlError m_error;
};

sqlite3_stmt* prepare(sqlite3* db, const QString& sql)
{
    const QByteArray text = sql.toUtf8();
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(db, text.constData(), static_cast<int>(text.size()), &statement, nullptr) != SQLITE_OK) {
        sqlite3_finalize(statement);
        return nullptr;
    }
    return statement;
}

void bind(sqlite3_stmt* statement, int index, const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Bool:
        sqlite3_bind_int64(statement, index, value.toLongLong());
        return;
    case QMetaType::QString: {
        const QByteArray utf8 = value.toString().toUtf8();
        sqlite3_bind_text(statement, index, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
        return;
    }
    default:
        break;
    }
    if (value.isNull())
        sqlite3_bind_null(statement, index);
    else
        sqlite3_bind_text(statement, index, value.toString().toUtf8().constData(), -1, SQLITE_TRANSIENT);
}

} // namespace

sqlite3* handle(const QSqlDatabase& database)
{
    if (database.driverName() != QLatin1String("QSQLITE") || !database.isOpen())
        return nullptr;
    const QVariant native = database.driver()->handle();
    if (qstrcmp(native.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(native.data());
}

std::unique_ptr<DbRowSource> select(sqlite3* db, const QString& sql, QSqlError* error)
{
    sqlite3_stmt* statement = prepare(db, sql);
    if (!statement) {
        *error = errorOf(db, QStringLiteral("Unable to execute statement"));
        return nullptr;
    }
    return std::make_unique<Rows>(statement);
}

Statement::Statement(sqlite3* db, const QString& sql)
    : m_db(db)
    , m_statement(prepare(db, sql))
{ }

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

bool Statement::run(const QVariantList& values)
{
    for (int i = 0; i < values.size(); ++i)
        bind(m_statement, i + 1, values[i]);
    const int result = sqlite3_step(m_statement);
    sqlite3_reset(m_statement);
    return result == SQLITE_DONE;
}

QSqlError Statement::lastError() const
{
    return errorOf(m_db, QStringLiteral("Unable to execute statement"));
}

#else

sqlite3* handle(const QSqlDatabase&)
{
    return nullptr;
}

std::unique_ptr<DbRowSource> select(sqlite3*, const QString&, QSqlError*)
{
    return nullptr;
}

Statement::Statement(sqlite3* db, const QString&)
    : m_db(db)
{ }

Statement::~Statement() = default;

bool Statement::run(const QVariantList&)
{
    return false;
}

QSqlError Statement::lastError() const
{
    return {};
}

#endif

} // namespace sable::SqliteNative
