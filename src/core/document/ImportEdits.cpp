#include "document/ImportEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/EditRecorder.h"
#include "userimport/ImportPreview.h"

namespace sable::ImportEdits {
namespace {

using Fate = ImportRow::Fate;

int addRanks(EditRecorder& edit, const RankTargets& ranks)
{
    int added = 0;
    for (const RankTarget& target : ranks.targets()) {
        if (target.bNew && target.bUsed) {
            edit.insertRank(edit.doc().ranks().count(), {target.rankId, target.name});
            ++added;
        }
    }
    return added;
}

// The department node of every target, the missing ones created in order (parents first).
std::vector<OrgNode*> addDepartments(EditRecorder& edit, const DepartmentTargets& departments, int* created)
{
    std::vector<OrgNode*> nodes(departments.targets().size(), nullptr);
    for (size_t i = 0; i < nodes.size(); ++i) {
        const DepartmentTarget& target = departments.targets()[i];
        if (target.node) {
            nodes[i] = target.node;
        } else if (target.bUsed) {
            OrgNode* parent
                = target.parent < 0 ? edit.doc().chart().invisibleRoot() : nodes[static_cast<size_t>(target.parent)];
            nodes[i] = edit.insertNode(parent, parent->childCount(), OrgNode::makeGroup(target.groupId, target.name));
            ++*created;
        }
    }
    return nodes;
}

void addMembers(EditRecorder& edit, const ImportPreview& preview)
{
    std::vector<MemberRecord> added;
    added.reserve(static_cast<size_t>(preview.count(Fate::New)));
    for (const ImportRow& row : preview.rows()) {
        if (row.fate == Fate::New)
            added.push_back(row.member);
        else if (row.fate == Fate::Update && !(row.member == edit.doc().chart().member(row.memberRow)))
            edit.setMember(row.memberRow, row.member);
    }
    edit.insertMembers(edit.doc().chart().memberCount(), std::move(added));
}

void placeMembers(EditRecorder& edit, const ImportPreview& preview, const std::vector<OrgNode*>& departments)
{
    const OrgChart& chart = edit.doc().chart();
    const RankList& ranks = edit.doc().ranks();
    for (const ImportRow& row : preview.rows()) {
        if (!row.isApplied())
            continue;
        const int memberId = row.member.K_MemberID;
        for (const ImportPlacement& placement : row.placements) {
            OrgNode* department = departments[static_cast<size_t>(placement.department)];
            OrgNode* existing = chart.placementIn(department, memberId);
            const bool rankGiven = placement.rank != ImportPlacement::kRankNotGiven;
            const int rankId = placement.rank >= 0 ? preview.ranks().at(placement.rank).rankId : -1;
            if (!existing) {
                edit.insertNode(department, department->childCount(), OrgNode::makeMember(memberId, rankId));
            } else if (rankGiven && !RankTargets::isSame(ranks, existing->rankId(), rankId)) {
                edit.setRank(existing, rankId);
            }
        }
    }
}

// The places that rows give up, and every place of the leavers.
int removePlacements(EditRecorder& edit, const ImportPreview& preview)
{
    const OrgChart& chart = edit.doc().chart();
    int removed = 0;
    for (const ImportRow& row : preview.rows()) {
        if (!row.isApplied())
            continue;
        for (const OrgNode* department : row.removals) {
            if (OrgNode* placement = chart.placementIn(department, row.member.K_MemberID)) {
                edit.removeNode(placement);
                ++removed;
            }
        }
    }
    for (const ImportLeaver& leaver : preview.leavers()) {
        // A copy: every removal changes the list.
        const std::vector<OrgNode*> placements = chart.placementsOf(chart.member(leaver.memberRow).K_MemberID);
        for (OrgNode* placement : placements)
            edit.removeNode(placement);
    }
    return removed;
}

} // namespace

ImportResult record(EditRecorder& edit, const ImportPreview& preview)
{
    ImportResult result;
    result.added = preview.count(Fate::New);
    result.updated = preview.count(Fate::Update);
    result.leavers = static_cast<int>(preview.leavers().size());
    result.removed = removePlacements(edit, preview);
    result.ranks = addRanks(edit, preview.ranks());
    const std::vector<OrgNode*> departments = addDepartments(edit, preview.departments(), &result.departments);
    addMembers(edit, preview);
    placeMembers(edit, preview, departments);
    return result;
}

std::optional<ImportResult> apply(CSableManagerDoc& doc, const ImportPreview& preview)
{
    if (!preview.hasChanges() || !preview.isCurrent(doc.chart(), doc.ranks()))
        return std::nullopt;
    EditRecorder edit(doc, Msg::kStepImportUsers.arg(preview.count(Fate::New)).arg(preview.count(Fate::Update)));
    const ImportResult result = record(edit, preview);
    edit.setModified(true);
    return result;
}

} // namespace sable::ImportEdits
