#include "CommandLine.h"
#include "db/DbConnection.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartJson.h"
#include "platform/PrivateFiles.h"

#include <QFile>
#include <QSaveFile>
#include <QSet>

namespace sable::ctl {
namespace {

int exportChart(Context& context, QStringList args)
{
    if (args.size() > 1)
        return kUsage;
    CSableManagerDoc doc;
    if (!loadChart(context, doc))
        return kFailure;
    const QByteArray json = ChartJson::write(doc.tables());
    if (args.isEmpty())
        return printBytes(context, json);
    // The chart holds every user's password.
    QSaveFile file(args.first());
    if (!PrivateFiles::open(file) || file.write(json) != json.size() || !file.commit())
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

int importChart(Context& context, QStringList args)
{
    const bool yes = takeFlag(args, QStringLiteral("--yes"));
    if (args.size() != 1)
        return kUsage;
    QFile file(args.first());
    if (!file.open(QIODevice::ReadOnly))
        return context.fail(QStringLiteral("cannot read %1: %2").arg(args.first(), file.errorString()));
    QString problem;
    std::optional<ChartTables> tables = ChartJson::read(file.readAll(), &problem);
    if (!tables)
        return context.fail(QStringLiteral("%1: %2; nothing was written").arg(args.first(), problem));

    context.config.read();
    CSableManagerDoc doc;
    doc.adopt(tables->toContents());
    markDeleted(context, doc);
    doc.setModified(true);

    // The file replaces the chart whatever the database holds now; nothing is merged.
    context.err << "sablectl: the chart in the database is replaced by " << args.first() << Qt::endl;
    const int code = saveChart(context, doc, yes, true);
    if (code == kSuccess)
        context.out << "saved: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount()
                    << " departments" << Qt::endl;
    return code;
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
