#include "platform/WinRegistryBackend.h"

#include "platform/WinText.h"

#include <cstring>
#include <vector>
#include <windows.h>

namespace sable {
namespace {

using WinText::narrow;
using WinText::widen;

constexpr UINT kKoreanCodePage = 949;

std::size_t ansiLength(const std::wstring& wide)
{
    if (wide.empty())
        return 0;
    return static_cast<std::size_t>(WideCharToMultiByte(
        kKoreanCodePage, 0, wide.data(), static_cast<int>(wide.size()), nullptr, 0, nullptr, nullptr));
}

HKEY rootHandle(RegRoot root)
{
    return root == RegRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

class Key
{
public:
    Key(RegRoot root, const std::string& path, REGSAM access)
    {
        if (RegOpenKeyExW(rootHandle(root), widen(path).c_str(), 0, access, &m_handle) != ERROR_SUCCESS)
            m_handle = nullptr;
    }
    ~Key()
    {
        if (m_handle)
            RegCloseKey(m_handle);
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY handle() const { return m_handle; }

private:
    HKEY m_handle = nullptr;
};

// Reads a value whole, whatever its size; nullopt when it is missing or of another type.
std::optional<std::vector<BYTE>> queryValue(HKEY key, const std::string& name, DWORD expectedType)
{
    const std::wstring wideName = widen(name);
    DWORD type = 0;
    DWORD size = 0;
    if (RegQueryValueExW(key, wideName.c_str(), nullptr, &type, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    if (type != expectedType && !(expectedType == REG_SZ && type == REG_EXPAND_SZ))
        return std::nullopt;
    std::vector<BYTE> data(size);
    if (RegQueryValueExW(key, wideName.c_str(), nullptr, &type, data.data(), &size) != ERROR_SUCCESS)
        return std::nullopt;
    data.resize(size);
    return data;
}

bool setValue(HKEY key, const RegValue& value)
{
    const std::wstring name = widen(value.name);
    if (const auto* number = std::get_if<std::uint32_t>(&value.data)) {
        const DWORD data = *number;
        return RegSetValueExW(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data), sizeof data)
            == ERROR_SUCCESS;
    }
    const std::wstring wide = widen(std::get<std::string>(value.data));
    const auto bytes = static_cast<DWORD>((wide.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.c_str()), bytes)
        == ERROR_SUCCESS;
}

} // namespace

bool WinRegistryBackend::keyExists(RegRoot root, const std::string& path)
{
    return Key(root, path, KEY_READ).handle() != nullptr;
}

bool WinRegistryBackend::createKey(RegRoot root, const std::string& path)
{
    HKEY handle = nullptr;
    if (RegCreateKeyExW(rootHandle(root), widen(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
            nullptr, &handle, nullptr)
        != ERROR_SUCCESS)
        return false;
    RegCloseKey(handle);
    return true;
}

std::optional<std::string> WinRegistryBackend::readString(
    RegRoot root, const std::string& path, const std::string& name, std::size_t bufferBytes)
{
    Key key(root, path, KEY_READ);
    if (!key.handle())
        return std::nullopt;
    const auto data = queryValue(key.handle(), name, REG_SZ);
    if (!data)
        return std::nullopt;
    std::wstring text(reinterpret_cast<const wchar_t*>(data->data()), data->size() / sizeof(wchar_t));
    while (!text.empty() && text.back() == L'\0')
        text.pop_back();
    if (ansiLength(text) + 1 > bufferBytes)
        return std::nullopt;
    return narrow(text);
}

std::optional<std::uint32_t> WinRegistryBackend::readDword(
    RegRoot root, const std::string& path, const std::string& name)
{
    Key key(root, path, KEY_READ);
    if (!key.handle())
        return std::nullopt;
    const auto data = queryValue(key.handle(), name, REG_DWORD);
    if (!data || data->size() != sizeof(DWORD))
        return std::nullopt;
    DWORD value = 0;
    memcpy(&value, data->data(), sizeof value);
    return value;
}

bool WinRegistryBackend::writeString(
    RegRoot root, const std::string& path, const std::string& name, const std::string& value)
{
    return writeValues(root, path, {{name, value}});
}

bool WinRegistryBackend::writeDword(RegRoot root, const std::string& path, const std::string& name, std::uint32_t value)
{
    return writeValues(root, path, {{name, value}});
}

bool WinRegistryBackend::writeValues(RegRoot root, const std::string& path, const std::vector<RegValue>& values)
{
    Key key(root, path, KEY_SET_VALUE);
    if (!key.handle())
        return false;
    for (const RegValue& value : values) {
        if (!setValue(key.handle(), value))
            return false;
    }
    return true;
}

} // namespace sable
