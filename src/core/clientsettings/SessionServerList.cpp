#include "clientsettings/SessionServerList.h"

#include "SettingsKeys.h"
#include "platform/LocalAddress.h"

#include <algorithm>

namespace sable {
namespace {

constexpr int kAddressBuffer = RegBuffer::kShort;
const QString kNoAddress = QStringLiteral("255.255.255.255");

QString valueName(const QString& pattern, int index)
{
    return pattern.arg(index);
}

} // namespace

SessionServerList::SessionServerList(Registry registry, AddressSource localAddress)
    : m_registry(std::move(registry))
    , m_localAddress(
          localAddress ? std::move(localAddress) : AddressSource([] { return LocalAddress::GetLocalAddress(); }))
{ }

QList<SessionServerEntry> SessionServerList::open() const
{
    std::optional<RegistryKey> key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    if (!key)
        key = m_registry.createKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    if (!key)
        return {};
    seedIfEmpty(*key);
    QList<SessionServerEntry> rows;
    const int count = static_cast<int>(key->readDword(Keys::kSessionDCount).value_or(0));
    for (int i = 0; i < count; ++i) {
        SessionServerEntry entry;
        ReadEntry(i, entry); // a broken entry still gets its row, with what could be read
        rows.append({normalisedAddress(entry.address), kPort, entry.bEnabled});
    }
    return rows;
}

void SessionServerList::seedIfEmpty(const RegistryKey& key) const
{
    if (key.readDword(Keys::kSessionDCount).value_or(0) != 0)
        return;
    RegistryValues values;
    addEntry(values, 0, {m_localAddress(), kPort, true});
    key.writeValues(values.dword(Keys::kSessionDCount, 1).dword(Keys::kSessionDChanged, 1));
}

bool SessionServerList::save(const QList<SessionServerEntry>& rows) const
{
    const std::optional<RegistryKey> key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    if (!key)
        return false;
    // One step: the servers never read a count that the entries do not have yet.
    RegistryValues values;
    for (int i = 0; i < rows.size(); ++i)
        addEntry(values, i, {rows[i].address, kPort, rows[i].bEnabled});
    return key->writeValues(
        values.dword(Keys::kSessionDCount, static_cast<quint32>(rows.size())).dword(Keys::kSessionDChanged, 1));
}

bool SessionServerList::ReadEntry(int index, SessionServerEntry& entry) const
{
    const std::optional<RegistryKey> key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    if (!key)
        return false;
    const std::optional<QString> address = key->readString(valueName(Keys::kSessionDAddress, index), kAddressBuffer);
    if (!address)
        return false;
    entry.address = *address;
    const std::optional<quint32> port = key->readDword(valueName(Keys::kSessionDPort, index));
    if (!port)
        return false;
    entry.port = static_cast<quint16>(*port);
    const std::optional<quint32> enabled = key->readDword(valueName(Keys::kSessionDEnable, index));
    if (!enabled)
        return false;
    entry.bEnabled = *enabled != 0;
    return true;
}

void SessionServerList::WriteEntry(int index, const SessionServerEntry& entry) const
{
    const std::optional<RegistryKey> key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    if (!key)
        return;
    RegistryValues values;
    addEntry(values, index, entry);
    key->writeValues(values);
}

void SessionServerList::addEntry(RegistryValues& values, int index, const SessionServerEntry& entry)
{
    values.string(valueName(Keys::kSessionDAddress, index), entry.address)
        .dword(valueName(Keys::kSessionDPort, index), entry.port)
        .dword(valueName(Keys::kSessionDEnable, index), entry.bEnabled ? 1 : 0);
}

QString SessionServerList::normalisedAddress(const QString& text)
{
    const QStringList parts = text.split(u'.');
    if (parts.size() != 4)
        return kNoAddress;
    QStringList octets;
    for (const QString& part : parts) {
        bool bNumber = false;
        const uint value = part.toUInt(&bNumber, 10);
        const bool bDigitsOnly
            = std::all_of(part.cbegin(), part.cend(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        if (!bNumber || !bDigitsOnly || part.size() > 3 || value > 255)
            return kNoAddress;
        octets << QString::number(value);
    }
    return octets.join(u'.');
}

} // namespace sable
