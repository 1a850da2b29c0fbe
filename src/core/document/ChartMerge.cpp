#include "document/ChartMerge.h"

#include "Messages.h"
#include "document/MergeOrder.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace sable {
namespace {

using Key = ChartFingerprint::Key;
using Kind = MergeConflict::Kind;
constexpr int kMaxFields = ChartFields::kMemberFieldCount;

// Which side a row, or the value of a row that refers to another, comes from.
enum class Side
{
    Neither, // as read: both sides left it
    Mine,
    Theirs,
};

struct RankRow
{
    RankRecord rank;
    int order = 0;
};

// How the merge sees the rows of each table: their key, their prints, a field copied from one row to
// another, and a field as the administrator reads it.
struct GroupTraits
{
    using Row = GroupRow;
    static constexpr ChartTable kTable = ChartTable::Groups;
    static constexpr int kReference = ChartFields::GroupParent; // the field that refers to another row
    static Key key(const Row& row) { return row.K_GroupID; }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printGroup(row, out); }
    static void copy(Row& to, const Row& from, int field)
    {
        if (field == ChartFields::GroupName)
            to.GroupName = from.GroupName;
        else if (field == ChartFields::GroupParent)
            to.K_GroupID_P = from.K_GroupID_P;
    }
    static QString text(const Row& row, int field, const ChartNames& names)
    {
        if (field == ChartFields::GroupName)
            return row.GroupName;
        return row.K_GroupID_P < 0 ? Msg::kTopLevel : names.group(row.K_GroupID_P);
    }
};

struct MemberTraits
{
    using Row = MemberRecord;
    static constexpr ChartTable kTable = ChartTable::Members;
    static constexpr int kReference = -1;
    static Key key(const Row& row) { return row.K_MemberID; }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printMember(row, out); }
    static void copy(Row& to, const Row& from, int field)
    {
        MemberColumns::setText(to, field, MemberColumns::text(from, field));
    }
    static QString text(const Row& row, int field, const ChartNames&)
    {
        // The administrator chooses between two passwords without reading either.
        return field == ColPasswd ? Msg::kMergePasswordHidden : MemberColumns::text(row, field);
    }
};

struct RelationTraits
{
    using Row = RelationRow;
    static constexpr ChartTable kTable = ChartTable::Relations;
    static constexpr int kReference = ChartFields::RelationRank;
    static Key key(const Row& row) { return ChartFingerprint::relationKey(row.K_MemberID, row.K_GroupID); }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printRelation(row, out); }
    static void copy(Row& to, const Row& from, int field)
    {
        if (field == ChartFields::RelationRank)
            to.K_RankID = from.K_RankID;
    }
    static QString text(const Row& row, int, const ChartNames& names) { return names.rank(row.K_RankID); }
};

struct RankTraits
{
    using Row = RankRow;
    static constexpr ChartTable kTable = ChartTable::Ranks;
    static constexpr int kReference = -1;
    static Key key(const Row& row) { return row.rank.K_RankID; }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printRank(row.rank, row.order, out); }
    static void copy(Row& to, const Row& from, int field)
    {
        if (field == ChartFields::RankName)
            to.rank.RankName = from.rank.RankName;
    }
    static QString text(const Row& row, int, const ChartNames&) { return row.rank.RankName; }
};

struct FolderTraits
{
    using Row = FolderRecord;
    static constexpr ChartTable kTable = ChartTable::Folders;
    static constexpr int kReference = -1;
    static Key key(const Row& row) { return row.K_FolderID; }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printFolder(row, out); }
    static void copy(Row& to, const Row& from, int) { to.FolderPath = from.FolderPath; }
    static QString text(const Row& row, int, const ChartNames&) { return row.FolderPath; }
};

struct LinkRow
{
    int memberId = 0;
    DirectoryLink link;
};

struct LinkTraits
{
    using Row = LinkRow;
    static constexpr ChartTable kTable = ChartTable::DirectoryLinks;
    static constexpr int kReference = -1;
    static Key key(const Row& row) { return row.memberId; }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printLink(row.link, out); }
    static void copy(Row& to, const Row& from, int field)
    {
        if (field == ChartFields::LinkEntry)
            to.link.entryId = from.link.entryId;
        else
            to.link.dn = from.link.dn;
    }
    static QString text(const Row& row, int field, const ChartNames&)
    {
        return field == ChartFields::LinkEntry ? row.link.entryId : row.link.dn;
    }
};

