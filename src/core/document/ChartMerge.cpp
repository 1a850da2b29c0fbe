#include "document/ChartMerge.h"

#include "Messages.h"
#include "document/MergeOrder.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <deque>
#include <map>
#include <tuple>
#include <type_traits>

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

// Users are many and large: a merged table of them points at the row of the side it takes whole
// rather than copying it.
template <typename Traits>
constexpr bool kHeldByPointer = std::is_same_v<typename Traits::Row, MemberRecord>;

// One side's rows of one table by key. The rows stay where the side's tables hold them.
template <typename Traits>
struct Indexed
{
    using Row = typename Traits::Row;

    explicit Indexed(const std::vector<Row>& all)
        : rows(&all)
    {
        byKey.reserve(static_cast<qsizetype>(all.size()));
        for (const Row& row : all)
            byKey.insert(Traits::key(row), &row);
        bDuplicates = static_cast<size_t>(byKey.size()) != all.size();
    }

    const Row* find(Key key) const { return byKey.value(key); }
    // find() for keys that mostly come in the order of these rows: `cursor` (0 to begin with)
    // remembers where the last one was, so that a run in the same order costs no lookup.
    const Row* findAfter(Key key, size_t& cursor) const
    {
        if (!bDuplicates && cursor < rows->size() && Traits::key((*rows)[cursor]) == key)
            return &(*rows)[cursor++];
        const Row* found = find(key);
        if (found)
            cursor = static_cast<size_t>(found - rows->data()) + 1;
        return found;
    }
    // Whether `row` is the one its key stands for: of two rows of one key, the last counts.
    bool counts(const Row& row) const { return !bDuplicates || byKey.value(Traits::key(row)) == &row; }

    const std::vector<Row>* rows;
    QHash<Key, const Row*> byKey;
    bool bDuplicates = false;
};

template <typename Traits>
struct BothSides
{
    BothSides(const std::vector<typename Traits::Row>& mineRows, const std::vector<typename Traits::Row>& theirRows)
        : mine(mineRows)
        , theirs(theirRows)
    { }

    Indexed<Traits> mine;
    Indexed<Traits> theirs;
};

// The rows of one table as merged, by key, with the side each merged row comes from.
template <typename Traits>
struct Merged
{
    using Row = typename Traits::Row;
    using Held = std::conditional_t<kHeldByPointer<Traits>, const Row*, Row>;
    static constexpr ChartTable kTable = Traits::kTable;

    static const Row& rowOf(const Held& held)
    {
        if constexpr (kHeldByPointer<Traits>)
            return *held;
        else
            return held;
    }
    // A row as one side has it; `row` outlives the merge.
    void take(Key key, const Row& row, Side by)
    {
        if constexpr (kHeldByPointer<Traits>)
            rows.insert(key, &row);
        else
            rows.insert(key, row);
        setIntroducedBy(key, by);
    }
    // A row made of both sides' fields.
    void make(Key key, Row row, Side by)
    {
        if constexpr (kHeldByPointer<Traits>) {
            made.push_back(std::move(row));
            rows.insert(key, &made.back());
        } else {
            rows.insert(key, std::move(row));
        }
        setIntroducedBy(key, by);
    }
    // Most rows come from neither side in particular: only the others are written down.
    void setIntroducedBy(Key key, Side by)
    {
        if (by == Side::Neither)
            introducedBy.remove(key);
        else
            introducedBy.insert(key, by);
    }

    QHash<Key, Held> rows;
    QHash<Key, Side> introducedBy; // who added the row, or changed what it refers to
    std::deque<Row> made;
};

// One row's prints in the base and on each side; nullptr where there is no such row.
struct RowPrints
{
    const qint64* base;
    const qint64* mine;
    const qint64* theirs;
};

// The fields of one row that each side changed from the base, as bit sets.
struct FieldChanges
{
    quint32 mine = 0;
    quint32 theirs = 0;
    quint32 both = 0; // changed on both sides, to different values
};

constexpr quint32 bitOf(int field)
{
    return field < 0 ? 0U : 1U << field;
}

