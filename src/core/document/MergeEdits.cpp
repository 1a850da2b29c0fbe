#include "document/MergeEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartMerge.h"
#include "document/EditRecorder.h"
#include "document/RestorePoints.h"

#include <algorithm>

namespace sable::MergeEdits {
namespace {

QSet<int> memberIds(const std::vector<MemberRecord>& members)
{
    QSet<int> ids;
    for (const MemberRecord& member : members)
        ids.insert(member.K_MemberID);
    return ids;
}

QSet<int> groupIds(const std::vector<GroupRow>& groups)
{
    QSet<int> ids;
    for (const GroupRow& group : groups)
        ids.insert(group.K_GroupID);
    return ids;
}

// What the database holds now, as far as the document knows: what it shows and what it deleted.
QList<int> missingFrom(QSet<int> now, const QList<int>& deleted, const QSet<int>& kept)
{
    for (const int id : deleted)
        now.insert(id);
    QList<int> missing;
    for (const int id : std::as_const(now)) {
        if (!kept.contains(id))
            missing << id;
    }
    std::sort(missing.begin(), missing.end());
    return missing;
}

// The columns of a per-user row that name users: the owner, and on the lists of people the one
// listed (a left memo's sender is only a record and keeps no row alive).
QList<int> userColumns(const UserDataRows& table)
{
    QList<int> columns {static_cast<int>(table.columns.indexOf(QStringLiteral("K_MemberID")))};
    if (table.table != QLatin1String("SD_LeavedMemo"))
        columns << static_cast<int>(table.columns.indexOf(QStringLiteral("K_MemberID_O")));
    columns.removeAll(-1);
    return columns;
}

// A row as text that tells it apart from any other row of any table: the same row kept by two
// restore points (a user put back, then removed again) goes back once.
QString rowKey(const UserDataRows& table, const QVariantList& row)
{
    QStringList parts {table.table, table.columns.join(u',')};
    for (const QVariant& value : row)
        parts << (value.isNull() ? QStringLiteral("\x01") : u'=' + value.toString());
    return parts.join(u'\x02');
}

} // namespace

UserData rowsToPutBack(const UserData& rows, const QSet<int>& returning, const QSet<int>& present)
{
    UserData kept;
    QSet<QString> seen;
    for (const UserDataRows& table : rows) {
        const QList<int> columns = userColumns(table);
        UserDataRows out {table.table, table.columns, {}};
        for (const QVariantList& row : table.rows) {
            bool bReturns = false;
            bool bComplete = true;
            for (const int column : columns) {
                const int id = row.value(column).toInt();
                bReturns = bReturns || returning.contains(id);
                bComplete = bComplete && present.contains(id);
            }
            if (!bReturns || !bComplete)
                continue;
            const qsizetype before = seen.size();
            seen.insert(rowKey(table, row));
            if (seen.size() > before)
                out.rows.push_back(row);
        }
        if (!out.rows.empty())
            kept.push_back(std::move(out));
    }
    return kept;
}

void applyRestore(CSableManagerDoc& doc, const RestorePoint& point)
{
    const ChartTables now = doc.tables();
    const QSet<int> pointMembers = memberIds(point.tables.members);
    QSet<int> returning = pointMembers;
    for (const int id : memberIds(now.members))
        returning.remove(id);
    for (const int id : doc.deletedMembers())
        returning.remove(id);

    DocumentState state;
    state.contents = point.tables.toContents();
    state.base = doc.base();
    state.deletedMembers = missingFrom(memberIds(now.members), doc.deletedMembers(), pointMembers);
    state.deletedGroups = missingFrom(groupIds(now.groups), doc.deletedGroups(), groupIds(point.tables.groups));
    state.pendingUserData = rowsToPutBack(point.userData, returning, pointMembers);
    EditRecorder edit(doc, Msg::kStepRestore.arg(point.savedAt.toLocalTime().toString(Msg::kSaveTimeFormat)));
    edit.replaceAll(std::move(state));
    edit.setModified(true);
}

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
