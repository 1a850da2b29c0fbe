#pragma once

#include "orgchart/MemberRecord.h"
#include "orgchart/OrgNode.h"
#include "orgchart/Revision.h"
#include "orgchart/RowIndex.h"

#include <QHash>

#include <functional>
#include <unordered_map>
#include <vector>

namespace sable {

class OrgChartListener;

// A node taken out of the tree with its subtree, and the place it had (or is to have): the parent
// and the index among the parent's children.
struct DetachedNode
{
    OrgNode* parent = nullptr;
    int row = 0;
    std::unique_ptr<OrgNode> node;
};

// Where a node of the tree goes: the place `row` under `parent`.
struct NodeMove
{
    OrgNode* node = nullptr;
    OrgNode* parent = nullptr;
    int row = 0;
};

// The organisation chart in memory: the department tree with the members placed in it, and the
// member list. Departments, members and every placement of a member are found in constant time;
// Position and Depth are computed from the tree, never stored. Every change goes through the
// primitives below, which tell the listeners before and after.
class OrgChart
{
public:
    OrgChart();
    ~OrgChart();
    OrgChart(const OrgChart&) = delete;
    OrgChart& operator=(const OrgChart&) = delete;

    void addListener(OrgChartListener* listener);
    void removeListener(OrgChartListener* listener);
    // Changes with every change of the contents, and no two charts share one: whoever keeps a
    // pointer into the chart can tell whether it still holds.
    quint64 revision() const { return m_revision; }
    // Changes whenever a department is added, removed, renamed or moved (not with members): whoever
    // keeps department paths can tell whether they still hold.
    quint64 departmentRevision() const { return m_departmentRevision; }

    // Exchanges the contents (not the listeners) with `other`; this chart's listeners see a reset.
    void swapContents(OrgChart& other);
    void clear();

    // --- The tree ---------------------------------------------------------------------------------
    // The parent of the top-level departments; not itself a department.
    OrgNode* invisibleRoot() const { return m_root.get(); }
    // The top department: the first top-level one, or nullptr for an empty tree.
    OrgNode* rootGroup() const;
    bool isTopLevel(const OrgNode* node) const { return node && node->parent() == m_root.get(); }

    // The first department with that K_GroupID, or nullptr.
    OrgNode* findGroup(int groupId) const;
    // Every node that places the member, in no particular order.
    const std::vector<OrgNode*>& placementsOf(int memberId) const;
    // The same in the order of the tree, as the chart shows and saves them.
    std::vector<OrgNode*> placementsInTreeOrder(int memberId) const;
    // Nodes of the tree in the order the tree shows them.
    std::vector<OrgNode*> inTreeOrder(std::vector<OrgNode*> nodes) const;
    // Whether the tree shows `a` before `b` (a department before what lies below it).
    static bool isBefore(const OrgNode* a, const OrgNode* b);
    // The member's node directly under `group`, or nullptr.
    OrgNode* placementIn(const OrgNode* group, int memberId) const;
    // Whether `node` is `ancestor` or lies below it.
    static bool isWithin(const OrgNode* node, const OrgNode* ancestor);
    // Whether the node hangs in this chart's tree (and not in a subtree taken out of it).
    bool isAttached(const OrgNode* node) const;
    int groupCount() const { return m_groupCount; }
    int placementCount() const { return m_placementCount; }

    // K_GroupID_P of a department: its parent's K_GroupID, -1 at the top level.
    int parentGroupId(const OrgNode* node) const;
    // 1-based place among the parent's children (departments and members alike); -1 for nullptr.
    int position(const OrgNode* node) const;
    // Parent steps to the top level; -1 for nullptr.
    int depth(const OrgNode* node) const;
    // The name a node shows: a department's name, or the placed member's name.
    QString displayName(const OrgNode* node) const;
    // "본사/영업부/1팀": the names of the departments from the top down to `node`'s department.
    QString departmentPath(const OrgNode* node) const;

    // The identifier a new department gets: the greatest K_GroupID the tree has held since its
    // contents were last replaced, taken as at least 1, plus one; -2 when that overflows. A number
    // freed by a deletion is not handed out again before the next load, so nothing the save's
    // deletion cascade removes for the old department can reach a new one.
    int nextGroupId() const;

    // Pre-order walks from the top, as the chart is saved.
    void forEachNode(const std::function<void(OrgNode*)>& visit) const;
    void forEachGroup(const std::function<void(OrgNode*)>& visit) const;
    void forEachPlacement(const std::function<void(OrgNode*)>& visit) const;

    // --- The member list ----------------------------------------------------------------------------
    int memberCount() const { return static_cast<int>(m_members.size()); }
    const MemberRecord& member(int row) const { return m_members[static_cast<size_t>(row)]; }
    const std::vector<MemberRecord>& members() const { return m_members; }
    // The row of the first member with that K_MemberID, or -1.
    int rowOf(int memberId) const;
    const MemberRecord* findMember(int memberId) const;
    // Whether the member sits in at least one department (members in none are shown faded).
    bool hasPlacement(int memberId) const { return !placementsOf(memberId).empty(); }
    // The K_MemberID a new member gets: the greatest the list has held since its contents were last
    // replaced, plus one (1 for an empty list); as with departments, a freed number stays unused.
    int nextMemberId() const;

