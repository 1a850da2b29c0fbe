#pragma once

#include <QList>

namespace sable {

class DbConnection;
class OrgChart;

namespace ChartStore {

// Rewrites SD_Group, SD_Member and SD_Relation from the chart: every row deleted, every row of the
// chart inserted again in the order ChartRows gives. False when a statement failed.
bool write(DbConnection& connection, const OrgChart& chart);

// Removes what the server keeps of deleted members (their lists, their stored memos) and the
// memberships of deleted departments. The caller leaves out departments that exist at the save.
bool runDeletionCascade(DbConnection& connection, const QList<int>& deletedMembers, const QList<int>& deletedGroups);

} // namespace ChartStore
} // namespace sable
