#include "widgets/DragLabel.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

namespace sable::DragLabel {
namespace {

constexpr int kPadding = 6;
constexpr int kRadius = 5;
constexpr QPoint kOffsetFromPointer(14, 18);

} // namespace

QPixmap pixmap(const QString& text, const QWidget* widget, int maxWidth)
{
    const QFontMetrics metrics = widget->fontMetrics();
    const QString shown = metrics.elidedText(text, Qt::ElideRight, maxWidth - 2 * kPadding);
    const QSize size(metrics.horizontalAdvance(shown) + 2 * kPadding, metrics.height() + 2 * kPadding);
    const qreal ratio = widget->devicePixelRatioF();
    QPixmap label(size * ratio);
    label.setDevicePixelRatio(ratio);
    label.fill(Qt::transparent);
    QPainter painter(&label);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath card;
    card.addRoundedRect(QRectF(0.5, 0.5, size.width() - 1, size.height() - 1), kRadius, kRadius);
    const QPalette& palette = widget->palette();
    QColor fill = palette.color(QPalette::ToolTipBase);
    fill.setAlpha(215);
    painter.fillPath(card, fill);
    painter.setPen(palette.color(QPalette::Mid));
    painter.drawPath(card);
    painter.setPen(palette.color(QPalette::ToolTipText));
    painter.setFont(widget->font());
    painter.drawText(QRect(QPoint(0, 0), size), Qt::AlignCenter, shown);
    return label;
}

QPoint hotSpot()
{
    return -kOffsetFromPointer;
}

} // namespace sable::DragLabel
