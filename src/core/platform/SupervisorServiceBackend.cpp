#include "platform/SupervisorServiceBackend.h"

namespace sable {
namespace {

ServiceReply fromFailure(const SupervisorClient::Result& result)
{
    ServiceReply reply;
    reply.message = result.message.toStdString();
    if (result.kind == SupervisorClient::Result::Kind::TransportError)
        reply.outcome = ServiceOutcome::Unavailable;
    else if (result.faultCode == SupervisorClient::kBadName)
        reply.outcome = ServiceOutcome::DoesNotExist;
    else
        reply.outcome = ServiceOutcome::Failed;
    return reply;
}

} // namespace

SupervisorServiceBackend::SupervisorServiceBackend(SupervisorClient::Endpoint endpoint)
    : m_client(std::move(endpoint))
{ }

std::optional<ServiceState> SupervisorServiceBackend::stateOf(const QString& supervisorState)
{
    if (supervisorState == QLatin1String("STARTING") || supervisorState == QLatin1String("BACKOFF"))
        return ServiceState::StartPending;
    if (supervisorState == QLatin1String("RUNNING"))
        return ServiceState::Running;
    if (supervisorState == QLatin1String("STOPPING"))
        return ServiceState::StopPending;
    if (supervisorState == QLatin1String("STOPPED") || supervisorState == QLatin1String("EXITED")
        || supervisorState == QLatin1String("FATAL"))
        return ServiceState::Stopped;
    return std::nullopt;
}

ServiceReply SupervisorServiceBackend::query(const std::string& name)
{
    const auto result = m_client.call(QStringLiteral("supervisor.getProcessInfo"), {QString::fromStdString(name)});
    if (result.kind != SupervisorClient::Result::Kind::Value)
        return fromFailure(result);
    const QVariantMap info = result.value.toMap();
    const QString stateName = info.value(QStringLiteral("statename")).toString();
    const auto state = stateOf(stateName);
    if (!state)
        return {ServiceOutcome::Failed, {}, "the supervisor reports the state " + stateName.toStdString()};
    ServiceReply reply {ServiceOutcome::Done, {}, {}};
    reply.status.state = *state;
    if (*state == ServiceState::StartPending || *state == ServiceState::StopPending) {
        reply.status.checkPoint = static_cast<std::uint32_t>(info.value(QStringLiteral("start")).toLongLong());
        reply.status.waitHint = kPendingWaitHint;
    }
    return reply;
}

ServiceReply SupervisorServiceBackend::start(const std::string& name)
{
    return request(QStringLiteral("supervisor.startProcess"), name);
}

ServiceReply SupervisorServiceBackend::stop(const std::string& name)
{
    return request(QStringLiteral("supervisor.stopProcess"), name);
}

ServiceReply SupervisorServiceBackend::request(const QString& method, const std::string& name) const
{
    const auto result = m_client.call(method, {QString::fromStdString(name), false});
    if (result.kind != SupervisorClient::Result::Kind::Value)
        return fromFailure(result);
    return {ServiceOutcome::Done, {}, {}};
}

} // namespace sable
