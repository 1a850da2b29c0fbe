#include "document/MergeOrder.h"

#include <algorithm>
#include <list>
#include <tuple>

namespace sable::MergeOrder {
namespace {

using Key = ChartFingerprint::Key;

// Children of one department share one list: departments by their number, members offset past
// every department number.
constexpr qint64 kMemberChild = qint64(1) << 40;

qint64 groupChild(int groupId)
{
    return static_cast<qint64>(static_cast<quint32>(groupId));
}

qint64 memberChild(int memberId)
{
    return kMemberChild + static_cast<quint32>(memberId);
}

// A child with its place, in the order a load puts them: by place, departments before members of
// the same place, then as they came.
struct Placed
{
    qint64 position;
    int bMember;
    qsizetype arrival;
    qint64 child;
    bool operator<(const Placed& other) const
    {
        return std::tie(position, bMember, arrival) < std::tie(other.position, other.bMember, other.arrival);
    }
};

using Orders = QHash<int, std::vector<Placed>>;

std::vector<qint64> sorted(std::vector<Placed> placed)
{
    std::sort(placed.begin(), placed.end());
    std::vector<qint64> out;
    out.reserve(placed.size());
    for (const Placed& p : placed)
        out.push_back(p.child);
    return out;
}

Orders childrenOf(const ChartTables& tables)
{
    Orders orders;
    qsizetype arrival = 0;
    for (const GroupRow& g : tables.groups)
        orders[g.K_GroupID_P].push_back({g.Position, 0, arrival++, groupChild(g.K_GroupID)});
    for (const RelationRow& r : tables.relations)
        orders[r.K_GroupID].push_back({r.Position, 1, arrival++, memberChild(r.K_MemberID)});
    return orders;
}

Orders childrenOf(const ChartFingerprint& base)
{
    Orders orders;
    base.forEachRow(ChartTable::Groups, [&](Key key, const qint64* row) {
        orders[static_cast<int>(row[ChartFields::GroupParent])].push_back(
            {row[ChartFields::GroupPosition], 0, static_cast<qsizetype>(key), groupChild(static_cast<int>(key))});
    });
    base.forEachRow(ChartTable::Relations, [&](Key key, const qint64* row) {
        orders[ChartFingerprint::low(key)].push_back({row[ChartFields::RelationPosition], 1,
            static_cast<qsizetype>(ChartFingerprint::high(key)), memberChild(ChartFingerprint::high(key))});
    });
    return orders;
}

QHash<int, std::vector<qint64>> sortedLists(Orders orders)
{
    QHash<int, std::vector<qint64>> lists;
    lists.reserve(static_cast<qsizetype>(orders.size()));
    for (auto it = orders.begin(); it != orders.end(); ++it)
        lists.insert(it.key(), sorted(std::move(*it)));
    return lists;
}

// The elements of `list` that are in `kept`, in their order.
std::vector<qint64> restricted(const std::vector<qint64>& list, const QSet<qint64>& kept)
{
    std::vector<qint64> out;
    for (const qint64 e : list) {
        if (kept.contains(e))
            out.push_back(e);
    }
    return out;
}

// Whether two lists of distinct elements hold the same ones; `b` is sorted on the way.
bool sameElements(const std::vector<qint64>& a, std::vector<qint64>& b)
{
    if (a.size() != b.size())
        return false;
    std::vector<qint64> sortedA = a;
    std::sort(sortedA.begin(), sortedA.end());
    std::sort(b.begin(), b.end());
    return sortedA == b;
}

} // namespace

std::vector<qint64> merge(const std::vector<qint64>& base, const std::vector<qint64>& mine,
    const std::vector<qint64>& theirs, const QSet<qint64>& wanted, const std::function<bool()>& keepMine)
{
    QSet<qint64> shared(base.begin(), base.end());
    shared.intersect(QSet<qint64>(mine.begin(), mine.end()));
    shared.intersect(QSet<qint64>(theirs.begin(), theirs.end()));
    const std::vector<qint64> baseOrder = restricted(base, shared);
    const std::vector<qint64> mineOrder = restricted(mine, shared);
    const std::vector<qint64> theirOrder = restricted(theirs, shared);
    const bool bMineMoved = mineOrder != baseOrder;
    const bool bTheirsMoved = theirOrder != baseOrder;
    const bool bUseMine = bMineMoved && (!bTheirsMoved || mineOrder == theirOrder || keepMine());
    const std::vector<qint64>& leader = bUseMine ? mine : theirs;
    const std::vector<qint64>& other = bUseMine ? theirs : mine;

    std::list<qint64> order;
    QHash<qint64, std::list<qint64>::iterator> placed;
    for (const qint64 e : leader) {
        if (wanted.contains(e) && !placed.contains(e))
            placed.insert(e, order.insert(order.end(), e));
    }
    // What only the other side has goes after the element it follows there, or at the end when
    // nothing of the leader's follows it there (added at the end, it stays at the end).
    std::vector<bool> leaderFollows(other.size() + 1, false);
    for (size_t i = other.size(); i-- > 0;)
        leaderFollows[i] = leaderFollows[i + 1] || placed.contains(other[i]);
    auto after = order.begin();
    bool bAtFront = true;
    for (size_t i = 0; i < other.size(); ++i) {
        const qint64 e = other[i];
        const auto found = placed.constFind(e);
        if (found != placed.cend()) {
            after = *found;
            bAtFront = false;
        } else if (wanted.contains(e)) {
            const auto at = !leaderFollows[i + 1] ? order.end() : bAtFront ? order.begin() : std::next(after);
            after = order.insert(at, e);
            placed.insert(e, after);
            bAtFront = false;
        }
    }
    std::vector<qint64> rest;
    for (const qint64 e : wanted) {
        if (!placed.contains(e))
            rest.push_back(e);
    }
    std::sort(rest.begin(), rest.end());
    order.insert(order.end(), rest.begin(), rest.end());
    return {order.begin(), order.end()};
}

ChildOrders::ChildOrders(const Input& input)
    : m_base(sortedLists(childrenOf(input.base)))
    , m_mine(sortedLists(childrenOf(input.mine)))
    , m_theirs(sortedLists(childrenOf(input.theirs)))
{ }

const ChildOrders::List& ChildOrders::of(const QHash<int, List>& lists, int department)
{
    static const List kNone;
    const auto found = lists.constFind(department);
    return found == lists.cend() ? kNone : *found;
}

void placeChildren(const ChildOrders& orders, QHash<Key, GroupRow>& groups, QHash<Key, RelationRow>& relations,
    const std::function<bool(int department)>& keepMine)
{
    QHash<int, std::vector<qint64>> wanted;
    for (const GroupRow& g : groups)
        wanted[g.K_GroupID_P].push_back(groupChild(g.K_GroupID));
    for (const RelationRow& r : relations)
        wanted[r.K_GroupID].push_back(memberChild(r.K_MemberID));
    // Department by department in the order of their numbers, so that the questions come in an order too.
    QList<int> departments = wanted.keys();
    std::sort(departments.begin(), departments.end());
    for (const int department : departments) {
        std::vector<qint64>& children = wanted[department];
        const std::vector<qint64>& base = orders.base(department);
        // Most departments nobody reordered and whose children stay: they keep the base's order.
        const bool bUnchanged
            = orders.mine(department) == base && orders.theirs(department) == base && sameElements(base, children);
        const std::vector<qint64> order = bUnchanged ? base
                                                     : merge(base, orders.mine(department), orders.theirs(department),
                                                         QSet<qint64>(children.begin(), children.end()),
                                                         [&keepMine, department] { return keepMine(department); });
        int position = 1;
        for (const qint64 child : order) {
            if (child >= kMemberChild)
                relations[ChartFingerprint::relationKey(static_cast<int>(child - kMemberChild), department)].Position
                    = position++;
            else
                groups[static_cast<int>(child)].Position = position++;
        }
    }
}

std::vector<Key> rankOrder(const ChartFingerprint& base, const RankList& mine, const RankList& theirs,
    const QList<Key>& wanted, const std::function<bool()>& keepMine)
{
    std::vector<Placed> basePlaced;
    base.forEachKey(ChartTable::Ranks, [&](Key key) {
        basePlaced.push_back({base.row(ChartTable::Ranks, key)[ChartFields::RankOrder], 0, 0, key});
    });
    const auto listOf = [](const RankList& ranks) {
        std::vector<qint64> out;
        for (const RankRecord& rank : ranks.ranks())
            out.push_back(rank.K_RankID);
        return out;
    };
    return merge(
        sorted(basePlaced), listOf(mine), listOf(theirs), QSet<qint64>(wanted.begin(), wanted.end()), keepMine);
}

void breakParentLoops(QHash<Key, GroupRow>& groups, const std::vector<GroupRow>& theirs)
{
    QHash<int, int> theirParent;
    for (const GroupRow& g : theirs)
        theirParent.insert(g.K_GroupID, g.K_GroupID_P);
    // Walk up from each; coming back to the start means a loop, which the database's own parents
    // break (its tree has none). A department of a loop that already hangs where the database has it
    // is left for the others of the loop; one the database does not know goes to the top.
    for (bool bLoop = true; bLoop;) {
        bLoop = false;
        bool bBroke = false;
        GroupRow* firstOfLoop = nullptr;
        for (auto it = groups.begin(); it != groups.end(); ++it) {
            QSet<int> seen {it->K_GroupID};
            for (int up = it->K_GroupID_P; up >= 0 && groups.contains(up); up = groups[up].K_GroupID_P) {
                if (up == it->K_GroupID) {
                    bLoop = true;
                    firstOfLoop = firstOfLoop ? firstOfLoop : &*it;
                    const int database = theirParent.value(it->K_GroupID, -1);
                    if (database != it->K_GroupID_P) {
                        it->K_GroupID_P = database;
                        bBroke = true;
                    }
                    break;
                }
                if (seen.contains(up))
                    break; // a loop above, not through this one: its own members break it
                seen.insert(up);
            }
        }
        if (bLoop && !bBroke)
            firstOfLoop->K_GroupID_P = -1;
    }
}

void renumber(ChartTables& tables, const QHash<int, int>& groups, const QHash<int, int>& members,
    const QHash<int, int>& ranks, const QHash<int, int>& folders)
{
    const auto moved = [](const QHash<int, int>& moves, int id) { return moves.value(id, id); };
    for (GroupRow& g : tables.groups) {
        g.K_GroupID = moved(groups, g.K_GroupID);
        g.K_GroupID_P = moved(groups, g.K_GroupID_P);
    }
    for (MemberRecord& m : tables.members)
        m.K_MemberID = moved(members, m.K_MemberID);
    for (RelationRow& r : tables.relations) {
        r.K_MemberID = moved(members, r.K_MemberID);
        r.K_GroupID = moved(groups, r.K_GroupID);
        r.K_RankID = moved(ranks, r.K_RankID);
    }
    RankList renumbered;
    for (const RankRecord& rank : tables.ranks.ranks())
        renumbered.insert(renumbered.count(), {moved(ranks, rank.K_RankID), rank.RankName});
    tables.ranks = renumbered;
    for (FolderRecord& f : tables.fileBox.folders)
        f.K_FolderID = moved(folders, f.K_FolderID);
    DirectoryLinks links;
    for (auto it = tables.links.all().cbegin(); it != tables.links.all().cend(); ++it)
        links.set(moved(members, it.key()), it.value());
    tables.links = links;
    for (AuthorityRecord& a : tables.fileBox.groupAuthorities) {
        a.K_FolderID = moved(folders, a.K_FolderID);
        a.grantee = moved(groups, a.grantee);
    }
    for (AuthorityRecord& a : tables.fileBox.userAuthorities) {
        a.K_FolderID = moved(folders, a.K_FolderID);
        a.grantee = moved(members, a.grantee);
    }
}

} // namespace sable::MergeOrder
