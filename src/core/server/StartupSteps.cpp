#include "server/StartupSteps.h"

#include "SettingsKeys.h"
#include "db/ConnectionString.h"
#include "db/DbSchema.h"
#include "platform/LocalAddress.h"
#include "platform/PrivateFiles.h"
#include "platform/ProcessLauncher.h"
#include "server/ServerDatabase.h"
#include "server/ServerServices.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace sable::StartupSteps {
namespace {

const QString kRepairStatement = QStringLiteral("ALTER TABLE SD_MYMEMBER ALTER COLUMN K_MyGroupID int NULL");

bool samePath(const QString& a, const QString& b)
{
    return QDir::cleanPath(QFileInfo(a).absoluteFilePath()) == QDir::cleanPath(QFileInfo(b).absoluteFilePath());
}

// The embedded database file that the stored connection string names, relative paths taken from
// the server's folder; empty for another kind of database.
QString embeddedFile(const StartupConfig& config)
{
    return embeddedDatabaseFile(config.settleConnectionString(), config.paths().programFolder);
}

} // namespace

bool hasInstallSwitch(const QStringList& arguments)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& argument = arguments[i];
        if (kOptionsWithValue.contains(argument)) {
            ++i; // the option's value
            continue;
        }
        const bool optionWithValue = std::any_of(kOptionsWithValue.cbegin(), kOptionsWithValue.cend(),
            [&argument](const QString& option) { return argument.startsWith(option + u'='); });
        if (!optionWithValue && argument.contains(QLatin1String("/install")))
            return true;
    }
    return false;
}

QStringList runInstallSwitch(const AppPaths& paths)
{
    QStringList started;
    for (const QString& name : ServerServices::kInstallOrder) {
        const QString program = ProcessLauncher::programPath(paths.programFolder, name);
        if (ProcessLauncher::launchDetached(program, {ServerServices::kServiceSwitch}, paths.programFolder))
            started << name;
    }
    return started;
}

EmbeddedDatabase ensureEmbeddedDatabase(const StartupConfig& config)
{
    if (!ServerDatabase::readServerAddress(config).address.isEmpty())
        return EmbeddedDatabase::NotUsed;
    const QString path = config.paths().defaultDatabasePath;
    const QString file = embeddedFile(config);
    if (file.isEmpty() || !samePath(file, path))
        return EmbeddedDatabase::NotUsed;
    DbConnection connection;
    const bool existed = QFileInfo::exists(path);
    if (existed && connection.open(sqliteConnectionString(path)) && !DbSchema::existingTables(connection).isEmpty())
        return EmbeddedDatabase::Present;
    // The database holds every user's password: a new one is for its owner's eyes only.
    if (!PrivateFiles::makePath(QFileInfo(path).absolutePath()) || !PrivateFiles::createEmpty(path))
        return EmbeddedDatabase::Failed;
    if (!connection.open(sqliteConnectionString(path) + QStringLiteral(";FailIfMissing=False")))
        return EmbeddedDatabase::Failed;
    bool ok = false;
    DbSchema::createMissingTables(connection, &ok);
    return ok ? EmbeddedDatabase::Created : EmbeddedDatabase::Failed;
}

ColumnRepair repairBuddyListColumn(const StartupConfig& config, const DbConnection::FailureReporter& report)
{
    DbConnection connection = ServerDatabase::connect(config, report);
    if (connection.isEmpty())
        return ColumnRepair::DatabaseFailed;
    connection.executeNoRecords(kRepairStatement);
    if (connection.state() == 1)
        connection.close();
    return ColumnRepair::Done;
}

PassiveAddress fillPassiveAddress(const StartupConfig& config)
{
    PassiveAddress result;
    const auto key = config.registry().createKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
    if (!key)
        return result;
    result.address = key->readString(Keys::kCustomPasvIp, RegBuffer::kPath).value_or(QString());
    if (!result.address.isEmpty())
        return result;
    result.address = LocalAddress::GetLocalAddress();
    result.bWritten = key->writeString(Keys::kCustomPasvIp, result.address);
    return result;
}

QString databaseOutsideHome(const StartupConfig& config)
{
    if (!ServerDatabase::readServerAddress(config).address.isEmpty())
        return {};
    const QString file = embeddedFile(config);
    const QString home = QDir::cleanPath(QFileInfo(config.paths().programFolder).absoluteFilePath());
    if (file.isEmpty() || file.startsWith(home + u'/'))
        return {};
    return QDir::toNativeSeparators(file);
}

} // namespace sable::StartupSteps
