#pragma once

#include <QFont>
#include <QString>

class QLabel;
class QWidget;

namespace sable {

// A label in the bold face of its parent's font: the title over a list, a pane or a group of fields.
QLabel* makeHeading(const QString& text, QWidget* parent);

// The bold face of `font`, for what a model shows in bold.
QFont boldFont(QFont font = {});

} // namespace sable
