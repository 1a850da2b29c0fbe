#include "document/ChartDiff.h"

#include "Messages.h"
#include "document/ChartTables.h"

#include <algorithm>

namespace sable {

ChartNames::ChartNames(const ChartTables& tables)
    : m_first(&tables)
{ }

ChartNames::ChartNames(const ChartTables& first, const ChartTables& second)
    : m_first(&first)
    , m_second(&second)
{ }

void ChartNames::gather() const
{
    if (m_bGathered)
        return;
    m_bGathered = true;
    if (m_second)
        add(*m_second);
    if (m_first)
        add(*m_first);
}

void ChartNames::add(const ChartTables& tables) const
{
    for (const GroupRow& row : tables.groups)
        m_groups.insert(row.K_GroupID, row.GroupName);
    for (const MemberRecord& row : tables.members)
        m_members.insert(row.K_MemberID, &row);
    for (const RankRecord& row : tables.ranks.ranks())
        m_ranks.insert(row.K_RankID, row.RankName);
    for (const FolderRecord& row : tables.fileBox.folders)
        m_folders.insert(row.K_FolderID, row.FolderPath);
}

QString ChartNames::group(int groupId) const
{
    gather();
    if (groupId < 0 && !m_groups.contains(groupId))
        return Msg::kTopLevel;
    return m_groups.value(groupId, Msg::kUnknownRow.arg(groupId));
}

QString ChartNames::member(int memberId) const
{
    gather();
    const MemberRecord* found = m_members.value(memberId);
    return found ? Msg::kMemberName.arg(found->MemberName, found->MemberID) : Msg::kUnknownRow.arg(memberId);
}

QString ChartNames::loginId(int memberId) const
{
    gather();
    const MemberRecord* found = m_members.value(memberId);
    return found ? found->MemberID : QString();
}

QString ChartNames::rank(int rankId) const
{
    gather();
    return m_ranks.value(rankId, rankId < 0 ? Msg::kNoRank : Msg::kUnknownRow.arg(rankId));
}

QString ChartNames::folder(int folderId) const
{
    gather();
    return m_folders.value(folderId, Msg::kUnknownRow.arg(folderId));
}

QString ChartNames::row(ChartTable table, ChartFingerprint::Key key) const
{
    const int id = static_cast<int>(key);
    switch (table) {
    case ChartTable::Groups:
        return group(id);
    case ChartTable::Members:
        return member(id);
    case ChartTable::Relations:
        return Msg::kRelationName.arg(member(ChartFingerprint::high(key)), group(ChartFingerprint::low(key)));
    case ChartTable::Ranks:
        return rank(id);
    case ChartTable::Folders:
        return folder(id);
    case ChartTable::GroupAuthorities:
        return Msg::kAuthorityName.arg(folder(ChartFingerprint::high(key)), group(ChartFingerprint::low(key)));
    case ChartTable::UserAuthorities:
        return Msg::kAuthorityName.arg(folder(ChartFingerprint::high(key)), member(ChartFingerprint::low(key)));
    case ChartTable::DirectoryLinks:
        return member(id);
    }
    return {};
}

QString ChartNames::key(ChartTable table, ChartFingerprint::Key key)
{
    switch (table) {
    case ChartTable::Relations:
    case ChartTable::GroupAuthorities:
    case ChartTable::UserAuthorities:
        return QStringLiteral("%1/%2").arg(ChartFingerprint::high(key)).arg(ChartFingerprint::low(key));
    case ChartTable::Groups:
    case ChartTable::Members:
    case ChartTable::Ranks:
    case ChartTable::Folders:
    case ChartTable::DirectoryLinks:
        break;
    }
    return QString::number(static_cast<int>(key));
}

QString ChartNames::field(ChartTable table, int field)
{
    switch (table) {
    case ChartTable::Groups:
        return field == ChartFields::GroupName  ? Msg::kFieldName
            : field == ChartFields::GroupParent ? Msg::kFieldParent
                                                : Msg::kFieldOrder;
    case ChartTable::Members:
        return MemberColumns::header(field);
    case ChartTable::Relations:
        return field == ChartFields::RelationRank ? Msg::kFieldRank : Msg::kFieldOrder;
    case ChartTable::Ranks:
        return field == ChartFields::RankName ? Msg::kFieldName : Msg::kFieldOrder;
    case ChartTable::Folders:
        return Msg::kFieldPath;
    case ChartTable::DirectoryLinks:
        return field == ChartFields::LinkEntry ? Msg::kFieldEntry : Msg::kFieldDn;
    case ChartTable::GroupAuthorities:
    case ChartTable::UserAuthorities:
        break;
    }
    return Msg::kFieldLevel;
}

QString ChartNames::table(ChartTable table)
{
    const QString names[kChartTableCount]
        = {Msg::kTableGroups, Msg::kTableMembers, Msg::kTableRelations, Msg::kTableRanks, Msg::kTableFolders,
            Msg::kTableGroupAuthorities, Msg::kTableUserAuthorities, Msg::kTableDirectoryLinks};
    return names[static_cast<int>(table)];
}

namespace ChartDiff {
namespace {

// The fields that tell a row's content; places in an order are not among them.
bool isPlace(ChartTable table, int field)
{
    return (table == ChartTable::Groups && field == ChartFields::GroupPosition)
        || (table == ChartTable::Relations && field == ChartFields::RelationPosition)
        || (table == ChartTable::Ranks && field == ChartFields::RankOrder);
}

void describe(RowChange& change, const ChartNames& names)
{
    const ChartFingerprint::Key key = change.key;
    change.name = names.row(change.table, key);
    switch (change.table) {
    case ChartTable::Groups:
        change.department = names.group(static_cast<int>(key));
        break;
    case ChartTable::Members:
        change.loginId = names.loginId(static_cast<int>(key));
        break;
    case ChartTable::Relations:
        change.loginId = names.loginId(ChartFingerprint::high(key));
        change.department = names.group(ChartFingerprint::low(key));
        break;
    case ChartTable::GroupAuthorities:
        change.department = names.group(ChartFingerprint::low(key));
        break;
    case ChartTable::UserAuthorities:
        change.loginId = names.loginId(ChartFingerprint::low(key));
        break;
    case ChartTable::DirectoryLinks:
        change.loginId = names.loginId(static_cast<int>(key));
        break;
    case ChartTable::Ranks:
    case ChartTable::Folders:
        break;
    }
}

} // namespace

std::vector<RowChange> between(const ChartFingerprint& before, const ChartTables& after, const ChartNames& names)
{
    return between(before, ChartFingerprint::of(after), names);
}

std::vector<RowChange> between(const ChartFingerprint& before, const ChartFingerprint& now, const ChartNames& names)
{
    std::vector<RowChange> changes;
    for (int t = 0; t < kChartTableCount; ++t) {
        const auto table = static_cast<ChartTable>(t);
        const int fields = ChartFields::count(table);
        std::vector<RowChange> found;
        // Both prints mostly hold the rows in one order: walking them side by side spares the lookups.
        size_t cursor = 0;
        now.forEachRow(table, [&](ChartFingerprint::Key key, const qint64* current) {
            const qint64* old = before.rowAfter(table, key, cursor);
            RowChange change {table, old ? RowChange::Kind::Changed : RowChange::Kind::Added, key, {}, {}, {}, {}};
            for (int f = 0; old && f < fields; ++f) {
                if (old[f] != current[f] && !isPlace(table, f))
                    change.fields << ChartNames::field(table, f);
            }
            if (!old || !change.fields.isEmpty())
                found.push_back(std::move(change));
        });
        cursor = 0;
        before.forEachRow(table, [&](ChartFingerprint::Key key, const qint64*) {
            if (!now.rowAfter(table, key, cursor))
                found.push_back({table, RowChange::Kind::Removed, key, {}, {}, {}, {}});
        });
        std::sort(found.begin(), found.end(), [](const RowChange& a, const RowChange& b) { return a.key < b.key; });
        for (RowChange& change : found) {
            describe(change, names);
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

QString summaryText(const ChartFingerprint::Summary& summary)
{
    const auto of = [&summary](ChartTable table) { return summary[static_cast<size_t>(table)]; };
    const ChartFingerprint::Counts groups = of(ChartTable::Groups);
    const ChartFingerprint::Counts members = of(ChartTable::Members);
    const ChartFingerprint::Counts relations = of(ChartTable::Relations);
    const ChartFingerprint::Counts ranks = of(ChartTable::Ranks);
    ChartFingerprint::Counts permissions = of(ChartTable::GroupAuthorities);
    permissions.added += of(ChartTable::UserAuthorities).added;
    permissions.changed += of(ChartTable::UserAuthorities).changed;
    permissions.removed += of(ChartTable::UserAuthorities).removed;
    return Msg::kSaveSummary.arg(groups.added)
               .arg(groups.changed)
               .arg(groups.removed)
               .arg(members.added)
               .arg(members.changed)
               .arg(members.removed)
               .arg(relations.added)
               .arg(relations.changed)
               .arg(relations.removed)
        + u'\n' + Msg::kSaveSummaryRanks.arg(ranks.added).arg(ranks.changed).arg(ranks.moved).arg(ranks.removed) + u'\n'
        + Msg::kSaveSummaryPermissions.arg(permissions.added).arg(permissions.changed).arg(permissions.removed)
        + QStringLiteral("\n\n") + Msg::kSaveSummaryCheck;
}

QStringList summaryLines(const ChartFingerprint::Summary& summary)
{
    QStringList lines;
    for (int t = 0; t < kChartTableCount; ++t) {
        const ChartFingerprint::Counts& counts = summary[static_cast<size_t>(t)];
        if (counts == ChartFingerprint::Counts {})
            continue;
        lines << Msg::kRestorePointChangeLine.arg(ChartNames::table(static_cast<ChartTable>(t)))
                     .arg(counts.added)
                     .arg(counts.changed + counts.moved)
                     .arg(counts.removed);
    }
    return lines;
}

} // namespace ChartDiff
} // namespace sable
