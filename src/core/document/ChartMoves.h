#pragma once

#include "document/EditOutcome.h"

#include <QByteArray>

#include <functional>
#include <vector>

namespace sable {

class CSableManagerDoc;
class OrgChart;
class OrgNode;
struct MemberRecord;

// Reorganising the chart: a department to another parent with everything below it, members from
// one department to another keeping their ranks, and the dragging of tree nodes that does the same.
// Each is one step that can be undone, so the tree is never seen half-moved.
class ChartMoves
{
public:
    // The MIME type of dragged tree nodes. Only the console that started the drag understands it,
    // and only while its chart is as it was when the drag began.
    static constexpr char kNodeMimeType[] = "application/x-sable-chart-nodes";

    // Where a dragged department goes when dropped at `fraction` (0 top, 1 bottom) of `target`'s
    // row: before the target on the upper third, after it on the lower third, and on the middle
    // third as the last child of the target's department. Nothing goes beside the top department.
    struct DropPlace
    {
        OrgNode* parent = nullptr; // nullptr: nowhere
        int index = -1; // among the parent's children; -1 for the last place
        bool bBetween = false; // before or after the target rather than into a department
    };
    static DropPlace departmentDropPlace(const OrgChart& chart, OrgNode* target, double fraction);
    // Where dragged members go: the department dropped on, or the department of the member node.
    static OrgNode* memberDropDepartment(OrgNode* target);

    explicit ChartMoves(CSableManagerDoc& doc);

    // The department with everything below it (members, ranks and folder permissions go along) to
    // place `index` (-1 last) among the children of `parent`; a member node stands for its department.
    EditOutcome moveDepartment(OrgNode* department, OrgNode* parent, int index = -1);
    // Member nodes into `department`, each keeping its rank; a member who is there already merges
    // into the node they have. bCopy adds them there instead, by the rule of adding to a department.
    EditOutcome moveMemberNodes(const std::vector<OrgNode*>& placements, OrgNode* department, bool bCopy);

    // Which membership of a user in several departments is to move: one of `placements` (in tree
    // order), or nullptr to move nobody.
    using ChooseMembership
        = std::function<OrgNode*(const MemberRecord& member, const std::vector<OrgNode*>& placements)>;
    // Member-list rows: each user out of their department into `department`, keeping the rank. Users
    // in several departments are asked about before anything moves; a user in none is placed there
    // with no rank.
    EditOutcome moveUsers(const std::vector<int>& rows, OrgNode* department, const ChooseMembership& choose);

    // Dragged tree nodes: one department, or member nodes.
    QByteArray nodePayload(const std::vector<OrgNode*>& nodes) const;
    // The nodes a payload names; nullopt when it is malformed, from another program, out of date, or
    // names anything but one department or member nodes.
    std::optional<std::vector<OrgNode*>> nodesOfPayload(const QByteArray& payload) const;
    // The nodes of a payload dropped at place `index` of `parent` (departments) or into it (members).
    EditOutcome dropNodes(const QByteArray& payload, OrgNode* parent, int index, bool bCopy);

    // What a drag shows beside the pointer: "사용자 3명: 김정훈, 박서연, …" or "부서: 영업부".
    QString dragLabel(const std::vector<int>& memberIds) const;
    QString dragLabel(const std::vector<OrgNode*>& nodes) const;

private:
    bool isDepartment(const OrgNode* node) const;

    CSableManagerDoc& m_doc;
};

} // namespace sable
