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

// Creates the tables that are missing and never touches one that exists. Returns the names created;
// `ok` is false when a statement failed (the last-error text tells why).
QStringList createMissingTables(DbConnection& connection, bool* ok);

// The columns of `table` (named without regard to case). Engines that fold unquoted names to lower
// case find the table only under the name they list it by.
QSqlRecord recordOf(const DbConnection& connection, const QString& table);

// Name of the column that keeps the rank order on servers that do not return rows in insertion
// order; tables created by the console carry it, the loader orders by it when it is there.
QString rankOrderColumn();
bool hasRankOrderColumn(DbConnection& connection);

} // namespace DbSchema
} // namespace sable
