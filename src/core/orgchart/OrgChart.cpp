#include "orgchart/OrgChart.h"

#include "orgchart/OrgChartListener.h"
#include "orgchart/Revision.h"

#include <algorithm>
#include <limits>

namespace sable {
namespace {

const std::vector<OrgNode*> kNoPlacements;

// Beyond this many separate ranges a change of the member list is announced as a reset: one
// announcement instead of thousands, for a list that views redraw quickly anyway.
constexpr size_t kMaxSeparateRanges = 16;

// Ascending rows as [first, last] runs.
std::vector<std::pair<int, int>> contiguousRanges(const std::vector<int>& rows)
{
    std::vector<std::pair<int, int>> ranges;
    for (const int row : rows) {
        if (!ranges.empty() && ranges.back().second + 1 == row)
            ranges.back().second = row;
        else
            ranges.emplace_back(row, row);
    }
    return ranges;
}

void walk(OrgNode* node, const std::function<void(OrgNode*)>& visit)
{
    // Explicit stack: a deep chart must not exhaust the call stack.
    std::vector<OrgNode*> stack;
    for (int i = node->childCount() - 1; i >= 0; --i)
        stack.push_back(node->child(i));
    while (!stack.empty()) {
        OrgNode* current = stack.back();
        stack.pop_back();
        visit(current);
        for (int i = current->childCount() - 1; i >= 0; --i)
            stack.push_back(current->child(i));
    }
}

} // namespace

OrgChart::OrgChart()
    : m_root(OrgNode::makeGroup(-1, QString()))
{ }

OrgChart::~OrgChart() = default;

template <typename F>
void OrgChart::notify(F&& call)
{
    m_revision = Revision::next();
    for (OrgChartListener* listener : m_listeners)
        call(*listener);
}

void OrgChart::addListener(OrgChartListener* listener)
{
    m_listeners.push_back(listener);
}

void OrgChart::removeListener(OrgChartListener* listener)
{
    std::erase(m_listeners, listener);
}

void OrgChart::swapContents(OrgChart& other)
{
    notify([](OrgChartListener& l) { l.chartAboutToReset(); });
    std::swap(m_root, other.m_root);
    std::swap(m_groupsById, other.m_groupsById);
    std::swap(m_groupIdUses, other.m_groupIdUses);
    std::swap(m_placements, other.m_placements);
    std::swap(m_groupCount, other.m_groupCount);
    std::swap(m_highestGroupId, other.m_highestGroupId);
    std::swap(m_highestMemberId, other.m_highestMemberId);
    std::swap(m_placementCount, other.m_placementCount);
    std::swap(m_members, other.m_members);
    std::swap(m_rowById, other.m_rowById);
    other.m_revision = Revision::next();
    notify([](OrgChartListener& l) { l.chartReset(); });
}

void OrgChart::clear()
{
    OrgChart empty;
    swapContents(empty);
}

OrgNode* OrgChart::rootGroup() const
{
    return m_root->childCount() > 0 ? m_root->child(0) : nullptr;
}

OrgNode* OrgChart::findGroup(int groupId) const
{
    return m_groupsById.value(groupId, nullptr);
}

const std::vector<OrgNode*>& OrgChart::placementsOf(int memberId) const
{
    const auto it = m_placements.find(memberId);
    return it == m_placements.end() ? kNoPlacements : it->second;
}

OrgNode* OrgChart::placementIn(const OrgNode* group, int memberId) const
{
    for (OrgNode* node : placementsOf(memberId)) {
        if (node->parent() == group)
            return node;
    }
    return nullptr;
}

int OrgChart::parentGroupId(const OrgNode* node) const
{
    if (!node || !node->parent() || node->parent() == m_root.get())
        return -1;
    return node->parent()->groupId();
}

int OrgChart::position(const OrgNode* node) const
{
    return node ? node->row() + 1 : -1;
}

int OrgChart::depth(const OrgNode* node) const
{
    if (!node)
        return -1;
    int steps = 0;
    for (const OrgNode* up = node->parent(); up && up != m_root.get(); up = up->parent())
        ++steps;
    return steps;
}

QString OrgChart::displayName(const OrgNode* node) const
{
    if (!node)
        return {};
    if (node->isGroup())
        return node->name();
    const MemberRecord* member = findMember(node->memberId());
    return member ? member->MemberName : QString();
}

QString OrgChart::departmentPath(const OrgNode* node) const
{
    QStringList names;
    for (const OrgNode* up = node && node->isMember() ? node->parent() : node; up && up != m_root.get();
         up = up->parent())
        names.prepend(up->name());
    return names.join(u'/');
}

int OrgChart::nextGroupId() const
{
    return m_highestGroupId == std::numeric_limits<int>::max() ? -2 : m_highestGroupId + 1;
}

void OrgChart::forEachNode(const std::function<void(OrgNode*)>& visit) const
{
    walk(m_root.get(), visit);
}

void OrgChart::forEachGroup(const std::function<void(OrgNode*)>& visit) const
{
    walk(m_root.get(), [&visit](OrgNode* node) {
        if (node->isGroup())
            visit(node);
    });
}

void OrgChart::forEachPlacement(const std::function<void(OrgNode*)>& visit) const
{
    walk(m_root.get(), [&visit](OrgNode* node) {
        if (node->isMember())
            visit(node);
    });
}

int OrgChart::rowOf(int memberId) const
{
    return m_rowById.value(memberId, -1);
}

const MemberRecord* OrgChart::findMember(int memberId) const
{
    const int row = rowOf(memberId);
    return row < 0 ? nullptr : &m_members[static_cast<size_t>(row)];
}

int OrgChart::nextMemberId() const
{
    return m_highestMemberId + 1;
}

// --- Tree primitives -------------------------------------------------------------------------------

OrgNode* OrgChart::insertNode(OrgNode* parent, int index, std::unique_ptr<OrgNode> node)
{
    index = std::clamp(index, 0, parent->childCount());
    notify([&](OrgChartListener& l) { l.nodesAboutToBeInserted(parent, index, index); });
    OrgNode* inserted = node.get();
    inserted->m_parent = parent;
    parent->m_children.insert(parent->m_children.begin() + index, std::move(node));
    renumber(parent, index);
    std::vector<int> gained;
    registerSubtree(inserted, &gained);
    notify([&](OrgChartListener& l) { l.nodesInserted(parent, index, index); });
    notifyMembersChanged(gained);
    return inserted;
}

OrgNode* OrgChart::appendNodeQuietly(OrgNode* parent, std::unique_ptr<OrgNode> node)
{
    OrgNode* inserted = node.get();
    inserted->m_parent = parent;
    inserted->m_row = parent->childCount();
    parent->m_children.push_back(std::move(node));
    registerSubtree(inserted, nullptr);
    return inserted;
}

std::unique_ptr<OrgNode> OrgChart::takeNode(OrgNode* node)
{
    OrgNode* parent = node->parent();
    const int index = node->row();
    notify([&](OrgChartListener& l) { l.nodesAboutToBeRemoved(parent, index, index); });
    std::unique_ptr<OrgNode> taken = std::move(parent->m_children[static_cast<size_t>(index)]);
    parent->m_children.erase(parent->m_children.begin() + index);
    renumber(parent, index);
    std::vector<int> lost;
    unregisterSubtree(taken.get(), &lost);
    taken->m_parent = nullptr;
    notify([&](OrgChartListener& l) { l.nodesRemoved(parent, index, index); });
    notifyMembersChanged(lost);
    return taken;
}

void OrgChart::moveNode(OrgNode* node, int to)
{
    OrgNode* parent = node->parent();
    const int from = node->row();
    to = std::clamp(to, 0, parent->childCount() - 1);
    if (from == to)
        return;
    notify([&](OrgChartListener& l) { l.nodeAboutToMove(parent, from, to); });
    auto& children = parent->m_children;
    if (from < to)
        std::rotate(children.begin() + from, children.begin() + from + 1, children.begin() + to + 1);
    else
        std::rotate(children.begin() + to, children.begin() + from, children.begin() + from + 1);
    renumber(parent, std::min(from, to));
    notify([&](OrgChartListener& l) { l.nodeMoved(parent, from, to); });
}

void OrgChart::reorderChildren(OrgNode* parent, const std::vector<int>& order)
{
    notify([&](OrgChartListener& l) { l.childrenAboutToBeReordered(parent); });
    std::vector<std::unique_ptr<OrgNode>> reordered;
    reordered.reserve(order.size());
    for (const int old : order)
        reordered.push_back(std::move(parent->m_children[static_cast<size_t>(old)]));
    parent->m_children = std::move(reordered);
    renumber(parent, 0);
    notify([&](OrgChartListener& l) { l.childrenReordered(parent); });
}

void OrgChart::renameGroup(OrgNode* group, const QString& name)
{
    group->m_name = name;
    notify([&](OrgChartListener& l) { l.nodeChanged(group); });
}

void OrgChart::setRank(OrgNode* placement, int rankId)
{
    placement->m_rankId = rankId;
    notify([&](OrgChartListener& l) { l.nodeChanged(placement); });
}

void OrgChart::renumber(OrgNode* parent, int from)
{
    for (int i = from; i < parent->childCount(); ++i)
        parent->child(i)->m_row = i;
}

void OrgChart::registerSubtree(OrgNode* node, std::vector<int>* gainedMembers)
{
    const auto add = [this, gainedMembers](OrgNode* current) {
        if (current->isGroup()) {
            ++m_groupCount;
            ++m_groupIdUses[current->groupId()];
            m_highestGroupId = std::max(m_highestGroupId, current->groupId());
            if (!m_groupsById.contains(current->groupId()))
                m_groupsById.insert(current->groupId(), current);
            return;
        }
        ++m_placementCount;
        auto& placements = m_placements[current->memberId()];
        if (placements.empty() && gainedMembers)
            gainedMembers->push_back(current->memberId());
        placements.push_back(current);
    };
    add(node);
    walk(node, add);
}

void OrgChart::unregisterSubtree(OrgNode* node, std::vector<int>* lostMembers)
{
    std::vector<int> orphanedGroupIds;
    const auto remove = [&](OrgNode* current) {
        if (current->isGroup()) {
            --m_groupCount;
            const int uses = --m_groupIdUses[current->groupId()];
            if (uses == 0)
                m_groupIdUses.remove(current->groupId());
            if (m_groupsById.value(current->groupId()) == current) {
                m_groupsById.remove(current->groupId());
                if (uses > 0)
                    orphanedGroupIds.push_back(current->groupId());
            }
            return;
        }
        --m_placementCount;
        auto it = m_placements.find(current->memberId());
        std::erase(it->second, current);
        if (it->second.empty()) {
            m_placements.erase(it);
            lostMembers->push_back(current->memberId());
        }
    };
    remove(node);
    walk(node, remove);
    // Another department carries the same identifier: it becomes the one found.
    for (const int id : orphanedGroupIds) {
        forEachGroup([&](OrgNode* group) {
            if (group->groupId() == id && !m_groupsById.contains(id))
                m_groupsById.insert(id, group);
        });
    }
}

// --- Member primitives -----------------------------------------------------------------------------

void OrgChart::insertMember(int row, MemberRecord member)
{
    row = std::clamp(row, 0, memberCount());
    noteMemberId(member.K_MemberID);
    notify([&](OrgChartListener& l) { l.membersAboutToBeInserted(row, row); });
    m_members.insert(m_members.begin() + row, std::move(member));
    reindexMembers();
    notify([&](OrgChartListener& l) { l.membersInserted(row, row); });
    notifyPlacementsChanged(m_members[static_cast<size_t>(row)].K_MemberID);
}

void OrgChart::appendMemberQuietly(MemberRecord member)
{
    noteMemberId(member.K_MemberID);
    if (!m_rowById.contains(member.K_MemberID))
        m_rowById.insert(member.K_MemberID, memberCount());
    m_members.push_back(std::move(member));
}

MemberRecord OrgChart::takeMember(int row)
{
    notify([&](OrgChartListener& l) { l.membersAboutToBeRemoved(row, row); });
    MemberRecord taken = std::move(m_members[static_cast<size_t>(row)]);
    m_members.erase(m_members.begin() + row);
    reindexMembers();
    notify([&](OrgChartListener& l) { l.membersRemoved(row, row); });
    notifyPlacementsChanged(taken.K_MemberID);
    return taken;
}

std::vector<MemberRecord> OrgChart::takeMembers(const std::vector<int>& rows)
{
    const auto ranges = contiguousRanges(rows);
    std::vector<MemberRecord> taken;
    taken.reserve(rows.size());
    if (ranges.size() > kMaxSeparateRanges) {
        // One pass over the whole list: erasing range by range would move the list once per range.
        notify([](OrgChartListener& l) { l.memberListAboutToReset(); });
        std::vector<MemberRecord> kept;
        kept.reserve(m_members.size() - rows.size());
        auto next = rows.begin();
        for (int row = 0; row < memberCount(); ++row) {
            const bool take = next != rows.end() && *next == row;
            (take ? taken : kept).push_back(std::move(m_members[static_cast<size_t>(row)]));
            next += take ? 1 : 0;
        }
        m_members = std::move(kept);
        reindexMembers();
        notify([](OrgChartListener& l) { l.memberListReset(); });
    } else {
        taken.resize(rows.size());
        // From the last range to the first, so that the earlier rows keep their numbers meanwhile.
        size_t next = rows.size();
        for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
            // Plain variables, not a structured binding: clang 14 does not let the notices' lambdas capture one.
            const int first = range->first;
            const int last = range->second;
            notify([&](OrgChartListener& l) { l.membersAboutToBeRemoved(first, last); });
            for (int row = last; row >= first; --row)
                taken[--next] = std::move(m_members[static_cast<size_t>(row)]);
            m_members.erase(m_members.begin() + first, m_members.begin() + last + 1);
            reindexMembers();
            notify([&](OrgChartListener& l) { l.membersRemoved(first, last); });
        }
    }
    for (const MemberRecord& member : taken)
        notifyPlacementsChanged(member.K_MemberID);
    return taken;
}

