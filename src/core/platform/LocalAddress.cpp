#include "platform/LocalAddress.h"

#include <QHostAddress>
#include <QHostInfo>

namespace sable::LocalAddress {

QStringList hostAddresses()
{
    const QHostInfo info = QHostInfo::fromName(QHostInfo::localHostName());
    QStringList out;
    for (const QHostAddress& address : info.addresses()) {
        if (address.protocol() == QAbstractSocket::IPv4Protocol)
            out << address.toString();
    }
    return out;
}

QString firstHostAddress()
{
    const QStringList addresses = hostAddresses();
    return addresses.isEmpty() ? QString() : addresses.first();
}

QString pickLocalAddress(const QStringList& addresses)
{
    for (const QString& address : addresses) {
        if (address != QLatin1String("127.0.0.1") && !address.startsWith(QLatin1String("169.")))
            return address;
    }
    return addresses.isEmpty() ? QString() : addresses.last();
}

QString GetLocalAddress()
{
    return pickLocalAddress(hostAddresses());
}

} // namespace sable::LocalAddress
