#pragma once

#include "orgchart/OrgChartListener.h"

#include <QAbstractItemModel>

namespace sable {

class CSableManagerDoc;
class OrgChart;

// The department tree as a Qt model: one column, a node's name, its icon (department, or the
// member's gender), the top department in bold. Renaming a department and dropping dragged member
// rows on one go through the chart's editing commands.
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
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) const override;
    bool dropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) override;

Q_SIGNALS:
    // A drop added members to a department.
    void membersDropped(const QModelIndex& department);

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
    void nodeChanged(const OrgNode* node) override;

    CSableManagerDoc& m_doc;
    OrgChart& m_chart;
    QModelIndexList m_persistentBefore;
    std::vector<const OrgNode*> m_persistentNodes;
};

// The MIME type under which dragged member rows travel; on Windows it is the registered clipboard
// format of that name.
QString memberDragMimeType();

} // namespace sable
