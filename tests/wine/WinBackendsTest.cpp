// The Windows backends on a real Windows API (Wine's): the registry with the same cases as the
// file backend, and the service manager with a built-in service, a missing one and a service of
// our own started and stopped through the wait rule. Standard C++ and Win32 only, like the code
// it tests. Usage: WinBackendsTest SERVICE_NAME (a service installed, stopped, that takes a while).

#include "platform/ServiceController.h"
#include "platform/WinRegistryBackend.h"
#include "platform/WinServiceBackend.h"

#include <chrono>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>
#include <windows.h>

using namespace sable;

namespace {

int g_passed = 0;
int g_failed = 0;

void check(bool ok, const std::string& what)
{
    if (ok) {
        ++g_passed;
    } else {
        ++g_failed;
        std::printf("FAIL: %s\n", what.c_str());
    }
}

std::string repeat(const std::string& piece, int times)
{
    std::string out;
    for (int i = 0; i < times; ++i)
        out += piece;
    return out;
}

const std::string kHangul = "\xea\xb0\x80"; // 가, two bytes in the Korean code page

void registryPathsIgnoreCase(WinRegistryBackend& reg)
{
    const auto root = RegRoot::LocalMachine;
    check(!reg.keyExists(root, "SOFTWARE\\HalvexTest\\Services\\Database"), "key absent before");
    check(reg.createKey(root, "SOFTWARE\\HalvexTest\\Services\\DataBase"), "create nested key");
    check(reg.writeString(root, "SOFTWARE\\HalvexTest\\Services\\DataBase", "ConnectionString", "DSN=x;"),
        "write string");
    check(reg.readString(root, "software\\halvextest\\services\\database", "connectionstring", 1024)
            == std::optional<std::string>("DSN=x;"),
        "read through another spelling");
    check(reg.keyExists(root, "Software\\HalvexTest"), "keys above exist");
    check(!reg.keyExists(RegRoot::CurrentUser, "Software\\HalvexTest"), "other root does not share them");
    check(!reg.keyExists(root, "SOFTWARE\\HalvexTes"), "a prefix is not a key");
    check(!reg.writeString(root, "SOFTWARE\\HalvexTest\\Missing", "A", "b"), "no write into a missing key");
}

void registryStringBuffer(WinRegistryBackend& reg)
{
    struct Case
    {
        const char* name;
        std::string value;
        std::size_t buffer;
        bool fits;
    };
    const std::vector<Case> cases = {
        {"249 characters in 250", std::string(249, 'c'), 250, true},
        {"250 characters in 250", std::string(250, 'c'), 250, false},
        {"hangul counts two", repeat(kHangul, 125), 250, false},
        {"hangul that fits", repeat(kHangul, 124) + "a", 250, true},
        {"empty value", "", 1, true},
    };
    const std::string path = "SOFTWARE\\HalvexTest\\Buffer";
    reg.createKey(RegRoot::LocalMachine, path);
    for (const Case& c : cases) {
        check(reg.writeString(RegRoot::LocalMachine, path, "Value", c.value), std::string("write: ") + c.name);
        const auto read = reg.readString(RegRoot::LocalMachine, path, "Value", c.buffer);
        check(read.has_value() == c.fits && (!read || *read == c.value), std::string("buffer: ") + c.name);
    }
}

void registryValueTypes(WinRegistryBackend& reg)
{
    const auto root = RegRoot::CurrentUser;
    const std::string path = "Software\\HalvexTest\\SableManager";
    check(reg.createKey(root, path), "create user key");
    check(reg.writeDword(root, path, "BalloonHelp", 0), "write dword 0");
    check(reg.writeDword(root, path, "Port", 55100), "write dword");
    const std::string text = "C:\\Sable \"4.0\"\n\xeb\x91\x98\xec\xa7\xb8 \xec\xa4\x84"; // 둘째 줄
    check(reg.writeString(root, path, "Text", text), "write text");
    check(reg.readDword(root, path, "balloonhelp") == std::optional<std::uint32_t>(0), "dword 0 by another case");
    check(reg.readDword(root, path, "Port") == std::optional<std::uint32_t>(55100), "dword");
    check(reg.readString(root, path, "Text", 1024) == std::optional<std::string>(text), "text with hangul");
    check(!reg.readString(root, path, "Port", 1024), "a dword is not a string");
    check(!reg.readDword(root, path, "Text"), "a string is not a dword");
    check(!reg.readDword(root, path, "Missing"), "missing dword");
    check(reg.writeDword(root, path, "Port", 0xFFFFFFFF) && reg.readDword(root, path, "Port") == 0xFFFFFFFFu,
        "largest dword");
}

void registryValuesTogether(WinRegistryBackend& reg)
{
    const auto root = RegRoot::LocalMachine;
    const std::string path = "SOFTWARE\\HalvexTest\\Supervisor";
    check(reg.createKey(root, path), "create key for several values");
    check(reg.writeValues(root, path,
              {{"SupervisorURL", std::string("http://127.0.0.1:9001/RPC2")}, {"Port", std::uint32_t {9001}},
                  {"SupervisorPassword", std::string("\xec\x95\x94\xed\x98\xb8")}}), // 암호
        "several values written");
    check(reg.readString(root, path, "SupervisorURL", 1024) == std::optional<std::string>("http://127.0.0.1:9001/RPC2")
            && reg.readDword(root, path, "Port") == std::optional<std::uint32_t>(9001)
            && reg.readString(root, path, "SupervisorPassword", 1024)
                == std::optional<std::string>("\xec\x95\x94\xed\x98\xb8"),
        "several values read back");
    check(!reg.writeValues(root, "SOFTWARE\\HalvexTest\\Missing", {{"A", std::uint32_t {1}}}),
        "no values written into a missing key");
}

// Wine's service manager starts its own services while the prefix boots: give it a moment.
bool becomesRunning(const ServiceController& services, const std::string& name)
{
    for (int round = 0; round < 100; ++round) {
        if (services.isRunning(name))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
}

void services(const std::string& testService)
{
    auto backend = std::make_shared<WinServiceBackend>();
    int slept = 0;
    ServiceClock clock = ServiceClock::system();
    const auto sleep = clock.sleep;
    clock.sleep = [&slept, sleep](std::uint32_t ms) {
        ++slept;
        return sleep(ms);
    };
    const ServiceController controller(backend, clock);

    check(becomesRunning(controller, "PlugPlay"), "a built-in service reads running");
    const ServiceReply missing = backend->query("SableNoSuchService");
    check(missing.outcome == ServiceOutcome::DoesNotExist, "missing service: does not exist (" + missing.message + ")");
    check(!controller.isRunning("SableNoSuchService"), "missing service is not running");
    check(controller.startService("SableNoSuchService"), "starting a missing service counts as done");
    check(controller.stopService("SableNoSuchService"), "stopping a missing service counts as done");

    check(!controller.isRunning(testService), "test service stopped at first");
    check(controller.startService(testService), "test service started");
    check(controller.isRunning(testService), "test service running");
    check(slept >= 1, "the start was waited for");
    check(!controller.startService(testService), "a second start is refused");
    slept = 0;
    check(controller.stopService(testService), "test service stopped");
    check(slept >= 1, "the stop was waited for");
    const ServiceReply after = backend->query(testService);
    check(after.isDone() && after.status.state == ServiceState::Stopped, "test service reads stopped");
    check(!controller.stopService(testService), "stopping a stopped service is refused");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 2) {
        std::printf("usage: WinBackendsTest SERVICE_NAME\n");
        return 2;
    }
    WinRegistryBackend registry;
    registryPathsIgnoreCase(registry);
    registryStringBuffer(registry);
    registryValueTypes(registry);
    registryValuesTogether(registry);
    services(argv[1]);
    std::printf("%d passed, %d failed\n", g_passed, g_failed);
    return g_failed == 0 ? 0 : 1;
}