std::vector<LinkRow> linkRows(const DirectoryLinks& links)
{
    std::vector<LinkRow> rows;
    for (auto it = links.all().cbegin(); it != links.all().cend(); ++it)
        rows.push_back({it.key(), it.value()});
    std::sort(rows.begin(), rows.end(), [](const LinkRow& a, const LinkRow& b) { return a.memberId < b.memberId; });
    return rows;
}

template <ChartTable T>
struct AuthorityTraits
{
    using Row = AuthorityRecord;
    static constexpr ChartTable kTable = T;
    static constexpr int kReference = -1;
    static Key key(const Row& row) { return ChartFingerprint::authorityKey(row.K_FolderID, row.grantee); }
    static void print(const Row& row, qint64* out) { ChartFingerprint::printAuthority(row, out); }
    static void copy(Row& to, const Row& from, int) { to.level = from.level; }
    static QString text(const Row& row, int, const ChartNames&) { return FileBoxLists::levelName(row.level); }
};

bool isPlace(ChartTable table, int field)
{
    return (table == ChartTable::Groups && field == ChartFields::GroupPosition)
        || (table == ChartTable::Relations && field == ChartFields::RelationPosition)
        || (table == ChartTable::Ranks && field == ChartFields::RankOrder);
}

std::vector<RankRow> rankRows(const RankList& ranks)
{
    std::vector<RankRow> rows;
    for (int i = 0; i < ranks.count(); ++i)
        rows.push_back({ranks.at(i), i});
    return rows;
}

// The rows of one table from both sides, by key, with the side each merged row comes from.
template <typename Traits>
struct Merged
{
    static constexpr ChartTable kTable = Traits::kTable;
    QHash<Key, typename Traits::Row> rows;
    QHash<Key, Side> introducedBy; // who added the row, or changed what it refers to
};

} // namespace

void keysOf(const ChartTables& tables, const std::vector<RankRow>& ranks, QSet<Key>* keys)
{
    for (auto it = tables.links.all().cbegin(); it != tables.links.all().cend(); ++it)
        keys[static_cast<size_t>(ChartTable::DirectoryLinks)].insert(it.key());
    const auto index = [](ChartTable table) { return static_cast<size_t>(table); };
    for (const GroupRow& r : tables.groups)
        keys[index(ChartTable::Groups)].insert(GroupTraits::key(r));
    for (const MemberRecord& r : tables.members)
        keys[index(ChartTable::Members)].insert(MemberTraits::key(r));
    for (const RelationRow& r : tables.relations)
        keys[index(ChartTable::Relations)].insert(RelationTraits::key(r));
    for (const RankRow& r : ranks)
        keys[index(ChartTable::Ranks)].insert(RankTraits::key(r));
    for (const FolderRecord& r : tables.fileBox.folders)
        keys[index(ChartTable::Folders)].insert(FolderTraits::key(r));
    for (const AuthorityRecord& r : tables.fileBox.groupAuthorities)
        keys[index(ChartTable::GroupAuthorities)].insert(AuthorityTraits<ChartTable::GroupAuthorities>::key(r));
    for (const AuthorityRecord& r : tables.fileBox.userAuthorities)
        keys[index(ChartTable::UserAuthorities)].insert(AuthorityTraits<ChartTable::UserAuthorities>::key(r));
}

// One pass of the merge under the decisions made so far; conflicts it meets for the first time are
// added, decided for this console's side.
class ChartMerge::Engine
{
public:
    Engine(const ChartFingerprint& base, const ChartTables& mine, const ChartTables& theirs,
        std::vector<MergeConflict>& conflicts)
        : m_base(base)
        , m_mine(mine)
        , m_theirs(theirs)
        , m_mineRanks(rankRows(mine.ranks))
        , m_theirRanks(rankRows(theirs.ranks))
        , m_mineLinks(linkRows(mine.links))
        , m_theirLinks(linkRows(theirs.links))
        , m_names(mine, theirs)
        , m_conflicts(conflicts)
    {
        keysOf(mine, m_mineRanks, m_mineKeys);
        keysOf(theirs, m_theirRanks, m_theirKeys);
    }

