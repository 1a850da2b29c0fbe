#include "CommandLine.h"
#include "server/ServerServiceControl.h"
#include "server/ServerServices.h"
#include "server/ServiceManagerSettings.h"

namespace sable::ctl {
namespace {

QString stateText(const ServiceReply& reply)
{
    switch (reply.outcome) {
    case ServiceOutcome::DoesNotExist:
        return QStringLiteral("not installed");
    case ServiceOutcome::Unavailable:
    case ServiceOutcome::Failed:
        return QStringLiteral("unknown (%1)").arg(QString::fromStdString(reply.message));
    case ServiceOutcome::Done:
        break;
    }
    switch (reply.status.state) {
    case ServiceState::Running:
        return QStringLiteral("running");
    case ServiceState::StartPending:
        return QStringLiteral("starting");
    case ServiceState::StopPending:
        return QStringLiteral("stopping");
    case ServiceState::Stopped:
        break;
    }
    return QStringLiteral("stopped");
}

// The states of the seven services; nullopt (with the reason printed) when the service manager
// cannot be reached at all.
std::optional<QStringList> printStates(Context& context, ServerServiceControl& control)
{
    QStringList running;
    for (const QString& name : ServerServices::kStartAllOrder) {
        const ServiceReply reply = control.backend().query(name.toStdString());
        if (reply.outcome == ServiceOutcome::Unavailable) {
            context.fail(
                QStringLiteral("cannot reach the service manager: %1").arg(QString::fromStdString(reply.message)));
            return std::nullopt;
        }
        if (reply.isDone() && reply.status.state == ServiceState::Running)
            running << name;
        context.out << "  " << name.leftJustified(24) << ' ' << stateText(reply) << '\n';
    }
    context.out << "start: " << (ServerServiceControl::startEnabledFor(running) ? "enabled" : "disabled")
                << ", stop: " << (ServerServiceControl::stopEnabledFor(running) ? "enabled" : "disabled") << '\n';
    context.out.flush();
    return running;
}

int showStatus(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    const auto control = openServiceControl(context);
    return printStates(context, *control) ? kSuccess : kFailure;
}

int startAll(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    const auto control = openServiceControl(context);
    if (!printStates(context, *control))
        return kFailure;
    const ServerServiceControl::StartAllResult result = control->startAll();
    if (!result.bRan) {
        context.out << "every service is running; nothing to start" << Qt::endl;
        return kSuccess;
    }
    context.out << "after start:\n";
    if (!printStates(context, *control))
        return kFailure;
    for (const QString& failure : result.failures)
        context.err << "sablectl: " << failure << '\n';
    return result.failures.isEmpty() ? kSuccess : kFailure;
}

int stopServer(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    const auto control = openServiceControl(context);
    if (!printStates(context, *control))
        return kFailure;
    const QStringList notStopped = control->stopServer();
    context.out << "after stop (" << ServerServices::kCheckD << " keeps running):\n";
    if (!printStates(context, *control))
        return kFailure;
    if (notStopped.isEmpty())
        return kSuccess;
    return context.fail(QStringLiteral("did not stop: %1").arg(notStopped.join(u' ')));
}

int configure(Context& context, QStringList args)
{
    bool missing = false;
    bool anyMissing = false;
    ServiceManagerSettings settings = ServiceManagerSettings::read(context.config.registry());
    for (auto [option, field] : {std::pair {"--url", &settings.supervisorUrl}, {"--user", &settings.supervisorUser}}) {
        if (const auto value = takeOption(args, QLatin1String(option), &missing))
            *field = *value;
        anyMissing = anyMissing || missing;
    }
    bool failed = false;
    const std::optional<QString> password = takePassword(context, args, PasswordOnCommandLine::Warned, &failed);
    const auto kind = args.size() == 1 ? ServiceManagerSettings::kindNamed(args.first()) : std::nullopt;
    if (anyMissing || failed || !kind)
        return kUsage;
    if (password)
        settings.supervisorPassword = *password;
    settings.kind = *kind;
    if (!settings.write(context.config.registry()))
        return context.fail(QStringLiteral("cannot write the registry"));
    context.out << "service manager: " << ServiceManagerSettings::nameOf(settings.kind) << '\n';
    if (settings.kind == ServiceManagerSettings::Kind::Supervisord)
        context.out << "supervisor: " << settings.supervisorUrl << " as "
                    << (settings.supervisorUser.isEmpty() ? QStringLiteral("(no user)") : settings.supervisorUser)
                    << '\n';
    context.out.flush();
    return kSuccess;
}

} // namespace

std::vector<Command> servicesCommands()
{
    return {
        {{QStringLiteral("services"), QStringLiteral("status")}, QStringLiteral("services status"),
            QStringLiteral("the state of the server's seven services"), showStatus},
        {{QStringLiteral("services"), QStringLiteral("start")}, QStringLiteral("services start"),
            QStringLiteral("start every service that is not running (Start all)"), startAll},
        {{QStringLiteral("services"), QStringLiteral("stop")}, QStringLiteral("services stop"),
            QStringLiteral("stop the server, leaving Sable_CheckD running"), stopServer},
        {{QStringLiteral("services"), QStringLiteral("configure")},
            QStringLiteral("services configure scm|supervisord|none [--url URL] [--user U] [--password-file FILE | "
                           "--password -]"),
            QStringLiteral("choose the service manager"), configure},
    };
}

} // namespace sable::ctl
