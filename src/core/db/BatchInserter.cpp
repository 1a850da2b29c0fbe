#include "db/BatchInserter.h"

#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "db/PostgresCopy.h"
#include "db/SqliteNative.h"

#include <QSqlError>

#include <algorithm>

namespace sable {
namespace {

// How many values one statement may carry, and how many rows at most, per engine.
int rowsFor(DbSchema::Dialect dialect, int columns)
{
    switch (dialect) {
    case DbSchema::Dialect::Sqlite:
        return std::clamp(512 / columns, 1, 500);
    case DbSchema::Dialect::PostgreSql:
        return std::clamp(60000 / columns, 1, 1000);
    case DbSchema::Dialect::SqlServer:
        return std::clamp(2000 / columns, 1, 1000);
    case DbSchema::Dialect::Other:
        break;
    }
    return 1;
}

} // namespace

BatchInserter::BatchInserter(DbConnection& connection, const QString& table, const QStringList& columns)
    : m_connection(connection)
    , m_table(table)
    , m_columns(columns)
    , m_rowsPerStatement(rowsFor(DbSchema::dialectOf(connection), static_cast<int>(columns.size())))
    , m_fullBatch(connection.database())
{
    if (sqlite3* native = SqliteNative::handle(connection.database())) {
        m_native = std::make_unique<SqliteNative::Statement>(native, statement(1));
        m_rowsPerStatement = 1;
    } else if (pg_conn* pg = PostgresCopy::handle(connection.database())) {
        m_copy = std::make_unique<PostgresCopy::Writer>(pg, table, columns);
        m_rowsPerStatement = 1;
    }
    m_pending.reserve(m_rowsPerStatement * columns.size());
}

BatchInserter::~BatchInserter() = default;

QVariant BatchInserter::text(const QString& value)
{
    return value.isNull() ? QVariant(QStringLiteral("")) : QVariant(value);
}

bool BatchInserter::add(const QVariantList& values)
{
    if (m_native) {
        if (m_native->run(values))
            return true;
        m_connection.recordError(m_native->lastError());
        return false;
    }
    if (m_copy) {
        if (m_copy->add(values))
            return true;
        m_connection.recordError(m_copy->lastError());
        return false;
    }
    m_pending.append(values);
    ++m_pendingRows;
    return m_pendingRows < m_rowsPerStatement || flush();
}

bool BatchInserter::flush()
{
    if (m_copy) {
        if (m_copy->finish())
            return true;
        m_connection.recordError(m_copy->lastError());
        return false;
    }
    if (m_pendingRows == 0)
        return true;
    const bool ok = execute(m_pendingRows);
    m_pending.clear();
    m_pendingRows = 0;
    return ok;
}

QString BatchInserter::statement(int rows) const
{
    const QString row = u'(' + QStringList(m_columns.size(), QStringLiteral("?")).join(u',') + u')';
    return QStringLiteral("INSERT INTO %1 (%2) VALUES %3")
        .arg(m_table, m_columns.join(u','), QStringList(rows, row).join(u','));
}

bool BatchInserter::execute(int rows)
{
    // Full batches reuse one prepared statement; the last, shorter one gets its own.
    QSqlQuery remainder(m_connection.database());
    QSqlQuery* query = &remainder;
    if (rows == m_rowsPerStatement) {
        if (!m_bFullBatchPrepared && !m_fullBatch.prepare(statement(rows))) {
            m_connection.recordError(m_fullBatch.lastError());
            return false;
        }
        m_bFullBatchPrepared = true;
        query = &m_fullBatch;
    } else if (!remainder.prepare(statement(rows))) {
        m_connection.recordError(remainder.lastError());
        return false;
    }
    for (int i = 0; i < m_pending.size(); ++i)
        query->bindValue(i, m_pending[i]);
    if (query->exec())
        return true;
    m_connection.recordError(query->lastError());
    return false;
}

} // namespace sable
