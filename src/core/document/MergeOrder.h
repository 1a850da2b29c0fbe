#pragma once

#include "document/ChartFingerprint.h"
#include "document/ChartTables.h"

#include <QHash>
#include <QList>
#include <QSet>

#include <functional>
#include <vector>

namespace sable {

// The parts of a merge that concern orders and numbers: the places of departments and members
// under each department, the order of the ranks, loops of departments that two moves can make, and
// the renumbering of this console's new rows.
namespace MergeOrder {

struct Input
{
    const ChartFingerprint& base;
    const ChartTables& mine;
    const ChartTables& theirs;
};

// The key under which a conflict about the order of the ranks is filed.
constexpr ChartFingerprint::Key kRankOrderKey = 0;

// The children of every department (departments and members in one list) as the base, this
// console and the database order them, sorted once for every pass of a merge.
class ChildOrders
{
public:
    explicit ChildOrders(const Input& input);

    using List = std::vector<qint64>;
    const List& base(int department) const { return of(m_base, department); }
    const List& mine(int department) const { return of(m_mine, department); }
    const List& theirs(int department) const { return of(m_theirs, department); }

private:
    static const List& of(const QHash<int, List>& lists, int department);

    QHash<int, List> m_base;
    QHash<int, List> m_mine;
    QHash<int, List> m_theirs;
};

// Numbers the children of every department (and the top level) 1, 2, ... in the merged order: the
// order of the side that changed it, with what the other side added placed after its predecessor
// there. Where both sides changed the order of one department's children, `keepMine(department)`
// says whose holds (-1 for the top level).
void placeChildren(const ChildOrders& orders, QHash<ChartFingerprint::Key, GroupRow>& groups,
    QHash<ChartFingerprint::Key, RelationRow>& relations, const std::function<bool(int department)>& keepMine);

// The merged rank order of `wanted`, by the same rule.
std::vector<ChartFingerprint::Key> rankOrder(const ChartFingerprint& base, const RankList& mine, const RankList& theirs,
    const QList<ChartFingerprint::Key>& wanted, const std::function<bool()>& keepMine);

// Departments that became their own ancestors (one side moved A under B, the other B under A) go
// back where the database has them, or to the top level.
void breakParentLoops(QHash<ChartFingerprint::Key, GroupRow>& groups, const std::vector<GroupRow>& theirs);

// Gives rows new numbers, old to new, and makes every row that refers to them follow.
void renumber(ChartTables& tables, const QHash<int, int>& groups, const QHash<int, int>& members,
    const QHash<int, int>& ranks, const QHash<int, int>& folders);

// The order of `wanted` from three orders of (mostly) the same elements: the order of the side that
// changed the order of the elements all three share (`keepMine` decides when both did), then what
// only the other side has, each after its predecessor there.
std::vector<qint64> merge(const std::vector<qint64>& base, const std::vector<qint64>& mine,
    const std::vector<qint64>& theirs, const QSet<qint64>& wanted, const std::function<bool()>& keepMine);

} // namespace MergeOrder
} // namespace sable