FieldChanges fieldChanges(ChartTable table, const qint64* base, const qint64* mine, const qint64* theirs)
{
    FieldChanges changes;
    for (int f = 0; f < ChartFields::count(table); ++f) {
        if (isPlace(table, f))
            continue;
        const bool m = mine && (!base || mine[f] != base[f]);
        const bool t = theirs && (!base || theirs[f] != base[f]);
        changes.mine |= m ? bitOf(f) : 0U;
        changes.theirs |= t ? bitOf(f) : 0U;
        changes.both |= m && t && mine[f] != theirs[f] ? bitOf(f) : 0U;
    }
    return changes;
}

// The merged rows of one table, those the database has in its order, then this console's new ones
// in its order.
template <typename Traits>
void appendInOrder(const Merged<Traits>& merged, const BothSides<Traits>& rows, std::vector<typename Traits::Row>& into)
{
    into.reserve(static_cast<size_t>(merged.rows.size()));
    size_t theirsAt = 0;
    const auto append = [&](const Indexed<Traits>& side, bool bMine) {
        for (const auto& row : *side.rows) {
            const Key key = Traits::key(row);
            if (!side.counts(row) || (bMine && rows.theirs.findAfter(key, theirsAt)))
                continue;
            const auto found = merged.rows.constFind(key);
            if (found != merged.rows.cend())
                into.push_back(Merged<Traits>::rowOf(*found));
        }
    };
    append(rows.theirs, false);
    append(rows.mine, true);
}

std::vector<int> fieldsIn(quint32 set)
{
    std::vector<int> fields;
    for (int f = 0; f < kMaxFields; ++f) {
        if (set & bitOf(f))
            fields.push_back(f);
    }
    return fields;
}

} // namespace

// What every pass of the merge reads and none changes: both sides' prints and rows by key, made once.
struct ChartMerge::Sides
{
    Sides(const ChartFingerprint& basePrint, const ChartTables& mineTables, const ChartTables& theirTables)
        : base(basePrint)
        , mine(mineTables)
        , theirs(theirTables)
        , minePrint(ChartFingerprint::of(mineTables))
        , theirPrint(ChartFingerprint::of(theirTables))
        , mineRanks(rankRows(mineTables.ranks))
        , theirRanks(rankRows(theirTables.ranks))
        , mineLinks(linkRows(mineTables.links))
        , theirLinks(linkRows(theirTables.links))
        , groups(mine.groups, theirs.groups)
        , members(mine.members, theirs.members)
        , relations(mine.relations, theirs.relations)
        , ranks(mineRanks, theirRanks)
        , folders(mine.fileBox.folders, theirs.fileBox.folders)
        , groupAuthorities(mine.fileBox.groupAuthorities, theirs.fileBox.groupAuthorities)
        , userAuthorities(mine.fileBox.userAuthorities, theirs.fileBox.userAuthorities)
        , links(mineLinks, theirLinks)
        , childOrders({basePrint, mineTables, theirTables})
    { }

    // Which side removed the row `key` of `table` that the base has; Neither when both still have it.
    Side removedBy(ChartTable table, Key key) const
    {
        if (!base.row(table, key))
            return Side::Neither;
        if (!minePrint.row(table, key))
            return Side::Mine;
        return theirPrint.row(table, key) ? Side::Neither : Side::Theirs;
    }

    const ChartFingerprint& base;
    const ChartTables& mine;
    const ChartTables& theirs;
    const ChartFingerprint minePrint;
    const ChartFingerprint theirPrint;
    const std::vector<RankRow> mineRanks;
    const std::vector<RankRow> theirRanks;
    const std::vector<LinkRow> mineLinks;
    const std::vector<LinkRow> theirLinks;
    const BothSides<GroupTraits> groups;
    const BothSides<MemberTraits> members;
    const BothSides<RelationTraits> relations;
    const BothSides<RankTraits> ranks;
    const BothSides<FolderTraits> folders;
    const BothSides<AuthorityTraits<ChartTable::GroupAuthorities>> groupAuthorities;
    const BothSides<AuthorityTraits<ChartTable::UserAuthorities>> userAuthorities;
    const BothSides<LinkTraits> links;
    const MergeOrder::ChildOrders childOrders;
};

// One pass of the merge under the decisions made so far; conflicts it meets for the first time are
// added, decided for this console's side.
class ChartMerge::Engine
{
public:
    Engine(const Sides& sides, const ChartNames& names, std::vector<MergeConflict>& conflicts)
        : m_sides(sides)
        , m_names(names)
        , m_conflicts(conflicts)
    {
        for (size_t i = 0; i < conflicts.size(); ++i)
            m_decided.emplace(std::make_tuple(conflicts[i].table, conflicts[i].key, conflicts[i].kind), i);
    }

