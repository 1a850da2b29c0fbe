#pragma once

#include "document/EditOutcome.h"

#include <vector>

namespace sable {

class CSableManagerDoc;
class OrgNode;

// The editing commands of the rank list and of the ranks of memberships. Each is one step that can
// be undone; a change of the list is announced by the document so that every view follows it.
class RankEdits
{
public:
    // The rank submenus' commands: the first is "no rank", the k-th after it the k-th rank in rank
    // order, as the server's administration tools have always numbered them.
    static constexpr int kNoRankCommand = 200;
    static constexpr int kLastRankCommand = 299;

    explicit RankEdits(CSableManagerDoc& doc);

    // "새 직급" (or "새 직급 (n)" with the first free n) at the end; the outcome's rank is to be
    // renamed in place.
    EditOutcome addRank();
    // An empty name changes nothing; a name already in the list (its own included) is refused.
    EditOutcome renameRank(int index, const QString& name);
    // After the question; memberships that held the rank have no rank from then on.
    EditOutcome deleteRank(int index, const AskYesNo& ask);
    EditOutcome moveRankUp(int index);
    EditOutcome moveRankDown(int index);

    // Option k of a membership's rank choice: the k-th rank, or no rank for the last option.
    EditOutcome setMembershipRank(OrgNode* placement, int option);
    // The rank submenu for several memberships: 200 no rank, 200 + k the k-th rank.
    EditOutcome setMembershipRanks(const std::vector<OrgNode*>& placements, int command);

    // Memberships whose rank names no rank in the list get no rank (-1), as the membership list
    // shows them. Not an edit of its own: nothing to undo, nothing unsaved.
    void clearUnknownRanks();

    std::optional<Balloon> emptyListHint() const;

private:
    EditOutcome moveRank(int index, int to);

    CSableManagerDoc& m_doc;
};

} // namespace sable
