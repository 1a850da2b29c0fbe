#include "platform/UdpSender.h"

#include <QHostAddress>
#include <QUdpSocket>

namespace sable::UdpSender {

bool sendDatagram(const QByteArray& bytes, const QString& address, quint16 port)
{
    QUdpSocket socket;
    if (!socket.bind(QHostAddress::AnyIPv4, 0))
        return false;
    const qint64 sent = socket.writeDatagram(bytes, QHostAddress(address), port);
    socket.close();
    return sent == bytes.size();
}

} // namespace sable::UdpSender
