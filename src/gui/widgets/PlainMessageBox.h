#pragma once

#include <QString>

class QWidget;

namespace sable {

// A message with an OK button and no icon, titled with the program's name: how the console reports
// what the user has to correct in a dialog.
void showPlainMessage(QWidget* parent, const QString& text);

} // namespace sable
