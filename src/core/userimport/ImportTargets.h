#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <vector>

namespace sable {

class OrgChart;
class OrgNode;
class RankList;

// A department that an import file names: one the chart has, or one the import creates.
struct DepartmentTarget
{
    OrgNode* node = nullptr; // the existing department, or nullptr for a new one
    int parent = -1; // a new one's parent target; -1 at the top level
    QString name;
    int groupId = -2; // a new one's K_GroupID, once numbered
    bool bUsed = false; // some imported row places a user in it or below it
};

// Finds the departments of the paths of a file, and plans the ones that are missing. The chart has
// one top department: a path that starts with its name starts there, any other path is taken as
// below it. A name matches the first sub-department of that name.
class DepartmentTargets
{
public:
    explicit DepartmentTargets(const OrgChart& chart);

    // The target of a path of names from the top down (never empty).
    int resolve(const QStringList& names);
    // A target is needed: it and the new departments above it are created by the import.
    void markUsed(int target);
    // Numbers the needed new departments in order of creation from `firstId`, as each would be
    // numbered when added one after the other.
    void numberNew(int firstId);

    const std::vector<DepartmentTarget>& targets() const { return m_targets; }
    const DepartmentTarget& at(int target) const { return m_targets[static_cast<size_t>(target)]; }
    // "본사/영업부/1팀".
    QString path(int target) const;

private:
    int child(int parent, const QString& name);
    int add(DepartmentTarget target);

    std::vector<DepartmentTarget> m_targets;
    int m_top = -1;
    QHash<std::pair<int, QString>, int> m_childByName;
    QSet<int> m_childrenIndexed; // existing departments whose sub-departments are in m_childByName
    QHash<QString, int> m_byPath;
};

// A rank that an import file names: one of the rank list, or one the import adds at its end.
struct RankTarget
{
    int rankId = -1; // the existing rank's K_RankID, or a new one's once numbered
    QString name;
    bool bNew = false;
    bool bUsed = false;
};

class RankTargets
{
public:
    explicit RankTargets(const RankList& ranks);

    // The target of a rank name; -1 for no rank (an empty name or "직급없음" when no rank has that name).
    int resolve(const QString& name);
    void markUsed(int target);
    // Numbers the needed new ranks in order from `firstId`, as adding them one by one would.
    void numberNew(int firstId);

    // Whether a place with rank `current` already has the rank `wanted` (-1 for none): a rank that
    // names no rank of the list counts as none.
    static bool isSame(const RankList& ranks, int current, int wanted);

    const std::vector<RankTarget>& targets() const { return m_targets; }
    const RankTarget& at(int target) const { return m_targets[static_cast<size_t>(target)]; }

private:
    std::vector<RankTarget> m_targets;
    QHash<QString, int> m_byName;
};

} // namespace sable
