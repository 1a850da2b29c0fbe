// A settings file (Serverinfo.ini) as an editor or the server left it: reads never fail on it, and
// a value written into it reads back, whatever else the file holds.
#include "FuzzSupport.h"
#include "platform/IniFile.h"

using namespace sable;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const IniFile ini(fuzz::fileWith("Serverinfo.ini", data, size));
    const QString section = QStringLiteral("GroupInfo");

    ini.readString(section, QStringLiteral("Name"), QStringLiteral("none"), 64);
    ini.readInt(section, QStringLiteral("Version"), -1);

    const QString value = QStringLiteral("그룹 1");
    fuzz::check(ini.writeString(section, QStringLiteral("Written"), value), "a value is written");
    fuzz::check(ini.readString(section, QStringLiteral("Written"), {}, 256) == value, "a written value reads back");
    fuzz::check(ini.writeString(section, QStringLiteral("Version"), QStringLiteral("42")), "a number is written");
    fuzz::check(ini.readInt(section, QStringLiteral("Version"), -1) == 42, "a written number reads back");
    fuzz::check(ini.readString(section, QStringLiteral("Written"), {}, 256) == value, "a later write keeps the value");
    return 0;
}
