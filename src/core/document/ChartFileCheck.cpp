#include "document/ChartFileCheck.h"

#include "document/ChartTables.h"

#include <QHash>

namespace sable::ChartFileCheck {
namespace {

// More rows than this in one problem are counted, not listed.
constexpr qsizetype kRowsNamed = 5;

QString rowList(const char* array, const std::vector<qsizetype>& rows)
{
    QStringList names;
    for (qsizetype i = 0; i < std::min<qsizetype>(kRowsNamed, static_cast<qsizetype>(rows.size())); ++i)
        names << QStringLiteral("%1[%2]").arg(QLatin1String(array)).arg(rows[static_cast<size_t>(i)]);
    QString list = names.join(QStringLiteral(", "));
    if (static_cast<qsizetype>(rows.size()) > kRowsNamed)
        list += QStringLiteral(" and %1 more").arg(static_cast<qsizetype>(rows.size()) - kRowsNamed);
    return list;
}

// The rows of `count` whose key (from `keyOf`) an earlier row has already, grouped by key, in the
// order the keys first appear.
template <typename Key, typename KeyOf>
std::vector<std::vector<qsizetype>> repeated(size_t count, KeyOf keyOf)
{
    QHash<Key, qsizetype> first;
    QHash<qsizetype, size_t> groupOfFirst;
    std::vector<std::vector<qsizetype>> groups;
    for (size_t i = 0; i < count; ++i) {
        const auto row = static_cast<qsizetype>(i);
        const Key key = keyOf(i);
        const auto earlier = first.constFind(key);
        if (earlier == first.cend()) {
            first.insert(key, row);
            continue;
        }
        auto group = groupOfFirst.constFind(*earlier);
        if (group == groupOfFirst.cend()) {
            group = groupOfFirst.insert(*earlier, groups.size());
            groups.push_back(std::vector<qsizetype> {*earlier});
        }
        groups[*group].push_back(row);
    }
    return groups;
}

void checkIdentifiers(const ChartTables& tables, QStringList& problems)
{
    for (const auto& rows : repeated<int>(tables.groups.size(), [&](size_t i) { return tables.groups[i].K_GroupID; }))
        problems << QStringLiteral("%1: K_GroupID %2 more than once")
                        .arg(rowList("groups", rows))
                        .arg(tables.groups[static_cast<size_t>(rows.front())].K_GroupID);
    const auto& members = tables.members;
    for (const auto& rows : repeated<int>(members.size(), [&](size_t i) { return members[i].K_MemberID; }))
        problems << QStringLiteral("%1: K_MemberID %2 more than once")
                        .arg(rowList("members", rows))
                        .arg(members[static_cast<size_t>(rows.front())].K_MemberID);
    // Login IDs are compared as the server compares them, without regard to case.
    for (const auto& rows :
        repeated<QString>(members.size(), [&](size_t i) { return members[i].MemberID.toCaseFolded(); }))
        problems << QStringLiteral("%1: login ID \"%2\" more than once (compared without regard to case)")
                        .arg(rowList("members", rows), members[static_cast<size_t>(rows.front())].MemberID);
}

// The rows of each cycle of parents, and the rows of top departments (whose parent is no
// department of the file).
void checkTree(const ChartTables& tables, QStringList& problems)
{
    const auto& groups = tables.groups;
    QHash<int, size_t> indexById;
    for (size_t i = 0; i < groups.size(); ++i)
        if (!indexById.contains(groups[i].K_GroupID))
            indexById.insert(groups[i].K_GroupID, i);
    enum class Seen
    {
        No,
        OnPath,
        Done
    };
    std::vector<Seen> seen(groups.size(), Seen::No);
    std::vector<qsizetype> tops;
    for (size_t start = 0; start < groups.size(); ++start) {
        std::vector<size_t> path;
        size_t at = start;
        bool bTop = false;
        while (seen[at] == Seen::No) {
            seen[at] = Seen::OnPath;
            path.push_back(at);
            const auto parent = indexById.constFind(groups[at].K_GroupID_P);
            if (parent == indexById.cend()) {
                bTop = true;
                break;
            }
            at = *parent;
        }
        if (bTop)
            tops.push_back(static_cast<qsizetype>(path.back()));
        else if (seen[at] == Seen::OnPath) {
            // The walk came back to a department of its own path: from there on is a cycle.
            std::vector<qsizetype> cycle;
            for (auto it = std::find(path.begin(), path.end(), at); it != path.end(); ++it)
                cycle.push_back(static_cast<qsizetype>(*it));
            std::sort(cycle.begin(), cycle.end());
            problems << QStringLiteral("%1: the departments' parents form a cycle").arg(rowList("groups", cycle));
        }
        for (const size_t i : path)
            seen[i] = Seen::Done;
    }
    std::sort(tops.begin(), tops.end());
    if (tops.size() > 1)
        problems << QStringLiteral("%1: more than one top department (K_GroupID_P names no department)")
                        .arg(rowList("groups", tops));
}

} // namespace

QStringList problems(const ChartTables& tables)
{
    QStringList found;
    checkIdentifiers(tables, found);
    checkTree(tables, found);
    return found;
}

} // namespace sable::ChartFileCheck
