#include "orgchart/MemberListRows.h"

#include "orgchart/DepartmentPaths.h"
#include "orgchart/OrgChart.h"

#include <QCollator>
#include <QHash>
#include <QLocale>

#include <algorithm>
#include <numeric>

namespace sable {

// The filter made ready for many rows: the text with the case rule that fits it, and the
// departments whose path holds it, worked out once for the whole pass.
class MemberListRows::Matcher
{
public:
    Matcher(const OrgChart& chart, const DepartmentPaths& paths, const Filter& filter, const QSet<int>& pinned)
        : m_chart(chart)
        , m_filter(filter)
        , m_pinned(pinned)
    {
        // Hangul, digits and signs have no case: looking for them exactly finds the same, faster.
        const QString& text = filter.text;
        m_cs = text.toLower() == text && text.toUpper() == text ? Qt::CaseSensitive : Qt::CaseInsensitive;
        if (!text.isEmpty())
            m_departments = paths.departmentsMatching(text, m_cs);
    }

    bool matches(int row) const
    {
        const MemberRecord& member = m_chart.member(row);
        if (!m_pinned.isEmpty() && m_pinned.contains(member.K_MemberID))
            return true;
        if (m_filter.bOnlyWithoutDepartment && m_chart.hasPlacement(member.K_MemberID))
            return false;
        const QString& text = m_filter.text;
        if (text.isEmpty())
            return true;
        if (member.MemberID.contains(text, m_cs) || member.MemberName.contains(text, m_cs)
            || member.Email.contains(text, m_cs) || member.HP.contains(text, m_cs)
            || member.OfficePhone.contains(text, m_cs) || member.HomePhone.contains(text, m_cs))
            return true;
        if (m_departments.isEmpty())
            return false;
        const std::vector<OrgNode*>& placements = m_chart.placementsOf(member.K_MemberID);
        return std::any_of(placements.begin(), placements.end(),
            [this](const OrgNode* placement) { return m_departments.contains(placement->parent()); });
    }

private:
    const OrgChart& m_chart;
    const Filter& m_filter;
    const QSet<int>& m_pinned;
    Qt::CaseSensitivity m_cs = Qt::CaseInsensitive;
    QSet<const OrgNode*> m_departments;
};

MemberListRows::MemberListRows(const OrgChart& chart, const DepartmentPaths& paths)
    : m_chart(chart)
    , m_paths(paths)
{
    reset();
}

int MemberListRows::shownRow(int memberRow) const
{
    if (m_bShownIndexStale) {
        m_shownIndex.assign(static_cast<size_t>(m_chart.memberCount()), -1);
        for (size_t i = 0; i < m_shown.size(); ++i) {
            if (m_shown[i] < static_cast<int>(m_shownIndex.size()))
                m_shownIndex[static_cast<size_t>(m_shown[i])] = static_cast<int>(i);
        }
        m_bShownIndexStale = false;
    }
    return memberRow >= 0 && memberRow < static_cast<int>(m_shownIndex.size())
        ? m_shownIndex[static_cast<size_t>(memberRow)]
        : -1;
}

std::vector<int> MemberListRows::shownRowsOf(const std::vector<int>& memberRows) const
{
    std::vector<int> rows;
    for (const int memberRow : memberRows) {
        const int row = shownRow(memberRow);
        if (row >= 0)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

bool MemberListRows::matches(int memberRow) const
{
    return Matcher(m_chart, m_paths, m_filter, m_pinned).matches(memberRow);
}

int MemberListRows::basePosition(int memberRow) const
{
    return m_sortColumn < 0 ? memberRow : m_basePosition[static_cast<size_t>(memberRow)];
}

std::vector<int> MemberListRows::rowsFor(const Filter& filter, bool bShownAreCurrent) const
{
    const QSet<int> noPins;
    const Matcher matcher(m_chart, m_paths, filter, filter == m_filter ? m_pinned : noPins);
    // A longer search finds a part of what the shorter one found: only the rows shown need a look.
    const bool bNarrows = bShownAreCurrent && filter != m_filter && !m_filter.text.isEmpty()
        && filter.text.contains(m_filter.text) && filter.bOnlyWithoutDepartment == m_filter.bOnlyWithoutDepartment;
    std::vector<int> rows;
    if (bNarrows) {
        std::copy_if(m_shown.begin(), m_shown.end(), std::back_inserter(rows),
            [&matcher](int row) { return matcher.matches(row); });
    } else if (m_sortColumn >= 0) {
        std::copy_if(m_base.begin(), m_base.end(), std::back_inserter(rows),
            [&matcher](int row) { return matcher.matches(row); });
    } else {
        for (int row = 0; row < m_chart.memberCount(); ++row) {
            if (matcher.matches(row))
                rows.push_back(row);
        }
    }
    return rows;
}

std::vector<int> MemberListRows::rowsAfterChanges(const std::vector<int>& changedRows) const
{
    const Matcher matcher(m_chart, m_paths, m_filter, m_pinned);
    std::vector<char> changed(static_cast<size_t>(m_chart.memberCount()), 0);
    for (const int row : changedRows) {
        if (row >= 0 && row < m_chart.memberCount())
            changed[static_cast<size_t>(row)] = 1;
    }
    std::vector<int> staying;
    staying.reserve(m_shown.size());
    for (const int row : m_shown) {
        if (!changed[static_cast<size_t>(row)] || matcher.matches(row))
            staying.push_back(row);
    }
    std::vector<int> coming;
    for (int row = 0; row < static_cast<int>(changed.size()); ++row) {
        if (changed[static_cast<size_t>(row)] && shownRow(row) < 0 && matcher.matches(row))
            coming.push_back(row);
    }
    if (coming.empty())
        return staying;
    const auto byPlace = [this](int a, int b) { return basePosition(a) < basePosition(b); };
    std::sort(coming.begin(), coming.end(), byPlace);
    std::vector<int> rows;
    rows.reserve(staying.size() + coming.size());
    std::merge(staying.begin(), staying.end(), coming.begin(), coming.end(), std::back_inserter(rows), byPlace);
    return rows;
}

MemberListRows::Diff MemberListRows::diff(const std::vector<int>& target) const
{
    Diff diff;
    const auto extend = [](std::vector<std::pair<int, int>>& ranges, int index) {
        if (!ranges.empty() && ranges.back().second + 1 == index)
            ranges.back().second = index;
        else
            ranges.emplace_back(index, index);
    };
    size_t i = 0;
    size_t j = 0;
    while (i < m_shown.size() || j < target.size()) {
        const bool bOld = i < m_shown.size();
        const bool bNew = j < target.size();
        if (bOld && (!bNew || basePosition(m_shown[i]) < basePosition(target[j]))) {
            extend(diff.removed, static_cast<int>(i++));
        } else if (bNew && (!bOld || basePosition(target[j]) < basePosition(m_shown[i]))) {
            extend(diff.inserted, static_cast<int>(j++));
        } else {
            ++i;
            ++j;
        }
    }
    std::reverse(diff.removed.begin(), diff.removed.end());
    return diff;
}

void MemberListRows::setFilter(Filter filter)
{
    m_filter = std::move(filter);
    m_pinned.clear();
}

void MemberListRows::setShown(std::vector<int> rows)
{
    m_shown = std::move(rows);
    m_bShownIndexStale = true;
}

void MemberListRows::eraseShown(int first, int last)
{
    m_shown.erase(m_shown.begin() + first, m_shown.begin() + last + 1);
    m_bShownIndexStale = true;
}

void MemberListRows::insertShown(int at, const std::vector<int>& memberRows)
{
    m_shown.insert(m_shown.begin() + at, memberRows.begin(), memberRows.end());
    m_bShownIndexStale = true;
}

void MemberListRows::sortBy(int column, Qt::SortOrder order)
{
    m_sortColumn = column;
    m_sortOrder = order;
    m_bShownIndexStale = true;
    if (column < 0) {
        m_base.clear();
        m_basePosition.clear();
        std::sort(m_shown.begin(), m_shown.end());
        return;
    }
    const int count = m_chart.memberCount();
    m_base.resize(static_cast<size_t>(count));
    std::iota(m_base.begin(), m_base.end(), 0);
    const bool bDescending = order == Qt::DescendingOrder;
    // Equal keys keep the list's order either way.
    const auto sortByKey = [this, bDescending](auto&& compareKeys) {
        std::sort(m_base.begin(), m_base.end(), [&](int a, int b) {
            const int c = compareKeys(a, b);
            return c != 0 ? (bDescending ? c > 0 : c < 0) : a < b;
        });
    };
    if (column == kDepartmentsColumn) {
        const std::vector<std::vector<int>> keys = departmentKeys();
        sortByKey([&keys](int a, int b) {
            const auto& x = keys[static_cast<size_t>(a)];
            const auto& y = keys[static_cast<size_t>(b)];
            return std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end()) ? -1
                : std::lexicographical_compare(y.begin(), y.end(), x.begin(), x.end())  ? 1
                                                                                        : 0;
        });
    } else if (MemberColumns::isChoice(column)) {
        std::vector<int> keys;
        keys.reserve(static_cast<size_t>(count));
        for (int row = 0; row < count; ++row)
            keys.push_back(MemberColumns::storedValue(m_chart.member(row), column));
        sortByKey([&keys](int a, int b) { return keys[static_cast<size_t>(a)] - keys[static_cast<size_t>(b)]; });
    } else {
        QCollator collator(QLocale(QLocale::Korean, QLocale::SouthKorea));
        collator.setNumericMode(true);
        std::vector<QCollatorSortKey> keys;
        keys.reserve(static_cast<size_t>(count));
        for (int row = 0; row < count; ++row) {
            const MemberRecord& member = m_chart.member(row);
            keys.push_back(collator.sortKey(column == kDepartmentsColumn ? m_paths.departmentsOf(member.K_MemberID)
                                                                         : MemberColumns::text(member, column)));
        }
        sortByKey([&keys](int a, int b) { return keys[static_cast<size_t>(a)].compare(keys[static_cast<size_t>(b)]); });
    }
    rebuildBasePositions();
    std::sort(m_shown.begin(), m_shown.end(), [this](int a, int b) { return basePosition(a) < basePosition(b); });
}

std::vector<std::vector<int>> MemberListRows::departmentKeys() const
{
    // Each department's path collated once; a member sorts by the places of their departments in
    // that order, taken as the tree shows them, which orders as their joined paths do.
    QCollator collator(QLocale(QLocale::Korean, QLocale::SouthKorea));
    collator.setNumericMode(true);
    std::vector<std::pair<QCollatorSortKey, const OrgNode*>> paths;
    m_chart.forEachGroup(
        [&](const OrgNode* group) { paths.emplace_back(collator.sortKey(m_paths.pathOf(group)), group); });
    std::stable_sort(
        paths.begin(), paths.end(), [](const auto& a, const auto& b) { return a.first.compare(b.first) < 0; });
    QHash<const OrgNode*, int> place;
    for (size_t i = 0; i < paths.size(); ++i) {
        const bool bSame = i > 0 && paths[i].first.compare(paths[i - 1].first) == 0;
        place.insert(paths[i].second, bSame ? place.value(paths[i - 1].second) : static_cast<int>(i));
    }
    std::vector<std::vector<int>> keys(static_cast<size_t>(m_chart.memberCount()));
    for (int row = 0; row < m_chart.memberCount(); ++row) {
        const int id = m_chart.member(row).K_MemberID;
        const std::vector<OrgNode*>& placements = m_chart.placementsOf(id);
        auto& key = keys[static_cast<size_t>(row)];
        if (placements.size() == 1) {
            key.push_back(place.value(placements.front()->parent()));
            continue;
        }
        for (const OrgNode* placement : m_chart.placementsInTreeOrder(id))
            key.push_back(place.value(placement->parent()));
    }
    return keys;
}

void MemberListRows::rebuildBasePositions()
{
    m_basePosition.assign(m_base.size(), 0);
    for (size_t i = 0; i < m_base.size(); ++i)
        m_basePosition[static_cast<size_t>(m_base[i])] = static_cast<int>(i);
}

void MemberListRows::membersRemoved(const std::vector<int>& rows)
{
    const size_t oldCount = static_cast<size_t>(m_chart.memberCount()) + rows.size();
    std::vector<int> newRow(oldCount, -1);
    size_t next = 0;
    int kept = 0;
    for (size_t row = 0; row < oldCount; ++row) {
        if (next < rows.size() && rows[next] == static_cast<int>(row)) {
            ++next;
            continue;
        }
        newRow[row] = kept++;
    }
    for (int& row : m_shown)
        row = newRow[static_cast<size_t>(row)];
    std::erase(m_shown, -1);
    if (m_sortColumn >= 0) {
        for (int& row : m_base)
            row = newRow[static_cast<size_t>(row)];
        std::erase(m_base, -1);
        rebuildBasePositions();
    }
    m_bShownIndexStale = true;
}

void MemberListRows::membersInserted(const std::vector<int>& rows)
{
    const size_t newCount = static_cast<size_t>(m_chart.memberCount());
    std::vector<int> newRow;
    newRow.reserve(newCount - rows.size());
    size_t next = 0;
    for (size_t row = 0; row < newCount; ++row) {
        if (next < rows.size() && rows[next] == static_cast<int>(row))
            ++next;
        else
            newRow.push_back(static_cast<int>(row));
    }
    for (int& row : m_shown)
        row = newRow[static_cast<size_t>(row)];
    if (m_sortColumn >= 0) {
        for (int& row : m_base)
            row = newRow[static_cast<size_t>(row)];
        m_base.insert(m_base.end(), rows.begin(), rows.end());
        rebuildBasePositions();
    }
    m_bShownIndexStale = true;
}

void MemberListRows::reset()
{
    m_pinned.clear();
    m_sortColumn = -1;
    m_base.clear();
    m_basePosition.clear();
    m_shown.clear();
    m_shown = rowsFor(m_filter);
    m_bShownIndexStale = true;
}

} // namespace sable
