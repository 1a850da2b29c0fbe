#include "server/DatabaseChoice.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "db/ConnectionString.h"
#include "platform/CodePage949.h"
#include "platform/IniFile.h"
#include "server/StartupConfig.h"

namespace sable {
namespace {

constexpr int kDbInfoBuffer = 129;

QString quoted(const QString& value)
{
    return ConnectionString::quote(value);
}

bool isAccessFile(const QString& path)
{
    return path.endsWith(QLatin1String(".mdb"), Qt::CaseInsensitive)
        || path.endsWith(QLatin1String(".accdb"), Qt::CaseInsensitive);
}

DatabaseChoice fromConnectionString(const QString& text, const QString& defaultPath)
{
    DatabaseChoice choice;
    choice.filePath = defaultPath;
    const ConnectionString cs = ConnectionString::parse(text);
    const QString provider = cs.value(QStringLiteral("provider")).toLower();
    if (provider == QLatin1String("sqlite")) {
        choice.filePath = cs.value(QStringLiteral("data source"));
    } else if (provider == QLatin1String("postgresql")) {
        choice.kind = DatabaseChoice::Kind::PostgreSql;
        choice.server = cs.value(QStringLiteral("host"));
        choice.port = cs.has(QStringLiteral("port")) ? cs.value(QStringLiteral("port")).toInt()
                                                     : DatabaseChoice::kDefaultPostgreSqlPort;
        choice.databaseName = cs.value(QStringLiteral("database"));
        choice.user = cs.value(QStringLiteral("user id"));
        choice.password = cs.value(QStringLiteral("password"));
    } else if (cs.value(QStringLiteral("driver")).contains(QLatin1String("Access"), Qt::CaseInsensitive)) {
        choice.filePath = cs.value(QStringLiteral("dbq"));
    }
    return choice;
}

} // namespace

DatabaseChoice DatabaseChoice::current(const StartupConfig& config)
{
    const IniFile ini(config.paths().settingsFilePath);
    const QString address = ini.readString(Keys::kDBInfo, Keys::kDBAddr, QString(), kDbInfoBuffer);
    if (!address.isEmpty()) {
        DatabaseChoice choice;
        choice.kind = Kind::SqlServer;
        choice.server = address;
        choice.databaseName = ini.readString(Keys::kDBInfo, Keys::kDBName, QString(), kDbInfoBuffer);
        choice.user = ini.readString(Keys::kDBInfo, Keys::kUID, QString(), kDbInfoBuffer);
        choice.password = ini.readString(Keys::kDBInfo, Keys::kPWD, QString(), kDbInfoBuffer);
        return choice;
    }
    const auto key = config.registry().openKey(RegRoot::LocalMachine, Keys::kDatabase);
    const auto text
        = key ? key->readString(Keys::kConnectionString, RegBuffer::kStartupConnectionString) : std::nullopt;
    return fromConnectionString(text.value_or(QString()), config.paths().defaultDatabasePath);
}

QString DatabaseChoice::connectionString() const
{
    switch (kind) {
    case Kind::SqlServer:
        return QStringLiteral("Provider=sqloledb;User id=%1;password=%2;data source=%3;initial catalog=%4;")
            .arg(quoted(user), quoted(password), quoted(server), quoted(databaseName));
    case Kind::PostgreSql:
        return QStringLiteral("Provider=PostgreSQL;Host=%1;Port=%2;Database=%3;User ID=%4;Password=%5")
            .arg(quoted(server), QString::number(port), quoted(databaseName), quoted(user), quoted(password));
    case Kind::EmbeddedFile:
        break;
    }
    if (isAccessFile(filePath))
        return QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=%1;DefaultDir=;UID=admin;PWD=;")
            .arg(filePath);
    return sqliteConnectionString(filePath);
}

QString DatabaseChoice::typeName() const
{
    switch (kind) {
    case Kind::SqlServer:
        return QStringLiteral("MSSQL");
    case Kind::PostgreSql:
        return QStringLiteral("PGSQL");
    case Kind::EmbeddedFile:
        break;
    }
    return isAccessFile(filePath) ? QStringLiteral("MDB") : QStringLiteral("SQLITE");
}

QString DatabaseChoice::problem() const
{
    const bool missing = kind == Kind::EmbeddedFile
        ? filePath.trimmed().isEmpty()
        : server.trimmed().isEmpty() || databaseName.trimmed().isEmpty() || user.trimmed().isEmpty();
    if (missing)
        return Msg::kSetDbIncomplete;
    if (CodePage949::byteLength(connectionString()) >= RegBuffer::kStartupConnectionString)
        return Msg::kSetDbTooLong.arg(RegBuffer::kStartupConnectionString - 1);
    const bool serverValuesFit = kind != Kind::SqlServer
        || (CodePage949::byteLength(server) < kDbInfoBuffer && CodePage949::byteLength(databaseName) < kDbInfoBuffer
            && CodePage949::byteLength(user) < kDbInfoBuffer && CodePage949::byteLength(password) < kDbInfoBuffer);
    return serverValuesFit ? QString() : Msg::kSetDbTooLong.arg(kDbInfoBuffer - 1);
}

bool DatabaseChoice::write(const StartupConfig& config) const
{
    const auto key = config.registry().createKey(RegRoot::LocalMachine, Keys::kDatabase);
    if (!key
        || !key->writeValues(RegistryValues()
                                 .string(Keys::kConnectionString, connectionString())
                                 .string(Keys::kDatabaseType, typeName())))
        return false;
    const bool sqlServer = kind == Kind::SqlServer;
    const IniFile ini(config.paths().settingsFilePath);
    return ini.writeStrings(Keys::kDBInfo,
        {{Keys::kDBAddr, sqlServer ? server : QString()}, {Keys::kDBName, sqlServer ? databaseName : QString()},
            {Keys::kUID, sqlServer ? user : QString()}, {Keys::kPWD, sqlServer ? password : QString()}});
}

} // namespace sable
