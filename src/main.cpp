// The administrator's console of the Sable messenger server.

#include "Messages.h"
#include "mainwindow/CMainFrame.h"
#include "platform/AppPaths.h"
#include "platform/QtTranslations.h"
#include "server/ServerServiceControl.h"
#include "server/ServiceManagerSettings.h"
#include "server/StartupConfig.h"
#include "server/StartupSteps.h"

#include <QApplication>
#include <QDialog>
#include <QMessageBox>
#include <QTimer>

using namespace sable;

namespace {

// The value of "--name VALUE" in `arguments`, or an empty text.
QString optionValue(const QStringList& arguments, const QString& name)
{
    const qsizetype at = arguments.indexOf(name);
    return at >= 0 && at + 1 < arguments.size() ? arguments[at + 1] : QString();
}

// What "--screenshot" pictures: the dialog on top when a command opened one, else the window.
QWidget* pictured(QWidget* frame)
{
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (auto it = windows.crbegin(); it != windows.crend(); ++it) {
        if (qobject_cast<QDialog*>(*it) && (*it)->isVisible())
            return *it;
    }
    return frame;
}

// Options for checking the console on a machine without a screen and for the user guide's pictures:
// "--view N" shows view N once the chart is loaded (2 the chart editor, 3 the rank editor, ...),
// "--command ID" then runs a menu command, and "--screenshot FILE" saves a picture of the window
// (or of the dialog the command opened) and quits.
void followOptions(CMainFrame& frame, const QStringList& arguments)
{
    const int view = optionValue(arguments, QStringLiteral("--view")).toInt();
    const int command = optionValue(arguments, QStringLiteral("--command")).toInt();
    QObject::connect(&frame, &CMainFrame::chartLoaded, &frame, [&frame, view, command] {
        if (view > Cmd::kStartPage)
            frame.switchToView(view);
        if (command > 0)
            QTimer::singleShot(300, &frame, [&frame, command] { frame.runCommand(command); });
    });
    const QString target = optionValue(arguments, QStringLiteral("--screenshot"));
    if (target.isEmpty())
        return;
    QObject::connect(&frame, &CMainFrame::chartLoaded, &frame, [&frame, target] {
        QTimer::singleShot(1500, &frame, [&frame, target] {
            pictured(&frame)->grab().save(target);
            QApplication::exit(0);
        });
    });
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("SableManager"));
    QApplication::setApplicationVersion(QStringLiteral(SABLE_VERSION_STRING));
    // Ties the windows to the installed desktop entry, for the icon and the name in the task bar.
    QGuiApplication::setDesktopFileName(QStringLiteral(SABLE_APP_ID));
    QtTranslations::installKorean(app);

    const QStringList arguments = app.arguments().mid(1);
    const AppPaths paths = AppPaths::forFolder(AppPaths::resolveHome(arguments, QApplication::applicationDirPath()));
    if (StartupSteps::hasInstallSwitch(arguments))
        StartupSteps::runInstallSwitch(paths);

    StartupConfig config(Registry::forHome(paths.programFolder), paths);
    const StartupSettings settings = config.read();
    if (!settings.connectionProblem.isEmpty()) {
        // Nothing is opened: the chart would be read from, and saved to, a database the server does
        // not use.
        QMessageBox::critical(
            nullptr, Msg::kAppTitle, Msg::kStartupStopped + QStringLiteral("\n\n") + settings.connectionProblem);
        return 1;
    }
    auto services = ServiceManagerSettings::read(config.registry()).createBackend();
    CMainFrame frame(config, settings, services);
    frame.services().registerMissingServices();
    frame.show();
    frame.postCreate();
    frame.startLoad();
    followOptions(frame, arguments);
    return app.exec();
}
