#include "onboarding/MailServerSettings.h"

#include "SettingsKeys.h"

namespace sable {

quint16 MailServerSettings::defaultPort(MailSecurity security)
{
    switch (security) {
    case MailSecurity::StartTls:
        return 587;
    case MailSecurity::Tls:
        return 465;
    case MailSecurity::None:
        break;
    }
    return 25;
}

MailServerSettings MailServerSettings::read(const Registry& registry)
{
    MailServerSettings settings;
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    if (!key)
        return settings;
    const auto text
        = [&key](const QString& name) { return key->readString(name, RegBuffer::kPath).value_or(QString()); };
    settings.host = text(Keys::kMailServer);
    settings.user = text(Keys::kMailUser);
    settings.password = text(Keys::kMailPassword);
    settings.senderAddress = text(Keys::kMailSenderAddress);
    const quint32 security = key->readDword(Keys::kMailSecurity).value_or(0);
    if (security <= quint32(MailSecurity::Tls))
        settings.security = static_cast<MailSecurity>(security);
    const quint32 port = key->readDword(Keys::kMailPort).value_or(0);
    settings.port = port > 0 && port <= 65535 ? static_cast<quint16>(port) : defaultPort(settings.security);
    return settings;
}

bool MailServerSettings::write(const Registry& registry) const
{
    const auto key = registry.createKey(RegRoot::LocalMachine, Keys::kSableManager);
    return key
        && key->writeValues(RegistryValues()
                                .string(Keys::kMailServer, host.trimmed())
                                .dword(Keys::kMailPort, port)
                                .dword(Keys::kMailSecurity, static_cast<quint32>(security))
                                .string(Keys::kMailUser, user)
                                .string(Keys::kMailPassword, password)
                                .string(Keys::kMailSenderAddress, senderAddress.trimmed()));
}

} // namespace sable
