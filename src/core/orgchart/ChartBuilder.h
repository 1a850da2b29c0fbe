#pragma once

#include "orgchart/ChartRows.h"

#include <QHash>
#include <QStringList>

#include <array>
#include <unordered_map>
#include <vector>

namespace sable {

class OrgChart;
class OrgNode;

// What a chart built from stored rows could not place as the rows say, by kind, with a few examples
// of each: rows nobody should lose without being told.
struct LoadProblems
{
    enum Kind
    {
        MembershipOfUnknownDepartment, // left out: the next save removes it
        MembershipOfUnknownUser, // left out: the next save removes it
        DepartmentWithoutParent, // placed at the top level, and saved there
        DuplicateDepartmentId, // both kept: the next save writes both again
        DuplicateUserId, // both kept: the next save writes both again
        DuplicateLoginId, // the save refuses the chart until one is changed
        KindCount
    };
    static constexpr int kExamples = 5;

    std::array<int, KindCount> counts {};
    std::array<QStringList, KindCount> examples;

    void note(Kind kind, const QString& example);
    bool any() const;
    int total() const;
};

// Builds a chart from stored rows the way a load places them, so that a save followed by a load
// gives the same tree: departments arrive ordered by Depth and Position and hang under the first
// department with their parent's identifier (at the top level when there is none); then every
// department's children (its sub-departments and its members) are put in the order of their stored
// Position, whatever order the rows came in. The target chart must be empty and unwatched.
class ChartBuilder
{
public:
    explicit ChartBuilder(OrgChart& target);

    // Room for `count` members, for a caller that knows how many come.
    void reserveMembers(size_t count);
    void addMember(MemberRecord member);
    void addGroup(const GroupRow& row);
    bool hasGroups() const { return !m_groups.empty(); }
    // The departments in tree order, for reading memberships department by department.
    std::vector<int> groupIdsInTreeOrder() const;
    void addRelation(const RelationRow& row);

    // Builds the tree from what was added so far (also after a load stopped half-way).
    void finish();
    // What finish() could not place as the rows say.
    const LoadProblems& problems() const { return m_problems; }

private:
    struct PendingGroup
    {
        GroupRow row;
        int parent = -1; // index into m_groups, -1 for the top level
        std::vector<int> children;
    };
    struct PendingChild
    {
        int position;
        int group; // index into m_groups, or -1 for a member
        const RelationRow* member; // for a member
    };

    void buildChildren(OrgNode* node, int groupIndex);
    std::vector<PendingChild> orderedChildren(int groupIndex) const;

    OrgChart& m_chart;
    std::vector<PendingGroup> m_groups;
    std::vector<int> m_topLevel;
    QHash<int, int> m_groupIndexById;
    int m_lastParentId = -1;
    int m_parentIndex = -1;
    std::unordered_map<int, std::vector<RelationRow>> m_relationsByGroup;
    bool m_bFinished = false;
    LoadProblems m_problems;
    QHash<QString, int> m_loginIds; // folded login ID to member, for telling twins apart
};

} // namespace sable
