#pragma once

#include "orgchart/DepartmentPaths.h"
#include "orgchart/OrgChartListener.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QTimer>

#include <vector>

namespace sable {

class CSableManagerDoc;

// The rank list as a tree: one root "직급" whose children are the ranks in rank order, renamed in place.
class RankTreeModel final : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit RankTreeModel(CSableManagerDoc& doc, QObject* parent = nullptr);

    QModelIndex rootIndex() const { return index(0, 0); }
    QModelIndex rankIndex(int rank) const { return index(rank, 0, rootIndex()); }
    // The rank an index stands for, or -1 for the root and invalid indexes.
    int rankAt(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    // A message box is to say why an edit was refused.
    void messageRequested(const QString& text);

private:
    CSableManagerDoc& m_doc;
};

// The membership list "직급별 목록": a row per member placement in tree order, with the member's
// login ID, the department path and the rank, chosen from the rank names and "직급없음". A search
// text keeps the rows whose ID, member name, department or rank holds it.
class MembershipRankModel final
    : public QAbstractTableModel
    , private OrgChartListener
{
    Q_OBJECT

public:
    enum Column
    {
        ColLoginId,
        ColDepartment,
        ColRank,
        ColumnCount
    };

    explicit MembershipRankModel(CSableManagerDoc& doc, QObject* parent = nullptr);
    ~MembershipRankModel() override;

    OrgNode* placementAt(int row) const;
    // The row of a placement, or -1 when it is not listed.
    int rowOf(const OrgNode* placement) const { return m_rowOf.value(placement, -1); }
    // The choices of the rank column: the rank names in order, then "직급없음".
    QStringList rankOptions() const;
    // Rebuilds the rows now (it happens by itself, once, after the chart or the ranks changed).
    void rebuild();
    void setSearchText(const QString& text);
    const QString& searchText() const { return m_search; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void chartReset() override { m_rebuild.start(); }
    void nodesInserted(const OrgNode*, int, int) override { m_rebuild.start(); }
    void nodesRemoved(const OrgNode*, int, int) override { m_rebuild.start(); }
    void nodeMoved(const OrgNode*, int, int) override { m_rebuild.start(); }
    void childrenReordered(const OrgNode*) override { m_rebuild.start(); }
    void nodeReparented(const OrgNode*, int, const OrgNode*, int) override { m_rebuild.start(); }
    void treeRestructured(const std::vector<const OrgNode*>&) override { m_rebuild.start(); }
    void nodeChanged(const OrgNode* node) override;
    void memberChanged(int row) override;
    void membersChanged(const std::vector<int>& rows) override;
    bool matches(const OrgNode* placement, Qt::CaseSensitivity cs) const;

    CSableManagerDoc& m_doc;
    DepartmentPaths m_paths;
    QString m_search;
    std::vector<OrgNode*> m_rows;
    QHash<const OrgNode*, int> m_rowOf;
    QTimer m_rebuild;
};

} // namespace sable