    ChartTables run(QStringList* dropped);

private:
    template <typename Traits>
    void mergeTable(const std::vector<typename Traits::Row>& mine, const std::vector<typename Traits::Row>& theirs,
        Merged<Traits>& out);
    template <typename Traits>
    void mergeRow(Key key, const typename Traits::Row* mine, const typename Traits::Row* theirs, Merged<Traits>& out);

    bool decide(
        ChartTable table, Key key, Kind kind, const QStringList& fields, const QString& mine, const QString& theirs);
    bool settleReferences(QStringList* dropped);
    bool restoreDependents();
    Side removedBy(ChartTable table, Key key) const;
    bool settleReference(ChartTable table, Key key, Side referrer);
    template <typename Traits>
    bool restore(Merged<Traits>& merged, const std::vector<typename Traits::Row>& mine,
        const std::vector<typename Traits::Row>& theirs, Key key, bool fromMine);
    void orderChildren();
    ChartTables assemble() const;

    const ChartFingerprint& m_base;
    const ChartTables& m_mine;
    const ChartTables& m_theirs;
    const std::vector<RankRow> m_mineRanks;
    const std::vector<RankRow> m_theirRanks;
    const std::vector<LinkRow> m_mineLinks;
    const std::vector<LinkRow> m_theirLinks;
    const ChartNames m_names;
    std::vector<MergeConflict>& m_conflicts;
    QSet<Key> m_mineKeys[kChartTableCount];
    QSet<Key> m_theirKeys[kChartTableCount];

    Merged<GroupTraits> m_groups;
    Merged<MemberTraits> m_members;
    Merged<RelationTraits> m_relations;
    Merged<RankTraits> m_ranks;
    Merged<FolderTraits> m_folders;
    Merged<AuthorityTraits<ChartTable::GroupAuthorities>> m_groupAuthorities;
    Merged<AuthorityTraits<ChartTable::UserAuthorities>> m_userAuthorities;
    Merged<LinkTraits> m_links;
    std::vector<Key> m_rankOrder;
};

bool ChartMerge::Engine::decide(
    ChartTable table, Key key, Kind kind, const QStringList& fields, const QString& mine, const QString& theirs)
{
    for (const MergeConflict& conflict : m_conflicts) {
        if (conflict.table == table && conflict.key == key && conflict.kind == kind)
            return conflict.bKeepMine;
    }
    QString name = m_names.row(table, key);
    if (kind == Kind::OrderChangedBoth)
        name = table == ChartTable::Ranks ? Msg::kMergeRankOrder
                                          : Msg::kMergeChildOrder.arg(m_names.group(static_cast<int>(key)));
    m_conflicts.push_back({table, key, kind, name, fields, mine, theirs, true});
    return true;
}

template <typename Traits>
void ChartMerge::Engine::mergeTable(
    const std::vector<typename Traits::Row>& mine, const std::vector<typename Traits::Row>& theirs, Merged<Traits>& out)
{
    QHash<Key, const typename Traits::Row*> mineByKey;
    mineByKey.reserve(static_cast<qsizetype>(mine.size()));
    for (const auto& row : mine)
        mineByKey.insert(Traits::key(row), &row);
    QHash<Key, const typename Traits::Row*> theirsByKey;
    theirsByKey.reserve(static_cast<qsizetype>(theirs.size()));
    for (const auto& row : theirs)
        theirsByKey.insert(Traits::key(row), &row);
    out.rows.reserve(static_cast<qsizetype>(std::max(mine.size(), theirs.size())));
    for (auto it = theirsByKey.cbegin(); it != theirsByKey.cend(); ++it)
        mergeRow<Traits>(it.key(), mineByKey.value(it.key()), it.value(), out);
    for (auto it = mineByKey.cbegin(); it != mineByKey.cend(); ++it) {
        if (!theirsByKey.contains(it.key()))
            mergeRow<Traits>(it.key(), it.value(), nullptr, out);
    }
    // Rows both sides removed are gone; nothing to do for them.
}

