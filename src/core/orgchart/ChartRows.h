#pragma once

#include "orgchart/MemberRecord.h"

#include <QString>

#include <vector>

namespace sable {

class OrgChart;

// Rows of SD_Group and SD_Relation as a save writes them and a load reads them.
struct GroupRow
{
    int K_GroupID = 0;
    QString GroupName;
    int K_GroupID_P = -1;
    int Position = 1;
    int Depth = 0;
};

struct RelationRow
{
    int K_MemberID = 0;
    int K_GroupID = 0;
    int K_RankID = -1;
    int Position = 1;
};

// The rows a save writes now, in the order it writes them.
namespace ChartRows {

// Every department in tree order, with Position and Depth computed from the tree.
std::vector<GroupRow> groups(const OrgChart& chart);
// Every member of the list whose login ID is filled in, in list order, as stored (bSolar always 1).
std::vector<MemberRecord> members(const OrgChart& chart);
// Every member placement in tree order.
std::vector<RelationRow> relations(const OrgChart& chart);

} // namespace ChartRows
} // namespace sable
