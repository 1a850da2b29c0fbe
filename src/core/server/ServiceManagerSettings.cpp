#include "server/ServiceManagerSettings.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "platform/SupervisorServiceBackend.h"
#include "server/ServerServices.h"

#ifdef Q_OS_WIN
#include "platform/WinServiceBackend.h"
#endif

namespace sable {

ServiceManagerSettings ServiceManagerSettings::read(const Registry& registry)
{
    ServiceManagerSettings settings;
    const auto key = registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    if (!key)
        return settings;
    if (const auto name = key->readString(Keys::kServiceManager, RegBuffer::kShort); name && !name->isEmpty()) {
        if (const auto kind = kindNamed(*name)) {
            settings.kind = *kind;
        } else {
            settings.kind = Kind::None;
            settings.problem
                = QStringLiteral("unknown service manager \"%1\" (use scm, supervisord or none)").arg(*name);
        }
    }
    if (const auto url = key->readString(Keys::kSupervisorUrl, RegBuffer::kPath); url && !url->isEmpty())
        settings.supervisorUrl = *url;
    settings.supervisorUser = key->readString(Keys::kSupervisorUser, RegBuffer::kShort).value_or(QString());
    settings.supervisorPassword = key->readString(Keys::kSupervisorPassword, RegBuffer::kShort).value_or(QString());
    return settings;
}

bool ServiceManagerSettings::write(const Registry& registry) const
{
    const auto key = registry.createKey(RegRoot::LocalMachine, Keys::kSableManager);
    // In one step: an address with another configuration's password reaches nobody.
    return key
        && key->writeValues(RegistryValues()
                                .string(Keys::kServiceManager, nameOf(kind))
                                .string(Keys::kSupervisorUrl, supervisorUrl)
                                .string(Keys::kSupervisorUser, supervisorUser)
                                .string(Keys::kSupervisorPassword, supervisorPassword));
}

std::shared_ptr<ServiceBackend> ServiceManagerSettings::createBackend() const
{
    switch (kind) {
    case Kind::Supervisord:
        return std::make_shared<SupervisorServiceBackend>(
            SupervisorClient::Endpoint {QUrl(supervisorUrl), supervisorUser, supervisorPassword});
    case Kind::Scm:
#ifdef Q_OS_WIN
        return std::make_shared<WinServiceBackend>();
#else
        return std::make_shared<UnavailableServiceBackend>("there is no Windows service manager on this system");
#endif
    case Kind::None:
        break;
    }
    const QString reason = problem.isEmpty()
        ? QStringLiteral("no service manager is configured (HKLM SOFTWARE\\Halvex\\SableManager \"ServiceManager\")")
        : problem;
    return std::make_shared<UnavailableServiceBackend>(reason.toStdString());
}

QString ServiceManagerSettings::unavailableSummary() const
{
    if (!problem.isEmpty())
        return Msg::kServicesUnknownManager;
    switch (kind) {
    case Kind::Supervisord:
        return Msg::kServicesSupervisorUnreachable;
    case Kind::Scm:
#ifdef Q_OS_WIN
        return Msg::kServicesScmUnreachable;
#else
        return Msg::kServicesNoScm;
#endif
    case Kind::None:
        break;
    }
    return Msg::kServicesNotConfigured;
}

ServiceManagerSettings::Probe ServiceManagerSettings::probe() const
{
    if (kind == Kind::None || !problem.isEmpty())
        return {false, unavailableSummary()};
    Probe result;
    QStringList known;
    QStringList unknown;
    if (kind == Kind::Supervisord) {
        const SupervisorClient client({QUrl(supervisorUrl), supervisorUser, supervisorPassword});
        const auto version = client.call(QStringLiteral("supervisor.getSupervisorVersion"));
        const auto state = client.call(QStringLiteral("supervisor.getState"));
        if (version.kind != SupervisorClient::Result::Kind::Value
            || state.kind != SupervisorClient::Result::Kind::Value)
            return {false, version.kind != SupervisorClient::Result::Kind::Value ? version.message : state.message};
        result.answer
            = QStringLiteral("supervisord %1 (%2)")
                  .arg(version.value.toString(), state.value.toMap().value(QStringLiteral("statename")).toString());
    }
    const auto backend = createBackend();
    for (const QString& name : ServerServices::kInstallOrder) {
        const ServiceReply reply = backend->query(name.toStdString());
        if (reply.outcome == ServiceOutcome::Unavailable)
            return {false, QString::fromStdString(reply.message)};
        (reply.outcome == ServiceOutcome::DoesNotExist ? unknown : known) << name;
    }
    result.bReached = true;
    result.answer += (result.answer.isEmpty() ? QString() : QStringLiteral("\n"))
        + Msg::kServiceManagerKnows.arg(known.size()).arg(known.join(QStringLiteral(", ")));
    if (!unknown.isEmpty())
        result.answer += u'\n' + Msg::kServiceManagerUnknown.arg(unknown.join(QStringLiteral(", ")));
    return result;
}

ServiceManagerSettings::Kind ServiceManagerSettings::defaultKind()
{
#ifdef Q_OS_WIN
    return Kind::Scm;
#else
    return Kind::None;
#endif
}

QString ServiceManagerSettings::defaultSupervisorUrl()
{
    return QStringLiteral("http://127.0.0.1:9001/RPC2");
}

QString ServiceManagerSettings::nameOf(Kind kind)
{
    switch (kind) {
    case Kind::Scm:
        return QStringLiteral("scm");
    case Kind::Supervisord:
        return QStringLiteral("supervisord");
    case Kind::None:
        break;
    }
    return QStringLiteral("none");
}

std::optional<ServiceManagerSettings::Kind> ServiceManagerSettings::kindNamed(const QString& name)
{
    for (const Kind kind : {Kind::Scm, Kind::Supervisord, Kind::None}) {
        if (name.compare(nameOf(kind), Qt::CaseInsensitive) == 0)
            return kind;
    }
    return std::nullopt;
}

} // namespace sable
