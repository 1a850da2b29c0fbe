#pragma once

#include <QFile>
#include <QList>
#include <QObject>
#include <QUdpSocket>

namespace sable {

// Listens on UDP ports of 127.0.0.1 and writes every datagram as one line to a log:
// "port=16203 length=32 hex=00000001...". Each line is flushed at once, so that a test can read it.
class DatagramLog final : public QObject
{
    Q_OBJECT

public:
    explicit DatagramLog(const QString& logPath, QObject* parent = nullptr);

    bool isOpen() const { return m_log.isOpen(); }
    // False when a port could not be bound (another program holds it).
    bool listen(quint16 port);

private:
    void readPending(QUdpSocket* socket);

    QFile m_log;
    QList<QUdpSocket*> m_sockets;
};

} // namespace sable