    // --- Primitives ---------------------------------------------------------------------------------
    // Inserts a node with its subtree as child `index` of `parent`; returns it.
    OrgNode* insertNode(OrgNode* parent, int index, std::unique_ptr<OrgNode> node);
    // Appends without telling anyone; only for building a chart that nobody watches yet.
    OrgNode* appendNodeQuietly(OrgNode* parent, std::unique_ptr<OrgNode> node);
    // Removes the node with its subtree and hands it over.
    std::unique_ptr<OrgNode> takeNode(OrgNode* node);
    // Moves the node among its siblings to place `to`.
    void moveNode(OrgNode* node, int to);
    // Moves the node with its subtree under another parent, to place `index` there. The new parent
    // must not lie within the node.
    void reparentNode(OrgNode* node, OrgNode* newParent, int index);
    // Removes the nodes (none of them within another) with their subtrees, as one change, and hands
    // them over with their places, ascending under each parent: insertNodes puts them back.
    std::vector<DetachedNode> takeNodes(const std::vector<OrgNode*>& nodes);
    // Inserts each node at its place, in the order given; under one parent the places must ascend
    // (they are the places the nodes have afterwards).
    void insertNodes(std::vector<DetachedNode> nodes);
    // Moves nodes (none within another or under another that moves) with their subtrees to new
    // places, as one change; under one parent the places must ascend in the order given. Returns
    // the places they had, in the same form, to move them back.
    std::vector<NodeMove> moveNodes(std::vector<NodeMove> moves);
    // Puts the children of `parent` in a new order: `order[i]` is the old place of the new child i.
    void reorderChildren(OrgNode* parent, const std::vector<int>& order);
    void renameGroup(OrgNode* group, const QString& name);
    void setRank(OrgNode* placement, int rankId);

    void insertMember(int row, MemberRecord member);
    void appendMemberQuietly(MemberRecord member);
    void reserveMembers(size_t count) { m_members.reserve(count); }
    MemberRecord takeMember(int row);
    // Removes the members of the ascending `rows` and hands them over in that order.
    std::vector<MemberRecord> takeMembers(const std::vector<int>& rows);
    // Puts members back at the ascending `rows` they will have afterwards (the inverse of takeMembers).
    void insertMembers(const std::vector<int>& rows, std::vector<MemberRecord> members);
    void setMember(int row, const MemberRecord& member);

private:
    void registerSubtree(OrgNode* node, std::vector<int>* gainedMembers);
    void unregisterSubtree(OrgNode* node, std::vector<int>* lostMembers);
    void renumber(OrgNode* parent, int from);
    void detach(DetachedNode& place, std::vector<int>& lostMembers);
    std::unique_ptr<OrgNode> attach(DetachedNode& place, std::vector<int>& gainedMembers);
    void takeByRanges(std::vector<DetachedNode>& taken, std::vector<int>& lost);
    void takeAtOnce(std::vector<DetachedNode>& taken, std::vector<int>& lost);
    void insertByRanges(std::vector<DetachedNode>& nodes, std::vector<int>& gained);
    void insertAtOnce(std::vector<DetachedNode>& nodes, std::vector<int>& gained);
    // Closes the gaps left by children taken out.
    void dropEmptyChildren(OrgNode* parent);
    // Puts nodes among the children of `parent`, each at its place (ascending), in one pass.
    void mergeIntoChildren(OrgNode* parent, std::vector<std::pair<int, std::unique_ptr<OrgNode>>> incoming);
    void departmentsChanged() { m_departmentRevision = Revision::next(); }
    void reindexMembers();
    void noteMemberId(int memberId) { m_highestMemberId = std::max(m_highestMemberId, memberId); }
    // After the rows from `first` on changed; `goneIds` are those of the members taken out.
    void reindexMembersFrom(int first, const std::vector<int>& goneIds);
    void notifyMembersChanged(const std::vector<int>& memberIds);
    void notifyPlacementsChanged(int memberId);
    template <typename F>
    void notify(F&& call);

    std::unique_ptr<OrgNode> m_root;
    QHash<int, OrgNode*> m_groupsById;
    QHash<int, int> m_groupIdUses; // departments per identifier; more than one is rare
    std::unordered_map<int, std::vector<OrgNode*>> m_placements;
    int m_groupCount = 0;
    int m_highestGroupId = 1;
    int m_highestMemberId = 0;
    int m_placementCount = 0;
    std::vector<MemberRecord> m_members;
    RowIndex m_rowById;
    std::vector<OrgChartListener*> m_listeners;
    quint64 m_revision = 0;
    quint64 m_departmentRevision = Revision::next();
};

} // namespace sable
