#pragma once

#include <QHostAddress>
#include <QList>
#include <QString>

#include <functional>

namespace sable::LocalAddress {

// One network interface as the choice of the address needs it.
struct Interface
{
    bool bUp = false;
    bool bLoopback = false;
    QList<QHostAddress> addresses;
};

// Where the addresses come from: the resolver's answer for the local host name and the machine's
// interfaces. Tests give their own answers.
struct Sources
{
    std::function<QList<QHostAddress>()> resolveHostName;
    std::function<QList<Interface>()> interfaces; // asked only when the name gives no usable address

    static Sources system();
};

// The IPv4 address, dotted, that clients reach this machine by: the first address of the host name
// that is neither loopback (127.0.0.0/8) nor link-local (169.254.0.0/16). When the name gives only
// such addresses (Debian maps it to 127.0.1.1), the first such address of an interface that is up
// and not a loopback, then a link-local one of either; only when there is none, the name's first
// address as the resolver gave it; empty when there is nothing at all.
QString GetLocalAddress(const Sources& sources = Sources::system());

} // namespace sable::LocalAddress
