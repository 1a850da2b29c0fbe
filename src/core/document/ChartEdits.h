#pragma once

#include "document/EditOutcome.h"

#include <QByteArray>

#include <vector>

namespace sable {

class CSableManagerDoc;
class OrgNode;

// The editing commands of the department tree and the member list. Each changes the document in
// memory only, as one step that can be undone, and says what the window should show.
class ChartEdits
{
public:
    enum class Move
    {
        ToTop,
        Up,
        Down,
        ToBottom,
    };

    // The clipboard format of dragged member rows.
    static constexpr char kDragFormat[] = "SableManagerOrganizeUserDragDropFormat";

    explicit ChartEdits(CSableManagerDoc& doc);

    // "새 부서" as the last child of `selected` (its department for a member node), or of the top
    // department when nothing is selected; the outcome's node is to be renamed in place.
    EditOutcome addDepartment(OrgNode* selected);
    EditOutcome renameDepartment(OrgNode* department, const QString& name);
    // A member node leaves its department at once; a department goes with everything below it after
    // the question. The top department is never deleted.
    EditOutcome deleteNode(OrgNode* node, const AskYesNo& ask);
    EditOutcome move(OrgNode* node, Move how);
    // Members before departments, members by rank order (no rank last), equal ones keep their order;
    // then every department below likewise. Leaves the modified flag as it is.
    EditOutcome sortByRank(OrgNode* node);
    // Command 200: no rank; 200 + k: the k-th rank in rank order.
    EditOutcome setRank(OrgNode* placement, int command);

    // An identifier typed into the empty row at the bottom of the member list.
    EditOutcome addUserByEntry(const QString& loginId, bool bBalloonHelp);
    // A cell of the member list edited (row memberCount() is the empty entry row).
    EditOutcome editCell(int row, int column, const QString& text);
    // Refuses to leave a member row whose password is empty.
    std::optional<Balloon> checkLeaveRow(int row) const;
    EditOutcome deleteUsers(std::vector<int> rows, const AskYesNo& ask);

    // "[%s]에 추가" with the department's name; empty when the command is not offered.
    static QString addToDepartmentLabel(const OrgNode* selected);
    EditOutcome addToDepartment(const std::vector<int>& rows, OrgNode* department);
    // The same by K_MemberID: a node for each member not yet directly in the department.
    EditOutcome addMembersToDepartment(const std::vector<int>& memberIds, OrgNode* department);

    QByteArray dragPayload(const std::vector<int>& rows) const;
    // The members a payload names, or nullopt when it is malformed or names an unknown member.
    std::optional<std::vector<int>> membersOfPayload(const QByteArray& payload) const;
    EditOutcome dropOnDepartment(const QByteArray& payload, OrgNode* department);

    // The hint for a tree that holds nothing but its top department.
    std::optional<Balloon> emptyTreeHint() const;

    // Whether a member other than the one in `exceptRow` has this login ID, compared without regard to case.
    bool isLoginIdTaken(const QString& loginId, int exceptRow) const;

private:
    CSableManagerDoc& m_doc;
};

} // namespace sable
