#include "widgets/PlainMessageBox.h"

#include <QCoreApplication>
#include <QMessageBox>

namespace sable {

void showPlainMessage(QWidget* parent, const QString& text)
{
    QMessageBox box(QMessageBox::NoIcon, QCoreApplication::applicationName(), text, QMessageBox::Ok, parent);
    box.exec();
}

} // namespace sable
