#include "CommandLine.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartMerge.h"
#include "document/ChartReader.h"
#include "document/ChartSave.h"
#include "document/MergeEdits.h"
#include "document/RestorePoints.h"
#include "platform/IniFile.h"
#include "server/ServerDatabase.h"
#include "server/ServerServiceControl.h"
#include "server/ServiceManagerSettings.h"

#include <QFile>

#include <cstdio>

namespace sable::ctl {

int Context::fail(const QString& message) const
{
    err << "sablectl: " << message << Qt::endl;
    return kFailure;
}

bool takeFlag(QStringList& args, const QString& name)
{
    return args.removeAll(name) > 0;
}

std::optional<QString> takeOption(QStringList& args, const QString& name, bool* missingValue)
{
    *missingValue = false;
    for (qsizetype i = 0; i < args.size(); ++i) {
        if (args[i] == name) {
            if (i + 1 >= args.size()) {
                *missingValue = true;
                args.removeAt(i);
                return std::nullopt;
            }
            const QString value = args[i + 1];
            args.remove(i, 2);
            return value;
        }
        if (args[i].startsWith(name + u'=')) {
            const QString value = args[i].mid(name.size() + 1);
            args.removeAt(i);
            return value;
        }
    }
    return std::nullopt;
}

namespace {

std::optional<QByteArray> readPasswordFile(Context& context, const QString& path)
{
    QFile in(path);
    if (!in.open(QIODevice::ReadOnly)) {
        context.fail(QStringLiteral("%1: %2").arg(path, in.errorString()));
        return std::nullopt;
    }
    return in.read(64 * 1024);
}

QByteArray readPasswordLine()
{
    char line[1024];
    return fgets(line, sizeof line, stdin) ? QByteArray(line) : QByteArray();
}

} // namespace

std::optional<QString> takePassword(Context& context, QStringList& args, PasswordOnCommandLine literal, bool* failed)
{
    bool missingFile = false;
    bool missingText = false;
    const std::optional<QString> file = takeOption(args, QStringLiteral("--password-file"), &missingFile);
    const std::optional<QString> text = takeOption(args, QStringLiteral("--password"), &missingText);
    const bool fromInput = text && *text == QLatin1String("-");
    const bool refused = text && !fromInput && literal == PasswordOnCommandLine::Refused;
    *failed = missingFile || missingText || (file && text) || refused;
    if (*failed) {
        context.err << "sablectl: the password is read from a file (--password-file FILE) or from standard input "
                       "(--password -)"
                    << (literal == PasswordOnCommandLine::Refused ? ", never from the command line" : ", once") << '\n';
        return std::nullopt;
    }
    if (!file && !text)
        return std::nullopt;
    if (text && !fromInput) {
        context.err << "sablectl: a password on the command line can be read by every user of this machine; "
                       "prefer --password-file FILE or --password - (standard input)\n";
        return *text;
    }
    const std::optional<QByteArray> read = file ? readPasswordFile(context, *file) : readPasswordLine();
    *failed = !read;
    if (!read)
        return std::nullopt;
    QByteArray bytes = *read;
    while (bytes.endsWith('\n') || bytes.endsWith('\r'))
        bytes.chop(1);
    return QString::fromUtf8(bytes);
}

} // namespace sable::ctl

// --- Loading and saving the chart -------------------------------------------------------------------

