#pragma once

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <memory>

namespace sable {

namespace SqliteNative {
class Statement;
}
namespace PostgresCopy {
class Writer;
}

class DbConnection;

// Inserts rows into one table with bound values, several rows per statement where the engine takes
// that: a save writes hundreds of thousands of rows, and one statement per row is bound by the
// round trips to a database server. The embedded engine gets its rows through its own API and
// PostgreSQL through a bulk copy where the build allows; the rows stored are the same either way.
// Rows not flushed are not written; on PostgreSQL's bulk copy they fail the transaction as well.
class BatchInserter
{
public:
    BatchInserter(DbConnection& connection, const QString& table, const QStringList& columns);
    ~BatchInserter();
    BatchInserter(const BatchInserter&) = delete;
    BatchInserter& operator=(const BatchInserter&) = delete;

    // Adds one row (one value per column, in column order); false when a statement failed.
    bool add(const QVariantList& values);
    // Writes what is pending; false when a statement failed (the connection's last error says why).
    bool flush();

    int rowsPerStatement() const { return m_rowsPerStatement; }

    // A text value as it is stored: never NULL, an empty text stays an empty text.
    static QVariant text(const QString& value);

private:
    bool execute(int rows);
    QString statement(int rows) const;

    DbConnection& m_connection;
    QString m_table;
    QStringList m_columns;
    int m_rowsPerStatement = 1;
    QVariantList m_pending;
    int m_pendingRows = 0;
    QSqlQuery m_fullBatch;
    bool m_bFullBatchPrepared = false;
    std::unique_ptr<SqliteNative::Statement> m_native; // the embedded engine's own API, where available
    std::unique_ptr<PostgresCopy::Writer> m_copy; // PostgreSQL's bulk copy, where available
};

} // namespace sable
