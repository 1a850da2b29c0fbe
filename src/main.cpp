// The administrator's console of the Sable messenger server.

#include "mainwindow/CMainFrame.h"
#include "platform/AppPaths.h"
#include "server/ServerServiceControl.h"
#include "server/ServiceManagerSettings.h"
#include "server/StartupConfig.h"
#include "server/StartupSteps.h"

#include <QApplication>
#include <QTimer>

using namespace sable;

namespace {

// "--screenshot FILE": show the window, save a picture of it once the chart is loaded and quit (for
// machines without a screen, where the console is checked under a virtual display).
QString screenshotTarget(const QStringList& arguments)
{
    const qsizetype at = arguments.indexOf(QStringLiteral("--screenshot"));
    return at >= 0 && at + 1 < arguments.size() ? arguments[at + 1] : QString();
}

// "--view N": the view to show first (2 the chart editor, 3 the rank editor, ...).
int firstView(const QStringList& arguments)
{
    const qsizetype at = arguments.indexOf(QStringLiteral("--view"));
    return at >= 0 && at + 1 < arguments.size() ? arguments[at + 1].toInt() : Cmd::kStartPage;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("SableManager"));
    QApplication::setApplicationVersion(QStringLiteral(SABLE_VERSION_STRING));
    // Ties the windows to the installed desktop entry, for the icon and the name in the task bar.
    QGuiApplication::setDesktopFileName(QStringLiteral(SABLE_APP_ID));

    const QStringList arguments = app.arguments().mid(1);
    const AppPaths paths = AppPaths::forFolder(AppPaths::resolveHome(arguments, QApplication::applicationDirPath()));
    if (StartupSteps::hasInstallSwitch(arguments))
        StartupSteps::runInstallSwitch(paths);

    StartupConfig config(Registry::forHome(paths.programFolder), paths);
    auto services = ServiceManagerSettings::read(config.registry()).createBackend();
    const StartupSettings settings = config.read();
    CMainFrame frame(config, settings, services);
    frame.services().registerMissingServices();
    frame.show();
    frame.postCreate();
    frame.startLoad();

    const int view = firstView(arguments);
    QObject::connect(&frame, &CMainFrame::chartLoaded, &frame, [&frame, view] {
        if (view != Cmd::kStartPage)
            frame.switchToView(view);
    });
    if (const QString target = screenshotTarget(arguments); !target.isEmpty()) {
        QObject::connect(&frame, &CMainFrame::chartLoaded, &frame, [&frame, target] {
            QTimer::singleShot(1200, &frame, [&frame, target] {
                frame.grab().save(target);
                QApplication::exit(0);
            });
        });
    }
    return app.exec();
}
