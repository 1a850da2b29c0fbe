#include "document/MergeEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartMerge.h"
#include "document/EditRecorder.h"

namespace sable::MergeEdits {

void applyMerge(CSableManagerDoc& doc, const ChartMerge& merge, QStringList* dropped)
{
    const ChartTables merged = merge.result(dropped);
    DocumentState state;
    state.contents = merged.toContents();
    state.base = ChartFingerprint::of(merge.theirs());
    // What this console deleted is still to be deleted, unless the merge kept it after all.
    state.deletedMembers = merge.stillDeleted(doc.deletedMembers(), ChartTable::Members, merged);
    state.deletedGroups = merge.stillDeleted(doc.deletedGroups(), ChartTable::Groups, merged);
    state.pendingUserData = doc.pendingUserData();
    EditRecorder edit(doc, Msg::kStepMerge);
    edit.replaceAll(std::move(state));
    edit.setModified(true);
}

void reload(CSableManagerDoc& doc, const ChartMerge& merge)
{
    ChartContents contents = merge.theirs().toContents();
    contents.stored = ChartFingerprint::of(merge.theirs());
    doc.adopt(std::move(contents));
}

} // namespace sable::MergeEdits
