// setdb: the database settings program of the server's folder. It exits with 5 when it changed
// the database settings and with 0 when it did not, which is how the console learns of a change.

#include "DatabaseSettingsDialog.h"
#include "platform/QtTranslations.h"

#include <QApplication>
#include <QTimer>

using namespace sable;

namespace {

constexpr int kChanged = 5;

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    QtTranslations::installKorean(app);
    const AppPaths paths
        = AppPaths::forFolder(AppPaths::resolveHome(app.arguments().mid(1), QApplication::applicationDirPath()));
    StartupConfig config(Registry::forHome(paths.programFolder), paths);
    config.read();
    DatabaseSettingsDialog dialog(config);
    // "--screenshot FILE": a picture of the dialog as it opens, for the user guide; nothing is changed.
    const QStringList arguments = app.arguments();
    if (const qsizetype at = arguments.indexOf(QStringLiteral("--screenshot")); at > 0 && at + 1 < arguments.size()) {
        dialog.show();
        QTimer::singleShot(800, &dialog, [&dialog, file = arguments[at + 1]] {
            dialog.grab().save(file);
            dialog.reject();
        });
        dialog.exec();
        return 0;
    }
    return dialog.exec() == QDialog::Accepted ? kChanged : 0;
}
