#pragma once

#include <vector>

namespace sable {

class OrgNode;

// Told of every change of an OrgChart, before and after, so that views follow it without
// rebuilding. Parents are nodes of the tree; the chart's invisible root stands for the top level.
class OrgChartListener
{
public:
    virtual ~OrgChartListener() = default;

    virtual void chartAboutToReset() { }
    virtual void chartReset() { }

    virtual void nodesAboutToBeInserted(const OrgNode* /*parent*/, int /*first*/, int /*last*/) { }
    virtual void nodesInserted(const OrgNode* /*parent*/, int /*first*/, int /*last*/) { }
    virtual void nodesAboutToBeRemoved(const OrgNode* /*parent*/, int /*first*/, int /*last*/) { }
    virtual void nodesRemoved(const OrgNode* /*parent*/, int /*first*/, int /*last*/) { }
    // One child moves from `from` to the place `to` (its index once moved).
    virtual void nodeAboutToMove(const OrgNode* /*parent*/, int /*from*/, int /*to*/) { }
    virtual void nodeMoved(const OrgNode* /*parent*/, int /*from*/, int /*to*/) { }
    // Many children of one parent change places at once.
    virtual void childrenAboutToBeReordered(const OrgNode* /*parent*/) { }
    virtual void childrenReordered(const OrgNode* /*parent*/) { }
    // One node with its subtree goes to another parent: from place `from` of `oldParent` to place
    // `to` of `newParent` (its index once moved).
    virtual void nodeAboutToBeReparented(
        const OrgNode* /*oldParent*/, int /*from*/, const OrgNode* /*newParent*/, int /*to*/)
    { }
    virtual void nodeReparented(const OrgNode* /*oldParent*/, int /*from*/, const OrgNode* /*newParent*/, int /*to*/) {
    }
    // Nodes were inserted or removed under too many parents, or in too many places, to tell one by
    // one; the nodes that stay keep their identity. `nodes` are those put in or taken out (these
    // hang nowhere now).
    virtual void treeAboutToBeRestructured() { }
    virtual void treeRestructured(const std::vector<const OrgNode*>& /*nodes*/) { }
    virtual void nodeChanged(const OrgNode* /*node*/) { }

    virtual void membersAboutToBeInserted(int /*first*/, int /*last*/) { }
    virtual void membersInserted(int /*first*/, int /*last*/) { }
    virtual void membersAboutToBeRemoved(int /*first*/, int /*last*/) { }
    virtual void membersRemoved(int /*first*/, int /*last*/) { }
    // Too many rows changed at once to tell one by one.
    virtual void memberListAboutToReset() { }
    virtual void memberListReset() { }
    // Members go or come at many places at once. Removed: the ascending rows they had. Inserted: the
    // ascending rows they have afterwards. A listener that cannot follow such a change sees a reset.
    virtual void membersAboutToBeRemovedAt(const std::vector<int>& /*rows*/) { memberListAboutToReset(); }
    virtual void membersRemovedAt(const std::vector<int>& /*rows*/) { memberListReset(); }
    virtual void membersAboutToBeInsertedAt(const std::vector<int>& /*rows*/) { memberListAboutToReset(); }
    virtual void membersInsertedAt(const std::vector<int>& /*rows*/) { memberListReset(); }
    // A field of the member changed, or whether it belongs to a department.
    virtual void memberChanged(int /*row*/) { }
    // The same for many members at once (ascending rows).
    virtual void membersChanged(const std::vector<int>& rows)
    {
        for (const int row : rows)
            memberChanged(row);
    }
};

} // namespace sable
