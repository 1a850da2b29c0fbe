#include "orgchart/ChartBuilder.h"

#include "orgchart/OrgChart.h"

#include <algorithm>

namespace sable {

ChartBuilder::ChartBuilder(OrgChart& target)
    : m_chart(target)
{ }

void LoadProblems::note(Kind kind, const QString& example)
{
    ++counts[static_cast<size_t>(kind)];
    QStringList& some = examples[static_cast<size_t>(kind)];
    if (some.size() < kExamples)
        some << example;
}

bool LoadProblems::any() const
{
    return total() > 0;
}

int LoadProblems::total() const
{
    int sum = 0;
    for (const int count : counts)
        sum += count;
    return sum;
}

void ChartBuilder::reserveMembers(size_t count)
{
    m_chart.reserveMembers(count);
}

void ChartBuilder::addMember(MemberRecord member)
{
    if (m_chart.rowOf(member.K_MemberID) >= 0)
        m_problems.note(
            LoadProblems::DuplicateUserId, QStringLiteral("%1 (%2)").arg(member.K_MemberID).arg(member.MemberID));
    const QString folded = member.MemberID.toCaseFolded();
    if (!member.MemberID.isEmpty()) {
        if (m_loginIds.contains(folded))
            m_problems.note(LoadProblems::DuplicateLoginId, member.MemberID);
        else
            m_loginIds.insert(folded, member.K_MemberID);
    }
    m_chart.appendMemberQuietly(std::move(member));
}

void ChartBuilder::addGroup(const GroupRow& row)
{
    // The parent is looked up again only when it differs from the previous row's, as siblings
    // arrive one after another; a parent that cannot be found puts the department at the top.
    if (row.K_GroupID_P != m_lastParentId) {
        m_lastParentId = row.K_GroupID_P;
        m_parentIndex = m_groupIndexById.value(row.K_GroupID_P, -1);
    }
    const int index = static_cast<int>(m_groups.size());
    m_groups.push_back({row, m_parentIndex, {}});
    if (m_parentIndex < 0 && row.K_GroupID_P != -1)
        m_problems.note(
            LoadProblems::DepartmentWithoutParent, QStringLiteral("%1 (%2)").arg(row.GroupName).arg(row.K_GroupID));
    if (m_groupIndexById.contains(row.K_GroupID))
        m_problems.note(
            LoadProblems::DuplicateDepartmentId, QStringLiteral("%1 (%2)").arg(row.GroupName).arg(row.K_GroupID));
    if (m_parentIndex < 0)
        m_topLevel.push_back(index);
    else
        m_groups[static_cast<size_t>(m_parentIndex)].children.push_back(index);
    if (!m_groupIndexById.contains(row.K_GroupID))
        m_groupIndexById.insert(row.K_GroupID, index);
}

std::vector<int> ChartBuilder::groupIdsInTreeOrder() const
{
    std::vector<int> ids;
    std::vector<int> stack(m_topLevel.rbegin(), m_topLevel.rend());
    while (!stack.empty()) {
        const PendingGroup& group = m_groups[static_cast<size_t>(stack.back())];
        stack.pop_back();
        ids.push_back(group.row.K_GroupID);
        stack.insert(stack.end(), group.children.rbegin(), group.children.rend());
    }
    return ids;
}

void ChartBuilder::addRelation(const RelationRow& row)
{
    m_relationsByGroup[row.K_GroupID].push_back(row);
}

std::vector<ChartBuilder::PendingChild> ChartBuilder::orderedChildren(int groupIndex) const
{
    const PendingGroup& group = m_groups[static_cast<size_t>(groupIndex)];
    std::vector<PendingChild> children;
    for (const int child : group.children)
        children.push_back({m_groups[static_cast<size_t>(child)].row.Position, child, nullptr});
    const auto relations = m_relationsByGroup.find(group.row.K_GroupID);
    if (relations != m_relationsByGroup.end()) {
        for (const RelationRow& relation : relations->second)
            children.push_back({relation.Position, -1, &relation});
    }
    // A member goes after every child whose position is not greater than its own: departments
    // (placed first) before members of the same position, members in the order they came.
    std::stable_sort(children.begin(), children.end(),
        [](const PendingChild& a, const PendingChild& b) { return a.position < b.position; });
    return children;
}

void ChartBuilder::finish()
{
    if (m_bFinished)
        return;
    m_bFinished = true;
    for (const auto& [groupId, relations] : m_relationsByGroup) {
        for (const RelationRow& relation : relations) {
            const QString example = QStringLiteral("%1/%2").arg(relation.K_MemberID).arg(groupId);
            if (!m_groupIndexById.contains(groupId))
                m_problems.note(LoadProblems::MembershipOfUnknownDepartment, example);
            else if (m_chart.rowOf(relation.K_MemberID) < 0)
                m_problems.note(LoadProblems::MembershipOfUnknownUser, example);
        }
    }
    for (const int top : m_topLevel) {
        const GroupRow& row = m_groups[static_cast<size_t>(top)].row;
        OrgNode* node
            = m_chart.appendNodeQuietly(m_chart.invisibleRoot(), OrgNode::makeGroup(row.K_GroupID, row.GroupName));
        buildChildren(node, top);
    }
}

void ChartBuilder::buildChildren(OrgNode* node, int groupIndex)
{
    // An explicit stack: a deep chart must not exhaust the call stack.
    std::vector<std::pair<OrgNode*, int>> pending {{node, groupIndex}};
    while (!pending.empty()) {
        const auto [parent, index] = pending.back();
        pending.pop_back();
        for (const PendingChild& child : orderedChildren(index)) {
            if (child.group < 0) {
                // A membership of a user the table does not hold has nobody to show: it is left out
                // (and counted among the problems).
                if (m_chart.rowOf(child.member->K_MemberID) >= 0)
                    m_chart.appendNodeQuietly(
                        parent, OrgNode::makeMember(child.member->K_MemberID, child.member->K_RankID));
                continue;
            }
            const GroupRow& row = m_groups[static_cast<size_t>(child.group)].row;
            OrgNode* groupNode = m_chart.appendNodeQuietly(parent, OrgNode::makeGroup(row.K_GroupID, row.GroupName));
            pending.emplace_back(groupNode, child.group);
        }
    }
}

} // namespace sable
