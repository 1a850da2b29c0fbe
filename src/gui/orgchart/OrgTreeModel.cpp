#include "orgchart/OrgTreeModel.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/ChartMoves.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"

#include <QFont>
#include <QMimeData>

namespace sable {

QString memberDragMimeType()
{
    return QStringLiteral("application/x-qt-windows-mime;value=\"%1\"").arg(QLatin1String(ChartEdits::kDragFormat));
}

QString nodeDragMimeType()
{
    return QLatin1String(ChartMoves::kNodeMimeType);
}

OrgTreeModel::OrgTreeModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractItemModel(parent)
    , m_doc(doc)
    , m_chart(doc.chart())
{
    m_chart.addListener(this);
    connect(&doc, &CSableManagerDoc::rankListChanged, this, &OrgTreeModel::ranksChanged);
}

OrgTreeModel::~OrgTreeModel()
{
    m_chart.removeListener(this);
}

OrgNode* OrgTreeModel::nodeAt(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<OrgNode*>(index.internalPointer()) : nullptr;
}

QModelIndex OrgTreeModel::indexOf(const OrgNode* node) const
{
    if (!node || node == m_chart.invisibleRoot())
        return {};
    return createIndex(node->row(), 0, const_cast<OrgNode*>(node));
}

QModelIndex OrgTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const OrgNode* node = parent.isValid() ? nodeAt(parent) : m_chart.invisibleRoot();
    if (column != 0 || row < 0 || row >= node->childCount())
        return {};
    return createIndex(row, 0, node->child(row));
}

QModelIndex OrgTreeModel::parent(const QModelIndex& child) const
{
    const OrgNode* node = nodeAt(child);
    return node ? indexOf(node->parent()) : QModelIndex();
}

int OrgTreeModel::rowCount(const QModelIndex& parent) const
{
    if (parent.column() > 0)
        return 0;
    const OrgNode* node = parent.isValid() ? nodeAt(parent) : m_chart.invisibleRoot();
    return node->childCount();
}

int OrgTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant OrgTreeModel::data(const QModelIndex& index, int role) const
{
    const OrgNode* node = nodeAt(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole: {
        const QString name = m_chart.displayName(node);
        if (node->isGroup() || m_doc.ranks().positionOf(node->rankId()) < 0)
            return name;
        return Msg::kMemberNodeWithRank.arg(name, m_doc.ranks().nameOf(node->rankId()));
    }
    case Qt::EditRole:
        return m_chart.displayName(node);
    case Qt::DecorationRole: {
        if (node->isGroup())
            return Icons::department();
        const MemberRecord* member = m_chart.findMember(node->memberId());
        return Icons::member(!member || member->Gender == 0);
    }
    case Qt::FontRole:
        if (node == m_chart.rootGroup()) {
            return boldFont();
        }
        return {};
    case Qt::ToolTipRole: {
        if (!node->isMember())
            return {};
        const MemberRecord* member = m_chart.findMember(node->memberId());
        return Msg::kMemberNodeTip.arg(
            member ? member->MemberID : QString(), m_chart.departmentPath(node), m_doc.ranks().nameOf(node->rankId()));
    }
    case NodeRole:
        return QVariant::fromValue(static_cast<void*>(const_cast<OrgNode*>(node)));
    default:
        return {};
    }
}

bool OrgTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    OrgNode* node = nodeAt(index);
    if (role != Qt::EditRole || !node || !node->isGroup())
        return false;
    return ChartEdits(m_doc).renameDepartment(node, value.toString().trimmed()).bChanged;
}

Qt::ItemFlags OrgTreeModel::flags(const QModelIndex& index) const
{
    const OrgNode* node = nodeAt(index);
    if (!node)
        return Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (node->isGroup())
        flags |= Qt::ItemIsEditable | Qt::ItemIsDropEnabled;
    else
        flags |= Qt::ItemNeverHasChildren;
    // Every node but the top department can be dragged elsewhere.
    if (node != m_chart.rootGroup())
        flags |= Qt::ItemIsDragEnabled;
    return flags;
}

QStringList OrgTreeModel::mimeTypes() const
{
    return {memberDragMimeType(), nodeDragMimeType()};
}

QMimeData* OrgTreeModel::mimeData(const QModelIndexList& indexes) const
{
    std::vector<OrgNode*> nodes;
    for (const QModelIndex& index : indexes) {
        OrgNode* node = nodeAt(index);
        if (node && std::find(nodes.begin(), nodes.end(), node) == nodes.end())
            nodes.push_back(node);
    }
    if (nodes.empty())
        return nullptr;
    auto* mime = new QMimeData;
    mime->setData(nodeDragMimeType(), ChartMoves(m_doc).nodePayload(nodes));
    return mime;
}

Qt::DropActions OrgTreeModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

