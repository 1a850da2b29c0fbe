#pragma once

// Standard C++ only: the Windows backend and its tests are built without Qt.

#include <cstdint>
#include <string>

namespace sable {

// The states a service manager reports, numbered as the Windows service manager numbers them.
enum class ServiceState : std::uint32_t
{
    Stopped = 1,
    StartPending = 2,
    StopPending = 3,
    Running = 4,
};

struct ServiceStatus
{
    ServiceState state = ServiceState::Stopped;
    // Grows while a pending start or stop makes progress.
    std::uint32_t checkPoint = 0;
    // How long, in milliseconds, the pending operation may go without progress.
    std::uint32_t waitHint = 0;
};

enum class ServiceOutcome
{
    Done, // the call was made; for a query, `status` holds the service's status
    DoesNotExist, // no service of that name is installed
    Unavailable, // the service manager, or the service, could not be opened
    Failed, // the manager refused the call itself
};

struct ServiceReply
{
    ServiceOutcome outcome = ServiceOutcome::Failed;
    ServiceStatus status;
    std::string message; // why, when the outcome is not Done

    bool isDone() const { return outcome == ServiceOutcome::Done; }
};

// One service manager: each call opens what it needs, makes one request and closes it again, so a
// backend can be used from several threads at once. Start and stop only ask; they never wait.
class ServiceBackend
{
public:
    virtual ~ServiceBackend() = default;

    virtual ServiceReply query(const std::string& name) = 0;
    virtual ServiceReply start(const std::string& name) = 0;
    virtual ServiceReply stop(const std::string& name) = 0;
};

// Where no service manager is configured: every service reads as not reachable.
class UnavailableServiceBackend final : public ServiceBackend
{
public:
    explicit UnavailableServiceBackend(std::string reason)
        : m_reason(std::move(reason))
    { }

    ServiceReply query(const std::string&) override { return reply(); }
    ServiceReply start(const std::string&) override { return reply(); }
    ServiceReply stop(const std::string&) override { return reply(); }

private:
    ServiceReply reply() const { return {ServiceOutcome::Unavailable, {}, m_reason}; }

    std::string m_reason;
};

} // namespace sable