template <typename Traits>
void ChartMerge::Engine::mergeRow(
    Key key, const typename Traits::Row* mine, const typename Traits::Row* theirs, Merged<Traits>& out)
{
    constexpr ChartTable table = Traits::kTable;
    const int count = ChartFields::count(table);
    const qint64* base = m_base.row(table, key);
    qint64 minePrint[kMaxFields] = {};
    qint64 theirPrint[kMaxFields] = {};
    if (mine)
        Traits::print(*mine, minePrint);
    if (theirs)
        Traits::print(*theirs, theirPrint);
    std::vector<int> mineChanged;
    std::vector<int> theirChanged;
    std::vector<int> bothChanged; // to different values
    for (int f = 0; f < count; ++f) {
        if (isPlace(table, f))
            continue;
        const bool m = mine && (!base || minePrint[f] != base[f]);
        const bool t = theirs && (!base || theirPrint[f] != base[f]);
        if (m)
            mineChanged.push_back(f);
        if (t)
            theirChanged.push_back(f);
        if (m && t && minePrint[f] != theirPrint[f])
            bothChanged.push_back(f);
    }
    const auto has = [](const std::vector<int>& fields, int f) {
        return std::find(fields.begin(), fields.end(), f) != fields.end();
    };
    // The values in question: those changed on both sides, or the changes of the side that kept the row.
    const auto describe = [&](const typename Traits::Row& row, const std::vector<int>& fields) {
        QStringList values;
        for (const int f : fields)
            values << ChartNames::field(table, f) + QStringLiteral(": ") + Traits::text(row, f, m_names);
        return values.join(QStringLiteral(", "));
    };
    if (mine && theirs) {
        QStringList names;
        for (const int f : bothChanged)
            names << ChartNames::field(table, f);
        const bool bKeepMine = !bothChanged.empty()
            && decide(
                table, key, Kind::BothChanged, names, describe(*mine, bothChanged), describe(*theirs, bothChanged));
        typename Traits::Row row = *theirs;
        bool bReferenceFromMine = false;
        for (const int f : mineChanged) {
            if (!has(theirChanged, f) || (has(bothChanged, f) && bKeepMine)) {
                Traits::copy(row, *mine, f);
                bReferenceFromMine = bReferenceFromMine || f == Traits::kReference;
            }
        }
        out.rows.insert(key, row);
        // Who made the row refer to what it refers to now, should that be removed on the other side.
        out.introducedBy.insert(key,
            !base || bReferenceFromMine                 ? Side::Mine
                : has(theirChanged, Traits::kReference) ? Side::Theirs
                                                        : Side::Neither);
        return;
    }
    const typename Traits::Row* only = mine ? mine : theirs;
    if (!base) {
        // New on one side only.
        out.rows.insert(key, *only);
        out.introducedBy.insert(key, mine ? Side::Mine : Side::Theirs);
        return;
    }
    // Removed on one side: the other side's change of the row holds it back, if the administrator says so.
    const std::vector<int>& keptChanges = mine ? mineChanged : theirChanged;
    if (keptChanges.empty())
        return;
    if (table == ChartTable::DirectoryLinks) {
        // A link follows its user, whose own fate is settled row by row; a changed link is no question.
        out.rows.insert(key, *only);
        out.introducedBy.insert(key, Side::Neither);
        return;
    }
    const bool bKeepMine = mine
        ? decide(table, key, Kind::ChangedHereRemovedThere, {}, describe(*mine, mineChanged), Msg::kMergeRemoved)
        : decide(table, key, Kind::RemovedHereChangedThere, {}, Msg::kMergeRemoved, describe(*theirs, theirChanged));
    if (bKeepMine == (mine != nullptr)) {
        out.rows.insert(key, *only);
        out.introducedBy.insert(key, mine ? Side::Mine : Side::Theirs);
    }
}
template <typename Traits>
bool ChartMerge::Engine::restore(Merged<Traits>& merged, const std::vector<typename Traits::Row>& mine,
    const std::vector<typename Traits::Row>& theirs, Key key, bool fromMine)
{
    for (const auto& row : fromMine ? mine : theirs) {
        if (Traits::key(row) == key) {
            merged.rows.insert(key, row);
            merged.introducedBy.insert(key, Side::Neither);
            return true;
        }
    }
    return false;
}

Side ChartMerge::Engine::removedBy(ChartTable table, Key key) const
{
    if (!m_base.row(table, key))
        return Side::Neither;
    if (!m_mineKeys[static_cast<size_t>(table)].contains(key))
        return Side::Mine;
    return m_theirKeys[static_cast<size_t>(table)].contains(key) ? Side::Neither : Side::Theirs;
}

