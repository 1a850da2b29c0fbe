// sablectl: the console's command-line twin, for scripts and automation.

#include "CommandLine.h"

#include <QCoreApplication>

using namespace sable;
using namespace sable::ctl;

namespace {

std::vector<Command> allCommands()
{
    std::vector<Command> all;
    for (auto part : {configCommands(), dbCommands(), chartCommands(), notifyCommands(), servicesCommands(),
             usersCommands(), directoryCommands(), historyCommands()})
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

void printUsage(QTextStream& stream, const std::vector<Command>& commands)
{
    const QString fallback = AppPaths::builtInHome();
    stream << "usage: sablectl [--home DIR] COMMAND [ARGS]\n\n"
              "The server's folder is DIR, else $SABLE_HOME, else "
           << (fallback.isEmpty() ? QStringLiteral("the folder of sablectl") : fallback)
           << ".\n"
              "The registry follows $SABLE_REGISTRY_DIR when it is set.\n\ncommands:\n";
    for (const Command& command : commands)
        stream << "  " << command.usage.leftJustified(44) << ' ' << command.summary << '\n';
    stream.flush();
}

// The command whose words open `args`, the longest match first.
const Command* findCommand(const std::vector<Command>& commands, const QStringList& args)
{
    const Command* best = nullptr;
    for (const Command& command : commands) {
        if (args.size() >= command.words.size() && args.first(command.words.size()) == command.words
            && (!best || command.words.size() > best->words.size()))
            best = &command;
    }
    return best;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    const std::vector<Command> commands = allCommands();

    QStringList args = app.arguments().mid(1);
    if (args.contains(QStringLiteral("--help")) || args.contains(QStringLiteral("-h"))) {
        printUsage(out, commands);
        return kSuccess;
    }
    bool missing = false;
    const QStringList probe = args;
    takeOption(args, QStringLiteral("--home"), &missing);
    if (missing) {
        err << "sablectl: --home needs a folder\n";
        printUsage(err, commands);
        return kUsage;
    }
    const Command* command = findCommand(commands, args);
    if (!command) {
        err << (args.isEmpty() ? QStringLiteral("sablectl: no command given\n")
                               : QStringLiteral("sablectl: unknown command: %1\n").arg(args.join(u' ')));
        printUsage(err, commands);
        return kUsage;
    }
    const AppPaths paths = AppPaths::forFolder(AppPaths::resolveHome(probe, QCoreApplication::applicationDirPath()));
    Context context {StartupConfig(Registry::forHome(paths.programFolder), paths), out, err};
    // A stored connection string that cannot be read is never replaced by the default one: nothing
    // that reads or writes a database runs until the administrator has seen to it.
    const bool usesDatabase
        = !QStringList {QStringLiteral("services"), QStringLiteral("notify")}.contains(command->words.first());
    if (const QString problem = context.config.connectionProblem(); usesDatabase && !problem.isEmpty())
        return context.fail(QStringLiteral("the database setting cannot be used; nothing was opened\n") + problem);
    const int code = command->run(context, args.mid(command->words.size()));
    if (code == kUsage)
        err << "usage: sablectl " << command->usage << Qt::endl;
    return code;
}
