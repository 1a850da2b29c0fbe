#include "platform/ChangeNotice.h"

#include "platform/UdpSender.h"

#include <QtEndian>

namespace sable::ChangeNotice {
namespace {

void putWord(QByteArray& out, int offset, quint32 value)
{
    qToBigEndian(value, out.data() + offset);
}

} // namespace

QByteArray bytes(Kind kind)
{
    QByteArray out(32, '\0');
    putWord(out, 0, 1);
    putWord(out, 16, static_cast<quint32>(kind));
    putWord(out, 20, 1);
    for (int i = 24; i < 32; ++i)
        out[i] = static_cast<char>(0xCC);
    return out;
}

bool send(Kind kind, quint16 port)
{
    return UdpSender::sendDatagram(bytes(kind), QStringLiteral("127.0.0.1"), port);
}

} // namespace sable::ChangeNotice
