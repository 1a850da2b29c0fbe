// A tiny Windows service for the service backend's test: it takes a while to start and to stop,
// reporting growing check points meanwhile, as real services do.

#include <windows.h>

namespace {

wchar_t g_name[] = L"SableTestSvc";
SERVICE_STATUS_HANDLE g_status = nullptr;
HANDLE g_stop = nullptr;

void report(DWORD state, DWORD checkPoint, DWORD waitHint)
{
    SERVICE_STATUS status {};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    status.dwControlsAccepted = state == SERVICE_RUNNING ? SERVICE_ACCEPT_STOP : 0;
    status.dwCheckPoint = checkPoint;
    status.dwWaitHint = waitHint;
    SetServiceStatus(g_status, &status);
}

DWORD WINAPI control(DWORD code, DWORD, LPVOID, LPVOID)
{
    if (code == SERVICE_CONTROL_STOP) {
        report(SERVICE_STOP_PENDING, 1, 2000);
        SetEvent(g_stop);
    }
    return NO_ERROR;
}

void WINAPI serviceMain(DWORD, LPWSTR*)
{
    g_status = RegisterServiceCtrlHandlerExW(g_name, control, nullptr);
    g_stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    for (DWORD checkPoint = 1; checkPoint <= 3; ++checkPoint) {
        report(SERVICE_START_PENDING, checkPoint, 2000);
        Sleep(600);
    }
    report(SERVICE_RUNNING, 0, 0);
    WaitForSingleObject(g_stop, INFINITE);
    for (DWORD checkPoint = 2; checkPoint <= 3; ++checkPoint) {
        Sleep(600);
        report(SERVICE_STOP_PENDING, checkPoint, 2000);
    }
    report(SERVICE_STOPPED, 0, 0);
}

} // namespace

int main()
{
    SERVICE_TABLE_ENTRYW table[] = {{g_name, serviceMain}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherW(table) ? 0 : 1;
}