// A department, a user or a folder that one side removed but the merge keeps (by a decision)
// brings back what that side removed with it, from the other side: the departments under it, its
// memberships and permissions. Returns whether anything came back.
bool ChartMerge::Engine::restoreDependents()
{
    bool bBack = false;
    const auto keptButRemovedBy
        = [this](ChartTable table, Key key, Side side) { return removedBy(table, key) == side; };
    for (const Side side : {Side::Mine, Side::Theirs}) {
        const ChartTables& source = side == Side::Mine ? m_theirs : m_mine;
        const auto bringBack = [&](auto& merged, const auto& row, Key key, bool bDepends) {
            if (bDepends && !merged.rows.contains(key) && removedBy(merged.kTable, key) == side) {
                merged.rows.insert(key, row);
                merged.introducedBy.insert(key, Side::Neither);
                bBack = true;
            }
        };
        for (const GroupRow& g : source.groups) {
            bringBack(m_groups, g, g.K_GroupID,
                m_groups.rows.contains(g.K_GroupID_P) && keptButRemovedBy(ChartTable::Groups, g.K_GroupID_P, side));
        }
        for (const RelationRow& r : source.relations) {
            const bool bDepends
                = (m_groups.rows.contains(r.K_GroupID) && keptButRemovedBy(ChartTable::Groups, r.K_GroupID, side))
                || (m_members.rows.contains(r.K_MemberID) && keptButRemovedBy(ChartTable::Members, r.K_MemberID, side));
            bringBack(m_relations, r, RelationTraits::key(r), bDepends);
        }
        const auto authorities = [&](auto& merged, const std::vector<AuthorityRecord>& rows, ChartTable grantees,
                                     const auto& granteeRows) {
            for (const AuthorityRecord& a : rows) {
                const bool bDepends = (m_folders.rows.contains(a.K_FolderID)
                                          && keptButRemovedBy(ChartTable::Folders, a.K_FolderID, side))
                    || (granteeRows.rows.contains(a.grantee) && keptButRemovedBy(grantees, a.grantee, side));
                bringBack(merged, a, ChartFingerprint::authorityKey(a.K_FolderID, a.grantee), bDepends);
            }
        };
        authorities(m_groupAuthorities, source.fileBox.groupAuthorities, ChartTable::Groups, m_groups);
        authorities(m_userAuthorities, source.fileBox.userAuthorities, ChartTable::Members, m_members);
        for (const LinkRow& link : side == Side::Mine ? m_theirLinks : m_mineLinks) {
            bringBack(m_links, link, link.memberId,
                m_members.rows.contains(link.memberId) && keptButRemovedBy(ChartTable::Members, link.memberId, side));
        }
    }
    return bBack;
}

// A row refers to `key` of `table`, which the merge left out: when one side removed it while the
// other relied on it, the administrator decides; true when it is back.
bool ChartMerge::Engine::settleReference(ChartTable table, Key key, Side referrer)
{
    if (referrer == Side::Neither || !m_base.row(table, key))
        return false;
    // The side that did not refer to it is the side that removed it.
    const bool bRemovedThere = referrer == Side::Mine;
    const QString there = Msg::kMergeRemoved;
    const QString here = Msg::kMergeStillUsed;
    const bool bKeepMine = bRemovedThere ? decide(table, key, Kind::UsedHereRemovedThere, {}, here, there)
                                         : decide(table, key, Kind::RemovedHereUsedThere, {}, there, here);
    const bool bBack = bKeepMine == bRemovedThere;
    if (!bBack)
        return false;
    switch (table) {
    case ChartTable::Groups:
        return restore(m_groups, m_mine.groups, m_theirs.groups, key, bRemovedThere);
    case ChartTable::Members:
        return restore(m_members, m_mine.members, m_theirs.members, key, bRemovedThere);
    case ChartTable::Ranks:
        return restore(m_ranks, m_mineRanks, m_theirRanks, key, bRemovedThere);
    case ChartTable::Folders:
        return restore(m_folders, m_mine.fileBox.folders, m_theirs.fileBox.folders, key, bRemovedThere);
    case ChartTable::Relations:
    case ChartTable::GroupAuthorities:
    case ChartTable::UserAuthorities:
    case ChartTable::DirectoryLinks:
        break;
    }
    return false;
}

