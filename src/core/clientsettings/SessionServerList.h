#pragma once

#include "platform/Registry.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

namespace sable {

// One file session server as the server side reads it from the registry.
struct SessionServerEntry
{
    QString address; // dotted IPv4, never a host name
    quint16 port = 0;
    bool bEnabled = false;

    bool operator==(const SessionServerEntry&) const = default;
};

// The file session servers under HKLM SOFTWARE\Halvex\Services\SessionDInfo: a count, a changed
// flag that the server clears once it has read the list, and three values per entry, numbered from
// 0. Entries past the count are left alone; the server never reads them.
class SessionServerList
{
public:
    static constexpr quint16 kPort = 55056;

    // The address clients reach this machine by (LocalAddress); the machine's unless a test gives another.
    using AddressSource = std::function<QString()>;

    explicit SessionServerList(Registry registry, AddressSource localAddress = {});

    // The list the dialog opens with. The key is created when missing, and an empty list is seeded
    // at once in the registry with this machine's address, so the server always has one entry.
    // Addresses come back normalised and every port as kPort.
    QList<SessionServerEntry> open() const;

    // Writes the rows as entries 0..n-1 with kPort, then the count and the changed flag. False,
    // with nothing written, when the key cannot be opened.
    bool save(const QList<SessionServerEntry>& rows) const;

    // Reads entry `index` into `entry`; false when the key or one of its values cannot be read,
    // with the values read before that left in `entry`.
    bool ReadEntry(int index, SessionServerEntry& entry) const;
    // Writes entry `index`; does nothing when the key cannot be opened.
    void WriteEntry(int index, const SessionServerEntry& entry) const;

    // The address as a dotted IPv4 address reads back: four decimal octets as written, anything
    // else (a host name, an empty text) as 255.255.255.255, the parser's "no address".
    static QString normalisedAddress(const QString& text);

private:
    void seedIfEmpty(const RegistryKey& key) const;
    static void addEntry(RegistryValues& values, int index, const SessionServerEntry& entry);

    Registry m_registry;
    AddressSource m_localAddress;
};

} // namespace sable
