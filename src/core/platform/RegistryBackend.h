#pragma once

// Standard C++ only: the Windows backend and its tests are built without Qt.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace sable {

enum class RegRoot
{
    LocalMachine,
    CurrentUser,
};

// Whether a value is stored, whatever a read of it into some buffer would give.
enum class ValuePresence
{
    Absent,
    Present,
    Damaged, // the text that holds the value, or its key, cannot be parsed: it may be there
    FileTooLarge, // the file that holds the registry is too large to be a registry, and is not read
};

// One value of several written together: a string or a DWORD.
struct RegValue
{
    std::string name;
    std::variant<std::string, std::uint32_t> data;
};

// The registry operations the console uses. Paths and values are UTF-8; key paths ignore case.
class RegistryBackend
{
public:
    virtual ~RegistryBackend() = default;

    virtual bool keyExists(RegRoot root, const std::string& path) = 0;
    // Creates the key and every missing key above it; true when it exists afterwards.
    virtual bool createKey(RegRoot root, const std::string& path) = 0;

    // A string value read into a buffer of `bufferBytes`: nullopt when the key or the value is
    // missing, the value is not a string, or the value and its terminating zero do not fit.
    virtual std::optional<std::string> readString(
        RegRoot root, const std::string& path, const std::string& name, std::size_t bufferBytes)
        = 0;
    virtual std::optional<std::uint32_t> readDword(RegRoot root, const std::string& path, const std::string& name) = 0;

    // A store that cannot be damaged (the Windows registry) knows a value by reading it whole.
    virtual ValuePresence valuePresence(RegRoot root, const std::string& path, const std::string& name)
    {
        const bool stored = readString(root, path, name, static_cast<std::size_t>(-1)) || readDword(root, path, name);
        return stored ? ValuePresence::Present : ValuePresence::Absent;
    }

    // Writes into an existing key; false when the key is missing or the write failed.
    virtual bool writeString(RegRoot root, const std::string& path, const std::string& name, const std::string& value)
        = 0;
    virtual bool writeDword(RegRoot root, const std::string& path, const std::string& name, std::uint32_t value) = 0;
    // Writes values that belong together into an existing key, as one change where the store has
    // one: a reader, or a writer killed halfway, sees all of them or none.
    virtual bool writeValues(RegRoot root, const std::string& path, const std::vector<RegValue>& values) = 0;
};

} // namespace sable
