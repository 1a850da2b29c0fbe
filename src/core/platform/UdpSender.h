#pragma once

#include <QByteArray>
#include <QString>

namespace sable::UdpSender {

// Sends one datagram from a socket of its own (any local port), closed again at once. True when
// the send reported no error; a datagram nobody receives still counts as sent.
bool sendDatagram(const QByteArray& bytes, const QString& address, quint16 port);

} // namespace sable::UdpSender
