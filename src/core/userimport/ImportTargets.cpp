#include "userimport/ImportTargets.h"

#include "Messages.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"

#include <limits>

namespace sable {
namespace {

// The identifier after `previous`; once the numbers run out, the value that a single addition gives
// on overflow.
int following(int previous, int overflow)
{
    return previous == overflow || previous == std::numeric_limits<int>::max() ? overflow : previous + 1;
}

} // namespace

// --- Departments ------------------------------------------------------------------------------------

DepartmentTargets::DepartmentTargets(const OrgChart& chart)
{
    if (OrgNode* top = chart.rootGroup())
        m_top = add({top, -1, top->name(), top->groupId(), false});
}

int DepartmentTargets::add(DepartmentTarget target)
{
    m_targets.push_back(std::move(target));
    return static_cast<int>(m_targets.size()) - 1;
}

int DepartmentTargets::resolve(const QStringList& names)
{
    const QString key = names.join(QChar(0x1F));
    if (const auto known = m_byPath.constFind(key); known != m_byPath.cend())
        return *known;
    qsizetype next = 0;
    int at = m_top;
    if (m_top < 0) {
        // An empty chart: the first path names its top department.
        m_top = at = add({nullptr, -1, names.first(), -2, false});
        next = 1;
    } else if (names.first() == m_targets[static_cast<size_t>(m_top)].name) {
        next = 1;
    }
    for (; next < names.size(); ++next)
        at = child(at, names[next]);
    m_byPath.insert(key, at);
    return at;
}

int DepartmentTargets::child(int parent, const QString& name)
{
    OrgNode* node = m_targets[static_cast<size_t>(parent)].node;
    if (node && !m_childrenIndexed.contains(parent)) {
        m_childrenIndexed.insert(parent);
        for (int i = 0; i < node->childCount(); ++i) {
            OrgNode* sub = node->child(i);
            if (sub->isGroup() && !m_childByName.contains({parent, sub->name()}))
                m_childByName.insert({parent, sub->name()}, add({sub, parent, sub->name(), sub->groupId(), false}));
        }
    }
    if (const auto known = m_childByName.constFind({parent, name}); known != m_childByName.cend())
        return *known;
    const int created = add({nullptr, parent, name, -2, false});
    m_childByName.insert({parent, name}, created);
    return created;
}

void DepartmentTargets::markUsed(int target)
{
    for (int at = target; at >= 0 && !m_targets[static_cast<size_t>(at)].bUsed;
         at = m_targets[static_cast<size_t>(at)].parent)
        m_targets[static_cast<size_t>(at)].bUsed = true;
}

void DepartmentTargets::numberNew(int firstId)
{
    int id = firstId;
    bool first = true;
    for (DepartmentTarget& target : m_targets) {
        if (target.node || !target.bUsed)
            continue;
        id = first ? firstId : following(id, -2);
        first = false;
        target.groupId = id;
    }
}

QString DepartmentTargets::path(int target) const
{
    QStringList names;
    for (int at = target; at >= 0; at = m_targets[static_cast<size_t>(at)].parent)
        names.prepend(m_targets[static_cast<size_t>(at)].name);
    return names.join(u'/');
}

// --- Ranks ------------------------------------------------------------------------------------------

RankTargets::RankTargets(const RankList& ranks)
{
    for (const RankRecord& rank : ranks.ranks()) {
        if (!m_byName.contains(rank.RankName)) {
            m_byName.insert(rank.RankName, static_cast<int>(m_targets.size()));
            m_targets.push_back({rank.K_RankID, rank.RankName, false, false});
        }
    }
}

int RankTargets::resolve(const QString& name)
{
    if (const auto known = m_byName.constFind(name); known != m_byName.cend())
        return *known;
    if (name.isEmpty() || name == Msg::kNoRank)
        return -1;
    const int created = static_cast<int>(m_targets.size());
    m_targets.push_back({-1, name, true, false});
    m_byName.insert(name, created);
    return created;
}

void RankTargets::markUsed(int target)
{
    if (target >= 0)
        m_targets[static_cast<size_t>(target)].bUsed = true;
}

bool RankTargets::isSame(const RankList& ranks, int current, int wanted)
{
    return current == wanted || (wanted == -1 && ranks.positionOf(current) < 0);
}

void RankTargets::numberNew(int firstId)
{
    int id = firstId;
    bool first = true;
    for (RankTarget& target : m_targets) {
        if (!target.bNew || !target.bUsed)
            continue;
        id = first ? firstId : following(id, -1);
        first = false;
        target.rankId = id;
    }
}

} // namespace sable
