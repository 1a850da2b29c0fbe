#include "CommandLine.h"
#include "Messages.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "server/StartupSteps.h"

namespace sable::ctl {
namespace {

int unexpected(Context& context, const QStringList& args)
{
    context.err << "sablectl: unexpected argument: " << args.join(u' ') << Qt::endl;
    return kUsage;
}

int showConfig(Context& context, const QStringList& args)
{
    if (!args.isEmpty())
        return unexpected(context, args);
    const StartupSettings settings = context.config.read();
    const AppPaths& paths = context.config.paths();
    QTextStream& out = context.out;
    out << "home: " << paths.programFolder << '\n'
        << "settings: " << paths.settingsFilePath << '\n'
        << "database-path: " << paths.defaultDatabasePath << '\n'
        << "connection-string: " << maskPasswords(settings.connectionString) << '\n'
        << "database-type: " << settings.databaseType << '\n'
        << "server-type: " << settings.serverType << '\n'
        << "balloon-help: " << (settings.bBalloonHelp ? 1 : 0) << '\n'
        << "version-tag: " << settings.versionTag << Qt::endl;
    return kSuccess;
}

QString describe(StartupSteps::EmbeddedDatabase state)
{
    switch (state) {
    case StartupSteps::EmbeddedDatabase::NotUsed:
        return QStringLiteral("not used (the server uses another database)");
    case StartupSteps::EmbeddedDatabase::Present:
        return QStringLiteral("present");
    case StartupSteps::EmbeddedDatabase::Created:
        return QStringLiteral("created with every table");
    case StartupSteps::EmbeddedDatabase::Failed:
        return QStringLiteral("could not be created: ") + DbConnection::lastError();
    }
    return {};
}

int runStartUp(Context& context, const QStringList& args)
{
    if (!args.isEmpty())
        return unexpected(context, args);
    QTextStream& out = context.out;
    const StartupSettings settings = context.config.read();
    out << "configuration: "
        << (settings.bWroteDefaultConnection ? QStringLiteral("default connection string written")
                                             : QStringLiteral("connection string kept"))
        << '\n';
    out << "embedded-database: " << describe(StartupSteps::ensureEmbeddedDatabase(context.config)) << '\n';
    const auto report = [&context](const QString&, const QString& text) { context.err << text << Qt::endl; };
    const auto repair = StartupSteps::repairBuddyListColumn(context.config, report);
    out << "column-repair: "
        << (repair == StartupSteps::ColumnRepair::Done ? QStringLiteral("done") : Msg::kDatabaseOpenFailed) << '\n';
    const StartupSteps::PassiveAddress pasv = StartupSteps::fillPassiveAddress(context.config);
    out << "passive-address: " << (pasv.bWritten ? QStringLiteral("written ") : QStringLiteral("kept ")) << pasv.address
        << Qt::endl;
    return repair == StartupSteps::ColumnRepair::Done ? kSuccess : kFailure;
}

} // namespace

std::vector<Command> configCommands()
{
    return {
        {{QStringLiteral("config")}, QStringLiteral("config"),
            QStringLiteral("settle and print the start-up configuration"), showConfig},
        {{QStringLiteral("start-up")}, QStringLiteral("start-up"),
            QStringLiteral("run the start-up steps that need no window"), runStartUp},
    };
}

} // namespace sable::ctl
