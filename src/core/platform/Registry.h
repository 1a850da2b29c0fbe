#pragma once

#include "platform/RegistryBackend.h"

#include <QString>

#include <memory>
#include <optional>

namespace sable {

// Buffer sizes the console reads registry strings with; a value that does not fit reads as missing.
namespace RegBuffer {
constexpr int kConnectionString = 1024;
constexpr int kStartupConnectionString = 250;
constexpr int kPath = 260;
constexpr int kShort = 128;
} // namespace RegBuffer

class RegistryKey;

// The registry as the console uses it. On Windows it is the machine's registry; elsewhere a pair of
// regedit-format files (see RegFileBackend), so the same code and the same settings serve both.
class Registry
{
public:
    explicit Registry(std::shared_ptr<RegistryBackend> backend);

    // The platform's registry for a server installed in `homeFolder`: the machine's registry on
    // Windows; elsewhere <home>/registry/HKLM.reg and $XDG_CONFIG_HOME/Halvex/HKCU.reg, or both in
    // the folder named by SABLE_REGISTRY_DIR.
    static Registry forHome(const QString& homeFolder);

    // The key when it exists, else nullopt.
    std::optional<RegistryKey> openKey(RegRoot root, const QString& path) const;
    // The key, created with every key above it when missing; nullopt when it cannot be created.
    std::optional<RegistryKey> createKey(RegRoot root, const QString& path) const;
    // Whether a value is stored, also when its key's text is too damaged to open the key.
    ValuePresence presence(RegRoot root, const QString& path, const QString& name) const;

    RegistryBackend& backend() const { return *m_backend; }

private:
    std::shared_ptr<RegistryBackend> m_backend;
};

// Values that belong together (a server's address with its user and password), for
// RegistryKey::writeValues.
class RegistryValues
{
public:
    RegistryValues& string(const QString& name, const QString& value);
    RegistryValues& dword(const QString& name, quint32 value);

    const std::vector<RegValue>& values() const { return m_values; }

private:
    std::vector<RegValue> m_values;
};

class RegistryKey
{
public:
    RegistryKey(std::shared_ptr<RegistryBackend> backend, RegRoot root, QString path);

    RegRoot root() const { return m_root; }
    const QString& path() const { return m_path; }

    std::optional<QString> readString(const QString& name, int bufferBytes) const;
    std::optional<quint32> readDword(const QString& name) const;
    bool writeString(const QString& name, const QString& value) const;
    bool writeDword(const QString& name, quint32 value) const;
    // Writes every value in one change where the store has one (see RegistryBackend::writeValues).
    bool writeValues(const RegistryValues& values) const;

private:
    std::shared_ptr<RegistryBackend> m_backend;
    RegRoot m_root;
    QString m_path;
};

} // namespace sable
