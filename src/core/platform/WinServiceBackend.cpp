#include "platform/WinServiceBackend.h"

#include "platform/WinText.h"

#include <windows.h>

namespace sable {
namespace {

using WinText::widen;

std::string describe(const char* what, DWORD error)
{
    return std::string(what) + " failed with error " + std::to_string(error);
}

class ScHandle
{
public:
    explicit ScHandle(SC_HANDLE handle)
        : m_handle(handle)
    { }
    ~ScHandle()
    {
        if (m_handle)
            CloseServiceHandle(m_handle);
    }
    ScHandle(const ScHandle&) = delete;
    ScHandle& operator=(const ScHandle&) = delete;

    SC_HANDLE get() const { return m_handle; }

private:
    SC_HANDLE m_handle;
};

ServiceStatus fromWin32(const SERVICE_STATUS& status)
{
    ServiceStatus out;
    switch (status.dwCurrentState) {
    case SERVICE_START_PENDING:
    case SERVICE_CONTINUE_PENDING:
        out.state = ServiceState::StartPending;
        break;
    case SERVICE_STOP_PENDING:
    case SERVICE_PAUSE_PENDING:
        out.state = ServiceState::StopPending;
        break;
    case SERVICE_RUNNING:
        out.state = ServiceState::Running;
        break;
    default: // stopped, paused
        out.state = ServiceState::Stopped;
        break;
    }
    out.checkPoint = status.dwCheckPoint;
    out.waitHint = status.dwWaitHint;
    return out;
}

// Opens the manager and the service, then runs `call` on the service handle.
template <typename Call>
ServiceReply withService(const std::string& name, DWORD access, Call call)
{
    const ScHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
    if (!manager.get())
        return {ServiceOutcome::Unavailable, {}, describe("OpenSCManager", GetLastError())};
    const ScHandle service(OpenServiceW(manager.get(), widen(name).c_str(), access));
    if (!service.get()) {
        const DWORD error = GetLastError();
        const auto outcome
            = error == ERROR_SERVICE_DOES_NOT_EXIST ? ServiceOutcome::DoesNotExist : ServiceOutcome::Unavailable;
        return {outcome, {}, describe("OpenService", error)};
    }
    return call(service.get());
}

} // namespace

ServiceReply WinServiceBackend::query(const std::string& name)
{
    return withService(name, SERVICE_QUERY_STATUS, [](SC_HANDLE service) {
        SERVICE_STATUS status {};
        if (!QueryServiceStatus(service, &status))
            return ServiceReply {ServiceOutcome::Failed, {}, describe("QueryServiceStatus", GetLastError())};
        return ServiceReply {ServiceOutcome::Done, fromWin32(status), {}};
    });
}

ServiceReply WinServiceBackend::start(const std::string& name)
{
    return withService(name, SERVICE_START | SERVICE_QUERY_STATUS, [](SC_HANDLE service) {
        if (!StartServiceW(service, 0, nullptr))
            return ServiceReply {ServiceOutcome::Failed, {}, describe("StartService", GetLastError())};
        return ServiceReply {ServiceOutcome::Done, {}, {}};
    });
}

ServiceReply WinServiceBackend::stop(const std::string& name)
{
    return withService(name, SERVICE_STOP | SERVICE_QUERY_STATUS, [](SC_HANDLE service) {
        SERVICE_STATUS status {};
        if (!ControlService(service, SERVICE_CONTROL_STOP, &status))
            return ServiceReply {ServiceOutcome::Failed, {}, describe("ControlService", GetLastError())};
        return ServiceReply {ServiceOutcome::Done, fromWin32(status), {}};
    });
}

} // namespace sable
