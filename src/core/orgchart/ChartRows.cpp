#include "orgchart/ChartRows.h"

#include "orgchart/OrgChart.h"

namespace sable::ChartRows {

std::vector<GroupRow> groups(const OrgChart& chart)
{
    std::vector<GroupRow> rows;
    rows.reserve(static_cast<size_t>(chart.groupCount()));
    // Depth follows from the walk: a department is one deeper than its parent, seen just before.
    std::vector<std::pair<const OrgNode*, int>> depths;
    chart.forEachGroup([&](OrgNode* node) {
        while (!depths.empty() && depths.back().first != node->parent())
            depths.pop_back();
        const int depth = depths.empty() ? 0 : depths.back().second + 1;
        depths.emplace_back(node, depth);
        rows.push_back({node->groupId(), node->name(), chart.parentGroupId(node), chart.position(node), depth});
    });
    return rows;
}

std::vector<MemberRecord> members(const OrgChart& chart)
{
    std::vector<MemberRecord> rows;
    rows.reserve(static_cast<size_t>(chart.memberCount()));
    for (const MemberRecord& member : chart.members()) {
        if (member.MemberID.isEmpty())
            continue;
        rows.push_back(member);
        rows.back().bSolar = true;
    }
    return rows;
}

std::vector<RelationRow> relations(const OrgChart& chart)
{
    std::vector<RelationRow> rows;
    rows.reserve(static_cast<size_t>(chart.placementCount()));
    chart.forEachPlacement([&](OrgNode* node) {
        rows.push_back({node->memberId(), chart.parentGroupId(node), node->rankId(), chart.position(node)});
    });
    return rows;
}

} // namespace sable::ChartRows
