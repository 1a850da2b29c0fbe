#include "orgchart/ChartStore.h"

#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "orgchart/ChartRows.h"

#include <functional>

namespace sable::ChartStore {
namespace {

using Text = BatchInserter;

// Identifiers per statement of the deletion cascade: twice this many parameters stay within what
// every engine takes in one statement.
constexpr qsizetype kCascadeBatch = 500;

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

// Runs `run` once per batch of `ids`, with the batch's placeholder list and values.
bool forEachBatch(const QList<int>& ids, const std::function<bool(const QString&, const QVariantList&)>& run)
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
    UserData data;
    for (const UserTable& table : userTables()) {
        UserDataRows rows {QLatin1String(table.name), table.columns, {}};
        const QString select
            = u"SELECT " % table.columns.join(u',') % u" FROM " % rows.table % u" WHERE K_MemberID IN ";
        const bool ok = forEachBatch(memberIds, [&](const QString& in, const QVariantList& ids) {
            DbRecordset records = table.bOtherMember
                ? connection.execute(select % in % u" OR K_MemberID_O IN " % in, ids + ids)
                : connection.execute(select % in, ids);
            if (!records.isValid())
                return false;
            for (; !records.isEof(); records.moveNext()) {
                QVariantList row;
                for (int i = 0; i < table.columns.size(); ++i) {
                    if (records.isNull(i))
                        row << QVariant(); // NULL stays NULL when the row is put back
                    else if (table.columns[i].startsWith(QLatin1String("K_")))
                        row << records.fieldInt(i);
                    else
                        row << records.fieldText(i);
                }
                rows.rows.push_back(std::move(row));
            }
            return true;
        });
        if (!ok)
            return std::nullopt;
        if (!rows.rows.empty())
            data.push_back(std::move(rows));
    }
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
    // A few statements for any number of identifiers: each statement takes a batch of them, and the
    // member columns are indexed, so removing thousands of users costs about as much as a few.
    const bool members = forEachBatch(deletedMembers, [&connection](const QString& in, const QVariantList& ids) {
        return connection.executeNoRecords(
                   u"DELETE FROM SD_Antenna WHERE K_MemberID IN " % in % u" OR K_MemberID_O IN " % in, ids + ids)
            && connection.executeNoRecords(
                u"DELETE FROM SD_MyMember WHERE K_MemberID IN " % in % u" OR K_MemberID_O IN " % in, ids + ids)
            && connection.executeNoRecords(u"DELETE FROM SD_MyGroup WHERE K_MemberID IN " % in, ids)
            && connection.executeNoRecords(u"DELETE FROM SD_LeavedMemo WHERE K_MemberID IN " % in, ids);
    });
    return members && forEachBatch(deletedGroups, [&connection](const QString& in, const QVariantList& ids) {
        return connection.executeNoRecords(u"DELETE FROM SD_Relation WHERE K_GroupID IN " % in, ids);
    });
}

} // namespace sable::ChartStore
