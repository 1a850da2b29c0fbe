#include "filebox/FileBoxServerSettings.h"

#include "SettingsKeys.h"
#include "filebox/FileBoxHome.h"
#include "platform/LocalAddress.h"

#include <QDir>

namespace sable {
namespace {

QString readOrSettleString(const RegistryKey& key, const QString& name, const QString& fallback)
{
    if (const auto stored = key.readString(name, RegBuffer::kPath))
        return *stored;
    key.writeString(name, fallback);
    return fallback;
}

quint32 readOrSettleDword(const RegistryKey& key, const QString& name, quint32 fallback)
{
    if (const auto stored = key.readDword(name))
        return *stored;
    key.writeDword(name, fallback);
    return fallback;
}

} // namespace

FileBoxServerSettings::FileBoxServerSettings(Registry registry, AppPaths paths, AddressSource localAddress)
    : m_registry(std::move(registry))
    , m_paths(std::move(paths))
    , m_localAddress(
          localAddress ? std::move(localAddress) : AddressSource([] { return LocalAddress::GetLocalAddress(); }))
{ }

FileBoxServerValues FileBoxServerSettings::defaults() const
{
    return {FileBoxHome::defaultPath(m_paths), kDefaultFirstPort, kDefaultLastPort, m_localAddress()};
}

FileBoxServerValues FileBoxServerSettings::open() const
{
    const auto key = m_registry.createKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
    if (!key) {
        const FileBoxServerValues values = defaults();
        QDir().mkpath(values.homeDirectory);
        return values;
    }
    FileBoxServerValues values;
    values.homeDirectory = readOrSettleString(*key, Keys::kHomeDirectory, FileBoxHome::defaultPath(m_paths));
    values.firstPort = readOrSettleDword(*key, Keys::kCustomPasvMinPort, kDefaultFirstPort);
    values.lastPort = readOrSettleDword(*key, Keys::kCustomPasvMaxPort, kDefaultLastPort);
    // The name is resolved only when the address is missing: resolving can take a while.
    if (const auto address = key->readString(Keys::kCustomPasvIp, RegBuffer::kPath)) {
        values.passiveAddress = *address;
    } else {
        values.passiveAddress = m_localAddress();
        key->writeString(Keys::kCustomPasvIp, values.passiveAddress);
    }
    QDir().mkpath(values.homeDirectory);
    return values;
}

bool FileBoxServerSettings::isPortRangeValid(quint32 firstPort, quint32 lastPort)
{
    return firstPort < lastPort;
}

FileBoxServerSettings::Confirm FileBoxServerSettings::confirm(const FileBoxServerValues& values) const
{
    if (!isPortInRange(values.firstPort) || !isPortInRange(values.lastPort))
        return Confirm::PortOutOfRange;
    if (!isPortRangeValid(values.firstPort, values.lastPort))
        return Confirm::BadPortRange;
    // One step, so that the file-box server never reads the ports of one setting with the address of another.
    if (const auto key = m_registry.createKey(RegRoot::LocalMachine, Keys::kSableBoxServer)) {
        key->writeValues(RegistryValues()
                             .string(Keys::kHomeDirectory, values.homeDirectory)
                             .dword(Keys::kCustomPasvMinPort, values.firstPort)
                             .dword(Keys::kCustomPasvMaxPort, values.lastPort)
                             .string(Keys::kCustomPasvIp, values.passiveAddress));
    }
    // The views show the folders below it at once; the next opening would create it anyway.
    QDir().mkpath(values.homeDirectory);
    return Confirm::Saved;
}

} // namespace sable
