#pragma once

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
    virtual void nodeChanged(const OrgNode* /*node*/) { }

    virtual void membersAboutToBeInserted(int /*first*/, int /*last*/) { }
    virtual void membersInserted(int /*first*/, int /*last*/) { }
    virtual void membersAboutToBeRemoved(int /*first*/, int /*last*/) { }
    virtual void membersRemoved(int /*first*/, int /*last*/) { }
    // Too many rows changed at once to tell one by one.
    virtual void memberListAboutToReset() { }
    virtual void memberListReset() { }
    // A field of the member changed, or whether it belongs to a department.
    virtual void memberChanged(int /*row*/) { }
};

} // namespace sable
