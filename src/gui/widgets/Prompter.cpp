#include "widgets/Prompter.h"

#include <QInputDialog>
#include <QMessageBox>

namespace sable {
namespace {

QString titleOf(QWidget* parent)
{
    // Without the window's mark of unsaved edits, which only its own title bar draws.
    return parent && parent->window() ? parent->window()->windowTitle().remove(QStringLiteral("[*]"))
                                      : QStringLiteral("SableManager");
}

} // namespace

Prompter Prompter::messageBoxes()
{
    Prompter prompter;
    prompter.askYesNo = [](QWidget* parent, const QString& question) {
        return QMessageBox::question(parent, titleOf(parent), question, QMessageBox::Yes | QMessageBox::No)
            == QMessageBox::Yes;
    };
    prompter.askYesNoDetailed = [](QWidget* parent, const QString& question, const QString& details) {
        QMessageBox box(QMessageBox::Question, titleOf(parent), question, QMessageBox::Yes | QMessageBox::No, parent);
        box.setInformativeText(details);
        return box.exec() == QMessageBox::Yes;
    };
    prompter.askYesNoCancel = [](QWidget* parent, const QString& question) {
        switch (QMessageBox::question(
            parent, titleOf(parent), question, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel)) {
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        default:
            return Answer::Cancel;
        }
    };
    prompter.inform
        = [](QWidget* parent, const QString& text) { QMessageBox::information(parent, titleOf(parent), text); };
    prompter.warn = [](QWidget* parent, const QString& text) { QMessageBox::warning(parent, titleOf(parent), text); };
    prompter.askToDestroy = [](QWidget* parent, const QString& question) {
        QMessageBox box(QMessageBox::Question, titleOf(parent), question, QMessageBox::Yes | QMessageBox::No, parent);
        box.setDefaultButton(QMessageBox::No);
        box.setEscapeButton(QMessageBox::No);
        return box.exec() == QMessageBox::Yes;
    };
    prompter.reportError = [](QWidget* parent, const QString& summary, const QString& details) {
        QMessageBox box(QMessageBox::Critical, titleOf(parent), summary, QMessageBox::Ok, parent);
        box.setDetailedText(details);
        box.exec();
    };
    prompter.choose = [](QWidget* parent, const QString& question, const QStringList& choices) {
        bool bChosen = false;
        const QString choice = QInputDialog::getItem(parent, titleOf(parent), question, choices, 0, false, &bChosen);
        return bChosen ? static_cast<int>(choices.indexOf(choice)) : -1;
    };
    return prompter;
}

bool Prompter::confirmDestroy(QWidget* parent, const QString& question) const
{
    return askToDestroy ? askToDestroy(parent, question) : askYesNo(parent, question);
}

void Prompter::showError(QWidget* parent, const QString& summary, const QString& details) const
{
    if (reportError)
        reportError(parent, summary, details);
    else
        warn(parent, details.isEmpty() ? summary : summary + QStringLiteral("\n\n") + details);
}

} // namespace sable