void OrgChart::insertMembers(const std::vector<int>& rows, std::vector<MemberRecord> members)
{
    for (const MemberRecord& member : members)
        noteMemberId(member.K_MemberID);
    const auto ranges = contiguousRanges(rows);
    if (ranges.size() > kMaxSeparateRanges) {
        notify([](OrgChartListener& l) { l.memberListAboutToReset(); });
        std::vector<MemberRecord> merged;
        merged.reserve(m_members.size() + members.size());
        auto old = m_members.begin();
        size_t next = 0;
        for (int row = 0; row < static_cast<int>(m_members.size() + members.size()); ++row) {
            const bool fresh = next < rows.size() && rows[next] == row;
            merged.push_back(std::move(fresh ? members[next++] : *old++));
        }
        m_members = std::move(merged);
        reindexMembers();
        notify([](OrgChartListener& l) { l.memberListReset(); });
    } else {
        size_t next = 0;
        for (const std::pair<int, int>& range : ranges) {
            const int first = range.first;
            const int last = range.second;
            notify([&](OrgChartListener& l) { l.membersAboutToBeInserted(first, last); });
            const auto from = members.begin() + static_cast<long>(next);
            m_members.insert(m_members.begin() + first, std::make_move_iterator(from),
                std::make_move_iterator(from + (last - first + 1)));
            next += static_cast<size_t>(last - first + 1);
            reindexMembers();
            notify([&](OrgChartListener& l) { l.membersInserted(first, last); });
        }
    }
    for (const int row : rows)
        notifyPlacementsChanged(m_members[static_cast<size_t>(row)].K_MemberID);
}

