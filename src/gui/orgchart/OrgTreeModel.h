#pragma once

#include "document/EditOutcome.h"
#include "orgchart/OrgChartListener.h"

#include <QAbstractItemModel>

namespace sable {

class CSableManagerDoc;
class OrgChart;

// The department tree as a Qt model: one column, a node's name (a member's with the rank in
// parentheses), its icon (department, or the member's gender), the top department in bold.
// Renaming a department, dropping dragged member rows on one and dragging departments and member
// nodes within the tree go through the chart's editing commands.
class OrgTreeModel final
    : public QAbstractItemModel
    , private OrgChartListener
{
    Q_OBJECT

public:
    enum Role
    {
        NodeRole = Qt::UserRole + 1,
    };

    explicit OrgTreeModel(CSableManagerDoc& doc, QObject* parent = nullptr);
    ~OrgTreeModel() override;

    OrgNode* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOf(const OrgNode* node) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) const override;

    // Dragged member rows land in a department (`row` -1); dragged tree nodes at place `row` of the
    // parent (a department), or as its last child with `row` -1. A drop changes nothing in the
    // place the drag came from, so this always answers false.
    bool dropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) override;

Q_SIGNALS:
    // A drop was made (or refused): what the window is to select or show.
    void dropApplied(const sable::EditOutcome& outcome);

private:
    void chartAboutToReset() override;
    void chartReset() override;
    void nodesAboutToBeInserted(const OrgNode* parent, int first, int last) override;
    void nodesInserted(const OrgNode* parent, int first, int last) override;
    void nodesAboutToBeRemoved(const OrgNode* parent, int first, int last) override;
    void nodesRemoved(const OrgNode* parent, int first, int last) override;
    void nodeAboutToMove(const OrgNode* parent, int from, int to) override;
    void nodeMoved(const OrgNode* parent, int from, int to) override;
    void childrenAboutToBeReordered(const OrgNode* parent) override;
    void childrenReordered(const OrgNode* parent) override;
    void nodeAboutToBeReparented(const OrgNode* oldParent, int from, const OrgNode* newParent, int to) override;
    void nodeReparented(const OrgNode* oldParent, int from, const OrgNode* newParent, int to) override;
    void treeAboutToBeRestructured() override;
    void treeRestructured(const std::vector<const OrgNode*>& nodes) override;
    void nodeChanged(const OrgNode* node) override;
    void keepPersistentNodes();
    void restorePersistentNodes();
    // The names of member nodes carry the rank: every one is redrawn when the ranks change.
    void ranksChanged();

    CSableManagerDoc& m_doc;
    OrgChart& m_chart;
    QModelIndexList m_persistentBefore;
    std::vector<const OrgNode*> m_persistentNodes;
    bool m_bMoving = false;
};

// The MIME type under which dragged tree nodes travel.
QString nodeDragMimeType();

// The MIME type under which dragged member rows travel; on Windows it is the registered clipboard
// format of that name.
QString memberDragMimeType();

} // namespace sable
