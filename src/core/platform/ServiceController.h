#pragma once

// Standard C++ only, so that the Windows build and its tests use the same wait rule without Qt.

#include "platform/ServiceBackend.h"

#include <functional>
#include <memory>

namespace sable {

// Time as the wait rule sees it. Tests give a fake one, so that waits take no time.
struct ServiceClock
{
    std::function<std::uint64_t()> now; // milliseconds, never going back
    std::function<bool(std::uint32_t ms)> sleep; // false when the wait was interrupted

    // The steady clock and a plain sleep.
    static ServiceClock system();
};

// The three things the console does with a service, over any service manager. Start and stop
// wait while the service is pending, as long as it makes progress:
//  - each round sleeps a tenth of the service's wait hint, at least 1,000 and at most 10,000 ms;
//  - a round in which the check point grew starts the time again;
//  - the wait ends once more than the wait hint has passed without the check point growing, or
//    when a query fails.
// A service that does not exist, or that cannot be opened, reads as not running, and starting or
// stopping it counts as done: the caller cannot tell it from one that was started.
class ServiceController
{
public:
    explicit ServiceController(std::shared_ptr<ServiceBackend> backend, ServiceClock clock = ServiceClock::system());

    bool isRunning(const std::string& name) const;
    bool startService(const std::string& name) const;
    bool stopService(const std::string& name) const;

    ServiceReply query(const std::string& name) const { return m_backend->query(name); }
    ServiceBackend& backend() const { return *m_backend; }

    // The length of one round of the wait for a service with this wait hint.
    static std::uint32_t waitStep(std::uint32_t waitHint);

    // Waits while the service stays in `pending`; returns the last status that could be read.
    ServiceStatus waitWhilePending(const std::string& name, ServiceStatus status, ServiceState pending) const;

private:
    bool changeState(const std::string& name, bool bStart) const;

    std::shared_ptr<ServiceBackend> m_backend;
    ServiceClock m_clock;
};

} // namespace sable
