#include "server/ProductLinks.h"

#include "SettingsKeys.h"
#include "clientsettings/HomePageSettings.h"
#include "platform/Registry.h"

namespace sable {
namespace {

QUrl readUrl(const std::optional<RegistryKey>& key, const QString& name, const QString& fallback)
{
    const auto stored = key ? key->readString(name, RegBuffer::kConnectionString) : std::nullopt;
    const QUrl url(stored.value_or(QString()), QUrl::StrictMode);
    return url.isValid() && !url.isEmpty() ? url : QUrl(fallback);
}

} // namespace

ProductLinks ProductLinks::read(const Registry& registry)
{
    // Every page lies on the vendor's host unless a value names another address.
    const QString site = QStringLiteral("https://%1/").arg(HomePageSettings::readVendorHost(registry));
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    ProductLinks links;
    links.help = readUrl(key, Keys::kHelpUrl, site + QStringLiteral("sable/manager/help/"));
    links.home = readUrl(key, Keys::kProductHomeUrl, site);
    links.upgradeProgram = readUrl(key, Keys::kUpgradeUrl, site + QStringLiteral("sable/download/SM40Patch.exe"));
    return links;
}

} // namespace sable
