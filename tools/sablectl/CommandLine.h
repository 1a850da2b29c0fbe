#pragma once

#include "document/ChartReader.h"
#include "platform/AppPaths.h"
#include "server/StartupConfig.h"

#include <QStringList>
#include <QTextStream>

#include <functional>
#include <memory>
#include <vector>

namespace sable {
class ServerServiceControl;
}

namespace sable::ctl {

enum ExitCode
{
    kSuccess = 0,
    kFailure = 1,
    kUsage = 2,
};

// What every command works with: the server's folder, its settings and the two output streams.
struct Context
{
    StartupConfig config;
    QTextStream& out;
    QTextStream& err;

    int fail(const QString& message) const;
};

// A command: the words that name it ("db", "info"), its usage line and what it runs with the
// arguments that follow those words.
struct Command
{
    QStringList words;
    QString usage;
    QString summary;
    std::function<int(Context&, QStringList)> run;
};

// Takes option `name` out of `args`; true when it was there.
bool takeFlag(QStringList& args, const QString& name);
// Takes "name VALUE" or "name=VALUE" out of `args`; nullopt when absent, an empty optional string
// when the value is missing.
std::optional<QString> takeOption(QStringList& args, const QString& name, bool* missingValue);

enum class PasswordOnCommandLine
{
    Refused,
    // Taken, with a warning: scripts written before the other ways existed go on working.
    Warned,
};

// A password from "--password-file FILE" or "--password -" (standard input, its first line), or,
// when allowed, "--password TEXT". nullopt without any of them, or when `*failed` is set (the reason
// printed on stderr): a password given twice, a file that cannot be read.
std::optional<QString> takePassword(Context& context, QStringList& args, PasswordOnCommandLine literal, bool* failed);

std::vector<Command> configCommands();
std::vector<Command> dbCommands();
std::vector<Command> notifyCommands();
std::vector<Command> chartCommands();
std::vector<Command> servicesCommands();

} // namespace sable::ctl

// Shared by the commands that load or save the chart, and the users commands.
namespace sable {
class CSableManagerDoc;
class DbConnection;
struct LoadProblems;
} // namespace sable

namespace sable::ctl {

// Opens the database as start-up chooses it; database errors go to stderr.
std::function<DbConnection()> connector(Context& context);
// Asks on the terminal; true for an answer that begins with y.
bool askOnTerminal(Context& context, const QString& question);
// Reads the chart, the ranks and the file-box lists into `doc`; false after saying why. What the
// chart could not place goes to `problems`, or, without it, to stderr.
bool loadChart(Context& context, CSableManagerDoc& doc, LoadProblems* problems = nullptr,
    ChartReader::Use use = ChartReader::Use::Editing);
// The server's services as the registry's "ServiceManager" says they are run.
std::unique_ptr<ServerServiceControl> openServiceControl(Context& context);

// Saves `doc` with the console's save sequence, asking first unless `bYes`; kSuccess, or kFailure
// after saying why. When someone else saved meanwhile, what they saved is merged in and the save
// tried again, unless a row was changed on both sides: then nothing is written. `bReplace` writes
// the document over whatever the database holds.
int saveChart(Context& context, CSableManagerDoc& doc, bool bYes, bool bReplace = false);

// Writes `bytes` to standard output as they are; kSuccess or kFailure.
int printBytes(Context& context, const QByteArray& bytes);

std::vector<Command> usersCommands();
std::vector<Command> directoryCommands();
std::vector<Command> historyCommands();

} // namespace sable::ctl
