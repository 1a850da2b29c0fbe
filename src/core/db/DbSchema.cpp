#include "db/DbSchema.h"

#include "db/DbConnection.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlRecord>

#include <optional>

namespace sable::DbSchema {
namespace {

struct Column
{
    const char* name;
    int textLength; // 0 for an integer column
};

struct Table
{
    const char* name;
    std::vector<Column> columns;
};

const std::vector<Table>& tables()
{
    static const std::vector<Table> all = {
        {"SD_Group", {{"K_GroupID", 0}, {"GroupName", 100}, {"K_GroupID_P", 0}, {"Position", 0}, {"Depth", 0}}},
        {"SD_Member",
            {{"K_MemberID", 0}, {"MemberID", 50}, {"MemberName", 50}, {"Passwd", 50}, {"Gender", 0}, {"bPublic", 0},
                {"Email", 200}, {"HP", 50}, {"Address", 255}, {"HomePhone", 50}, {"OfficePhone", 50}, {"BirthDay", 50},
                {"Description", 1000}, {"bSolar", 0}, {"bAdmin", 0}}},
        {"SD_Relation", {{"K_MemberID", 0}, {"K_GroupID", 0}, {"K_RankID", 0}, {"Position", 0}}},
        {"SD_Rank", {{"K_RankID", 0}, {"RankName", 100}}},
        {"SD_Antenna", {{"K_MemberID", 0}, {"K_MemberID_O", 0}}},
        {"SD_MyMember", {{"K_MemberID", 0}, {"K_MemberID_O", 0}, {"K_MyGroupID", 0}}},
        {"SD_MyGroup", {{"K_MemberID", 0}, {"K_MyGroupID", 0}, {"MyGroupName", 100}}},
        {"SD_LeavedMemo", {{"K_MemberID", 0}, {"K_MemberID_O", 0}, {"Memo", 1000}}},
        {"SB_Folder", {{"K_FolderID", 0}, {"FolderPath", 260}}},
        {"SB_GroupAuthority", {{"K_FolderID", 0}, {"K_GroupID", 0}, {"Authority", 1}}},
        {"SB_UserAuthority", {{"K_FolderID", 0}, {"K_MemberID", 0}, {"Authority", 1}}},
    };
    return all;
}

QString columnType(const Column& column, Dialect dialect)
{
    if (column.textLength == 0)
        return QStringLiteral("INTEGER");
    switch (dialect) {
    case Dialect::Sqlite:
        return QStringLiteral("TEXT");
    case Dialect::SqlServer:
        return QStringLiteral("NVARCHAR(%1)").arg(column.textLength);
    case Dialect::PostgreSql:
    case Dialect::Other:
        break;
    }
    return QStringLiteral("VARCHAR(%1)").arg(column.textLength);
}

// The rank table keeps its order in the row order where the engine returns rows that way (the
// embedded engine does); elsewhere it gets a counter column that numbers rows as they are inserted.
QString rankOrderDefinition(Dialect dialect)
{
    switch (dialect) {
    case Dialect::PostgreSql:
        return rankOrderColumn() + QStringLiteral(" BIGSERIAL");
    case Dialect::SqlServer:
        return rankOrderColumn() + QStringLiteral(" BIGINT IDENTITY(1,1)");
    case Dialect::Sqlite:
    case Dialect::Other:
        break;
    }
    return {};
}

QString createStatement(const Table& table, Dialect dialect)
{
    QStringList columns;
    for (const Column& column : table.columns) {
        columns << QStringLiteral("%1 %2 NULL").arg(QLatin1String(column.name), columnType(column, dialect));
    }
    if (QLatin1String(table.name) == QLatin1String("SD_Rank")) {
        const QString order = rankOrderDefinition(dialect);
        if (!order.isEmpty())
            columns << order;
    }
    return QStringLiteral("CREATE TABLE %1 (%2)").arg(QLatin1String(table.name), columns.join(QStringLiteral(", ")));
}

struct Index
{
    const char* name;
    const char* table;
    const char* column;
};

const std::vector<Index>& indexes()
{
    static const std::vector<Index> all = {
        {"IX_SD_Relation_Group", "SD_Relation", "K_GroupID"},
        {"IX_SD_Antenna_Member", "SD_Antenna", "K_MemberID"},
        {"IX_SD_Antenna_Other", "SD_Antenna", "K_MemberID_O"},
        {"IX_SD_MyMember_Member", "SD_MyMember", "K_MemberID"},
        {"IX_SD_MyMember_Other", "SD_MyMember", "K_MemberID_O"},
        {"IX_SD_MyGroup_Member", "SD_MyGroup", "K_MemberID"},
        {"IX_SD_LeavedMemo_Member", "SD_LeavedMemo", "K_MemberID"},
    };
    return all;
}

// The names of the indexes the database holds, in lower case; nullopt where the engine's catalogue
// is not known.
std::optional<QStringList> existingIndexNames(DbConnection& connection, Dialect dialect)
{
    QString sql;
    switch (dialect) {
    case Dialect::Sqlite:
        sql = QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'index'");
        break;
    case Dialect::PostgreSql:
        sql = QStringLiteral("SELECT indexname FROM pg_indexes WHERE schemaname = current_schema()");
        break;
    case Dialect::SqlServer:
        sql = QStringLiteral("SELECT name FROM sys.indexes WHERE name IS NOT NULL");
        break;
    case Dialect::Other:
        return std::nullopt;
    }
    DbRecordset rows = connection.execute(sql);
    if (!rows.isValid())
        return std::nullopt;
    QStringList names;
    for (; !rows.isEof(); rows.moveNext())
        names << rows.fieldText(0).toLower();
    return names;
}

} // namespace

const QStringList& tableNames()
{
    static const QStringList names = [] {
        QStringList out;
        for (const Table& table : tables())
            out << QLatin1String(table.name);
        return out;
    }();
    return names;
}

Dialect dialectOf(const DbConnection& connection)
{
    const QString driver = connection.driverName();
    if (driver == QLatin1String("QSQLITE"))
        return Dialect::Sqlite;
    if (driver == QLatin1String("QPSQL"))
        return Dialect::PostgreSql;
    if (driver != QLatin1String("QODBC"))
        return Dialect::Other;
    const QString odbc = connection.database().databaseName().toLower();
    if (odbc.contains(QLatin1String("sqlite")))
        return Dialect::Sqlite;
    if (odbc.contains(QLatin1String("postgres")))
        return Dialect::PostgreSql;
    if (odbc.contains(QLatin1String("sql server")) || odbc.contains(QLatin1String("freetds")))
        return Dialect::SqlServer;
    return Dialect::Other;
}

QStringList existingTables(const DbConnection& connection)
{
    const QStringList present = connection.tables();
    QStringList out;
    for (const QString& name : tableNames()) {
        if (present.contains(name, Qt::CaseInsensitive))
            out << name;
    }
    return out;
}

QStringList createMissingTables(DbConnection& connection, bool* ok)
{
    *ok = connection.isOpen();
    QStringList created;
    if (!*ok)
        return created;
    const QStringList present = existingTables(connection);
    const Dialect dialect = dialectOf(connection);
    for (const Table& table : tables()) {
        const QString name = QLatin1String(table.name);
        if (present.contains(name))
            continue;
        if (!connection.executeNoRecords(createStatement(table, dialect))) {
            *ok = false;
            return created;
        }
        created << name;
    }
    createMissingIndexes(connection, ok);
    return created;
}

QStringList createMissingIndexes(DbConnection& connection, bool* ok)
{
    *ok = connection.isOpen();
    QStringList created;
    const std::optional<QStringList> present
        = *ok ? existingIndexNames(connection, dialectOf(connection)) : std::nullopt;
    if (!present)
        return created;
    const QStringList tablesPresent = existingTables(connection);
    for (const Index& index : indexes()) {
        const QString name = QLatin1String(index.name);
        if (present->contains(name.toLower()) || !tablesPresent.contains(QLatin1String(index.table)))
            continue;
        if (!connection.executeNoRecords(QStringLiteral("CREATE INDEX %1 ON %2 (%3)")
                                             .arg(name, QLatin1String(index.table), QLatin1String(index.column)))) {
            *ok = false;
            return created;
        }
        created << name;
    }
    return created;
}

bool createTableIfMissing(DbConnection& connection, const QString& table, const QList<ColumnSpec>& columns)
{
    if (connection.tables().contains(table, Qt::CaseInsensitive))
        return true;
    const Dialect dialect = dialectOf(connection);
    QStringList definitions;
    for (const ColumnSpec& column : columns) {
        const QByteArray name = column.name.toLatin1();
        definitions << QStringLiteral("%1 %2 NULL")
                           .arg(column.name, columnType({name.constData(), column.textLength}, dialect));
    }
    return connection.executeNoRecords(
        QStringLiteral("CREATE TABLE %1 (%2)").arg(table, definitions.join(QStringLiteral(", "))));
}

bool hasColumn(const DbConnection& connection, const QString& table, const QString& column)
{
    const QSqlRecord record = recordOf(connection, table);
    for (int i = 0; i < record.count(); ++i) {
        if (record.fieldName(i).compare(column, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

bool addColumnIfMissing(DbConnection& connection, const QString& table, const ColumnSpec& column)
{
    if (hasColumn(connection, table, column.name))
        return true;
    const Dialect dialect = dialectOf(connection);
    const QByteArray name = column.name.toLatin1();
    // SQL Server knows no COLUMN keyword here; the others want it.
    const QString add = dialect == Dialect::SqlServer ? QStringLiteral("ADD") : QStringLiteral("ADD COLUMN");
    return connection.executeNoRecords(
        QStringLiteral("ALTER TABLE %1 %2 %3 %4 NULL")
            .arg(table, add, column.name, columnType({name.constData(), column.textLength}, dialect)));
}

QString rankOrderColumn()
{
    return QStringLiteral("RankOrder");
}

QSqlRecord recordOf(const DbConnection& connection, const QString& table)
{
    for (const QString& listed : connection.tables()) {
        if (listed.compare(table, Qt::CaseInsensitive) == 0)
            return connection.database().record(listed);
    }
    return {};
}

bool hasRankOrderColumn(DbConnection& connection)
{
    const QSqlRecord record = recordOf(connection, QStringLiteral("SD_Rank"));
    return record.contains(rankOrderColumn()) || record.contains(rankOrderColumn().toLower());
}

} // namespace sable::DbSchema
