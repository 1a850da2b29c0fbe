#include "server/StartupConfig.h"

#include "SettingsKeys.h"
#include "db/DbConnection.h"

namespace sable {
namespace {

const QString kDefaultVersionTag = QStringLiteral("SM41");

} // namespace

StartupConfig::StartupConfig(Registry registry, AppPaths paths)
    : m_registry(std::move(registry))
    , m_paths(std::move(paths))
{ }

StartupSettings StartupConfig::read() const
{
    StartupSettings settings;
    settings.serverType = readServerType();
    settings.bBalloonHelp = readBalloonHelp();
    settings.connectionString = settleConnectionString(&settings.bWroteDefaultConnection);
    settings.databaseType = readDatabaseType();
    settings.versionTag = readVersionTag();
    DbConnection::setSqlServerOdbcDriver(readSqlServerOdbcDriver());
    return settings;
}

quint32 StartupConfig::readServerType() const
{
    const auto key = m_registry.createKey(RegRoot::LocalMachine, Keys::kSableManager);
    return key ? key->readDword(Keys::kServerType).value_or(0) : 0;
}

bool StartupConfig::readBalloonHelp() const
{
    const auto key = m_registry.createKey(RegRoot::CurrentUser, Keys::kSableManagerUser);
    const auto value = key ? key->readDword(Keys::kBalloonHelp) : std::nullopt;
    return value.value_or(1) != 0;
}

int StartupConfig::restorePointsKept() const
{
    constexpr quint32 kDefault = 50;
    const auto key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    const std::optional<quint32> kept = key ? key->readDword(Keys::kRestorePointsKept) : std::nullopt;
    return static_cast<int>(kept && *kept > 0 ? std::min<quint32>(*kept, 100000) : kDefault);
}

bool StartupConfig::writeBalloonHelp(bool on) const
{
    const auto key = m_registry.createKey(RegRoot::CurrentUser, Keys::kSableManagerUser);
    return key && key->writeDword(Keys::kBalloonHelp, on ? 1 : 0);
}

QString StartupConfig::readVersionTag() const
{
    const auto key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSableManagerUser);
    const auto value = key ? key->readString(Keys::kMajorVersion, RegBuffer::kShort) : std::nullopt;
    return value.value_or(kDefaultVersionTag);
}

QString StartupConfig::settleConnectionString(bool* wroteDefault) const
{
    if (wroteDefault)
        *wroteDefault = false;
    const auto key = m_registry.createKey(RegRoot::LocalMachine, Keys::kDatabase);
    if (!key)
        return DbConnection::defaultConnectionString(m_paths.defaultDatabasePath);
    if (const auto stored = key->readString(Keys::kConnectionString, RegBuffer::kStartupConnectionString))
        return *stored;
    const QString text = DbConnection::defaultConnectionString(m_paths.defaultDatabasePath);
    key->writeString(Keys::kConnectionString, text);
    key->writeString(Keys::kDatabaseType, defaultDatabaseType());
    if (wroteDefault)
        *wroteDefault = true;
    return text;
}

QString StartupConfig::readDatabaseType() const
{
    const auto key = m_registry.openKey(RegRoot::LocalMachine, Keys::kDatabase);
    const auto value = key ? key->readString(Keys::kDatabaseType, RegBuffer::kShort) : std::nullopt;
    return value.value_or(QString());
}

QString StartupConfig::readSqlServerOdbcDriver() const
{
    const auto key = m_registry.openKey(RegRoot::LocalMachine, Keys::kSableManager);
    const auto value = key ? key->readString(Keys::kSqlServerOdbcDriver, RegBuffer::kShort) : std::nullopt;
    return value && !value->isEmpty() ? *value : DbConnection::sqlServerOdbcDriver();
}

QString StartupConfig::defaultDatabaseType()
{
#ifdef Q_OS_WIN
    return QStringLiteral("MDB");
#else
    return QStringLiteral("SQLITE");
#endif
}

} // namespace sable
