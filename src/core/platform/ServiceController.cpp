#include "platform/ServiceController.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace sable {

ServiceClock ServiceClock::system()
{
    ServiceClock clock;
    clock.now = [] {
        const auto since = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
    };
    clock.sleep = [](std::uint32_t ms) {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
        return true;
    };
    return clock;
}

ServiceController::ServiceController(std::shared_ptr<ServiceBackend> backend, ServiceClock clock)
    : m_backend(std::move(backend))
    , m_clock(std::move(clock))
{ }

bool ServiceController::isRunning(const std::string& name) const
{
    const ServiceReply reply = m_backend->query(name);
    return reply.isDone() && reply.status.state == ServiceState::Running;
}

bool ServiceController::startService(const std::string& name) const
{
    return changeState(name, true);
}

bool ServiceController::stopService(const std::string& name) const
{
    return changeState(name, false);
}

std::uint32_t ServiceController::waitStep(std::uint32_t waitHint)
{
    return std::clamp<std::uint32_t>(waitHint / 10, 1000, 10000);
}

bool ServiceController::changeState(const std::string& name, bool bStart) const
{
    const ServiceReply request = bStart ? m_backend->start(name) : m_backend->stop(name);
    if (request.outcome == ServiceOutcome::DoesNotExist || request.outcome == ServiceOutcome::Unavailable)
        return true;
    if (!request.isDone())
        return false;
    const ServiceReply first = m_backend->query(name);
    if (!first.isDone())
        return false;
    const ServiceState pending = bStart ? ServiceState::StartPending : ServiceState::StopPending;
    const ServiceStatus last = waitWhilePending(name, first.status, pending);
    return last.state == (bStart ? ServiceState::Running : ServiceState::Stopped);
}

ServiceStatus ServiceController::waitWhilePending(
    const std::string& name, ServiceStatus status, ServiceState pending) const
{
    std::uint64_t since = m_clock.now();
    std::uint32_t checkPoint = status.checkPoint;
    while (status.state == pending) {
        if (!m_clock.sleep(waitStep(status.waitHint)))
            break;
        const ServiceReply reply = m_backend->query(name);
        if (!reply.isDone())
            break;
        status = reply.status;
        if (status.checkPoint > checkPoint) {
            since = m_clock.now();
            checkPoint = status.checkPoint;
        } else if (m_clock.now() - since > status.waitHint) {
            break;
        }
    }
    return status;
}

} // namespace sable
