#pragma once

#include <QSqlRecord>
#include <QString>
#include <QStringList>

namespace sable {

class DbConnection;

// The tables of the chart (SD_) and the file box (SB_) that the console and the server share.
namespace DbSchema {

enum class Dialect
{
    Sqlite,
    PostgreSql,
    SqlServer,
    Other,
};

// Every table the console reads or writes, in the order they are created.
const QStringList& tableNames();

Dialect dialectOf(const DbConnection& connection);

// The tables of tableNames() that `connection` holds (compared without regard to case).
QStringList existingTables(const DbConnection& connection);

// Creates the tables that are missing and never touches one that exists, then the missing indexes.
// Returns the names of the tables created; `ok` is false when a statement failed (the last-error
// text tells why).
QStringList createMissingTables(DbConnection& connection, bool* ok);

// Creates the indexes the save's deletion cascade looks rows up by (the member columns of the
// server's per-user tables, the department column of the memberships) where they are missing;
// tables and columns stay as they are. Returns the names created. Engines whose catalogue cannot be
// asked portably (Access and other ODBC sources) get none.
QStringList createMissingIndexes(DbConnection& connection, bool* ok);

// The columns of `table` (named without regard to case). Engines that fold unquoted names to lower
// case find the table only under the name they list it by.
QSqlRecord recordOf(const DbConnection& connection, const QString& table);

// A table of the console's own (beside the server's SD_ and SB_ tables): its columns, each an
// integer (no text length) or a text of at most `textLength` characters.
struct ColumnSpec
{
    QString name;
    int textLength = 0;
};
// Creates `table` unless it exists; false when the statement failed.
bool createTableIfMissing(DbConnection& connection, const QString& table, const QList<ColumnSpec>& columns);
// Whether `table` has `column` (both named without regard to case).
bool hasColumn(const DbConnection& connection, const QString& table, const QString& column);
// Adds `column` to `table` where a table made by an earlier version lacks it; its rows stay, the new
// column empty. False when the statement failed.
bool addColumnIfMissing(DbConnection& connection, const QString& table, const ColumnSpec& column);

// Name of the column that keeps the rank order on servers that do not return rows in insertion
// order; tables created by the console carry it, the loader orders by it when it is there.
QString rankOrderColumn();
bool hasRankOrderColumn(DbConnection& connection);

} // namespace DbSchema
} // namespace sable