// Rows that refer to a department, a user, a rank or a folder the merge left out: brought back by a
// decision, or left out themselves. Returns whether anything changed (another pass is needed).
bool ChartMerge::Engine::settleReferences(QStringList* dropped)
{
    bool bChanged = false;
    // Settling a reference may bring a row back, which another pass has to look at.
    const auto back = [&](ChartTable table, Key key, Side referrer) {
        const bool bBack = settleReference(table, key, referrer);
        bChanged = bChanged || bBack;
        return bBack;
    };
    const auto drop = [&](ChartTable table, Key key) {
        if (dropped)
            *dropped << m_names.row(table, key);
        bChanged = true;
    };
    for (auto it = m_groups.rows.begin(); it != m_groups.rows.end();) {
        const int parent = it->K_GroupID_P;
        if (parent < 0 || m_groups.rows.contains(parent)
            || back(ChartTable::Groups, parent, m_groups.introducedBy.value(it.key()))) {
            ++it;
            continue;
        }
        // A department that only moved goes back where the other side has it; a new one goes.
        const qint64* base = m_base.row(ChartTable::Groups, it.key());
        if (base && m_groups.rows.contains(base[ChartFields::GroupParent])
            && base[ChartFields::GroupParent] != parent) {
            it->K_GroupID_P = static_cast<int>(base[ChartFields::GroupParent]);
            m_groups.introducedBy[it.key()] = Side::Neither;
            bChanged = true;
            ++it;
            continue;
        }
        drop(ChartTable::Groups, it.key());
        it = m_groups.rows.erase(it);
    }
    for (auto it = m_relations.rows.begin(); it != m_relations.rows.end();) {
        const Side by = m_relations.introducedBy.value(it.key());
        const bool bMember = m_members.rows.contains(it->K_MemberID) || back(ChartTable::Members, it->K_MemberID, by);
        const bool bGroup = m_groups.rows.contains(it->K_GroupID) || back(ChartTable::Groups, it->K_GroupID, by);
        if (!bMember || !bGroup) {
            drop(ChartTable::Relations, it.key());
            it = m_relations.rows.erase(it);
            continue;
        }
        // A rank removed elsewhere leaves the membership without a rank, as deleting a rank does.
        if (it->K_RankID >= 0 && !m_ranks.rows.contains(it->K_RankID) && !back(ChartTable::Ranks, it->K_RankID, by)) {
            it->K_RankID = -1;
            bChanged = true;
        }
        ++it;
    }
    const auto settleAuthorities = [&](auto& merged, ChartTable granteeTable, const auto& grantees) {
        for (auto it = merged.rows.begin(); it != merged.rows.end();) {
            const Side by = merged.introducedBy.value(it.key());
            const bool bFolder
                = m_folders.rows.contains(it->K_FolderID) || back(ChartTable::Folders, it->K_FolderID, by);
            const bool bGrantee = grantees.rows.contains(it->grantee) || back(granteeTable, it->grantee, by);
            if (bFolder && bGrantee) {
                ++it;
                continue;
            }
            drop(merged.kTable, it.key());
            it = merged.rows.erase(it);
        }
    };
    settleAuthorities(m_groupAuthorities, ChartTable::Groups, m_groups);
    settleAuthorities(m_userAuthorities, ChartTable::Members, m_members);
    return bChanged;
}

ChartTables ChartMerge::Engine::run(QStringList* dropped)
{
    mergeTable<GroupTraits>(m_mine.groups, m_theirs.groups, m_groups);
    mergeTable<MemberTraits>(m_mine.members, m_theirs.members, m_members);
    mergeTable<RelationTraits>(m_mine.relations, m_theirs.relations, m_relations);
    mergeTable<RankTraits>(m_mineRanks, m_theirRanks, m_ranks);
    mergeTable<FolderTraits>(m_mine.fileBox.folders, m_theirs.fileBox.folders, m_folders);
    mergeTable<AuthorityTraits<ChartTable::GroupAuthorities>>(
        m_mine.fileBox.groupAuthorities, m_theirs.fileBox.groupAuthorities, m_groupAuthorities);
    mergeTable<AuthorityTraits<ChartTable::UserAuthorities>>(
        m_mine.fileBox.userAuthorities, m_theirs.fileBox.userAuthorities, m_userAuthorities);
    mergeTable<LinkTraits>(m_mineLinks, m_theirLinks, m_links);
    // A row brought back may bring back or refer to others: settle until nothing moves.
    for (int pass = 0; pass < 32; ++pass) {
        const bool bRestored = restoreDependents();
        if (!settleReferences(dropped) && !bRestored)
            break;
    }
    // A link belongs to its user: with the user gone, there is nothing to keep from the directory.
    for (auto it = m_links.rows.begin(); it != m_links.rows.end();)
        it = m_members.rows.contains(it.key()) ? std::next(it) : m_links.rows.erase(it);
    MergeOrder::breakParentLoops(m_groups.rows, m_theirs.groups);
    orderChildren();
    return assemble();
}

