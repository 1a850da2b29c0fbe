#include "db/ChartCopy.h"

#include "db/DbConnection.h"
#include "db/DbSchema.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

namespace sable::ChartCopy {
namespace {

// The columns both sides have, named as the source names them. The rank order column is left to
// the target, which numbers the rows as they arrive.
QStringList sharedColumns(const QSqlRecord& source, const QSqlRecord& target)
{
    QStringList columns;
    for (int i = 0; i < source.count(); ++i) {
        const QString name = source.fieldName(i);
        if (name.compare(DbSchema::rankOrderColumn(), Qt::CaseInsensitive) == 0)
            continue;
        for (int j = 0; j < target.count(); ++j) {
            if (target.fieldName(j).compare(name, Qt::CaseInsensitive) == 0) {
                columns << name;
                break;
            }
        }
    }
    return columns;
}

qint64 countRows(DbConnection& connection, const QString& table)
{
    QSqlQuery query(connection.database());
    if (!query.exec(QStringLiteral("SELECT COUNT(*) FROM ") + table) || !query.next())
        return -1;
    return query.value(0).toLongLong();
}

QString failure(DbConnection& connection, const QString& table, const QSqlError& error)
{
    connection.recordError(error);
    return table + QStringLiteral(": ") + DbConnection::lastError();
}

// Replaces the rows of `table` in the target; returns the rows copied, or -1 with `error` set.
qint64 copyTable(DbConnection& source, DbConnection& target, const QString& table, QString* error)
{
    const QStringList columns = sharedColumns(DbSchema::recordOf(source, table), DbSchema::recordOf(target, table));
    QSqlQuery remove(target.database());
    if (!remove.exec(QStringLiteral("DELETE FROM ") + table)) {
        *error = failure(target, table, remove.lastError());
        return -1;
    }
    if (columns.isEmpty())
        return 0;
    const QString list = columns.join(u',');
    QString select = QStringLiteral("SELECT %1 FROM %2").arg(list, table);
    if (table == QLatin1String("SD_Rank") && DbSchema::hasRankOrderColumn(source))
        select += QStringLiteral(" ORDER BY ") + DbSchema::rankOrderColumn();
    QSqlQuery rows(source.database());
    rows.setForwardOnly(true);
    if (!rows.exec(select)) {
        *error = failure(source, table, rows.lastError());
        return -1;
    }
    QStringList marks;
    marks.fill(QStringLiteral("?"), columns.size());
    QSqlQuery insert(target.database());
    if (!insert.prepare(QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table, list, marks.join(u',')))) {
        *error = failure(target, table, insert.lastError());
        return -1;
    }
    qint64 copied = 0;
    while (rows.next()) {
        for (int i = 0; i < columns.size(); ++i)
            insert.bindValue(i, rows.value(i));
        if (!insert.exec()) {
            *error = failure(target, table, insert.lastError());
            return -1;
        }
        ++copied;
    }
    return copied;
}

} // namespace

Result copy(DbConnection& source, DbConnection& target)
{
    Result result;
    const QStringList sourceTables = DbSchema::existingTables(source);
    const QStringList targetTables = DbSchema::existingTables(target);
    for (const QString& table : sourceTables) {
        if (!targetTables.contains(table)) {
            result.error = table + QStringLiteral(": the new database has no such table");
            return result;
        }
    }
    if (!target.beginTrans()) {
        result.error = DbConnection::lastError();
        return result;
    }
    for (const QString& table : sourceTables) {
        const qint64 copied = copyTable(source, target, table, &result.error);
        const qint64 inSource = copied < 0 ? -1 : countRows(source, table);
        const qint64 inTarget = copied < 0 ? -1 : countRows(target, table);
        if (copied >= 0 && (inSource != copied || inTarget != copied))
            result.error = QStringLiteral("%1: %2 rows in the current database, %3 read, %4 in the new one")
                               .arg(table)
                               .arg(inSource)
                               .arg(copied)
                               .arg(inTarget);
        if (!result.error.isEmpty()) {
            target.rollbackTrans();
            result.rows.clear();
            return result;
        }
        result.rows.insert(table, copied);
    }
    if (!target.commitTrans()) {
        result.error = DbConnection::lastError();
        result.rows.clear();
        return result;
    }
    result.bOk = true;
    return result;
}

} // namespace sable::ChartCopy
