#include "server/ServerDatabase.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "db/ConnectionString.h"
#include "platform/IniFile.h"
#include "server/StartupConfig.h"

#include <QSqlError>

namespace sable::ServerDatabase {
namespace {

constexpr int kDbInfoBuffer = 129; // at most 128 characters each

} // namespace

ServerAddress readServerAddress(const StartupConfig& config)
{
    const IniFile ini(config.paths().settingsFilePath);
    ServerAddress server;
    server.address = ini.readString(Keys::kDBInfo, Keys::kDBAddr, QString(), kDbInfoBuffer);
    if (server.address.isEmpty())
        return server;
    server.databaseName = ini.readString(Keys::kDBInfo, Keys::kDBName, QString(), kDbInfoBuffer);
    server.user = ini.readString(Keys::kDBInfo, Keys::kUID, QString(), kDbInfoBuffer);
    server.password = ini.readString(Keys::kDBInfo, Keys::kPWD, QString(), kDbInfoBuffer);
    return server;
}

DbConnection connect(const StartupConfig& config, const DbConnection::FailureReporter& report)
{
    const ServerAddress server = readServerAddress(config);
    if (!server.address.isEmpty())
        return DbConnection::connectToSqlServer(server.user, server.password, server.address, server.databaseName);
    // A stored string that start-up cannot read is never replaced by the default database: working
    // there would put the chart where the server does not look.
    if (const QString problem = config.connectionProblem(); !problem.isEmpty()) {
        DbConnection().recordError(QSqlError(problem, problem, QSqlError::ConnectionError));
        if (report)
            report(Msg::kDatabaseOpenFailed, DbConnection::lastError());
        return {};
    }
    return DbConnection::connectByRegistryOrDefault(config.registry(), config.paths().defaultDatabasePath, report);
}

QString describe(const StartupConfig& config)
{
    const ServerAddress server = readServerAddress(config);
    if (!server.address.isEmpty())
        return QStringLiteral("SQL Server %1 / %2").arg(server.address, server.databaseName);
    const QString text = config.settleConnectionString();
    const ConnectionString cs = ConnectionString::parse(text);
    const QString provider = cs.value(QStringLiteral("provider")).toLower();
    if (provider == QLatin1String("sqlite"))
        return QStringLiteral("SQLite %1").arg(embeddedDatabaseFile(text, config.paths().programFolder));
    if (provider == QLatin1String("postgresql"))
        return QStringLiteral("PostgreSQL %1/%2")
            .arg(cs.value(QStringLiteral("host")), cs.value(QStringLiteral("database")));
    if (cs.has(QStringLiteral("dsn")))
        return QStringLiteral("ODBC DSN %1").arg(cs.value(QStringLiteral("dsn")));
    return QStringLiteral("ODBC %1").arg(cs.value(QStringLiteral("driver")));
}

} // namespace sable::ServerDatabase