Qt::DropActions OrgTreeModel::supportedDropActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

bool OrgTreeModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int row, int, const QModelIndex& parent) const
{
    const OrgNode* target = nodeAt(parent);
    if (!target || !target->isGroup())
        return false;
    if (data->hasFormat(nodeDragMimeType()))
        return ChartMoves(m_doc).nodesOfPayload(data->data(nodeDragMimeType())).has_value();
    return row < 0 && data->hasFormat(memberDragMimeType());
}

bool OrgTreeModel::dropMimeData(
    const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const EditOutcome outcome = data->hasFormat(nodeDragMimeType())
        ? ChartMoves(m_doc).dropNodes(data->data(nodeDragMimeType()), nodeAt(parent), row, action == Qt::CopyAction)
        : ChartEdits(m_doc).dropOnDepartment(data->data(memberDragMimeType()), nodeAt(parent));
    if (outcome.bChanged || outcome.balloon)
        Q_EMIT dropApplied(outcome);
    // Whatever was dragged stays where the drag began, or has moved already: nothing to remove there.
    return false;
}

// --- Following the chart --------------------------------------------------------------------------

void OrgTreeModel::chartAboutToReset()
{
    beginResetModel();
}

void OrgTreeModel::chartReset()
{
    endResetModel();
}

void OrgTreeModel::nodesAboutToBeInserted(const OrgNode* parent, int first, int last)
{
    beginInsertRows(indexOf(parent), first, last);
}

void OrgTreeModel::nodesInserted(const OrgNode*, int, int)
{
    endInsertRows();
}

void OrgTreeModel::nodesAboutToBeRemoved(const OrgNode* parent, int first, int last)
{
    beginRemoveRows(indexOf(parent), first, last);
}

void OrgTreeModel::nodesRemoved(const OrgNode*, int, int)
{
    endRemoveRows();
}

void OrgTreeModel::nodeAboutToMove(const OrgNode* parent, int from, int to)
{
    const QModelIndex index = indexOf(parent);
    // Qt counts the destination among the rows before the move.
    beginMoveRows(index, from, from, index, to > from ? to + 1 : to);
}

void OrgTreeModel::nodeMoved(const OrgNode*, int, int)
{
    endMoveRows();
}

void OrgTreeModel::keepPersistentNodes()
{
    m_persistentBefore = persistentIndexList();
    m_persistentNodes.clear();
    for (const QModelIndex& index : m_persistentBefore)
        m_persistentNodes.push_back(nodeAt(index));
}

void OrgTreeModel::restorePersistentNodes()
{
    QModelIndexList after;
    for (const OrgNode* node : m_persistentNodes)
        after << (m_chart.isAttached(node) ? indexOf(node) : QModelIndex());
    changePersistentIndexList(m_persistentBefore, after);
    m_persistentBefore.clear();
    m_persistentNodes.clear();
}

void OrgTreeModel::childrenAboutToBeReordered(const OrgNode* parent)
{
    Q_EMIT layoutAboutToBeChanged({QPersistentModelIndex(indexOf(parent))}, QAbstractItemModel::VerticalSortHint);
    keepPersistentNodes();
}

void OrgTreeModel::childrenReordered(const OrgNode* parent)
{
    restorePersistentNodes();
    Q_EMIT layoutChanged({QPersistentModelIndex(indexOf(parent))}, QAbstractItemModel::VerticalSortHint);
}

void OrgTreeModel::nodeAboutToBeReparented(const OrgNode* oldParent, int from, const OrgNode* newParent, int to)
{
    m_bMoving = beginMoveRows(indexOf(oldParent), from, from, indexOf(newParent), to);
    if (!m_bMoving) {
        Q_EMIT layoutAboutToBeChanged();
        keepPersistentNodes();
    }
}

void OrgTreeModel::nodeReparented(const OrgNode*, int, const OrgNode*, int)
{
    if (std::exchange(m_bMoving, false)) {
        endMoveRows();
        return;
    }
    restorePersistentNodes();
    Q_EMIT layoutChanged();
}

void OrgTreeModel::treeAboutToBeRestructured()
{
    Q_EMIT layoutAboutToBeChanged();
    keepPersistentNodes();
}

void OrgTreeModel::treeRestructured(const std::vector<const OrgNode*>&)
{
    restorePersistentNodes();
    Q_EMIT layoutChanged();
}

void OrgTreeModel::ranksChanged()
{
    m_chart.forEachGroup([this](OrgNode* group) {
        if (group->childCount() > 0)
            Q_EMIT dataChanged(index(0, 0, indexOf(group)), index(group->childCount() - 1, 0, indexOf(group)));
    });
}

void OrgTreeModel::nodeChanged(const OrgNode* node)
{
    const QModelIndex index = indexOf(node);
    Q_EMIT dataChanged(index, index);
}

} // namespace sable
