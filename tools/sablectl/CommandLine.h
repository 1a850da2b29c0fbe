#pragma once

#include "app/AppPaths.h"
#include "app/StartupConfig.h"

#include <QStringList>
#include <QTextStream>

#include <functional>
#include <vector>

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

std::vector<Command> configCommands();
std::vector<Command> dbCommands();
std::vector<Command> notifyCommands();
std::vector<Command> chartCommands();
std::vector<Command> servicesCommands();

} // namespace sable::ctl
