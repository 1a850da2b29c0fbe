#include "orgchart/OrgTreeView.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartMoves.h"
#include "orgchart/OrgTreeModel.h"
#include "widgets/DragLabel.h"

#include <QDrag>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QPainter>

namespace sable {

OrgTreeView::OrgTreeView(CSableManagerDoc& doc, QWidget* parent)
    : QTreeView(parent)
    , m_doc(doc)
{
    setDragEnabled(true);
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DragDrop);
    // The place is drawn here: Qt's indicator knows nothing of thirds and departments.
    setDropIndicatorShown(false);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
}

OrgTreeModel* OrgTreeView::treeModel() const
{
    return static_cast<OrgTreeModel*>(model());
}

std::vector<OrgNode*> OrgTreeView::draggedNodes() const
{
    OrgNode* current = treeModel()->nodeAt(currentIndex());
    if (!current || current == m_doc.chart().rootGroup())
        return {};
    if (current->isGroup())
        return {current};
    std::vector<OrgNode*> nodes {current};
    for (const QModelIndex& index : selectionModel()->selectedIndexes()) {
        OrgNode* node = treeModel()->nodeAt(index);
        if (node && node->isMember() && node != current)
            nodes.push_back(node);
    }
    return m_doc.chart().inTreeOrder(nodes);
}

OrgTreeView::DropTarget OrgTreeView::dropTargetAt(const QPoint& pos, const QMimeData* dragged) const
{
    const QModelIndex index = indexAt(pos);
    OrgNode* node = treeModel()->nodeAt(index);
    if (!node || !dragged)
        return {};
    const QRect row = visualRect(index);
    const QRect wholeRow(0, row.top(), viewport()->width(), row.height());
    DropTarget target;
    if (dragged->hasFormat(nodeDragMimeType())) {
        const auto nodes = ChartMoves(m_doc).nodesOfPayload(dragged->data(nodeDragMimeType()));
        if (!nodes)
            return {};
        if (nodes->front()->isGroup()) {
            const double fraction = row.height() > 0 ? double(pos.y() - row.top()) / row.height() : 0.5;
            const ChartMoves::DropPlace place = ChartMoves::departmentDropPlace(m_doc.chart(), node, fraction);
            target.parent = treeModel()->indexOf(place.parent);
            target.row = place.index;
            target.bLine = place.bBetween;
            if (place.bBetween)
                target.marker = QRect(
                    row.left(), fraction < 0.5 ? row.top() - 1 : row.bottom() - 1, viewport()->width() - row.left(), 3);
            else
                target.marker = visualRect(target.parent).isValid()
                    ? QRect(0, visualRect(target.parent).top(), viewport()->width(), visualRect(target.parent).height())
                    : QRect();
            return target;
        }
    } else if (!dragged->hasFormat(memberDragMimeType())) {
        return {};
    }
    const OrgNode* department = ChartMoves::memberDropDepartment(node);
    target.parent = treeModel()->indexOf(department);
    const QRect departmentRow = visualRect(target.parent);
    target.marker
        = department == node ? wholeRow : QRect(0, departmentRow.top(), viewport()->width(), departmentRow.height());
    return target;
}

void OrgTreeView::startDrag(Qt::DropActions supportedActions)
{
    const std::vector<OrgNode*> nodes = draggedNodes();
    if (nodes.empty())
        return;
    QModelIndexList indexes;
    for (const OrgNode* node : nodes)
        indexes << treeModel()->indexOf(node);
    QMimeData* payload = treeModel()->mimeData(indexes);
    if (!payload)
        return;
    auto* drag = new QDrag(this);
    drag->setMimeData(payload);
    drag->setPixmap(DragLabel::pixmap(ChartMoves(m_doc).dragLabel(nodes), this));
    drag->setHotSpot(DragLabel::hotSpot());
    drag->exec(supportedActions, Qt::MoveAction);
}

void OrgTreeView::dragEnterEvent(QDragEnterEvent* event)
{
    const QMimeData* dragged = event->mimeData();
    if (!dragged->hasFormat(nodeDragMimeType()) && !dragged->hasFormat(memberDragMimeType())) {
        event->ignore();
        return;
    }
    setState(DraggingState);
    event->acceptProposedAction();
}

void OrgTreeView::dragMoveEvent(QDragMoveEvent* event)
{
    // Scrolling near the edges and opening a department held under the pointer, as trees do.
    QTreeView::dragMoveEvent(event);
    const DropTarget target = dropTargetAt(event->position().toPoint(), event->mimeData());
    showTarget(target);
    if (target.isValid())
        event->acceptProposedAction();
    else
        event->ignore();
}

void OrgTreeView::dragLeaveEvent(QDragLeaveEvent* event)
{
    QTreeView::dragLeaveEvent(event);
    showTarget({});
}

void OrgTreeView::dropEvent(QDropEvent* event)
{
    const DropTarget target = dropTargetAt(event->position().toPoint(), event->mimeData());
    showTarget({});
    stopAutoScroll();
    setState(NoState);
    if (!target.isValid()) {
        event->ignore();
        return;
    }
    const bool bCopy = event->dropAction() == Qt::CopyAction || event->modifiers().testFlag(Qt::ControlModifier);
    treeModel()->dropMimeData(event->mimeData(), bCopy ? Qt::CopyAction : Qt::MoveAction, target.row, 0, target.parent);
    // Whatever moved has moved here: the place the drag came from has nothing to remove.
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void OrgTreeView::showTarget(const DropTarget& target)
{
    if (target.marker == m_target.marker && target.bLine == m_target.bLine)
        return;
    m_target = target;
    viewport()->update();
}

void OrgTreeView::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (!m_target.isValid() || m_target.marker.isNull())
        return;
    QPainter painter(viewport());
    QColor highlight = palette().color(QPalette::Highlight);
    if (m_target.bLine) {
        painter.fillRect(m_target.marker, highlight);
        return;
    }
    painter.setPen(QPen(highlight, 2));
    highlight.setAlpha(70);
    painter.setBrush(highlight);
    painter.drawRect(m_target.marker.adjusted(1, 1, -1, -1));
}

} // namespace sable
