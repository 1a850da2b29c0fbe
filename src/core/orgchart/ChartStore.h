#pragma once

#include "orgchart/ChartRows.h"

#include <QList>
#include <QStringList>
#include <QVariantList>

#include <optional>
#include <vector>

namespace sable {

class DbConnection;
class DbRecordset;
class OrgChart;

// Rows of one of the server's per-user tables (SD_Antenna, SD_MyMember, SD_MyGroup, SD_LeavedMemo):
// the console never shows them, but keeps a copy of those a save removes, so that a restore can put
// them back.
struct UserDataRows
{
    QString table;
    QStringList columns;
    std::vector<QVariantList> rows;
};
using UserData = std::vector<UserDataRows>;

namespace ChartStore {

// The statements a load reads SD_Member, SD_Group and SD_Relation with, and the record each row of
// them gives: every reader of these tables sees the same values. Departments come ordered by Depth
// and Position, as a chart is built from them.
QString membersQuery();
MemberRecord memberAt(const DbRecordset& rows);
QString groupsQuery();
GroupRow groupAt(const DbRecordset& rows);
QString relationsQuery();
RelationRow relationAt(const DbRecordset& rows);

// Rewrites SD_Group, SD_Member and SD_Relation: every row deleted, the rows given inserted in their
// order. False when a statement failed.
bool write(DbConnection& connection, const std::vector<GroupRow>& groups, const std::vector<MemberRecord>& members,
    const std::vector<RelationRow>& relations);

// Every K_MemberID of SD_Member, or every K_GroupID of SD_Group, the database holds now; nullopt
// when reading failed, never a shorter list (the connection's last error says why).
std::optional<std::vector<int>> storedMemberIds(DbConnection& connection);
std::optional<std::vector<int>> storedGroupIds(DbConnection& connection);

// The per-user rows the deletion cascade would remove for `memberIds`; nullopt when a statement failed.
std::optional<UserData> readUserData(DbConnection& connection, const QList<int>& memberIds);
// Inserts the rows as they were; false when a statement failed.
bool insertUserData(DbConnection& connection, const UserData& data);

// Removes what the server keeps of deleted members (their lists, their stored memos) and the
// memberships of deleted departments. The caller leaves out departments that exist at the save.
bool runDeletionCascade(DbConnection& connection, const QList<int>& deletedMembers, const QList<int>& deletedGroups);

} // namespace ChartStore
} // namespace sable
