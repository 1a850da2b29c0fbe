#include "platform/LocalAddress.h"

#include <QHostInfo>
#include <QNetworkInterface>

namespace sable::LocalAddress {
namespace {

bool isIpv4(const QHostAddress& address)
{
    return address.protocol() == QAbstractSocket::IPv4Protocol;
}

bool isLinkLocal(const QHostAddress& address)
{
    return address.isInSubnet(QHostAddress(QStringLiteral("169.254.0.0")), 16);
}

bool isUsable(const QHostAddress& address)
{
    return isIpv4(address) && !address.isLoopback() && !isLinkLocal(address);
}

QList<QHostAddress> interfaceAddresses(const QList<Interface>& interfaces)
{
    QList<QHostAddress> addresses;
    for (const Interface& entry : interfaces) {
        if (entry.bUp && !entry.bLoopback)
            addresses << entry.addresses;
    }
    return addresses;
}

const QHostAddress* firstWhere(const QList<QHostAddress>& addresses, bool (*test)(const QHostAddress&))
{
    for (const QHostAddress& address : addresses) {
        if (test(address))
            return &address;
    }
    return nullptr;
}

bool isIpv4LinkLocal(const QHostAddress& address)
{
    return isIpv4(address) && isLinkLocal(address);
}

} // namespace

Sources Sources::system()
{
    Sources sources;
    sources.resolveHostName = [] { return QHostInfo::fromName(QHostInfo::localHostName()).addresses(); };
    sources.interfaces = [] {
        QList<Interface> out;
        for (const QNetworkInterface& entry : QNetworkInterface::allInterfaces()) {
            Interface item;
            item.bUp = entry.flags().testFlag(QNetworkInterface::IsUp);
            item.bLoopback = entry.flags().testFlag(QNetworkInterface::IsLoopBack);
            for (const QNetworkAddressEntry& address : entry.addressEntries())
                item.addresses << address.ip();
            out << item;
        }
        return out;
    };
    return sources;
}

QString GetLocalAddress(const Sources& sources)
{
    const QList<QHostAddress> resolved = sources.resolveHostName ? sources.resolveHostName() : QList<QHostAddress>();
    if (const QHostAddress* address = firstWhere(resolved, isUsable))
        return address->toString();
    const QList<QHostAddress> local
        = interfaceAddresses(sources.interfaces ? sources.interfaces() : QList<Interface>());
    if (const QHostAddress* address = firstWhere(local, isUsable))
        return address->toString();
    // Link-local before loopback: the machine has that one at least, and it is not itself.
    for (const auto* list : {&resolved, &local}) {
        if (const QHostAddress* address = firstWhere(*list, isIpv4LinkLocal))
            return address->toString();
    }
    const QHostAddress* first = firstWhere(resolved, isIpv4);
    return first ? first->toString() : QString();
}

} // namespace sable::LocalAddress
