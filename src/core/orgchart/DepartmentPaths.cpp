#include "orgchart/DepartmentPaths.h"

#include "orgchart/OrgChart.h"

namespace sable {

DepartmentPaths::DepartmentPaths(const OrgChart& chart)
    : m_chart(chart)
{ }

void DepartmentPaths::dropIfStale() const
{
    if (m_revision == m_chart.departmentRevision())
        return;
    m_paths.clear();
    m_revision = m_chart.departmentRevision();
}

QString DepartmentPaths::pathOf(const OrgNode* node) const
{
    dropIfStale();
    const OrgNode* department = node && node->isMember() ? node->parent() : node;
    if (!department || department == m_chart.invisibleRoot())
        return {};
    const auto found = m_paths.constFind(department);
    if (found != m_paths.constEnd())
        return *found;
    const OrgNode* parent = department->parent();
    const QString path = parent && parent != m_chart.invisibleRoot()
        ? QString(pathOf(parent) + u'/' + department->name())
        : department->name();
    m_paths.insert(department, path);
    return path;
}

QString DepartmentPaths::departmentsOf(int memberId) const
{
    const std::vector<OrgNode*>& placements = m_chart.placementsOf(memberId);
    if (placements.size() == 1)
        return pathOf(placements.front());
    QString joined;
    for (const OrgNode* placement : m_chart.placementsInTreeOrder(memberId)) {
        if (!joined.isEmpty())
            joined += kSeparator;
        joined += pathOf(placement);
    }
    return joined;
}

QSet<const OrgNode*> DepartmentPaths::departmentsMatching(const QString& text, Qt::CaseSensitivity cs) const
{
    QSet<const OrgNode*> matching;
    m_chart.forEachGroup([&](const OrgNode* group) {
        if (pathOf(group).contains(text, cs))
            matching.insert(group);
    });
    return matching;
}

} // namespace sable
