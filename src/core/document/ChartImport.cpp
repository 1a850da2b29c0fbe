#include "document/ChartImport.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartTables.h"
#include "orgchart/ChartStore.h"

#include <QSet>

#include <algorithm>

namespace sable::ChartImport {
namespace {

// The stored identifiers that `kept` does not have, in ascending order.
QList<int> missingFrom(std::vector<int> stored, const QSet<int>& kept)
{
    std::sort(stored.begin(), stored.end());
    stored.erase(std::unique(stored.begin(), stored.end()), stored.end());
    QList<int> missing;
    for (const int id : stored) {
        if (!kept.contains(id))
            missing << id;
    }
    return missing;
}

} // namespace

bool replaceChart(DbConnection& db, CSableManagerDoc& doc, ChartTables&& tables)
{
    std::optional<std::vector<int>> members = ChartStore::storedMemberIds(db);
    std::optional<std::vector<int>> groups = members ? ChartStore::storedGroupIds(db) : std::nullopt;
    if (!groups)
        return false;
    QSet<int> keptMembers;
    keptMembers.reserve(static_cast<qsizetype>(tables.members.size()));
    for (const MemberRecord& member : tables.members)
        keptMembers.insert(member.K_MemberID);
    QSet<int> keptGroups;
    for (const GroupRow& group : tables.groups)
        keptGroups.insert(group.K_GroupID);
    doc.adopt(std::move(tables).toContents());
    doc.deletedMembers() = missingFrom(std::move(*members), keptMembers);
    doc.deletedGroups() = missingFrom(std::move(*groups), keptGroups);
    doc.setModified(true);
    return true;
}

} // namespace sable::ChartImport
