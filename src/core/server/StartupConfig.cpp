#include "server/StartupConfig.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "db/DbConnection.h"
#include "platform/AtomicFile.h"
#include "platform/CodePage949.h"

#include <limits>

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
    const ConnectionSetting connection = settleConnection();
    settings.connectionString = connection.text;
    settings.bWroteDefaultConnection = connection.bWroteDefault;
    settings.connectionProblem = connection.problem;
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

ConnectionSetting StartupConfig::settleConnection() const
{
    ConnectionSetting setting;
    if (const auto existing = m_registry.openKey(RegRoot::LocalMachine, Keys::kDatabase)) {
        if (const auto stored = existing->readString(Keys::kConnectionString, RegBuffer::kStartupConnectionString)) {
            setting.text = *stored;
            return setting;
        }
    }
    // Checked before anything is written: a damaged file is left exactly as it is.
    setting.problem = connectionProblem();
    if (!setting.problem.isEmpty())
        return setting;
    setting.text = DbConnection::defaultConnectionString(m_paths.defaultDatabasePath);
    if (const auto key = m_registry.createKey(RegRoot::LocalMachine, Keys::kDatabase)) {
        setting.bWroteDefault = key->writeValues(RegistryValues()
                                                     .string(Keys::kConnectionString, setting.text)
                                                     .string(Keys::kDatabaseType, defaultDatabaseType()));
    }
    return setting;
}

QString StartupConfig::settleConnectionString(bool* wroteDefault) const
{
    const ConnectionSetting setting = settleConnection();
    if (wroteDefault)
        *wroteDefault = setting.bWroteDefault;
    return setting.text;
}

QString StartupConfig::connectionProblem() const
{
    const auto key = m_registry.openKey(RegRoot::LocalMachine, Keys::kDatabase);
    if (key && key->readString(Keys::kConnectionString, RegBuffer::kStartupConnectionString))
        return {};
    switch (m_registry.presence(RegRoot::LocalMachine, Keys::kDatabase, Keys::kConnectionString)) {
    case ValuePresence::Absent:
        return {};
    case ValuePresence::Damaged:
        return Msg::kConnectionStringUnreadable + u'\n' + Msg::kConnectionStringDamaged;
    case ValuePresence::FileTooLarge:
        return Msg::kConnectionStringUnreadable + u'\n'
            + Msg::kRegistryFileTooLarge.arg(AtomicFile::kMaxBytes / (1024 * 1024));
    case ValuePresence::Present:
        break;
    }
    const auto whole = key ? key->readString(Keys::kConnectionString, std::numeric_limits<int>::max()) : std::nullopt;
    const QString detail = whole ? Msg::kConnectionStringTooLong.arg(CodePage949::byteLength(*whole))
                                       .arg(RegBuffer::kStartupConnectionString - 1)
                                 : Msg::kConnectionStringNotText;
    return Msg::kConnectionStringUnreadable + u'\n' + detail;
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
