#include "server/ProductLinks.h"

#include "SettingsKeys.h"
#include "platform/Registry.h"

namespace sable {
namespace {

QUrl readUrl(const std::optional<RegistryKey>& key, const QString& name, const char* fallback)
{
    const auto stored = key ? key->readString(name, RegBuffer::kConnectionString) : std::nullopt;
    const QUrl url(stored.value_or(QString()), QUrl::StrictMode);
    return url.isValid() && !url.isEmpty() ? url : QUrl(QString::fromLatin1(fallback));
}

} // namespace

ProductLinks ProductLinks::read(const Registry& registry)
{
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    ProductLinks links;
    links.help = readUrl(key, Keys::kHelpUrl, "https://sable.example.com/manager/help/");
    links.home = readUrl(key, Keys::kProductHomeUrl, "https://sable.example.com/");
    links.upgradeProgram = readUrl(key, Keys::kUpgradeUrl, "https://sable.example.com/download/SM40Patch.exe");
    return links;
}

} // namespace sable
