#pragma once

#include "platform/ServiceBackend.h"
#include "platform/SupervisorClient.h"

#include <optional>

namespace sable {

// The services as programs of a supervisord, through its XML-RPC interface. Start and stop ask
// without waiting, so that the console's own wait rule does the waiting. supervisord has no check
// point: a pending program reports the time of its latest start attempt instead, which grows each
// time the supervisor tries again, and a wait hint of 10,000 ms.
class SupervisorServiceBackend final : public ServiceBackend
{
public:
    static constexpr std::uint32_t kPendingWaitHint = 10000;

    explicit SupervisorServiceBackend(SupervisorClient::Endpoint endpoint);

    ServiceReply query(const std::string& name) override;
    ServiceReply start(const std::string& name) override;
    ServiceReply stop(const std::string& name) override;

    // The state of a program as the service states name it: STARTING and BACKOFF are start pending,
    // RUNNING running, STOPPING stop pending; STOPPED, EXITED and FATAL stopped. Nullopt for UNKNOWN.
    static std::optional<ServiceState> stateOf(const QString& supervisorState);

private:
    ServiceReply request(const QString& method, const std::string& name) const;

    SupervisorClient m_client;
};

} // namespace sable
