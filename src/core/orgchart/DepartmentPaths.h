#pragma once

#include <QHash>
#include <QSet>
#include <QString>

namespace sable {

class OrgChart;
class OrgNode;

// The paths of the departments ("본사/영업부/1팀") and, for the member list, every department a
// member sits in. A path is worked out once and kept until a department is added, removed, renamed
// or moved, so that a list of many thousands of members shows and searches its departments quickly.
class DepartmentPaths
{
public:
    explicit DepartmentPaths(const OrgChart& chart);

    // The path of a department, or of a member node's department.
    QString pathOf(const OrgNode* node) const;
    // The paths of every department the member sits in, in the order of the tree, joined by ";".
    QString departmentsOf(int memberId) const;
    // The departments whose path holds `text`, compared as `cs` says.
    QSet<const OrgNode*> departmentsMatching(const QString& text, Qt::CaseSensitivity cs) const;

    static constexpr QChar kSeparator = u';';

private:
    void dropIfStale() const;

    const OrgChart& m_chart;
    mutable QHash<const OrgNode*, QString> m_paths;
    mutable quint64 m_revision = 0;
};

} // namespace sable
