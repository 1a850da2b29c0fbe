#include "orgchart/ChartFingerprint.h"

#include "orgchart/ChartRows.h"

namespace sable {
namespace {

ChartFingerprint::Counts compare(const QHash<qint64, size_t>& before, const QHash<qint64, size_t>& after)
{
    ChartFingerprint::Counts counts;
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        const auto old = before.constFind(it.key());
        if (old == before.cend())
            ++counts.added;
        else if (*old != it.value())
            ++counts.changed;
    }
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (!after.contains(it.key()))
            ++counts.removed;
    }
    return counts;
}

} // namespace

ChartFingerprint ChartFingerprint::of(const OrgChart& chart)
{
    ChartFingerprint print;
    for (const GroupRow& g : ChartRows::groups(chart))
        print.m_groups.insert(g.K_GroupID, qHashMulti(0, g.GroupName, g.K_GroupID_P, g.Position, g.Depth));
    for (const MemberRecord& m : ChartRows::members(chart)) {
        print.m_members.insert(m.K_MemberID,
            qHashMulti(0, m.MemberID, m.MemberName, m.Passwd, m.Gender, m.bPublic, m.Email, m.HP, m.Address,
                m.HomePhone, m.OfficePhone, m.BirthDay, m.Description, m.bAdmin));
    }
    for (const RelationRow& r : ChartRows::relations(chart))
        print.m_relations.insert(
            qint64(r.K_MemberID) << 32 | quint32(r.K_GroupID), qHashMulti(0, r.K_RankID, r.Position));
    return print;
}

ChartFingerprint::Summary ChartFingerprint::changesTo(const ChartFingerprint& now) const
{
    return {compare(m_groups, now.m_groups), compare(m_members, now.m_members), compare(m_relations, now.m_relations)};
}

} // namespace sable
