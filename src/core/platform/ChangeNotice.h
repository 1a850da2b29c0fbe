#pragma once

#include <QByteArray>

namespace sable::ChangeNotice {

// What the running messenger server is told to reload.
enum class Kind : quint32
{
    ReloadDatabase = 3500,
    ReloadClientSettings = 3503,
};

// The ports the server listens on for each occasion.
constexpr quint16 kHomePagePort = 16201;
constexpr quint16 kDatabasePort = 16203;
constexpr quint16 kLogoPort = 16204;

// The 32-byte datagram of a notice: header word 1, twelve zero bytes, the command code, count 1 and
// eight 0xCC filler bytes, every word big-endian. Nothing in it depends on what changed.
QByteArray bytes(Kind kind);

// Sends the notice to 127.0.0.1 on `port` from a fresh socket; false when the send failed.
bool send(Kind kind, quint16 port);

} // namespace sable::ChangeNotice
