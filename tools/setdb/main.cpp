// setdb: the database settings program of the server's folder. It exits with 5 when it changed
// the database settings and with 0 when it did not, which is how the console learns of a change.

#include "DatabaseSettingsDialog.h"
#include "platform/QtTranslations.h"

#include <QApplication>

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
    return dialog.exec() == QDialog::Accepted ? kChanged : 0;
}
