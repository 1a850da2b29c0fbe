#include "DatagramLog.h"

#include <QNetworkDatagram>

namespace sable {

DatagramLog::DatagramLog(const QString& logPath, QObject* parent)
    : QObject(parent)
    , m_log(logPath)
{
    if (logPath.isEmpty())
        m_log.open(stdout, QIODevice::WriteOnly);
    else
        m_log.open(QIODevice::WriteOnly | QIODevice::Append, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

bool DatagramLog::listen(quint16 port)
{
    auto* socket = new QUdpSocket(this);
    if (!socket->bind(QHostAddress::LocalHost, port)) {
        delete socket;
        return false;
    }
    connect(socket, &QUdpSocket::readyRead, this, [this, socket] { readPending(socket); });
    m_sockets << socket;
    return true;
}

void DatagramLog::readPending(QUdpSocket* socket)
{
    while (socket->hasPendingDatagrams()) {
        const QNetworkDatagram datagram = socket->receiveDatagram();
        const QByteArray line = "port=" + QByteArray::number(socket->localPort())
            + " length=" + QByteArray::number(datagram.data().size()) + " hex=" + datagram.data().toHex() + '\n';
        m_log.write(line);
        m_log.flush();
    }
}

} // namespace sable
