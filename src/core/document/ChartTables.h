#pragma once

#include "directory/DirectoryLinks.h"
#include "filebox/FileBoxLists.h"
#include "orgchart/ChartRows.h"
#include "orgchart/RankList.h"

#include <optional>
#include <vector>

namespace sable {

class DbConnection;
class OrgChart;
struct ChartContents;

// The rows of every table a save writes: SD_Group, SD_Member, SD_Relation, SD_Rank and the three
// file-box tables. Either what the database holds, every row of it (also the rows a chart cannot
// place), or what a save of a document would write now. Rows compare by their keys, so these are
// what is compared, merged and kept when saves meet.
struct ChartTables
{
    std::vector<GroupRow> groups; // ordered by Depth and Position, as a chart is built from them
    std::vector<MemberRecord> members;
    std::vector<RelationRow> relations;
    RankList ranks; // in rank order
    FileBoxLists fileBox;
    DirectoryLinks links; // of users the chart has

    // What a save of these contents writes now.
    static ChartTables of(
        const OrgChart& chart, const RankList& ranks, const FileBoxLists& fileBox, const DirectoryLinks& links);

    // Every row the database holds, read as a load reads them; nullopt when a statement failed (the
    // connection's last error says why).
    static std::optional<ChartTables> read(DbConnection& connection);

    // The chart a load places from these rows, with the ranks and the file-box lists. The second
    // takes the rows' texts instead of copying them, for a caller that needs the rows no more.
    ChartContents toContents() const&;
    ChartContents toContents() &&;

    // Puts the departments in the order a chart is built from: by Depth, then by Position. Depth
    // follows from the parents (a department whose parent is missing counts as a top one).
    void orderGroups();
};

} // namespace sable
