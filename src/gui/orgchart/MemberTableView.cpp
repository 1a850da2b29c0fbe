#include "orgchart/MemberTableView.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartMoves.h"
#include "orgchart/MemberListModel.h"
#include "widgets/DragLabel.h"

#include <QDrag>
#include <QMimeData>

#include <set>

namespace sable {

MemberTableView::MemberTableView(CSableManagerDoc& doc, QWidget* parent)
    : QTableView(parent)
    , m_doc(doc)
{ }

std::vector<int> MemberTableView::selectedMemberIds() const
{
    const auto* members = static_cast<const MemberListModel*>(model());
    std::set<int> rows;
    for (const QModelIndex& index : selectionModel()->selectedRows()) {
        if (!members->isEntryRow(index.row()))
            rows.insert(members->memberRow(index.row()));
    }
    std::vector<int> ids;
    for (const int row : rows)
        ids.push_back(m_doc.chart().member(row).K_MemberID);
    return ids;
}

QString MemberTableView::dragLabel() const
{
    return ChartMoves(m_doc).dragLabel(selectedMemberIds());
}

void MemberTableView::startDrag(Qt::DropActions supportedActions)
{
    QMimeData* payload = model()->mimeData(selectionModel()->selectedRows());
    if (!payload)
        return;
    auto* drag = new QDrag(this);
    drag->setMimeData(payload);
    drag->setPixmap(DragLabel::pixmap(dragLabel(), this));
    drag->setHotSpot(DragLabel::hotSpot());
    drag->exec(supportedActions, Qt::MoveAction);
}

} // namespace sable
