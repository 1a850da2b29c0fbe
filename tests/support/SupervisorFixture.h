#pragma once

#include "platform/SupervisorClient.h"
#include "server/ServiceManagerSettings.h"

#include <QStringList>

// The supervisord that the test fixture started, with the seven services as stub programs.
struct SupervisorFixture
{
    QString url;
    QString user;
    QString password;
    QString folder;
    QString datagramLog; // where the stub, as SableD, logs the notices it receives

    // Reads the fixture's description; an unavailable one when the fixture did not run.
    static SupervisorFixture fromEnvironment();
    bool isAvailable() const { return !url.isEmpty(); }

    sable::SupervisorClient client() const;
    sable::ServiceManagerSettings settings() const;
    std::shared_ptr<sable::ServiceBackend> backend() const;

    // Stops every program and waits until they are stopped; true when it worked.
    bool stopAll() const;
    // supervisord's own state name of a program ("RUNNING", ...), empty when it is unknown.
    QString stateOf(const QString& name) const;

    // The programs named by supervisord's log lines "<verb>: 'Name'" / "<verb>: Name", in log
    // order, written after `offset` bytes of the log.
    QStringList logged(const QString& verb, qint64 offset) const;
    qint64 logSize() const;
};