void ChartMerge::Engine::orderChildren()
{
    const auto bothReordered = [this](ChartTable table, Key key) {
        return decide(
            table, key, Kind::OrderChangedBoth, {Msg::kFieldOrder}, Msg::kMergeOrderMine, Msg::kMergeOrderTheirs);
    };
    MergeOrder::placeChildren({m_base, m_mine, m_theirs}, m_groups.rows, m_relations.rows,
        [&](int parent) { return bothReordered(ChartTable::Groups, parent); });
    m_rankOrder = MergeOrder::rankOrder(m_base, m_mine.ranks, m_theirs.ranks, m_ranks.rows.keys(),
        [&] { return bothReordered(ChartTable::Ranks, MergeOrder::kRankOrderKey); });
}

ChartTables ChartMerge::Engine::assemble() const
{
    ChartTables out;
    // Existing rows in the database's order, new ones of this console after them in its order.
    const auto inOrder = [](const auto& merged, const auto& theirs, const auto& mine, auto key, auto& into) {
        QSet<Key> placed;
        for (const auto& row : theirs) {
            const auto found = merged.rows.constFind(key(row));
            if (found != merged.rows.cend() && !placed.contains(key(row))) {
                into.push_back(*found);
                placed.insert(key(row));
            }
        }
        for (const auto& row : mine) {
            const auto found = merged.rows.constFind(key(row));
            if (found != merged.rows.cend() && !placed.contains(key(row))) {
                into.push_back(*found);
                placed.insert(key(row));
            }
        }
    };
    inOrder(m_members, m_theirs.members, m_mine.members, &MemberTraits::key, out.members);
    inOrder(m_groups, m_theirs.groups, m_mine.groups, &GroupTraits::key, out.groups);
    inOrder(m_relations, m_theirs.relations, m_mine.relations, &RelationTraits::key, out.relations);
    inOrder(m_folders, m_theirs.fileBox.folders, m_mine.fileBox.folders, &FolderTraits::key, out.fileBox.folders);
    inOrder(m_groupAuthorities, m_theirs.fileBox.groupAuthorities, m_mine.fileBox.groupAuthorities,
        &AuthorityTraits<ChartTable::GroupAuthorities>::key, out.fileBox.groupAuthorities);
    inOrder(m_userAuthorities, m_theirs.fileBox.userAuthorities, m_mine.fileBox.userAuthorities,
        &AuthorityTraits<ChartTable::UserAuthorities>::key, out.fileBox.userAuthorities);
    for (const Key key : m_rankOrder)
        out.ranks.insert(out.ranks.count(), m_ranks.rows.value(key).rank);
    for (auto it = m_links.rows.cbegin(); it != m_links.rows.cend(); ++it)
        out.links.set(static_cast<int>(it.key()), it->link);
    out.orderGroups();
    return out;
}

// --- ChartMerge ---------------------------------------------------------------------------------------

ChartMerge::ChartMerge(ChartFingerprint base, ChartTables mine, std::shared_ptr<const ChartTables> theirs)
    : m_base(std::move(base))
    , m_mine(std::move(mine))
    , m_theirs(std::move(theirs))
{
    const ChartNames names(m_mine, *m_theirs);
    m_theirChanges = ChartDiff::between(m_base, *m_theirs, names);
    renumberMine();
    m_myChanges = ChartDiff::between(m_base, m_mine, ChartNames(m_mine, *m_theirs));
    findConflicts();
}

