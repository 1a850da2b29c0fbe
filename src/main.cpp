// The administrator's console of the Sable messenger server.

#include "app/AppPaths.h"
#include "app/CMainFrame.h"
#include "app/StartupConfig.h"
#include "app/StartupSteps.h"

#include <QApplication>
#include <QTimer>

using namespace sable;

namespace {

// "--screenshot FILE": show the window, save a picture of it and quit (for machines without a
// screen, where the console is checked under a virtual display).
QString screenshotTarget(const QStringList& arguments)
{
    const qsizetype at = arguments.indexOf(QStringLiteral("--screenshot"));
    return at >= 0 && at + 1 < arguments.size() ? arguments[at + 1] : QString();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("SableManager"));
    QApplication::setApplicationVersion(QStringLiteral(SABLE_VERSION_STRING));

    const QStringList arguments = app.arguments().mid(1);
    const AppPaths paths = AppPaths::forFolder(AppPaths::resolveHome(arguments, QApplication::applicationDirPath()));
    if (StartupSteps::hasInstallSwitch(arguments))
        StartupSteps::runInstallSwitch(paths);

    StartupConfig config(Registry::forHome(paths.programFolder), paths);
    const StartupSettings settings = config.read();
    CMainFrame frame(config, settings);
    frame.show();
    frame.postCreate();

    if (const QString target = screenshotTarget(arguments); !target.isEmpty()) {
        QTimer::singleShot(1500, &frame, [&frame, target] {
            frame.grab().save(target);
            QApplication::quit();
        });
    }
    return app.exec();
}
