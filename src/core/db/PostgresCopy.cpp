#include "db/PostgresCopy.h"

#ifdef SABLE_POSTGRES_COPY
#include <QSqlDriver>

#include <charconv>
#include <libpq-fe.h>
#endif

namespace sable::PostgresCopy {

#ifdef SABLE_POSTGRES_COPY
namespace {

// What is sent to the server at a time: large enough that the calls cost nothing beside the rows,
// small enough that a save of any size holds no more than this of them.
constexpr qsizetype kChunk = 256 * 1024;

// A text in COPY's text format: the column and row separators and the escape character itself are
// escaped; every other character, Korean text included, goes as its UTF-8 bytes.
void appendText(QByteArray& out, QByteArrayView utf8)
{
    qsizetype run = 0;
    for (qsizetype i = 0; i < utf8.size(); ++i) {
        const char c = utf8[i];
        const char* escaped = c == '\\' ? "\\\\" : c == '\t' ? "\\t" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : nullptr;
        if (!escaped)
            continue;
        out.append(utf8.sliced(run, i - run));
        out.append(escaped, 2);
        run = i + 1;
    }
    out.append(utf8.sliced(run));
}

void appendInteger(QByteArray& out, qint64 value)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    out.append(digits, end - digits);
}

void appendValue(QByteArray& out, const QVariant& value, QByteArray& scratch)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        appendInteger(out, value.toLongLong());
        return;
    case QMetaType::Bool:
        out.append(value.toBool() ? '1' : '0');
        return;
    case QMetaType::QString: {
        const auto* text = static_cast<const QString*>(value.constData());
        // A null text is NULL, as Qt's driver binds it.
        if (text->isNull())
            break;
        scratch = text->toUtf8();
        appendText(out, scratch);
        return;
    }
    default:
        if (!value.isNull()) {
            scratch = value.toString().toUtf8();
            appendText(out, scratch);
            return;
        }
    }
    out.append("\\N", 2);
}

QSqlError errorOf(pg_conn* connection, const PGresult* result, const QString& what)
{
    const char* message = result ? PQresultErrorMessage(result) : PQerrorMessage(connection);
    const char* state = result ? PQresultErrorField(result, PG_DIAG_SQLSTATE) : nullptr;
    return QSqlError(what, QString::fromUtf8(message).trimmed(), QSqlError::StatementError,
        state ? QString::fromLatin1(state) : QString());
}

// Reads the results that are left until the connection is idle again.
void drain(pg_conn* connection)
{
    while (PGresult* result = PQgetResult(connection))
        PQclear(result);
}

} // namespace

pg_conn* handle(const QSqlDatabase& database)
{
    if (!database.driverName().startsWith(QLatin1String("QPSQL")) || !database.isOpen())
        return nullptr;
    const QVariant native = database.driver()->handle();
    // Qt's metatype names the client's struct, whatever the typedef it was declared with.
    if (qstrcmp(native.typeName(), "pg_conn*") != 0 && qstrcmp(native.typeName(), "PGconn*") != 0)
        return nullptr;
    pg_conn* connection = *static_cast<pg_conn* const*>(native.data());
    if (!connection || PQstatus(connection) != CONNECTION_OK)
        return nullptr;
    // A statement of the driver's still being read, or a transaction that already failed: the
    // driver's own path says what is wrong.
    const PGTransactionStatusType state = PQtransactionStatus(connection);
    if (state != PQTRANS_IDLE && state != PQTRANS_INTRANS)
        return nullptr;
    if (qstrcmp(pg_encoding_to_char(PQclientEncoding(connection)), "UTF8") != 0)
        return nullptr;
    return connection;
}

bool isBuilt()
{
    return true;
}

Writer::Writer(pg_conn* connection, const QString& table, const QStringList& columns)
    : m_connection(connection)
    , m_statement(QStringLiteral("COPY %1 (%2) FROM STDIN").arg(table, columns.join(u',')).toUtf8())
{
    m_buffer.reserve(kChunk + 4096);
}

Writer::~Writer()
{
    if (m_bCopying)
        abandon();
}

bool Writer::fail(const QString& what)
{
    m_error = errorOf(m_connection, nullptr, what);
    return false;
}

bool Writer::begin()
{
    PGresult* result = PQexec(m_connection, m_statement.constData());
    const bool ok = PQresultStatus(result) == PGRES_COPY_IN;
    if (!ok)
        m_error = errorOf(m_connection, result, QStringLiteral("Unable to copy rows"));
    PQclear(result);
    m_bCopying = ok;
    return ok;
}

bool Writer::send()
{
    if (m_buffer.isEmpty())
        return true;
    const bool ok = PQputCopyData(m_connection, m_buffer.constData(), static_cast<int>(m_buffer.size())) == 1;
    m_buffer.clear();
    if (ok)
        return true;
    // The server may have refused a row already and ended the copy: its reason is in the results.
    m_bCopying = false;
    m_error = errorOf(m_connection, nullptr, QStringLiteral("Unable to send rows"));
    while (PGresult* result = PQgetResult(m_connection)) {
        if (PQresultStatus(result) == PGRES_FATAL_ERROR)
            m_error = errorOf(m_connection, result, QStringLiteral("Unable to copy rows"));
        PQclear(result);
    }
    return false;
}

bool Writer::add(const QVariantList& values)
{
    if (!m_bCopying && !begin())
        return false;
    for (qsizetype i = 0; i < values.size(); ++i) {
        if (i > 0)
            m_buffer.append('\t');
        appendValue(m_buffer, values[i], m_scratch);
    }
    m_buffer.append('\n');
    return m_buffer.size() < kChunk || send();
}

bool Writer::finish()
{
    if (!m_bCopying)
        return true;
    if (!send())
        return false;
    m_bCopying = false;
    if (PQputCopyEnd(m_connection, nullptr) != 1)
        return fail(QStringLiteral("Unable to end the copy"));
    PGresult* result = PQgetResult(m_connection);
    const bool ok = PQresultStatus(result) == PGRES_COMMAND_OK;
    if (!ok)
        m_error = errorOf(m_connection, result, QStringLiteral("Unable to copy rows"));
    PQclear(result);
    drain(m_connection);
    return ok;
}

void Writer::abandon()
{
    m_bCopying = false;
    m_buffer.clear();
    // The server ends the copy with an error, which fails the transaction: no half of the rows stays.
    PQputCopyEnd(m_connection, "rows abandoned");
    drain(m_connection);
}

#else

pg_conn* handle(const QSqlDatabase&)
{
    return nullptr;
}

bool isBuilt()
{
    return false;
}

Writer::Writer(pg_conn* connection, const QString&, const QStringList&)
    : m_connection(connection)
{ }

Writer::~Writer() = default;

bool Writer::add(const QVariantList&)
{
    return false;
}

bool Writer::finish()
{
    return false;
}

#endif

} // namespace sable::PostgresCopy
