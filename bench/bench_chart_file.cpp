// The chart as a file through sablectl, each figure beside a reference measured in the same run:
// `chart export` beside the sqlite3 program reading the same tables into a file, and the peak
// memory of `chart import` of that export beside the export's own. Runs a chart of 100,000 users
// and one of 300,000, so that the growth shows.
// usage: bench_chart_file [--scale F] [--keep] (F times both charts; --keep leaves the server folders
// and the files for a profiler)

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "document/ChartSave.h"
#include "orgchart/ChartStore.h"
#include "platform/IniFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

extern char** environ;

using namespace sable;
using namespace sable::bench;

namespace {

// Where the programs' messages go.
QByteArray g_messages = "/dev/null";

// One program run: its wall time, its peak resident memory and its exit code.
struct Run
{
    double seconds = 0;
    double peakMiB = 0;
    int code = -1;
};

Run runProgram(const QStringList& arguments, const QString& outputFile)
{
    std::vector<QByteArray> bytes;
    for (const QString& argument : arguments)
        bytes.push_back(argument.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& argument : bytes)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    const QByteArray output = outputFile.isEmpty() ? QByteArray("/dev/null") : outputFile.toLocal8Bit();
    posix_spawn_file_actions_addopen(&actions, 1, output.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    // What the programs say is kept apart: only figures are printed here.
    posix_spawn_file_actions_addopen(&actions, 2, g_messages.constData(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    Run run;
    pid_t pid = 0;
    rusage usage {};
    int status = 0;
    run.seconds = timeIt([&] {
        if (posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) == 0)
            wait4(pid, &status, 0, &usage);
    });
    posix_spawn_file_actions_destroy(&actions);
    run.peakMiB = static_cast<double>(usage.ru_maxrss) / 1024.0;
    run.code = pid > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// The fastest of `times` runs (the machine is shared), with the largest peak seen.
Run bestOf(int times, const QStringList& arguments, const QString& outputFile)
{
    Run best;
    for (int i = 0; i < times; ++i) {
        const Run run = runProgram(arguments, outputFile);
        if (run.code != 0)
            return run;
        best.code = 0;
        best.seconds = i == 0 ? run.seconds : std::min(best.seconds, run.seconds);
        best.peakMiB = std::max(best.peakMiB, run.peakMiB);
    }
    return best;
}

// A server folder whose embedded database holds the generated chart.
bool makeHome(const QString& home, const ChartSize& size, QTextStream& out)
{
    if (runProgram({QStringLiteral(SABLECTL_PATH), QStringLiteral("--home"), home, QStringLiteral("db"),
                       QStringLiteral("init")},
            {})
            .code
        != 0)
        return false;
    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments, "
        << doc.chart().placementCount() << " memberships\n";
    const IniFile settings(home + QStringLiteral("/Serverinfo.ini"));
    ChartSave::Collaborators with;
    with.askYesNo = [](const QString&) { return true; };
    with.sendChartChangedNotice = [] { return true; };
    const QString database = sqliteConnectionString(home + QStringLiteral("/SableDB.db"));
    with.connect = [database] {
        DbConnection db;
        return db.open(database) ? std::move(db) : DbConnection();
    };
    doc.setModified(true);
    return ChartSave::run(doc, settings, with) == ChartSave::Outcome::Saved;
}

// What the sqlite3 program reads: every table the export holds, with the statements of the load.
QString referenceSql()
{
    return ChartStore::membersQuery() + u';' + ChartStore::groupsQuery() + u';' + ChartStore::relationsQuery()
        + QStringLiteral(";SELECT K_RankID,RankName FROM SD_Rank;SELECT K_FolderID,FolderPath FROM SB_Folder;"
                         "SELECT K_FolderID,K_GroupID,Authority FROM SB_GroupAuthority;"
                         "SELECT K_FolderID,K_MemberID,Authority FROM SB_UserAuthority;");
}

bool measure(const ChartSize& size, bool bKeep, QTextStream& out)
{
    QTemporaryDir dir;
    dir.setAutoRemove(!bKeep);
    if (bKeep)
        out << "folder: " << dir.path() << '\n';
    g_messages = QFile::encodeName(dir.filePath(QStringLiteral("messages.txt")));
    const QString home = dir.filePath(QStringLiteral("home"));
    qputenv("SABLE_REGISTRY_DIR", QFile::encodeName(dir.filePath(QStringLiteral("registry"))));
    if (!makeHome(home, size, out)) {
        out << "could not fill the database: " << DbConnection::lastError() << Qt::endl;
        return false;
    }
    const QString file = dir.filePath(QStringLiteral("chart.json"));
    const Run reference = bestOf(3,
        {QStringLiteral("sqlite3"), QStringLiteral("-readonly"), home + QStringLiteral("/SableDB.db"), referenceSql()},
        dir.filePath(QStringLiteral("reference.txt")));
    const QStringList sablectl {QStringLiteral(SABLECTL_PATH), QStringLiteral("--home"), home};
    const Run exported = bestOf(3, sablectl + QStringList {QStringLiteral("chart"), QStringLiteral("export")}, file);
    const Run imported = bestOf(1,
        sablectl + QStringList {QStringLiteral("chart"), QStringLiteral("import"), file, QStringLiteral("--yes")}, {});
    if (reference.code != 0 || exported.code != 0 || imported.code != 0) {
        out << "a program failed: sqlite3 " << reference.code << ", export " << exported.code << ", import "
            << imported.code << '\n';
        QFile messages(QFile::decodeName(g_messages));
        if (messages.open(QIODevice::ReadOnly))
            out << messages.readAll() << Qt::endl;
        return false;
    }
    out << QStringLiteral("  file %1 MiB\n").arg(static_cast<double>(QFileInfo(file).size()) / 1048576.0, 0, 'f', 1);
    out << QStringLiteral("  chart export    %1 s  reference (sqlite3 reading the same tables) %2 s  ours/reference "
                          "%3\n")
               .arg(exported.seconds, 0, 'f', 3)
               .arg(reference.seconds, 0, 'f', 3)
               .arg(exported.seconds / reference.seconds, 0, 'f', 2);
    out << QStringLiteral("  chart import    %1 s  peak %2 MiB  reference (the export's peak) %3 MiB  "
                          "ours/reference %4\n")
               .arg(imported.seconds, 0, 'f', 3)
               .arg(imported.peakMiB, 0, 'f', 0)
               .arg(exported.peakMiB, 0, 'f', 0)
               .arg(imported.peakMiB / exported.peakMiB, 0, 'f', 2);
    out.flush();
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const ChartSize base = scaledChartSize(app.arguments());
    for (const int factor : {1, 3}) {
        ChartSize size = base;
        for (int* value : {&size.members, &size.departments, &size.memberships, &size.folders, &size.groupAuthorities,
                 &size.userAuthorities})
            *value *= factor;
        if (!measure(size, app.arguments().contains(QStringLiteral("--keep")), out))
            return 1;
    }
    return 0;
}
