#pragma once

#include "db/DbConnection.h"
#include "server/StartupConfig.h"

#include <QStringList>

namespace sable {

// The start-up steps that need no window, in the order the console runs them.
namespace StartupSteps {

// The console's options that take a value ("--home DIR", "--view N", ...): their values are paths
// and numbers, never switches.
inline const QStringList kOptionsWithValue
    = {QStringLiteral("--home"), QStringLiteral("--view"), QStringLiteral("--screenshot"), QStringLiteral("--command")};

// True when one of the program's own arguments holds "/install", also inside a longer word; the
// value of an option ("--home /opt/install/sable", "--home=/opt/install") never counts.
bool hasInstallSwitch(const QStringList& arguments);

// Launches every server program in the install order with "/service" so that it registers itself.
// Nothing is waited for; returns the programs that could be started.
QStringList runInstallSwitch(const AppPaths& paths);

enum class EmbeddedDatabase
{
    NotUsed, // the server uses another database
    Present, // the default database file holds chart tables
    Created, // it was missing or empty and now has every table
    Failed, // it could not be created (the last-error text says why)
};
// Creates the default embedded database with every table when the server uses it and it does not
// exist yet or holds none of the tables. An existing table is never touched.
EmbeddedDatabase ensureEmbeddedDatabase(const StartupConfig& config);

enum class ColumnRepair
{
    Done, // the statement ran or its error was ignored
    DatabaseFailed // the database could not be opened: show "데이터 베이스를 열지 못했습니다."
};
// Makes SD_MYMEMBER.K_MyGroupID accept NULL. Runs at every start; an error of the statement itself
// (the column already allows NULL, or the engine has no such statement) is ignored.
ColumnRepair repairBuddyListColumn(const StartupConfig& config, const DbConnection::FailureReporter& report);

struct PassiveAddress
{
    QString address;
    bool bWritten = false; // it was missing or empty and has been filled in
};
// Fills "Custom PASV IP" of the file-box server with the local address when it is missing or empty.
PassiveAddress fillPassiveAddress(const StartupConfig& config);

// The embedded database file the server uses when it lies outside the server's folder (a copied
// folder still pointing at the original's database), else an empty text.
QString databaseOutsideHome(const StartupConfig& config);

} // namespace StartupSteps
} // namespace sable
