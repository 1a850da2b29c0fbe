#include "document/RankEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/EditRecorder.h"

namespace sable {

RankEdits::RankEdits(CSableManagerDoc& doc)
    : m_doc(doc)
{ }

EditOutcome RankEdits::addRank()
{
    RankList& ranks = m_doc.ranks();
    QString name = Msg::kNewRank;
    for (int n = 1; ranks.indexOfName(name) >= 0; ++n)
        name = Msg::kNewRankNumbered.arg(n);
    EditRecorder edit(m_doc, Msg::kStepAddRank);
    edit.insertRank(ranks.count(), {ranks.nextRankId(), name});
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.rankIndex = ranks.count() - 1;
    return outcome;
}

EditOutcome RankEdits::renameRank(int index, const QString& name)
{
    RankList& ranks = m_doc.ranks();
    if (index < 0 || index >= ranks.count() || name.isEmpty())
        return {};
    if (ranks.indexOfName(name) >= 0) {
        EditOutcome refused;
        refused.message = Msg::kDuplicateRank;
        refused.rankIndex = index;
        return refused;
    }
    EditRecorder edit(m_doc, Msg::kStepRenameRank.arg(name));
    edit.renameRank(index, name);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.rankIndex = index;
    return outcome;
}

EditOutcome RankEdits::deleteRank(int index, const AskYesNo& ask)
{
    RankList& ranks = m_doc.ranks();
    if (index < 0 || index >= ranks.count() || !ask(Msg::kDeleteRankQuestion))
        return {};
    const RankRecord rank = ranks.at(index);
    EditRecorder edit(m_doc, Msg::kStepDeleteRank.arg(rank.RankName));
    edit.removeRank(index);
    if (ranks.positionOf(rank.K_RankID) < 0) {
        m_doc.chart().forEachPlacement([&edit, &rank](OrgNode* placement) {
            if (placement->rankId() == rank.K_RankID)
                edit.setRank(placement, -1);
        });
    }
    edit.setModified(true);
    return EditOutcome::changed();
}

EditOutcome RankEdits::moveRankUp(int index)
{
    return moveRank(index, index - 1);
}

EditOutcome RankEdits::moveRankDown(int index)
{
    return moveRank(index, index + 1);
}

EditOutcome RankEdits::moveRank(int index, int to)
{
    RankList& ranks = m_doc.ranks();
    if (index < 0 || index >= ranks.count())
        return {};
    EditRecorder edit(m_doc, Msg::kStepMoveRank.arg(ranks.at(index).RankName));
    // Flagged first: also a move at either end counts as an edit.
    edit.setModified(true);
    const int target = std::clamp(to, 0, ranks.count() - 1);
    edit.moveRank(index, target);
    EditOutcome outcome;
    outcome.bChanged = edit.hasChanges();
    outcome.rankIndex = target;
    return outcome;
}

EditOutcome RankEdits::setMembershipRank(OrgNode* placement, int option)
{
    const int count = m_doc.ranks().count();
    if (option < 0 || option > count)
        return {};
    return setMembershipRanks(
        {placement}, option == count ? RankEdits::kNoRankCommand : RankEdits::kNoRankCommand + option + 1);
}

EditOutcome RankEdits::setMembershipRanks(const std::vector<OrgNode*>& placements, int command)
{
    const int k = command - RankEdits::kNoRankCommand;
    if (placements.empty() || k < 0 || k > m_doc.ranks().count())
        return {};
    const int rankId = k == 0 ? -1 : m_doc.ranks().at(k - 1).K_RankID;
    EditRecorder edit(m_doc, Msg::kStepSetRank.arg(m_doc.chart().displayName(placements.front())));
    for (OrgNode* placement : placements) {
        if (placement && placement->isMember())
            edit.setRank(placement, rankId);
    }
    edit.setModified(true);
    return EditOutcome::changed();
}

void RankEdits::clearUnknownRanks()
{
    m_doc.chart().forEachPlacement([this](OrgNode* placement) {
        if (placement->rankId() != -1 && m_doc.ranks().positionOf(placement->rankId()) < 0)
            m_doc.chart().setRank(placement, -1);
    });
}

std::optional<Balloon> RankEdits::emptyListHint() const
{
    if (m_doc.ranks().count() > 0)
        return std::nullopt;
    Balloon tip = Balloon::tip(Msg::kEmptyRankListTip);
    tip.target = Balloon::Target::Rank;
    return tip;
}

} // namespace sable
