#pragma once

#include "document/Balloon.h"
#include "orgchart/DepartmentPaths.h"
#include "orgchart/MemberListRows.h"
#include "orgchart/OrgChartListener.h"

#include <QAbstractTableModel>
#include <QSet>
#include <QTimer>

namespace sable {

class CSableManagerDoc;
class OrgChart;

// The member list as a Qt model: the members the search lets through, in the order a column header
// chose, then the empty entry row in which a new member is typed; the fourteen member columns and
// "부서", every department of the member. Members in no department are shown faded. Edits go through
// the chart's editing commands; a refused edit asks for a balloon. After every edit the search is
// applied again, so that rows that no longer match go and rows that now match come.
class MemberListModel final
    : public QAbstractTableModel
    , private OrgChartListener
{
    Q_OBJECT

public:
    enum Role
    {
        MemberIdRole = Qt::UserRole + 1, // K_MemberID of a member row, -1 for the entry row
        FadedRole, // true for a member in no department
        SearchTextRole, // what the search box looks through
    };
    static constexpr int kDepartmentsColumn = MemberListRows::kDepartmentsColumn;

    explicit MemberListModel(CSableManagerDoc& doc, QObject* parent = nullptr);
    ~MemberListModel() override;

    void setBalloonHelp(bool on) { m_bBalloonHelp = on; }
    int entryRow() const { return m_rows.count(); }
    bool isEntryRow(int row) const { return row == entryRow(); }
    // The chart's member row shown at `row` (the entry row gives the chart's member count), and
    // the row that shows a member row (-1 when the search hides it).
    int memberRow(int row) const;
    int rowOfMember(int memberRow) const;

    void setSearchText(const QString& text);
    void setOnlyWithoutDepartment(bool on);
    bool isFiltering() const { return m_rows.filter().isActive(); }
    const QString& searchText() const { return m_rows.filter().text; }
    // Members shown, and members in all.
    int shownCount() const { return m_rows.count(); }
    int memberCount() const;
    // Looks again at what the edits since the last look changed (done by itself right after an edit).
    void reapplyFilter();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    // Column -1 goes back to the list's own order.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;
    int sortColumn() const { return m_rows.sortColumn(); }
    Qt::SortOrder sortOrder() const { return m_rows.sortOrder(); }

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;

Q_SIGNALS:
    // Show `balloon` at the cell it names (member rows of the chart, columns of this model).
    void balloonRequested(const sable::Balloon& balloon);
    // The rows shown, or their number, changed.
    void shownRowsChanged();

private:
    void chartAboutToReset() override;
    void chartReset() override;
    void membersAboutToBeInserted(int, int) override { }
    void membersInserted(int first, int last) override;
    void membersAboutToBeRemoved(int first, int last) override;
    void membersRemoved(int first, int last) override;
    void membersAboutToBeRemovedAt(const std::vector<int>& rows) override;
    void membersRemovedAt(const std::vector<int>& rows) override;
    void membersAboutToBeInsertedAt(const std::vector<int>&) override { }
    void membersInsertedAt(const std::vector<int>& rows) override;
    void memberListAboutToReset() override;
    void memberListReset() override;
    void memberChanged(int row) override;
    void membersChanged(const std::vector<int>& rows) override;
    void nodesInserted(const OrgNode* parent, int first, int last) override;
    void nodesAboutToBeRemoved(const OrgNode* parent, int first, int last) override;
    void nodeReparented(const OrgNode* oldParent, int from, const OrgNode* newParent, int to) override;
    void treeRestructured(const std::vector<const OrgNode*>& nodes) override;
    void nodeMoved(const OrgNode*, int, int) override { departmentsShownChanged(); }
    void childrenReordered(const OrgNode*) override { departmentsShownChanged(); }
    void nodeChanged(const OrgNode* node) override;

    void removeShown(const std::vector<int>& memberRows);
    void showTarget(const std::vector<int>& target);
    // Members whose fields or departments changed: looked at again once the edit is done.
    void markChanged(const std::vector<int>& memberIds);
    // The members placed in the nodes or anywhere below them: their departments change with them.
    void placementsChanged(const std::vector<const OrgNode*>& nodes);
    void departmentsShownChanged();
    void setFilter(MemberListRows::Filter filter);

    CSableManagerDoc& m_doc;
    OrgChart& m_chart;
    DepartmentPaths m_paths;
    MemberListRows m_rows;
    QSet<int> m_changedIds;
    bool m_bAllChanged = false; // so many that one pass over the list is quicker
    QTimer m_refilter;
    bool m_bResetting = false;
    bool m_bAddingByEntry = false;
    bool m_bBalloonHelp = true;
};

} // namespace sable
