#pragma once

#include <QMap>
#include <QString>

namespace sable {

class DbConnection;

// Copies the chart and the file-box permissions (every SD_ and SB_ table) from one database into
// another, for instance when the server moves to a new database. The target's tables are replaced
// in one transaction, which is committed only when every table holds as many rows as its source.
namespace ChartCopy {

struct Result
{
    bool bOk = false;
    QMap<QString, qint64> rows; // rows copied, by table
    QString error; // why it failed: the table and the database's error text, or the counts
};

// The target must already have the tables (see DbSchema::createMissingTables); a table that the
// source lacks is left empty. Values travel as bound parameters. The rank table keeps its order.
Result copy(DbConnection& source, DbConnection& target);

} // namespace ChartCopy
} // namespace sable
