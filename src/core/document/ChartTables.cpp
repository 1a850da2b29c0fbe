#include "document/ChartTables.h"

#include "db/DbConnection.h"
#include "directory/DirectoryLinkStore.h"
#include "document/CSableManagerDoc.h"
#include "filebox/FileBoxStore.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/ChartStore.h"
#include "orgchart/RankStore.h"

#include <QHash>

#include <algorithm>

namespace sable {
namespace {

template <typename Row, typename Decode>
bool readAll(DbConnection& connection, const QString& table, const QString& sql, std::vector<Row>& rows, Decode decode)
{
    // Sized by the table's count, a large table takes the memory its rows need, not up to twice that.
    // Only a hint: a failed count leaves the rows to grow as they come.
    DbRecordset count = connection.execute(QStringLiteral("SELECT COUNT(*) FROM ") + table);
    if (count.isValid() && !count.isEof())
        rows.reserve(static_cast<size_t>(std::max(0, count.fieldInt(0))));
    DbRecordset records = connection.execute(sql);
    if (!records.isValid())
        return false;
    for (; !records.isEof(); records.moveNext())
        rows.push_back(decode(records));
    // Rows cut short by a busy or lost database are no table: the caller must not take them for one.
    if (records.hasFailed()) {
        connection.recordError(records.error());
        return false;
    }
    return true;
}

} // namespace

ChartTables ChartTables::of(
    const OrgChart& chart, const RankList& ranks, const FileBoxLists& fileBox, const DirectoryLinks& links)
{
    ChartTables tables;
    tables.groups = ChartRows::groups(chart);
    tables.members = ChartRows::members(chart);
    tables.relations = ChartRows::relations(chart);
    tables.ranks = ranks;
    tables.fileBox = fileBox;
    // A link outlives its user only until the save: what is saved are the links of users there are.
    for (auto it = links.all().cbegin(); it != links.all().cend(); ++it) {
        if (chart.findMember(it.key()))
            tables.links.set(it.key(), it.value());
    }
    tables.orderGroups();
    return tables;
}

std::optional<ChartTables> ChartTables::read(DbConnection& connection)
{
    ChartTables tables;
    const bool ok = readAll(connection, QStringLiteral("SD_Member"), ChartStore::membersQuery(), tables.members,
                        &ChartStore::memberAt)
        && readAll(
            connection, QStringLiteral("SD_Group"), ChartStore::groupsQuery(), tables.groups, &ChartStore::groupAt)
        && readAll(connection, QStringLiteral("SD_Relation"), ChartStore::relationsQuery(), tables.relations,
            &ChartStore::relationAt)
        && RankStore::load(connection, tables.ranks) && FileBoxStore::load(connection, tables.fileBox)
        && DirectoryLinkStore::load(connection, tables.links);
    if (!ok)
        return std::nullopt;
    return tables;
}

ChartContents ChartTables::toContents() const&
{
    return ChartTables(*this).toContents();
}

ChartContents ChartTables::toContents() &&
{
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    builder.reserveMembers(members.size());
    for (MemberRecord& member : members)
        builder.addMember(std::move(member));
    members = {};
    for (const GroupRow& group : groups)
        builder.addGroup(group);
    for (const RelationRow& relation : relations)
        builder.addRelation(relation);
    builder.finish();
    contents.ranks = std::move(ranks);
    contents.fileBox = std::move(fileBox);
    contents.directoryLinks = std::move(links);
    return contents;
}

void ChartTables::orderGroups()
{
    QHash<int, size_t> indexById;
    for (size_t i = 0; i < groups.size(); ++i)
        indexById.insert(groups[i].K_GroupID, i);
    // Depths from the parents, remembered as they are found. A department whose parent is missing
    // counts as a top one, and so does the first of a loop of parents met on the way up.
    std::vector<int> depth(groups.size(), -1);
    std::vector<bool> onPath(groups.size(), false);
    for (size_t i = 0; i < groups.size(); ++i) {
        std::vector<size_t> path;
        int above = -1; // the depth of what the path hangs from
        for (size_t at = i;;) {
            if (depth[at] >= 0) {
                above = depth[at];
                break;
            }
            if (onPath[at])
                break;
            path.push_back(at);
            onPath[at] = true;
            const auto parent = indexById.constFind(groups[at].K_GroupID_P);
            if (parent == indexById.cend())
                break;
            at = *parent;
        }
        for (auto it = path.rbegin(); it != path.rend(); ++it) {
            depth[*it] = ++above;
            onPath[*it] = false;
        }
    }
    for (size_t i = 0; i < groups.size(); ++i)
        groups[i].Depth = depth[i];
    std::stable_sort(groups.begin(), groups.end(), [](const GroupRow& a, const GroupRow& b) {
        return std::pair(a.Depth, a.Position) < std::pair(b.Depth, b.Position);
    });
}

} // namespace sable