void OrgChart::setMember(int row, const MemberRecord& member)
{
    MemberRecord& current = m_members[static_cast<size_t>(row)];
    const bool treeShowsIt = current.MemberName != member.MemberName || current.Gender != member.Gender;
    const int oldId = current.K_MemberID;
    noteMemberId(member.K_MemberID);
    current = member;
    if (oldId != member.K_MemberID)
        reindexMembers();
    notify([&](OrgChartListener& l) { l.memberChanged(row); });
    if (treeShowsIt)
        notifyPlacementsChanged(member.K_MemberID);
}

void OrgChart::reindexMembers()
{
    m_rowById.clear();
    m_rowById.reserve(memberCount());
    // Of several members with one identifier the first counts, as a search from the top finds it.
    for (int row = memberCount() - 1; row >= 0; --row)
        m_rowById.insert(m_members[static_cast<size_t>(row)].K_MemberID, row);
}

void OrgChart::notifyMembersChanged(const std::vector<int>& memberIds)
{
    for (const int id : memberIds) {
        const int row = rowOf(id);
        if (row >= 0)
            notify([row](OrgChartListener& l) { l.memberChanged(row); });
    }
}

void OrgChart::notifyPlacementsChanged(int memberId)
{
    for (OrgNode* node : placementsOf(memberId))
        notify([node](OrgChartListener& l) { l.nodeChanged(node); });
}

} // namespace sable