    // Merges under the decisions made so far, meeting every conflict there is under them.
    void run(QStringList* dropped);
    // The merged tables, after run().
    ChartTables assemble() const;

private:
    template <typename Traits>
    void mergeTable(const BothSides<Traits>& rows, Merged<Traits>& out);
    template <typename Traits>
    void mergeRow(Key key, const typename Traits::Row* mine, const typename Traits::Row* theirs,
        const RowPrints& prints, Merged<Traits>& out);

    bool decide(
        ChartTable table, Key key, Kind kind, const QStringList& fields, const QString& mine, const QString& theirs);
    bool settleReferences(QStringList* dropped);
    bool restoreDependents();
    bool settleReference(ChartTable table, Key key, Side referrer);
    template <typename Traits>
    bool restore(Merged<Traits>& merged, const BothSides<Traits>& rows, Key key, bool fromMine);
    void keptThoughRemovedBy(Side side) { m_bKeptRemoved[side == Side::Mine ? 0 : 1] = true; }
    void orderChildren();

    const Sides& m_sides;
    const ChartNames& m_names;
    std::vector<MergeConflict>& m_conflicts;
    std::map<std::tuple<ChartTable, Key, Kind>, size_t> m_decided; // where each conflict is in m_conflicts
    // Whether a row one side removed is kept (by this console's side, by the database's): only then
    // may rows that went with it have to come back.
    bool m_bKeptRemoved[2] = {};

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
    const auto id = std::make_tuple(table, key, kind);
    if (const auto found = m_decided.find(id); found != m_decided.end())
        return m_conflicts[found->second].bKeepMine;
    QString name = m_names.row(table, key);
    if (kind == Kind::OrderChangedBoth)
        name = table == ChartTable::Ranks ? Msg::kMergeRankOrder
                                          : Msg::kMergeChildOrder.arg(m_names.group(static_cast<int>(key)));
    m_decided.emplace(id, m_conflicts.size());
    m_conflicts.push_back({table, key, kind, name, fields, mine, theirs, true});
    return true;
}

template <typename Traits>
void ChartMerge::Engine::mergeTable(const BothSides<Traits>& rows, Merged<Traits>& out)
{
    constexpr ChartTable table = Traits::kTable;
    out.rows.reserve(std::max(rows.mine.byKey.size(), rows.theirs.byKey.size()));
    // The sides and the base mostly hold their rows in one order: cursors spare most lookups.
    size_t mineAt = 0, theirsAt = 0, minePrintAt = 0, theirPrintAt = 0, baseAt = 0;
    const auto printsOf = [&](Key key, bool bMine, bool bTheirs) {
        return RowPrints {m_sides.base.rowAfter(table, key, baseAt),
            bMine ? m_sides.minePrint.rowAfter(table, key, minePrintAt) : nullptr,
            bTheirs ? m_sides.theirPrint.rowAfter(table, key, theirPrintAt) : nullptr};
    };
    // The database's rows first, in its order, so that conflicts come in an order people know.
    for (const auto& theirs : *rows.theirs.rows) {
        const Key key = Traits::key(theirs);
        if (!rows.theirs.counts(theirs))
            continue;
        const auto* mine = rows.mine.findAfter(key, mineAt);
        mergeRow<Traits>(key, mine, &theirs, printsOf(key, mine, true), out);
    }
    baseAt = 0;
    for (const auto& mine : *rows.mine.rows) {
        const Key key = Traits::key(mine);
        if (rows.mine.counts(mine) && !rows.theirs.findAfter(key, theirsAt))
            mergeRow<Traits>(key, &mine, nullptr, printsOf(key, true, false), out);
    }
    // Rows both sides removed are gone; nothing to do for them.
}

