// sable-stub-server: stands in for one of the messenger server's programs in tests and demos. Run
// under a service name (by --name, or by the name it is started as, e.g. a link named SableD), it
// stays up until it is stopped. As SableD it also listens for the change notices on UDP 16201,
// 16203 and 16204 of 127.0.0.1 and logs each one. With "/service" it registers itself instead, as
// the real programs do: with supervisord that means asking the supervisor to add its program.

#include "DatagramLog.h"
#include "platform/AppPaths.h"
#include "platform/Registry.h"
#include "platform/SupervisorClient.h"
#include "server/ServerServices.h"
#include "server/ServiceManagerSettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTextStream>

using namespace sable;

namespace {

constexpr int kAlreadyAdded = 90; // supervisord's fault for a group it already has

QString takeValue(QStringList& args, const QString& option)
{
    const qsizetype at = args.indexOf(option);
    if (at < 0 || at + 1 >= args.size())
        return {};
    const QString value = args[at + 1];
    args.remove(at, 2);
    return value;
}

int registerService(const QString& name, QTextStream& err)
{
    const QString home
        = qEnvironmentVariableIsSet("SABLE_HOME") ? qEnvironmentVariable("SABLE_HOME") : QDir::currentPath();
    const ServiceManagerSettings settings = ServiceManagerSettings::read(Registry::forHome(home));
    if (settings.kind != ServiceManagerSettings::Kind::Supervisord) {
        err << name << ": no supervisor configured, nothing to register with\n";
        return 0;
    }
    const SupervisorClient client({QUrl(settings.supervisorUrl), settings.supervisorUser, settings.supervisorPassword});
    const auto result = client.call(QStringLiteral("supervisor.addProcessGroup"), {name});
    if (result.kind == SupervisorClient::Result::Kind::Value
        || (result.kind == SupervisorClient::Result::Kind::Fault && result.faultCode == kAlreadyAdded))
        return 0;
    err << name << ": cannot register with the supervisor: " << result.message << '\n';
    return 1;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream err(stderr);
    QStringList args = app.arguments();
    const QString invokedAs = QFileInfo(args.takeFirst()).fileName();
    QString name = takeValue(args, QStringLiteral("--name"));
    if (name.isEmpty())
        name = invokedAs;
    const QString logPath = takeValue(args, QStringLiteral("--log"));
    const QString ports = takeValue(args, QStringLiteral("--ports"));

    if (args.contains(ServerServices::kServiceSwitch))
        return registerService(name, err);

    // Stopped by the supervisor with SIGTERM: nothing to tidy, every log line is already written.
    DatagramLog log(logPath);
    if (name == ServerServices::kSableD) {
        const QStringList portList = ports.isEmpty() ? QStringList {"16201", "16203", "16204"} : ports.split(u',');
        for (const QString& port : portList) {
            if (!log.listen(static_cast<quint16>(port.toUInt())))
                err << name << ": cannot listen on UDP 127.0.0.1:" << port << '\n';
        }
    }
    err << name << ": running\n";
    err.flush();
    return app.exec();
}
