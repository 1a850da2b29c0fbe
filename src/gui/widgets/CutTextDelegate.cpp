#include "widgets/CutTextDelegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

namespace sable {

bool CutTextDelegate::isCut(const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    if (cell.text.isEmpty())
        return false;
    const QWidget* widget = cell.widget;
    const QStyle* style = widget ? widget->style() : nullptr;
    if (!style)
        return false;
    const QRect textRect = style->subElementRect(QStyle::SE_ItemViewItemText, &cell, widget);
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, widget) + 1;
    return cell.text.contains(u'\n') || cell.fontMetrics.horizontalAdvance(cell.text) + 2 * margin > textRect.width();
}

bool CutTextDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    // A tool tip of the model's own comes first.
    if (!index.data(Qt::ToolTipRole).toString().isEmpty())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    if (!isCut(option, index)) {
        QToolTip::hideText();
        return true;
    }
    QToolTip::showText(event->globalPos(), index.data(Qt::DisplayRole).toString(), view, option.rect);
    return true;
}

} // namespace sable