template <typename Traits>
void ChartMerge::Engine::mergeRow(Key key, const typename Traits::Row* mine, const typename Traits::Row* theirs,
    const RowPrints& prints, Merged<Traits>& out)
{
    constexpr ChartTable table = Traits::kTable;
    const qint64* base = prints.base;
    const FieldChanges changed = fieldChanges(table, base, prints.mine, prints.theirs);
    // The values in question: those changed on both sides, or the changes of the side that kept the row.
    const auto describe = [&](const typename Traits::Row& row, quint32 fields) {
        QStringList values;
        for (const int f : fieldsIn(fields))
            values << ChartNames::field(table, f) + QStringLiteral(": ") + Traits::text(row, f, m_names);
        return values.join(QStringLiteral(", "));
    };
    if (mine && theirs) {
        QStringList names;
        for (const int f : fieldsIn(changed.both))
            names << ChartNames::field(table, f);
        const bool bKeepMine = changed.both
            && decide(
                table, key, Kind::BothChanged, names, describe(*mine, changed.both), describe(*theirs, changed.both));
        const quint32 fromMine = changed.mine & (~changed.theirs | (bKeepMine ? changed.both : 0U));
        constexpr quint32 reference = bitOf(Traits::kReference);
        // Who made the row refer to what it refers to now, should that be removed on the other side.
        const Side by = !base || (fromMine & reference) ? Side::Mine
            : (changed.theirs & reference)              ? Side::Theirs
                                                        : Side::Neither;
        if (!fromMine) {
            out.take(key, *theirs, by);
            return;
        }
        typename Traits::Row row = *theirs;
        for (const int f : fieldsIn(fromMine))
            Traits::copy(row, *mine, f);
        out.make(key, std::move(row), by);
        return;
    }
    const typename Traits::Row* only = mine ? mine : theirs;
    if (!base) {
        // New on one side only.
        out.take(key, *only, mine ? Side::Mine : Side::Theirs);
        return;
    }
    // Removed on one side: the other side's change of the row holds it back, if the administrator says so.
    const quint32 keptChanges = mine ? changed.mine : changed.theirs;
    if (!keptChanges)
        return;
    if (table == ChartTable::DirectoryLinks) {
        // A link follows its user, whose own fate is settled row by row; a changed link is no question.
        out.take(key, *only, Side::Neither);
        return;
    }
    const bool bKeepMine = mine
        ? decide(table, key, Kind::ChangedHereRemovedThere, {}, describe(*mine, keptChanges), Msg::kMergeRemoved)
        : decide(table, key, Kind::RemovedHereChangedThere, {}, Msg::kMergeRemoved, describe(*theirs, keptChanges));
    if (bKeepMine == (mine != nullptr)) {
        out.take(key, *only, mine ? Side::Mine : Side::Theirs);
        keptThoughRemovedBy(mine ? Side::Theirs : Side::Mine);
    }
}

template <typename Traits>
bool ChartMerge::Engine::restore(Merged<Traits>& merged, const BothSides<Traits>& rows, Key key, bool fromMine)
{
    const typename Traits::Row* row = (fromMine ? rows.mine : rows.theirs).find(key);
    if (!row)
        return false;
    merged.take(key, *row, Side::Neither);
    keptThoughRemovedBy(fromMine ? Side::Theirs : Side::Mine);
    return true;
}

