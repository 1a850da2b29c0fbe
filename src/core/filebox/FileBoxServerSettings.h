#pragma once

#include "platform/AppPaths.h"
#include "platform/Registry.h"

#include <QString>

#include <functional>

namespace sable {

// The values the file-box server reads from HKLM SOFTWARE\Halvex\SableBoxServer.
struct FileBoxServerValues
{
    QString homeDirectory;
    quint32 firstPort = 0;
    quint32 lastPort = 0;
    QString passiveAddress; // announced to clients in passive mode, as typed

    bool operator==(const FileBoxServerValues&) const = default;
};

// The file-box server's settings as the "SableBox 설정" dialog edits them. The console only writes
// them; the server applies them.
class FileBoxServerSettings
{
public:
    static constexpr quint32 kDefaultFirstPort = 55100;
    static constexpr quint32 kDefaultLastPort = 55109;
    static constexpr quint32 kLowestPort = 1;
    static constexpr quint32 kHighestPort = 65535;

    // The address clients reach this machine by (LocalAddress); the machine's unless a test gives another.
    using AddressSource = std::function<QString()>;

    FileBoxServerSettings(Registry registry, AppPaths paths, AddressSource localAddress = {});

    // What the dialog opens with. Every value that cannot be read gets its default, which is written
    // back at once, so that one opening completes the registry; the home directory is created on disk.
    // When the key cannot be opened or created the defaults come back and nothing is written.
    FileBoxServerValues open() const;

    // The range is usable only when the first port is strictly below the last.
    static bool isPortRangeValid(quint32 firstPort, quint32 lastPort);
    static bool isPortInRange(quint32 port) { return port >= kLowestPort && port <= kHighestPort; }

    enum class Confirm
    {
        Saved,
        PortOutOfRange, // a port that is no port number; nothing written
        BadPortRange, // nothing written
    };
    // Writes the four values (a failing write is not reported) and creates the home directory.
    Confirm confirm(const FileBoxServerValues& values) const;

    FileBoxServerValues defaults() const;

private:
    Registry m_registry;
    AppPaths m_paths;
    AddressSource m_localAddress;
};

} // namespace sable
