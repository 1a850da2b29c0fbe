#pragma once

#include "db/DbConnection.h"
#include "server/StartupConfig.h"

#include <QStringList>

namespace sable {

// The start-up steps that need no window, in the order the console runs them.
namespace StartupSteps {

// True when the command line holds "/install" anywhere, also inside a longer word.
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

} // namespace StartupSteps
} // namespace sable
