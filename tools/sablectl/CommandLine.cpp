#include "CommandLine.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartReader.h"
#include "document/ChartSave.h"
#include "platform/IniFile.h"
#include "server/ServerDatabase.h"
#include "server/ServerServiceControl.h"
#include "server/ServiceManagerSettings.h"

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

bool loadChart(Context& context, CSableManagerDoc& doc)
{
    context.config.read();
    QuietProgress progress;
    const std::atomic<int> bContinue {1};
    ChartReader::Result result = ChartReader::read(connector(context), progress, bContinue);
    if (result.outcome != ChartReader::Outcome::Loaded) {
        context.fail(ChartReader::message(result.outcome) + u'\n' + result.errorText);
        return false;
    }
    doc.adopt(std::move(result.contents));
    return true;
}

std::unique_ptr<ServerServiceControl> openServiceControl(Context& context)
{
    const auto settings = ServiceManagerSettings::read(context.config.registry());
    return std::make_unique<ServerServiceControl>(settings.createBackend(), context.config.paths());
}

int saveChart(Context& context, CSableManagerDoc& doc, bool bYes)
{
    // As the console saves: the file-box service stopped while the tables are written, every
    // service started after it, and a restart when the server cannot be told. Here the caller waits.
    const std::unique_ptr<ServerServiceControl> services = openServiceControl(context);
    ChartSave::Collaborators with;
    with.isFileBoxServerRunning = [&services] { return services->isFileBoxServerRunning(); };
    with.stopFileBoxServer = [&services] { services->stopFileBoxServer(); };
    with.requestStartAll = [&services] { services->startAll(); };
    with.restartAll = [&services] { services->restartServices(); };
    with.askYesNo = [&](const QString& question) { return bYes || askOnTerminal(context, question); };
    with.showBalloon = [&context](const Balloon& balloon) { context.err << balloon.text << Qt::endl; };
    with.connect = connector(context);
    switch (ChartSave::run(doc, IniFile(context.config.paths().settingsFilePath), with)) {
    case ChartSave::Outcome::Saved:
        return kSuccess;
    case ChartSave::Outcome::Declined:
        return context.fail(QStringLiteral("not saved"));
    case ChartSave::Outcome::Refused:
        return context.fail(QStringLiteral("nothing was written"));
    case ChartSave::Outcome::DatabaseFailed:
        return context.fail(DbConnection::lastError());
    }
    return kFailure;
}

int printBytes(Context& context, const QByteArray& bytes)
{
    context.out.flush();
    const auto size = static_cast<size_t>(bytes.size());
    return fwrite(bytes.constData(), 1, size, stdout) == size ? kSuccess : kFailure;
}

} // namespace sable::ctl
