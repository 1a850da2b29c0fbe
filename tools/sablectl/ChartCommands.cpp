#include "CommandLine.h"
#include "app/CSableManagerDoc.h"
#include "app/ChartJson.h"
#include "app/ChartSave.h"
#include "app/ServerDatabase.h"
#include "orgchart/ChartReader.h"
#include "platform/IniFile.h"

#include <QFile>
#include <QSet>

#include <cstdio>

namespace sable::ctl {
namespace {

class QuietProgress final : public LoadProgress
{
public:
    void setText(const QString&) override { }
    void setRange(int) override { }
    void setPosition(int) override { }
};

std::function<DbConnection()> connector(Context& context)
{
    return [&context] {
        return ServerDatabase::connect(
            context.config, [&context](const QString&, const QString& text) { context.err << text << Qt::endl; });
    };
}

int exportChart(Context& context, QStringList args)
{
    if (args.size() > 1)
        return kUsage;
    context.config.read();
    QuietProgress progress;
    const std::atomic<int> bContinue {1};
    ChartReader::Result result = ChartReader::read(connector(context), progress, bContinue);
    if (result.outcome != ChartReader::Outcome::Loaded)
        return context.fail(ChartReader::message(result.outcome) + u'\n' + result.errorText);
    CSableManagerDoc doc;
    doc.adopt(std::move(result.contents));
    const QByteArray json = ChartJson::write(doc);
    if (args.isEmpty()) {
        context.out.flush();
        return fwrite(json.constData(), 1, static_cast<size_t>(json.size()), stdout) == static_cast<size_t>(json.size())
            ? kSuccess
            : kFailure;
    }
    QFile file(args.first());
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size())
        return context.fail(QStringLiteral("cannot write %1: %2").arg(args.first(), file.errorString()));
    return kSuccess;
}

// The identifiers of one column of the database, to find what the imported chart no longer has.
QSet<int> storedIds(DbConnection& db, const QString& sql)
{
    QSet<int> ids;
    for (DbRecordset rows = db.execute(sql); rows.isValid() && !rows.isEof(); rows.moveNext())
        ids.insert(rows.fieldInt(0));
    return ids;
}

void markDeleted(Context& context, CSableManagerDoc& doc)
{
    DbConnection db = connector(context)();
    QSet<int> members = storedIds(db, QStringLiteral("SELECT K_MemberID FROM SD_Member"));
    for (const MemberRecord& member : doc.chart().members())
        members.remove(member.K_MemberID);
    QSet<int> groups = storedIds(db, QStringLiteral("SELECT K_GroupID FROM SD_Group"));
    doc.chart().forEachGroup([&groups](OrgNode* group) { groups.remove(group->groupId()); });
    QList<int> sortedMembers(members.begin(), members.end());
    QList<int> sortedGroups(groups.begin(), groups.end());
    std::sort(sortedMembers.begin(), sortedMembers.end());
    std::sort(sortedGroups.begin(), sortedGroups.end());
    doc.deletedMembers() = sortedMembers;
    doc.deletedGroups() = sortedGroups;
}

bool askOnTerminal(Context& context, const QString& question)
{
    context.err << question << " [y/N] " << Qt::flush;
    char answer[16] = {};
    if (!fgets(answer, sizeof answer, stdin))
        return false;
    return answer[0] == 'y' || answer[0] == 'Y';
}

int importChart(Context& context, QStringList args)
{
    const bool yes = takeFlag(args, QStringLiteral("--yes"));
    if (args.size() != 1)
        return kUsage;
    QFile file(args.first());
    if (!file.open(QIODevice::ReadOnly))
        return context.fail(QStringLiteral("cannot read %1: %2").arg(args.first(), file.errorString()));
    QString problem;
    std::optional<ChartContents> contents = ChartJson::read(file.readAll(), &problem);
    if (!contents)
        return context.fail(QStringLiteral("%1: %2; nothing was written").arg(args.first(), problem));

    context.config.read();
    CSableManagerDoc doc;
    doc.adopt(std::move(*contents));
    markDeleted(context, doc);
    doc.setModified(true);

    ChartSave::Collaborators with;
    with.askYesNo = [&](const QString& question) { return yes || askOnTerminal(context, question); };
    with.showBalloon = [&context](const Balloon& balloon) { context.err << balloon.text << Qt::endl; };
    with.connect = connector(context);
    switch (ChartSave::run(doc, IniFile(context.config.paths().settingsFilePath), with)) {
    case ChartSave::Outcome::Saved:
        context.out << "saved: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount()
                    << " departments" << Qt::endl;
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

} // namespace

std::vector<Command> chartCommands()
{
    return {
        {{QStringLiteral("chart"), QStringLiteral("export")}, QStringLiteral("chart export [FILE]"),
            QStringLiteral("load the chart and print it as JSON (or write FILE)"), exportChart},
        {{QStringLiteral("chart"), QStringLiteral("import")}, QStringLiteral("chart import FILE [--yes]"),
            QStringLiteral("replace the chart with FILE and save it as the console does"), importChart},
    };
}

} // namespace sable::ctl
