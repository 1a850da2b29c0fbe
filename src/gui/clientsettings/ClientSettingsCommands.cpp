#include "clientsettings/ClientSettingsCommands.h"

#include "Messages.h"
#include "clientsettings/HomePageDialog.h"
#include "clientsettings/LogoDialog.h"
#include "clientsettings/SessionServerDialog.h"
#include "server/StartupConfig.h"
#include "widgets/PlainMessageBox.h"

namespace sable::ClientSettingsCommands {
namespace {

void report(NoticeOutcome outcome, QWidget* parent)
{
    if (outcome == NoticeOutcome::SendFailed)
        showPlainMessage(parent, Msg::kSendFailed);
}

} // namespace

void runLogo(const StartupConfig& config, QWidget* parent)
{
    const LogoSettings settings(config.paths());
    LogoDialog dialog(settings, parent);
    if (dialog.exec() == QDialog::Accepted)
        report(settings.confirm(dialog.choice()), parent);
}

void runHomePage(const StartupConfig& config, QWidget* parent)
{
    const HomePageSettings settings(config.paths(), HomePageSettings::readVendorHost(config.registry()));
    HomePageDialog dialog(settings, parent);
    if (dialog.exec() == QDialog::Accepted)
        report(settings.confirm(dialog.sites()), parent);
}

void runFileServers(const StartupConfig& config, QWidget* parent)
{
    const SessionServerList list(config.registry());
    SessionServerDialog dialog(list, parent);
    dialog.exec();
}

} // namespace sable::ClientSettingsCommands
