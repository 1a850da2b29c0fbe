#include "orgchart/OrgChart.h"

#include "orgchart/OrgChartListener.h"
#include "orgchart/Revision.h"

#include <algorithm>
#include <limits>
#include <numeric>

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

std::vector<int> idsOf(const std::vector<MemberRecord>& members)
{
    std::vector<int> ids;
    ids.reserve(members.size());
    for (const MemberRecord& member : members)
        ids.push_back(member.K_MemberID);
    return ids;
}

// How many runs of neighbouring places the sorted places form (a new run at each new parent).
size_t countRanges(const std::vector<DetachedNode>& places)
{
    size_t ranges = 0;
    for (size_t i = 0; i < places.size(); ++i) {
        if (i == 0 || places[i].parent != places[i - 1].parent || places[i].row != places[i - 1].row + 1)
            ++ranges;
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
    departmentsChanged();
    other.departmentsChanged();
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

std::vector<OrgNode*> OrgChart::placementsInTreeOrder(int memberId) const
{
    return inTreeOrder(placementsOf(memberId));
}

bool OrgChart::isBefore(const OrgNode* a, const OrgNode* b)
{
    const auto depthOf = [](const OrgNode* node) {
        int depth = 0;
        for (; node->parent(); node = node->parent())
            ++depth;
        return depth;
    };
    int depthA = depthOf(a);
    int depthB = depthOf(b);
    // The deeper one climbs to the other's level; an ancestor comes before what lies below it.
    const OrgNode* upA = a;
    const OrgNode* upB = b;
    for (; depthA > depthB; --depthA)
        upA = upA->parent();
    for (; depthB > depthA; --depthB)
        upB = upB->parent();
    if (upA == upB)
        return upA == a && a != b;
    while (upA->parent() != upB->parent()) {
        upA = upA->parent();
        upB = upB->parent();
    }
    return upA->row() < upB->row();
}

std::vector<OrgNode*> OrgChart::inTreeOrder(std::vector<OrgNode*> nodes) const
{
    if (nodes.size() < 2)
        return nodes;
    if (nodes.size() <= 16) {
        std::sort(nodes.begin(), nodes.end(), &OrgChart::isBefore);
        return nodes;
    }
    // Each node's places from the top down, all in one buffer; the tree's order is their
    // lexicographic order.
    std::vector<int> places;
    std::vector<std::pair<size_t, size_t>> spans;
    spans.reserve(nodes.size());
    for (const OrgNode* node : nodes) {
        const size_t begin = places.size();
        for (const OrgNode* up = node; up && up != m_root.get(); up = up->parent())
            places.push_back(up->row());
        std::reverse(places.begin() + static_cast<long>(begin), places.end());
        spans.emplace_back(begin, places.size() - begin);
    }
    std::vector<size_t> order(nodes.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        const auto first = places.begin() + static_cast<long>(spans[a].first);
        const auto second = places.begin() + static_cast<long>(spans[b].first);
        return std::lexicographical_compare(
            first, first + static_cast<long>(spans[a].second), second, second + static_cast<long>(spans[b].second));
    });
    std::vector<OrgNode*> ordered;
    ordered.reserve(nodes.size());
    for (const size_t i : order)
        ordered.push_back(nodes[i]);
    return ordered;
}

bool OrgChart::isWithin(const OrgNode* node, const OrgNode* ancestor)
{
    for (const OrgNode* up = node; up; up = up->parent()) {
        if (up == ancestor)
            return true;
    }
    return false;
}

bool OrgChart::isAttached(const OrgNode* node) const
{
    return node && isWithin(node, m_root.get());
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
    return m_rowById.value(memberId);
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
    if (inserted->isGroup())
        departmentsChanged();
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
    if (taken->isGroup())
        departmentsChanged();
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

void OrgChart::reparentNode(OrgNode* node, OrgNode* newParent, int index)
{
    Q_ASSERT(!isWithin(newParent, node));
    OrgNode* oldParent = node->parent();
    if (oldParent == newParent) {
        moveNode(node, index);
        return;
    }
    const int from = node->row();
    index = std::clamp(index, 0, newParent->childCount());
    notify([&](OrgChartListener& l) { l.nodeAboutToBeReparented(oldParent, from, newParent, index); });
    std::unique_ptr<OrgNode> moving = std::move(oldParent->m_children[static_cast<size_t>(from)]);
    oldParent->m_children.erase(oldParent->m_children.begin() + from);
    renumber(oldParent, from);
    moving->m_parent = newParent;
    newParent->m_children.insert(newParent->m_children.begin() + index, std::move(moving));
    renumber(newParent, index);
    if (node->isGroup())
        departmentsChanged();
    notify([&](OrgChartListener& l) { l.nodeReparented(oldParent, from, newParent, index); });
}

std::vector<DetachedNode> OrgChart::takeNodes(const std::vector<OrgNode*>& nodes)
{
    std::vector<DetachedNode> taken;
    for (OrgNode* node : nodes)
        taken.push_back({node->parent(), node->row(), nullptr});
    std::sort(taken.begin(), taken.end(), [](const DetachedNode& a, const DetachedNode& b) {
        return a.parent != b.parent ? std::less<>()(a.parent, b.parent) : a.row < b.row;
    });
    std::vector<int> lost;
    if (countRanges(taken) <= kMaxSeparateRanges)
        takeByRanges(taken, lost);
    else
        takeAtOnce(taken, lost);
    notifyMembersChanged(lost);
    return taken;
}

void OrgChart::detach(DetachedNode& place, std::vector<int>& lostMembers)
{
    std::unique_ptr<OrgNode> node = std::move(place.parent->m_children[static_cast<size_t>(place.row)]);
    unregisterSubtree(node.get(), &lostMembers);
    node->m_parent = nullptr;
    if (node->isGroup())
        departmentsChanged();
    place.node = std::move(node);
}

void OrgChart::takeByRanges(std::vector<DetachedNode>& taken, std::vector<int>& lost)
{
    // Range by range from the last, so that the earlier places keep their numbers meanwhile.
    for (size_t end = taken.size(); end > 0;) {
        size_t begin = end - 1;
        while (
            begin > 0 && taken[begin - 1].parent == taken[begin].parent && taken[begin - 1].row + 1 == taken[begin].row)
            --begin;
        OrgNode* parent = taken[begin].parent;
        const int first = taken[begin].row;
        const int last = taken[end - 1].row;
        notify([&](OrgChartListener& l) { l.nodesAboutToBeRemoved(parent, first, last); });
        for (size_t i = begin; i < end; ++i)
            detach(taken[i], lost);
        dropEmptyChildren(parent);
        notify([&](OrgChartListener& l) { l.nodesRemoved(parent, first, last); });
        end = begin;
    }
}

void OrgChart::takeAtOnce(std::vector<DetachedNode>& taken, std::vector<int>& lost)
{
    notify([](OrgChartListener& l) { l.treeAboutToBeRestructured(); });
    for (DetachedNode& place : taken)
        detach(place, lost);
    for (size_t i = 0; i < taken.size(); ++i) {
        if (i == 0 || taken[i - 1].parent != taken[i].parent)
            dropEmptyChildren(taken[i].parent);
    }
    std::vector<const OrgNode*> gone;
    for (const DetachedNode& place : taken)
        gone.push_back(place.node.get());
    notify([&gone](OrgChartListener& l) { l.treeRestructured(gone); });
}

void OrgChart::insertNodes(std::vector<DetachedNode> nodes)
{
    // Under each parent in the order given, the parents one after the other.
    std::stable_sort(nodes.begin(), nodes.end(),
        [](const DetachedNode& a, const DetachedNode& b) { return std::less<>()(a.parent, b.parent); });
    std::vector<int> gained;
    if (countRanges(nodes) <= kMaxSeparateRanges)
        insertByRanges(nodes, gained);
    else
        insertAtOnce(nodes, gained);
    notifyMembersChanged(gained);
}

std::unique_ptr<OrgNode> OrgChart::attach(DetachedNode& place, std::vector<int>& gainedMembers)
{
    OrgNode* node = place.node.get();
    node->m_parent = place.parent;
    registerSubtree(node, &gainedMembers);
    if (node->isGroup())
        departmentsChanged();
    return std::move(place.node);
}

void OrgChart::insertByRanges(std::vector<DetachedNode>& nodes, std::vector<int>& gained)
{
    for (size_t begin = 0; begin < nodes.size();) {
        size_t end = begin + 1;
        while (
            end < nodes.size() && nodes[end].parent == nodes[begin].parent && nodes[end].row == nodes[end - 1].row + 1)
            ++end;
        OrgNode* parent = nodes[begin].parent;
        const int first = std::clamp(nodes[begin].row, 0, parent->childCount());
        const int last = first + static_cast<int>(end - begin) - 1;
        notify([&](OrgChartListener& l) { l.nodesAboutToBeInserted(parent, first, last); });
        std::vector<std::unique_ptr<OrgNode>> inserted;
        for (size_t i = begin; i < end; ++i)
            inserted.push_back(attach(nodes[i], gained));
        parent->m_children.insert(parent->m_children.begin() + first, std::make_move_iterator(inserted.begin()),
            std::make_move_iterator(inserted.end()));
        renumber(parent, first);
        notify([&](OrgChartListener& l) { l.nodesInserted(parent, first, last); });
        begin = end;
    }
}

void OrgChart::insertAtOnce(std::vector<DetachedNode>& nodes, std::vector<int>& gained)
{
    notify([](OrgChartListener& l) { l.treeAboutToBeRestructured(); });
    std::vector<const OrgNode*> inserted;
    for (const DetachedNode& place : nodes)
        inserted.push_back(place.node.get());
    for (size_t begin = 0; begin < nodes.size();) {
        size_t end = begin;
        std::vector<std::pair<int, std::unique_ptr<OrgNode>>> incoming;
        while (end < nodes.size() && nodes[end].parent == nodes[begin].parent) {
            incoming.emplace_back(nodes[end].row, attach(nodes[end], gained));
            ++end;
        }
        mergeIntoChildren(nodes[begin].parent, std::move(incoming));
        begin = end;
    }
    notify([&inserted](OrgChartListener& l) { l.treeRestructured(inserted); });
}

std::vector<NodeMove> OrgChart::moveNodes(std::vector<NodeMove> moves)
{
    notify([](OrgChartListener& l) { l.treeAboutToBeRestructured(); });
    std::vector<NodeMove> back;
    back.reserve(moves.size());
    for (const NodeMove& move : moves) {
        back.push_back({move.node, move.node->parent(), move.node->row()});
        if (move.node->isGroup())
            departmentsChanged();
    }
    std::sort(back.begin(), back.end(), [](const NodeMove& a, const NodeMove& b) {
        return a.parent != b.parent ? std::less<>()(a.parent, b.parent) : a.row < b.row;
    });
    // Out of their parents, still registered: the members keep their placements throughout.
    for (const NodeMove& place : back)
        static_cast<void>(place.parent->m_children[static_cast<size_t>(place.row)].release());
    for (size_t i = 0; i < back.size(); ++i) {
        if (i == 0 || back[i - 1].parent != back[i].parent)
            dropEmptyChildren(back[i].parent);
    }
    std::stable_sort(moves.begin(), moves.end(),
        [](const NodeMove& a, const NodeMove& b) { return std::less<>()(a.parent, b.parent); });
    for (size_t begin = 0; begin < moves.size();) {
        size_t end = begin;
        std::vector<std::pair<int, std::unique_ptr<OrgNode>>> incoming;
        for (; end < moves.size() && moves[end].parent == moves[begin].parent; ++end) {
            moves[end].node->m_parent = moves[end].parent;
            incoming.emplace_back(moves[end].row, std::unique_ptr<OrgNode>(moves[end].node));
        }
        mergeIntoChildren(moves[begin].parent, std::move(incoming));
        begin = end;
    }
    std::vector<const OrgNode*> nodes;
    for (const NodeMove& move : moves)
        nodes.push_back(move.node);
    notify([&nodes](OrgChartListener& l) { l.treeRestructured(nodes); });
    return back;
}

void OrgChart::dropEmptyChildren(OrgNode* parent)
{
    std::erase_if(parent->m_children, [](const std::unique_ptr<OrgNode>& child) { return !child; });
    renumber(parent, 0);
}

void OrgChart::mergeIntoChildren(OrgNode* parent, std::vector<std::pair<int, std::unique_ptr<OrgNode>>> incoming)
{
    // One pass: every incoming node at its place, the old children in order around them.
    std::vector<std::unique_ptr<OrgNode>> merged;
    const size_t total = parent->m_children.size() + incoming.size();
    merged.reserve(total);
    auto old = parent->m_children.begin();
    auto next = incoming.begin();
    for (size_t at = 0; at < total; ++at) {
        const bool bIncoming
            = next != incoming.end() && (static_cast<size_t>(next->first) <= at || old == parent->m_children.end());
        merged.push_back(bIncoming ? std::move((next++)->second) : std::move(*old++));
    }
    parent->m_children = std::move(merged);
    renumber(parent, 0);
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
    departmentsChanged();
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
    if (node->childCount() > 0)
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
        // An emptied list stays for the member's next placement: moving thousands of members out and
        // in again then allocates nothing.
        auto it = m_placements.find(current->memberId());
        std::erase(it->second, current);
        if (it->second.empty())
            lostMembers->push_back(current->memberId());
    };
    remove(node);
    if (node->childCount() > 0)
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
    reindexMembersFrom(row, {});
    notify([&](OrgChartListener& l) { l.membersInserted(row, row); });
    notifyPlacementsChanged(m_members[static_cast<size_t>(row)].K_MemberID);
}

void OrgChart::appendMemberQuietly(MemberRecord member)
{
    noteMemberId(member.K_MemberID);
    if (!m_rowById.contains(member.K_MemberID))
        m_rowById.set(member.K_MemberID, memberCount());
    m_members.push_back(std::move(member));
}

MemberRecord OrgChart::takeMember(int row)
{
    notify([&](OrgChartListener& l) { l.membersAboutToBeRemoved(row, row); });
    MemberRecord taken = std::move(m_members[static_cast<size_t>(row)]);
    m_members.erase(m_members.begin() + row);
    reindexMembersFrom(row, {taken.K_MemberID});
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
        // One pass from the first row taken, in place: erasing range by range would move the list
        // once per range.
        notify([&rows](OrgChartListener& l) { l.membersAboutToBeRemovedAt(rows); });
        auto next = rows.begin();
        size_t kept = static_cast<size_t>(rows.front());
        for (size_t row = kept; row < m_members.size(); ++row) {
            if (next != rows.end() && *next == static_cast<int>(row)) {
                taken.push_back(std::move(m_members[row]));
                ++next;
            } else {
                m_members[kept++] = std::move(m_members[row]);
            }
        }
        m_members.resize(kept);
        reindexMembersFrom(rows.front(), idsOf(taken));
        notify([&rows](OrgChartListener& l) { l.membersRemovedAt(rows); });
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
            reindexMembersFrom(first,
                idsOf({taken.begin() + static_cast<long>(next),
                    taken.begin() + static_cast<long>(next) + (last - first + 1)}));
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
        notify([&rows](OrgChartListener& l) { l.membersAboutToBeInsertedAt(rows); });
        // In place from the end: every row moves once, to where it belongs.
        long old = static_cast<long>(m_members.size()) - 1;
        long next = static_cast<long>(members.size()) - 1;
        m_members.resize(m_members.size() + members.size());
        for (long row = static_cast<long>(m_members.size()) - 1; next >= 0; --row) {
            if (rows[static_cast<size_t>(next)] == row)
                m_members[static_cast<size_t>(row)] = std::move(members[static_cast<size_t>(next--)]);
            else
                m_members[static_cast<size_t>(row)] = std::move(m_members[static_cast<size_t>(old--)]);
        }
        reindexMembersFrom(rows.front(), {});
        notify([&rows](OrgChartListener& l) { l.membersInsertedAt(rows); });
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
            reindexMembersFrom(first, {});
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

void OrgChart::reindexMembersFrom(int first, const std::vector<int>& goneIds)
{
    // Rows before `first` did not move and keep their claim; from the last row up, the smallest
    // row at or after `first` wins, as a search from the top finds it.
    for (int row = memberCount() - 1; row >= first; --row) {
        const int id = m_members[static_cast<size_t>(row)].K_MemberID;
        const int known = m_rowById.value(id);
        if (known < 0 || known >= first)
            m_rowById.set(id, row);
    }
    for (const int id : goneIds) {
        const int known = m_rowById.value(id);
        if (known >= 0 && (known >= memberCount() || m_members[static_cast<size_t>(known)].K_MemberID != id))
            m_rowById.remove(id);
    }
}

void OrgChart::reindexMembers()
{
    m_rowById.clear();
    // Of several members with one identifier the first counts, as a search from the top finds it.
    for (int row = memberCount() - 1; row >= 0; --row)
        m_rowById.set(m_members[static_cast<size_t>(row)].K_MemberID, row);
}

void OrgChart::notifyMembersChanged(const std::vector<int>& memberIds)
{
    std::vector<int> rows;
    for (const int id : memberIds) {
        const int row = rowOf(id);
        if (row >= 0)
            rows.push_back(row);
    }
    if (rows.size() <= kMaxSeparateRanges) {
        for (const int row : rows)
            notify([row](OrgChartListener& l) { l.memberChanged(row); });
        return;
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    notify([&rows](OrgChartListener& l) { l.membersChanged(rows); });
}

void OrgChart::notifyPlacementsChanged(int memberId)
{
    for (OrgNode* node : placementsOf(memberId))
        notify([node](OrgChartListener& l) { l.nodeChanged(node); });
}

} // namespace sable
