#pragma once

// Standard C++ and Win32 only, so that it cross-compiles and runs without Qt.

#include "platform/RegistryBackend.h"

namespace sable {

// The real registry of a Windows machine, through the wide-character registry API. Byte limits are
// those of the Korean ANSI code page, as in the server's own programs.
class WinRegistryBackend final : public RegistryBackend
{
public:
    bool keyExists(RegRoot root, const std::string& path) override;
    bool createKey(RegRoot root, const std::string& path) override;
    std::optional<std::string> readString(
        RegRoot root, const std::string& path, const std::string& name, std::size_t bufferBytes) override;
    std::optional<std::uint32_t> readDword(RegRoot root, const std::string& path, const std::string& name) override;
    bool writeString(RegRoot root, const std::string& path, const std::string& name, const std::string& value) override;
    bool writeDword(RegRoot root, const std::string& path, const std::string& name, std::uint32_t value) override;
    // The registry has no transaction over several values (the transacted registry API is
    // deprecated and absent from Wine): the values are written one after the other through one
    // handle, and a failure stops at the value that failed.
    bool writeValues(RegRoot root, const std::string& path, const std::vector<RegValue>& values) override;
};

} // namespace sable