// A department, a user or a folder that one side removed but the merge keeps (by a decision)
// brings back what that side removed with it, from the other side: the departments under it, its
// memberships and permissions. Returns whether anything came back.
bool ChartMerge::Engine::restoreDependents()
{
    bool bBack = false;
    const auto keptButRemovedBy
        = [this](ChartTable table, Key key, Side side) { return m_sides.removedBy(table, key) == side; };
    for (const Side side : {Side::Mine, Side::Theirs}) {
        if (!m_bKeptRemoved[side == Side::Mine ? 0 : 1])
            continue;
        const ChartTables& source = side == Side::Mine ? m_sides.theirs : m_sides.mine;
        const auto bringBack = [&](auto& merged, const auto& row, Key key, bool bDepends) {
            if (bDepends && !merged.rows.contains(key) && m_sides.removedBy(merged.kTable, key) == side) {
                merged.take(key, row, Side::Neither);
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
        for (const LinkRow& link : side == Side::Mine ? m_sides.theirLinks : m_sides.mineLinks) {
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
    if (referrer == Side::Neither || !m_sides.base.row(table, key))
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
        return restore(m_groups, m_sides.groups, key, bRemovedThere);
    case ChartTable::Members:
        return restore(m_members, m_sides.members, key, bRemovedThere);
    case ChartTable::Ranks:
        return restore(m_ranks, m_sides.ranks, key, bRemovedThere);
    case ChartTable::Folders:
        return restore(m_folders, m_sides.folders, key, bRemovedThere);
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
        const qint64* base = m_sides.base.row(ChartTable::Groups, it.key());
        if (base && m_groups.rows.contains(base[ChartFields::GroupParent])
            && base[ChartFields::GroupParent] != parent) {
            it->K_GroupID_P = static_cast<int>(base[ChartFields::GroupParent]);
            m_groups.setIntroducedBy(it.key(), Side::Neither);
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

void ChartMerge::Engine::run(QStringList* dropped)
{
    mergeTable(m_sides.groups, m_groups);
    mergeTable(m_sides.members, m_members);
    mergeTable(m_sides.relations, m_relations);
    mergeTable(m_sides.ranks, m_ranks);
    mergeTable(m_sides.folders, m_folders);
    mergeTable(m_sides.groupAuthorities, m_groupAuthorities);
    mergeTable(m_sides.userAuthorities, m_userAuthorities);
    mergeTable(m_sides.links, m_links);
    // A row brought back may bring back or refer to others: settle until nothing moves.
    for (int pass = 0; pass < 32; ++pass) {
        const bool bRestored = restoreDependents();
        if (!settleReferences(dropped) && !bRestored)
            break;
    }
    // A link belongs to its user: with the user gone, there is nothing to keep from the directory.
    for (auto it = m_links.rows.begin(); it != m_links.rows.end();)
        it = m_members.rows.contains(it.key()) ? std::next(it) : m_links.rows.erase(it);
    MergeOrder::breakParentLoops(m_groups.rows, m_sides.theirs.groups);
    orderChildren();
}

void ChartMerge::Engine::orderChildren()
{
    const auto bothReordered = [this](ChartTable table, Key key) {
        return decide(
            table, key, Kind::OrderChangedBoth, {Msg::kFieldOrder}, Msg::kMergeOrderMine, Msg::kMergeOrderTheirs);
    };
    MergeOrder::placeChildren(m_sides.childOrders, m_groups.rows, m_relations.rows,
        [&](int parent) { return bothReordered(ChartTable::Groups, parent); });
    m_rankOrder = MergeOrder::rankOrder(m_sides.base, m_sides.mine.ranks, m_sides.theirs.ranks, m_ranks.rows.keys(),
        [&] { return bothReordered(ChartTable::Ranks, MergeOrder::kRankOrderKey); });
}

ChartTables ChartMerge::Engine::assemble() const
{
    ChartTables out;
    appendInOrder(m_members, m_sides.members, out.members);
    appendInOrder(m_groups, m_sides.groups, out.groups);
    appendInOrder(m_relations, m_sides.relations, out.relations);
    appendInOrder(m_folders, m_sides.folders, out.fileBox.folders);
    appendInOrder(m_groupAuthorities, m_sides.groupAuthorities, out.fileBox.groupAuthorities);
    appendInOrder(m_userAuthorities, m_sides.userAuthorities, out.fileBox.userAuthorities);
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
    renumberMine();
    m_names = std::make_unique<const ChartNames>(m_mine, *m_theirs);
    m_sides = std::make_unique<const Sides>(m_base, m_mine, *m_theirs);
    m_theirChanges = ChartDiff::between(m_base, m_sides->theirPrint, *m_names);
    m_myChanges = ChartDiff::between(m_base, m_sides->minePrint, *m_names);
    // One pass meets every conflict: each is taken as decided for this console's side, as it starts.
    m_firstPass = std::make_unique<Engine>(*m_sides, *m_names, m_conflicts);
    m_firstPass->run(&m_firstPassDropped);
}

ChartMerge::~ChartMerge() = default;

void ChartMerge::decideAll(bool bKeepMine)
{
    for (MergeConflict& conflict : m_conflicts)
        conflict.bKeepMine = bKeepMine;
}

ChartTables ChartMerge::result(QStringList* dropped) const
{
    const bool bAllMine = std::all_of(
        m_conflicts.begin(), m_conflicts.end(), [](const MergeConflict& conflict) { return conflict.bKeepMine; });
    if (bAllMine) {
        if (dropped)
            *dropped << m_firstPassDropped;
        return m_firstPass->assemble();
    }
    std::vector<MergeConflict> decisions = m_conflicts;
    Engine engine(*m_sides, *m_names, decisions);
    engine.run(dropped);
    return engine.assemble();
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
