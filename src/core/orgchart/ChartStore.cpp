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

bool writeGroups(DbConnection& connection, const OrgChart& chart)
{
    BatchInserter insert(connection, QStringLiteral("SD_Group"),
        {QStringLiteral("K_GroupID"), QStringLiteral("GroupName"), QStringLiteral("K_GroupID_P"),
            QStringLiteral("Position"), QStringLiteral("Depth")});
    for (const GroupRow& row : ChartRows::groups(chart)) {
        if (!insert.add({row.K_GroupID, Text::text(row.GroupName), row.K_GroupID_P, row.Position, row.Depth}))
            return false;
    }
    return insert.flush();
}

bool writeMembers(DbConnection& connection, const OrgChart& chart)
{
    BatchInserter insert(connection, QStringLiteral("SD_Member"),
        {QStringLiteral("K_MemberID"), QStringLiteral("MemberID"), QStringLiteral("MemberName"),
            QStringLiteral("Passwd"), QStringLiteral("Gender"), QStringLiteral("bPublic"), QStringLiteral("Email"),
            QStringLiteral("HP"), QStringLiteral("Address"), QStringLiteral("HomePhone"), QStringLiteral("OfficePhone"),
            QStringLiteral("BirthDay"), QStringLiteral("Description"), QStringLiteral("bSolar"),
            QStringLiteral("bAdmin")});
    for (const MemberRecord& m : ChartRows::members(chart)) {
        if (!insert.add({m.K_MemberID, Text::text(m.MemberID), Text::text(m.MemberName), Text::text(m.Passwd), m.Gender,
                m.bPublic ? 1 : 0, Text::text(m.Email), Text::text(m.HP), Text::text(m.Address),
                Text::text(m.HomePhone), Text::text(m.OfficePhone), Text::text(m.BirthDay), Text::text(m.Description),
                m.bSolar ? 1 : 0, m.bAdmin ? 1 : 0}))
            return false;
    }
    return insert.flush();
}

bool writeRelations(DbConnection& connection, const OrgChart& chart)
{
    BatchInserter insert(connection, QStringLiteral("SD_Relation"),
        {QStringLiteral("K_MemberID"), QStringLiteral("K_GroupID"), QStringLiteral("K_RankID"),
            QStringLiteral("Position")});
    for (const RelationRow& row : ChartRows::relations(chart)) {
        if (!insert.add({row.K_MemberID, row.K_GroupID, row.K_RankID, row.Position}))
            return false;
    }
    return insert.flush();
}

} // namespace

bool write(DbConnection& connection, const OrgChart& chart)
{
    return connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Group")) && writeGroups(connection, chart)
        && connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Member")) && writeMembers(connection, chart)
        && connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Relation")) && writeRelations(connection, chart);
}

bool runDeletionCascade(DbConnection& connection, const QList<int>& deletedMembers, const QList<int>& deletedGroups)
{
    // A few statements for any number of identifiers: each statement takes a batch of them, and the
    // member columns are indexed, so removing thousands of users costs about as much as a few.
    const auto each = [](const QList<int>& ids, const std::function<bool(const QString&, const QVariantList&)>& run) {
        for (qsizetype first = 0; first < ids.size(); first += kCascadeBatch) {
            const QList<int> batch = ids.mid(first, kCascadeBatch);
            QVariantList values;
            for (const int id : batch)
                values << id;
            if (!run(placeholders(batch.size()), values))
                return false;
        }
        return true;
    };
    const bool members = each(deletedMembers, [&connection](const QString& in, const QVariantList& ids) {
        return connection.executeNoRecords(
                   u"DELETE FROM SD_Antenna WHERE K_MemberID IN " % in % u" OR K_MemberID_O IN " % in, ids + ids)
            && connection.executeNoRecords(
                u"DELETE FROM SD_MyMember WHERE K_MemberID IN " % in % u" OR K_MemberID_O IN " % in, ids + ids)
            && connection.executeNoRecords(u"DELETE FROM SD_MyGroup WHERE K_MemberID IN " % in, ids)
            && connection.executeNoRecords(u"DELETE FROM SD_LeavedMemo WHERE K_MemberID IN " % in, ids);
    });
    return members && each(deletedGroups, [&connection](const QString& in, const QVariantList& ids) {
        return connection.executeNoRecords(u"DELETE FROM SD_Relation WHERE K_GroupID IN " % in, ids);
    });
}

} // namespace sable::ChartStore
