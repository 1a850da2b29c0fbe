#pragma once

#include <QString>
#include <QStringList>

namespace sable::ServerServices {

inline const QString kSableD = QStringLiteral("SableD");
inline const QString kGroupD = QStringLiteral("GroupD");
inline const QString kSableboxServerManager = QStringLiteral("SableboxServerManager40");
inline const QString kRelayD = QStringLiteral("Sable_RelayD");
inline const QString kCheckD = QStringLiteral("Sable_CheckD");
inline const QString kFileDispatchD = QStringLiteral("Sable_FileDispatchD");
inline const QString kFileSessionD = QStringLiteral("Sable_FileSessionD");

// The server's programs differ in the order each step takes them in; each order is deliberate.
inline const QStringList kInstallOrder
    = {kSableD, kGroupD, kSableboxServerManager, kRelayD, kCheckD, kFileDispatchD, kFileSessionD};
inline const QStringList kRegistrationOrder
    = {kSableD, kGroupD, kSableboxServerManager, kCheckD, kRelayD, kFileDispatchD, kFileSessionD};

// The orders of Start all and Stop server; Stop server leaves Sable_CheckD running.
inline const QStringList kStartAllOrder
    = {kSableD, kGroupD, kRelayD, kFileDispatchD, kFileSessionD, kSableboxServerManager, kCheckD};
inline const QStringList kStopServerOrder
    = {kSableD, kGroupD, kRelayD, kFileDispatchD, kFileSessionD, kSableboxServerManager};

// The services whose state enables the Start entry (any of them not running) and the Stop entry
// (any of them running).
inline const QStringList kCountedForStart
    = {kSableD, kGroupD, kSableboxServerManager, kRelayD, kFileDispatchD, kFileSessionD};
inline const QStringList kCountedForStop = {kSableD, kGroupD, kSableboxServerManager, kRelayD};

// The argument with which each program registers itself as a service.
inline const QString kServiceSwitch = QStringLiteral("/service");

} // namespace sable::ServerServices
