#include "CommandLine.h"
#include "platform/ChangeNotice.h"

namespace sable::ctl {
namespace {

int sendNotice(Context& context, ChangeNotice::Kind kind, quint16 port)
{
    if (!ChangeNotice::send(kind, port))
        return context.fail(QStringLiteral("the notice could not be sent to 127.0.0.1:%1").arg(port));
    context.out << "sent to 127.0.0.1:" << port << Qt::endl;
    return kSuccess;
}

int notifyDatabase(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    return sendNotice(context, ChangeNotice::Kind::ReloadDatabase, ChangeNotice::kDatabasePort);
}

int notifyClientSettings(Context& context, QStringList args)
{
    bool missing = false;
    const std::optional<QString> portText = takeOption(args, QStringLiteral("--port"), &missing);
    bool ok = true;
    const uint port = portText ? portText->toUInt(&ok) : ChangeNotice::kLogoPort;
    if (missing || !args.isEmpty() || !ok || port == 0 || port > 65535)
        return kUsage;
    return sendNotice(context, ChangeNotice::Kind::ReloadClientSettings, static_cast<quint16>(port));
}

} // namespace

std::vector<Command> notifyCommands()
{
    return {
        {{QStringLiteral("notify"), QStringLiteral("database")}, QStringLiteral("notify database"),
            QStringLiteral("tell the server to reload its database (UDP 16203)"), notifyDatabase},
        {{QStringLiteral("notify"), QStringLiteral("client-settings")},
            QStringLiteral("notify client-settings [--port N]"),
            QStringLiteral("tell the server to reload client settings (16204; 16201 for home pages)"),
            notifyClientSettings},
    };
}

} // namespace sable::ctl
