#pragma once

#include "orgchart/MemberRecord.h"

#include <QSet>
#include <QString>

#include <utility>
#include <vector>

namespace sable {

class DepartmentPaths;
class OrgChart;

// Which members the member list shows and in which order: those that match the search (and, when
// asked, only those in no department), sorted by a column or in the list's own order. Rows are
// member rows of the chart; "shown rows" count the rows on screen. Every change is worked out so
// that it touches no more than it must, and says what changed in the few ranges a view can follow
// quickly, which keeps a list of hundreds of thousands of users responsive.
class MemberListRows
{
public:
    // The column of the list that holds every department of a member, after the member columns.
    static constexpr int kDepartmentsColumn = MemberColumnCount;

    struct Filter
    {
        QString text; // looked for in the ID, name, e-mail, telephone numbers and departments
        bool bOnlyWithoutDepartment = false;
        bool isActive() const { return !text.isEmpty() || bOnlyWithoutDepartment; }
        bool operator==(const Filter&) const = default;
    };

    // Ranges of shown rows [first, last] that go (numbered as before, the last range first) and that
    // come (numbered as afterwards, the first range first).
    struct Diff
    {
        std::vector<std::pair<int, int>> removed;
        std::vector<std::pair<int, int>> inserted;
        size_t rangeCount() const { return removed.size() + inserted.size(); }
    };

    MemberListRows(const OrgChart& chart, const DepartmentPaths& paths);

    int count() const { return static_cast<int>(m_shown.size()); }
    int memberRow(int shownRow) const { return m_shown[static_cast<size_t>(shownRow)]; }
    const std::vector<int>& shown() const { return m_shown; }
    // The shown row of a member row, or -1 when it is not shown.
    int shownRow(int memberRow) const;
    // The shown rows, ascending, of those of `memberRows` that are shown.
    std::vector<int> shownRowsOf(const std::vector<int>& memberRows) const;

    const Filter& filter() const { return m_filter; }
    bool matches(int memberRow) const;
    // Keeps the member shown whatever the filter says, until the filter changes (a user just typed
    // into the list must stay where their fields are filled in).
    void pin(int memberId) { m_pinned.insert(memberId); }

    // The rows `filter` lets through, in the order shown: one pass over the list, or over the rows
    // shown now when the new search only narrows the current one and they are up to date.
    std::vector<int> rowsFor(const Filter& filter, bool bShownAreCurrent = true) const;
    // The rows shown once the members at `changedRows` are looked at again.
    std::vector<int> rowsAfterChanges(const std::vector<int>& changedRows) const;
    // How the shown rows become `target` (both in the order of the list as sorted).
    Diff diff(const std::vector<int>& target) const;

    // What a view calls between its announcements of a change.
    void setFilter(Filter filter);
    void setShown(std::vector<int> rows);
    void eraseShown(int first, int last);
    void insertShown(int at, const std::vector<int>& memberRows);

    // Sorts by `column` (-1: the list's own order): stable, Korean collation with numbers by value,
    // choice columns by the value they store. The shown rows stay the same rows in the new order.
    // Members added later come last until the next sort.
    void sortBy(int column, Qt::SortOrder order);
    int sortColumn() const { return m_sortColumn; }
    Qt::SortOrder sortOrder() const { return m_sortOrder; }

    // The list changed underneath: members at the ascending `rows` were removed (and are no longer
    // shown) or inserted (at the rows they have now; not shown yet).
    void membersRemoved(const std::vector<int>& rows);
    void membersInserted(const std::vector<int>& rows);
    // Starts again from the whole list, unsorted and unfiltered as `filter` says.
    void reset();

private:
    class Matcher;
    int basePosition(int memberRow) const;
    std::vector<std::vector<int>> departmentKeys() const;
    void rebuildBasePositions();

    const OrgChart& m_chart;
    const DepartmentPaths& m_paths;
    Filter m_filter;
    QSet<int> m_pinned;
    std::vector<int> m_shown;
    mutable std::vector<int> m_shownIndex; // by member row, -1 for hidden; rebuilt when asked after a change
    mutable bool m_bShownIndexStale = true;
    int m_sortColumn = -1;
    Qt::SortOrder m_sortOrder = Qt::AscendingOrder;
    std::vector<int> m_base; // every member row in sorted order (empty while unsorted)
    std::vector<int> m_basePosition; // by member row
};

} // namespace sable