namespace sable::ctl {
namespace {

class QuietProgress final : public LoadProgress
{
public:
    void setText(const QString&) override { }
    void setRange(int) override { }
    void setPosition(int) override { }
};

} // namespace

std::function<DbConnection()> connector(Context& context)
{
    return [&context] {
        return ServerDatabase::connect(
            context.config, [&context](const QString&, const QString& text) { context.err << text << Qt::endl; });
    };
}

bool askOnTerminal(Context& context, const QString& question)
{
    context.err << question << " [y/N] " << Qt::flush;
    char answer[16] = {};
    if (!fgets(answer, sizeof answer, stdin))
        return false;
    return answer[0] == 'y' || answer[0] == 'Y';
}

bool loadChart(Context& context, CSableManagerDoc& doc, LoadProblems* problems, ChartReader::Use use)
{
    context.config.read();
    QuietProgress progress;
    const std::atomic<int> bContinue {1};
    ChartReader::Result result = ChartReader::read(connector(context), progress, bContinue, use);
    if (result.outcome != ChartReader::Outcome::Loaded) {
        context.fail(ChartReader::message(result.outcome) + u'\n' + result.errorText);
        return false;
    }
    if (problems)
        *problems = result.problems;
    else if (result.problems.any())
        context.err << "sablectl: " << ChartReader::describe(result.problems) << Qt::endl;
    doc.adopt(std::move(result.contents));
    return true;
}

std::unique_ptr<ServerServiceControl> openServiceControl(Context& context)
{
    const auto settings = ServiceManagerSettings::read(context.config.registry());
    return std::make_unique<ServerServiceControl>(settings.createBackend(), context.config.paths());
}

namespace {

// Merges what someone else saved meanwhile when no row of it conflicts with this run's changes;
// otherwise names the conflicting rows. True when the document holds the merge.
bool mergeQuietly(Context& context, CSableManagerDoc& doc, const std::shared_ptr<const ChartTables>& theirs)
{
    ChartMerge merge(doc.base(), doc.tables(), theirs);
    if (!merge.conflicts().empty()) {
        context.err << "sablectl: the database changed since it was read, and these rows were changed on both sides:"
                    << Qt::endl;
        for (const MergeConflict& conflict : merge.conflicts())
            context.err << "  " << ChartNames::table(conflict.table) << ": " << conflict.name << " ("
                        << conflict.fields.join(QStringLiteral(", ")) << ") here: " << conflict.mine
                        << "; there: " << conflict.theirs << Qt::endl;
        return false;
    }
    QStringList dropped;
    MergeEdits::applyMerge(doc, merge, &dropped);
    if (!dropped.isEmpty()) {
        context.err << "sablectl: merging would leave out rows that rely on removed ones: "
                    << dropped.join(QStringLiteral(", ")) << Qt::endl;
        return false;
    }
    context.err << "sablectl: merged with " << merge.theirChanges().size() << " rows saved elsewhere meanwhile"
                << Qt::endl;
    return true;
}

} // namespace

int saveChart(Context& context, CSableManagerDoc& doc, bool bYes, bool bReplace)
{
    // As the console saves: the file-box service stopped while the tables are written, every
    // service started after it, and a restart when the server cannot be told. Here the caller waits.
    const std::unique_ptr<ServerServiceControl> services = openServiceControl(context);
    ChartSave::Collaborators with;
    with.isFileBoxServerRunning = [&services] { return services->isFileBoxServerRunning(); };
    with.stopFileBoxServer = [&services] { services->stopFileBoxServer(); };
    with.requestStartAll = [&services] { services->startAll(); };
    with.restartAll = [&services] { services->restartServices(); };
    bool bAsked = false;
    with.askYesNo = [&](const QString& question) {
        // Asked once: a save that merges and tries again goes on with the first answer.
        const bool yes = bYes || bAsked || askOnTerminal(context, question);
        bAsked = yes;
        return yes;
    };
    with.showBalloon = [&context](const Balloon& balloon) { context.err << balloon.text << Qt::endl; };
    with.connect = connector(context);
    with.program = QStringLiteral("sablectl");
    with.restoreFolder = RestorePoints::defaultFolder(context.config.paths().programFolder);
    with.restorePointsKept = context.config.restorePointsKept();
    with.bReplace = bReplace;
    const IniFile settings(context.config.paths().settingsFilePath);
    // Someone may save between the merge and the next attempt; a few rounds settle it.
    for (int attempt = 0; attempt < 3; ++attempt) {
        std::shared_ptr<const ChartTables> theirs;
        switch (ChartSave::run(doc, settings, with, &theirs)) {
        case ChartSave::Outcome::Saved:
            return kSuccess;
        case ChartSave::Outcome::Declined:
            return context.fail(QStringLiteral("not saved"));
        case ChartSave::Outcome::Refused:
            return context.fail(QStringLiteral("nothing was written"));
        case ChartSave::Outcome::DatabaseFailed:
            return context.fail(DbConnection::lastError());
        case ChartSave::Outcome::Conflict:
            if (!mergeQuietly(context, doc, theirs))
                return context.fail(QStringLiteral("nothing was written"));
            break;
        }
    }
    return context.fail(QStringLiteral("the database kept changing while saving; nothing was written"));
}

int printBytes(Context& context, const QByteArray& bytes)
{
    context.out.flush();
    const auto size = static_cast<size_t>(bytes.size());
    return fwrite(bytes.constData(), 1, size, stdout) == size ? kSuccess : kFailure;
}

} // namespace sable::ctl