ChartMerge::~ChartMerge() = default;

void ChartMerge::findConflicts()
{
    // A decision can bring back a row that refers to another one: run until no new conflict shows.
    for (size_t known = static_cast<size_t>(-1); known != m_conflicts.size();) {
        known = m_conflicts.size();
        Engine(m_base, m_mine, *m_theirs, m_conflicts).run(nullptr);
    }
}

void ChartMerge::decideAll(bool bKeepMine)
{
    for (MergeConflict& conflict : m_conflicts)
        conflict.bKeepMine = bKeepMine;
}

ChartTables ChartMerge::result(QStringList* dropped) const
{
    std::vector<MergeConflict> decisions = m_conflicts;
    return Engine(m_base, m_mine, *m_theirs, decisions).run(dropped);
}

QList<int> ChartMerge::stillDeleted(const QList<int>& deleted, ChartTable table, const ChartTables& merged) const
{
    QSet<int> present;
    if (table == ChartTable::Members) {
        for (const MemberRecord& member : merged.members)
            present.insert(member.K_MemberID);
    } else {
        for (const GroupRow& group : merged.groups)
            present.insert(group.K_GroupID);
    }
    QList<int> out;
    for (const int id : deleted) {
        if (!present.contains(id))
            out << id;
    }
    return out;
}

void ChartMerge::renumberMine()
{
    const auto greatest = [this](ChartTable table, const auto& mineIds, const auto& theirIds) {
        int top = 0;
        m_base.forEachKey(table, [&top](Key key) { top = std::max(top, static_cast<int>(key)); });
        for (const int id : mineIds)
            top = std::max(top, id);
        for (const int id : theirIds)
            top = std::max(top, id);
        return top;
    };
    QList<int> mineGroups, theirGroups, mineMembers, theirMembers, mineRanks, theirRanks, mineFolders, theirFolders;
    for (const GroupRow& g : m_mine.groups)
        mineGroups << g.K_GroupID;
    for (const GroupRow& g : m_theirs->groups)
        theirGroups << g.K_GroupID;
    for (const MemberRecord& m : m_mine.members)
        mineMembers << m.K_MemberID;
    for (const MemberRecord& m : m_theirs->members)
        theirMembers << m.K_MemberID;
    for (const RankRecord& r : m_mine.ranks.ranks())
        mineRanks << r.K_RankID;
    for (const RankRecord& r : m_theirs->ranks.ranks())
        theirRanks << r.K_RankID;
    for (const FolderRecord& f : m_mine.fileBox.folders)
        mineFolders << f.K_FolderID;
    for (const FolderRecord& f : m_theirs->fileBox.folders)
        theirFolders << f.K_FolderID;
    // A number is renumbered when this console made it and the database holds it by now.
    const auto plan = [&](ChartTable table, const QList<int>& mine, const QList<int>& theirs) {
        QHash<int, int> moves;
        const QSet<int> taken(theirs.begin(), theirs.end());
        int next = greatest(table, mine, theirs);
        for (const int id : mine) {
            if (!m_base.row(table, id) && taken.contains(id) && !moves.contains(id))
                moves.insert(id, ++next);
        }
        return moves;
    };
    const QHash<int, int> groups = plan(ChartTable::Groups, mineGroups, theirGroups);
    const QHash<int, int> members = plan(ChartTable::Members, mineMembers, theirMembers);
    const QHash<int, int> ranks = plan(ChartTable::Ranks, mineRanks, theirRanks);
    const QHash<int, int> folders = plan(ChartTable::Folders, mineFolders, theirFolders);
    const ChartNames names(m_mine);
    const auto note = [&](ChartTable table, const QHash<int, int>& moves, const auto& nameOf) {
        for (auto it = moves.cbegin(); it != moves.cend(); ++it)
            m_renumbered.push_back({table, nameOf(it.key()), it.key(), it.value()});
    };
    note(ChartTable::Groups, groups, [&](int id) { return names.group(id); });
    note(ChartTable::Members, members, [&](int id) { return names.member(id); });
    note(ChartTable::Ranks, ranks, [&](int id) { return names.rank(id); });
    note(ChartTable::Folders, folders, [&](int id) { return names.folder(id); });
    MergeOrder::renumber(m_mine, groups, members, ranks, folders);
}

} // namespace sable
