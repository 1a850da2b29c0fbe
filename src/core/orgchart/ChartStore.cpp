#include "orgchart/ChartStore.h"

#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "orgchart/ChartRows.h"

#include <algorithm>
#include <functional>

namespace sable::ChartStore {
namespace {

using Text = BatchInserter;

// Identifiers per statement of the deletion cascade where they go as parameters: twice this many
// parameters stay within what every engine takes in one statement.
constexpr qsizetype kCascadeBatch = 500;

// The embedded engine's page cache while the cascade runs, in KiB: the member indexes of a per-user
// table of a million rows.
constexpr int kCascadeCacheKiB = 32 * 1024;

QString placeholders(qsizetype count)
{
    QString list = QStringLiteral("(");
    for (qsizetype i = 0; i < count; ++i)
        list += i == 0 ? QStringLiteral("?") : QStringLiteral(",?");
    return list + u')';
}

bool writeGroups(DbConnection& connection, const std::vector<GroupRow>& groups)
{
    BatchInserter insert(connection, QStringLiteral("SD_Group"),
        {QStringLiteral("K_GroupID"), QStringLiteral("GroupName"), QStringLiteral("K_GroupID_P"),
            QStringLiteral("Position"), QStringLiteral("Depth")});
    for (const GroupRow& row : groups) {
        if (!insert.add({row.K_GroupID, Text::text(row.GroupName), row.K_GroupID_P, row.Position, row.Depth}))
            return false;
    }
    return insert.flush();
}

bool writeMembers(DbConnection& connection, const std::vector<MemberRecord>& members)
{
    BatchInserter insert(connection, QStringLiteral("SD_Member"),
        {QStringLiteral("K_MemberID"), QStringLiteral("MemberID"), QStringLiteral("MemberName"),
            QStringLiteral("Passwd"), QStringLiteral("Gender"), QStringLiteral("bPublic"), QStringLiteral("Email"),
            QStringLiteral("HP"), QStringLiteral("Address"), QStringLiteral("HomePhone"), QStringLiteral("OfficePhone"),
            QStringLiteral("BirthDay"), QStringLiteral("Description"), QStringLiteral("bSolar"),
            QStringLiteral("bAdmin")});
    for (const MemberRecord& m : members) {
        if (!insert.add({m.K_MemberID, Text::text(m.MemberID), Text::text(m.MemberName), Text::text(m.Passwd), m.Gender,
                m.bPublic ? 1 : 0, Text::text(m.Email), Text::text(m.HP), Text::text(m.Address),
                Text::text(m.HomePhone), Text::text(m.OfficePhone), Text::text(m.BirthDay), Text::text(m.Description),
                m.bSolar ? 1 : 0, m.bAdmin ? 1 : 0}))
            return false;
    }
    return insert.flush();
}

bool writeRelations(DbConnection& connection, const std::vector<RelationRow>& relations)
{
    BatchInserter insert(connection, QStringLiteral("SD_Relation"),
        {QStringLiteral("K_MemberID"), QStringLiteral("K_GroupID"), QStringLiteral("K_RankID"),
            QStringLiteral("Position")});
    for (const RelationRow& row : relations) {
        if (!insert.add({row.K_MemberID, row.K_GroupID, row.K_RankID, row.Position}))
            return false;
    }
    return insert.flush();
}

// The per-user tables with their columns, and the columns that name a member.
struct UserTable
{
    const char* name;
    QStringList columns;
    bool bOtherMember; // K_MemberID_O names a member too
};

const std::vector<UserTable>& userTables()
{
    static const std::vector<UserTable> tables = {
        {"SD_Antenna", {QStringLiteral("K_MemberID"), QStringLiteral("K_MemberID_O")}, true},
        {"SD_MyMember", {QStringLiteral("K_MemberID"), QStringLiteral("K_MemberID_O"), QStringLiteral("K_MyGroupID")},
            true},
        {"SD_MyGroup", {QStringLiteral("K_MemberID"), QStringLiteral("K_MyGroupID"), QStringLiteral("MyGroupName")},
            false},
        {"SD_LeavedMemo", {QStringLiteral("K_MemberID"), QStringLiteral("K_MemberID_O"), QStringLiteral("Memo")},
            false},
    };
    return tables;
}

// The condition that picks the rows of `table` naming one of the identifiers `in` lists. On the
// embedded engine the rows are found through the member indexes first and then visited in the order
// they are stored, so that each page of the table is read (and written) once however scattered the
// rows of one user are; a row that names removed users in both columns is found once either way.
QString namingCondition(const UserTable& table, const QString& in, bool bRowOrder)
{
    if (!bRowOrder) {
        const QString naming = u"K_MemberID IN " % in;
        return table.bOtherMember ? naming % u" OR K_MemberID_O IN " % in : naming;
    }
    const QString name = QLatin1String(table.name);
    QString rows = u"SELECT rowid FROM " % name % u" WHERE K_MemberID IN " % in;
    if (table.bOtherMember)
        rows += u" UNION SELECT rowid FROM " % name % u" WHERE K_MemberID_O IN " % in;
    return u"rowid IN (" % rows % u')';
}

// The values of namingCondition()'s placeholders for the identifiers `ids`.
QVariantList namingValues(const UserTable& table, const QVariantList& ids)
{
    return table.bOtherMember ? ids + ids : ids;
}

using IdStatements = std::function<bool(const QString& in, const QVariantList& values)>;

// Runs `run` once per batch of `ids`, with the batch's placeholder list and values.
bool forEachBatch(const QList<int>& ids, const IdStatements& run)
{
    for (qsizetype first = 0; first < ids.size(); first += kCascadeBatch) {
        const QList<int> batch = ids.mid(first, kCascadeBatch);
        QVariantList values;
        for (const int id : batch)
            values << id;
        if (!run(placeholders(batch.size()), values))
            return false;
    }
    return true;
}

bool isEmbedded(const DbConnection& connection)
{
    return DbSchema::dialectOf(connection) == DbSchema::Dialect::Sqlite;
}

// Runs `run` with a list `ids` are in. On the embedded engine once, with a query of a temporary
// table that holds them: one statement per table for thousands of users, where batches of a few
// hundred made dozens, and a list the engine searches as a table of its own. Elsewhere once per
// batch, as forEachBatch(). The table is gone once `run` went through; when it failed, the rollback
// of the save's transaction takes it away.
bool forIds(DbConnection& connection, const QList<int>& ids, const IdStatements& run)
{
    if (ids.isEmpty())
        return true;
    if (!isEmbedded(connection))
        return forEachBatch(ids, run);
    const QString table = QStringLiteral("temp.SableCascadeIds");
    std::vector<int> unique(ids.begin(), ids.end());
    std::sort(unique.begin(), unique.end());
    unique.erase(std::unique(unique.begin(), unique.end()), unique.end());
    if (!connection.executeNoRecords(u"CREATE TEMPORARY TABLE IF NOT EXISTS " % table % u" (id INTEGER PRIMARY KEY)")
        || !connection.executeNoRecords(u"DELETE FROM " % table))
        return false;
    {
        BatchInserter insert(connection, table, {QStringLiteral("id")});
        for (const int id : unique) {
            if (!insert.add({id}))
                return false;
        }
        if (!insert.flush())
            return false;
    }
    return run(u"(SELECT id FROM " % table % u')', {}) && connection.executeNoRecords(u"DROP TABLE " % table);
}

// The cascade changes pages all over the per-user tables and their indexes (the rows naming a
// removed user lie anywhere, as the server added them): in the embedded engine's default cache of
// 2 MB, already full of the chart just written, index pages would be read, spilled into the log and
// read again for every few rows. A larger cache while the cascade runs, given back after; the engine
// takes the memory only as pages come in.
class CascadeCache
{
public:
    explicit CascadeCache(DbConnection& connection)
        : m_connection(connection)
    {
        if (!isEmbedded(connection))
            return;
        DbRecordset current = connection.execute(QStringLiteral("PRAGMA cache_size"));
        if (!current.isValid() || current.isEof())
            return;
        m_previous = current.fieldInt(0);
        current.close();
        connection.executeNoRecords(QStringLiteral("PRAGMA cache_size = -%1").arg(kCascadeCacheKiB));
    }
    ~CascadeCache()
    {
        if (m_previous)
            m_connection.executeNoRecords(QStringLiteral("PRAGMA cache_size = %1").arg(*m_previous));
    }
    CascadeCache(const CascadeCache&) = delete;
    CascadeCache& operator=(const CascadeCache&) = delete;

private:
    DbConnection& m_connection;
    std::optional<int> m_previous;
};

std::optional<std::vector<int>> storedIds(DbConnection& connection, const QString& sql)
{
    DbRecordset rows = connection.execute(sql);
    if (!rows.isValid())
        return std::nullopt;
    std::vector<int> ids;
    for (; !rows.isEof(); rows.moveNext())
        ids.push_back(rows.fieldInt(0));
    if (rows.hasFailed()) {
        connection.recordError(rows.error());
        return std::nullopt;
    }
    return ids;
}

} // namespace

std::optional<std::vector<int>> storedMemberIds(DbConnection& connection)
{
    return storedIds(connection, QStringLiteral("SELECT K_MemberID FROM SD_Member"));
}

std::optional<std::vector<int>> storedGroupIds(DbConnection& connection)
{
    return storedIds(connection, QStringLiteral("SELECT K_GroupID FROM SD_Group"));
}

QString membersQuery()
{
    return QStringLiteral("SELECT MemberID,MemberName,Passwd,Gender,bPublic,Email,HP,Homephone,Address,HomePhone,"
                          "BirthDay,bSolar,bAdmin,K_MemberID,Officephone,Description  FROM SD_Member");
}

MemberRecord memberAt(const DbRecordset& rows)
{
    MemberRecord member;
    member.bAdmin = rows.fieldInt(12) != 0;
    member.bSolar = rows.fieldInt(11) != 0;
    member.bPublic = rows.fieldInt(4) != 0;
    member.Gender = rows.fieldInt(3) == 0 ? 0 : 1;
    member.K_MemberID = rows.fieldInt(13);
    member.Description = rows.fieldText(15);
    member.BirthDay = rows.fieldText(10);
    member.Address = rows.fieldText(8);
    member.OfficePhone = rows.fieldText(14);
    member.HomePhone = rows.fieldText(7); // the first of the two home-phone columns
    member.HP = rows.fieldText(6);
    member.Email = rows.fieldText(5);
    member.Passwd = rows.fieldText(2);
    member.MemberName = rows.fieldText(1);
    member.MemberID = rows.fieldText(0);
    return member;
}

QString groupsQuery()
{
    return QStringLiteral(
        "SELECT K_GroupID,GroupName,Position,K_GroupID_P,Depth FROM SD_Group ORDER BY Depth,Position");
}

GroupRow groupAt(const DbRecordset& rows)
{
    return {rows.fieldInt(0), rows.fieldText(1), rows.fieldInt(3), rows.fieldInt(2), rows.fieldInt(4)};
}

QString relationsQuery()
{
    return QStringLiteral("SELECT K_MemberID,K_RankID,Position,K_GroupID FROM SD_Relation");
}

RelationRow relationAt(const DbRecordset& rows)
{
    return {rows.fieldInt(0), rows.fieldInt(3), rows.fieldInt(1), rows.fieldInt(2)};
}

bool write(DbConnection& connection, const std::vector<GroupRow>& groups, const std::vector<MemberRecord>& members,
    const std::vector<RelationRow>& relations)
{
    return connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Group")) && writeGroups(connection, groups)
        && connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Member")) && writeMembers(connection, members)
        && connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Relation"))
        && writeRelations(connection, relations);
}

std::optional<UserData> readUserData(DbConnection& connection, const QList<int>& memberIds)
{
    const bool bRowOrder = isEmbedded(connection);
    UserData data;
    for (const UserTable& table : userTables())
        data.push_back({QLatin1String(table.name), table.columns, {}});
    const bool ok = forIds(connection, memberIds, [&](const QString& in, const QVariantList& ids) {
        for (size_t t = 0; t < userTables().size(); ++t) {
            const UserTable& table = userTables()[t];
            std::vector<QVariantList>& rows = data[t].rows;
            DbRecordset records = connection.execute(u"SELECT " % table.columns.join(u',') % u" FROM " % data[t].table
                    % u" WHERE " % namingCondition(table, in, bRowOrder),
                namingValues(table, ids));
            if (!records.isValid())
                return false;
            for (; !records.isEof(); records.moveNext()) {
                QVariantList row;
                row.reserve(table.columns.size());
                for (int i = 0; i < table.columns.size(); ++i) {
                    if (records.isNull(i))
                        row << QVariant(); // NULL stays NULL when the row is put back
                    else if (table.columns[i].startsWith(QLatin1String("K_")))
                        row << records.fieldInt(i);
                    else
                        row << records.fieldText(i);
                }
                rows.push_back(std::move(row));
            }
            if (records.hasFailed()) {
                connection.recordError(records.error());
                return false;
            }
        }
        return true;
    });
    if (!ok)
        return std::nullopt;
    std::erase_if(data, [](const UserDataRows& rows) { return rows.rows.empty(); });
    return data;
}

bool insertUserData(DbConnection& connection, const UserData& data)
{
    for (const UserDataRows& rows : data) {
        BatchInserter insert(connection, rows.table, rows.columns);
        for (const QVariantList& row : rows.rows) {
            if (!insert.add(row))
                return false;
        }
        if (!insert.flush())
            return false;
    }
    return true;
}

bool runDeletionCascade(DbConnection& connection, const QList<int>& deletedMembers, const QList<int>& deletedGroups)
{
    // The member columns are indexed: each statement finds its rows through them.
    const CascadeCache cache(connection);
    const bool bRowOrder = isEmbedded(connection);
    const bool members = forIds(connection, deletedMembers, [&](const QString& in, const QVariantList& ids) {
        return std::all_of(userTables().begin(), userTables().end(), [&](const UserTable& table) {
            return connection.executeNoRecords(
                u"DELETE FROM " % QLatin1String(table.name) % u" WHERE " % namingCondition(table, in, bRowOrder),
                namingValues(table, ids));
        });
    });
    return members && forIds(connection, deletedGroups, [&connection](const QString& in, const QVariantList& ids) {
        return connection.executeNoRecords(u"DELETE FROM SD_Relation WHERE K_GroupID IN " % in, ids);
    });
}

} // namespace sable::ChartStore
