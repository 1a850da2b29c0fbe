#pragma once

#include "platform/Registry.h"
#include "platform/ServiceBackend.h"

#include <QString>

#include <memory>

namespace sable {

// Which service manager runs the server's services, as HKLM SOFTWARE\Halvex\SableManager says:
// "ServiceManager" = "scm" (the Windows service manager, the default on Windows), "supervisord"
// (with "SupervisorURL", "SupervisorUser" and "SupervisorPassword" beside it) or "none" (the
// default elsewhere: every service reads as not reachable).
struct ServiceManagerSettings
{
    enum class Kind
    {
        Scm,
        Supervisord,
        None,
    };

    Kind kind = defaultKind();
    QString supervisorUrl = defaultSupervisorUrl();
    QString supervisorUser;
    QString supervisorPassword;
    QString problem; // set when the stored "ServiceManager" names nothing known; kind is then None

    static ServiceManagerSettings read(const Registry& registry);
    bool write(const Registry& registry) const;

    // What the administrator reads first when no service can be reached with these settings.
    QString unavailableSummary() const;

    struct Probe
    {
        bool bReached = false;
        QString answer; // the manager's answer and which of the seven services it knows, or why it failed
    };
    // Asks the manager these settings name whether it answers and which of the server's services it
    // knows. Blocks for up to the supervisor's time-out: keep it off the UI thread.
    Probe probe() const;

    // The backend for these settings; one that reads every service as not reachable, with the reason,
    // for "none", for an unknown name, and for "scm" where there is no Windows service manager.
    std::shared_ptr<ServiceBackend> createBackend() const;

    static Kind defaultKind();
    static QString defaultSupervisorUrl();
    static QString nameOf(Kind kind);
    static std::optional<Kind> kindNamed(const QString& name);
};

} // namespace sable
