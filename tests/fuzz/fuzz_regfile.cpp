// A registry file in regedit's export format as another program or an administrator left it: reads
// never fail on it, and a value written into it reads back, whatever else the file holds.
#include "FuzzSupport.h"
#include "platform/RegFileBackend.h"

using namespace sable;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString machine = fuzz::fileWith("machine.reg", data, size);
    RegFileBackend registry(machine, fuzz::scratchFolder() + QStringLiteral("/user.reg"));
    const RegRoot root = RegRoot::LocalMachine;
    const std::string key = "SOFTWARE\\Halvex\\Sable";

    registry.keyExists(root, key);
    registry.readString(root, key, "Value", 256);
    registry.readDword(root, key, "Value");
    registry.valuePresence(root, key, "Value");
    registry.valuePresence(root, key, "");

    const std::string text = "a \"quoted\" C:\\path";
    registry.createKey(root, key);
    fuzz::check(registry.keyExists(root, key), "a created key exists");
    fuzz::check(registry.writeString(root, key, "Written", text), "a string is written");
    fuzz::check(registry.readString(root, key, "Written", 256) == text, "a written string reads back");
    fuzz::check(registry.writeString(root, key, "Lines", "one\r\ntwo"), "a string of two lines is written");
    fuzz::check(registry.readString(root, key, "Lines", 256) == "one\r\ntwo", "a string of two lines reads back");
    fuzz::check(registry.writeDword(root, key, "Number", 0xFEEDu), "a number is written");
    fuzz::check(registry.readDword(root, key, "Number") == 0xFEEDu, "a written number reads back");
    fuzz::check(registry.readString(root, key, "Written", 256) == text, "a later write keeps the string");
    return 0;
}
