#pragma once

#include <QString>
#include <QStringList>

namespace sable::LocalAddress {

// The IPv4 addresses of the local host name, in the resolver's order, as dotted decimal.
QStringList hostAddresses();

// The first of them, or an empty text when the name cannot be resolved.
QString firstHostAddress();

// The address the clients reach this machine by: the first that is neither 127.0.0.1 nor
// link-local (169.x), else the last one, else an empty text.
QString GetLocalAddress();
QString pickLocalAddress(const QStringList& addresses);

} // namespace sable::LocalAddress
