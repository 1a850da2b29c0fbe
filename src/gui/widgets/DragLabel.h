#pragma once

#include <QPixmap>
#include <QPoint>
#include <QString>

class QWidget;

namespace sable::DragLabel {

// A small label that follows the pointer while something is dragged, in place of a picture of the
// dragged rows: one line of text on a half-transparent card, no wider than `maxWidth`.
QPixmap pixmap(const QString& text, const QWidget* widget, int maxWidth = 320);

// Where the pointer holds the label: above its top-left corner, so that the label sits below and
// to the right of the pointer and leaves the place aimed at in sight.
QPoint hotSpot();

} // namespace sable::DragLabel
