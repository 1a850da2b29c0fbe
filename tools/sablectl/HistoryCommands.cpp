// What earlier saves left behind: the restore points, and the change journal.

#include "CommandLine.h"
#include "Messages.h"
#include "db/DbConnection.h"
#include "document/CSableManagerDoc.h"
#include "document/ChangeJournal.h"
#include "document/ChartDiff.h"
#include "document/MergeEdits.h"
#include "document/RestorePoints.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace sable::ctl {
namespace {

QString whenText(const QDateTime& at)
{
    return at.toLocalTime().toString(Msg::kSaveTimeFormat);
}

QString whoText(const SaveAuthor& author)
{
    return QStringLiteral("%1@%2 (%3)").arg(author.user, author.host, author.program);
}

RestorePoints restorePoints(const Context& context)
{
    return RestorePoints(
        RestorePoints::defaultFolder(context.config.paths().programFolder), context.config.restorePointsKept());
}

int listRestorePoints(Context& context)
{
    const RestorePoints points = restorePoints(context);
    const std::vector<RestorePointInfo> infos = points.list();
    if (infos.empty())
        context.out << "no restore points in " << QDir::toNativeSeparators(points.folder()) << '\n';
    for (const RestorePointInfo& info : infos) {
        context.out << whenText(info.savedAt) << "  " << whoText(info.author) << "  " << QFileInfo(info.path).fileName()
                    << '\n';
        for (const QString& line : info.changes)
            context.out << "    " << line << '\n';
    }
    context.out.flush();
    return kSuccess;
}

// A file named as it lies in the folder of restore points needs no path.
QString pointPath(const Context& context, const QString& given)
{
    if (QFileInfo::exists(given))
        return given;
    const QString inFolder = QDir(restorePoints(context).folder()).filePath(given);
    return QFileInfo::exists(inFolder) ? inFolder : given;
}

int countRows(const UserData& data)
{
    int rows = 0;
    for (const UserDataRows& table : data)
        rows += static_cast<int>(table.rows.size());
    return rows;
}

int restore(Context& context, QStringList args)
{
    if (takeFlag(args, QStringLiteral("--list")))
        return args.isEmpty() ? listRestorePoints(context) : kUsage;
    const bool yes = takeFlag(args, QStringLiteral("--yes"));
    if (args.size() != 1 || args.first().startsWith(QLatin1String("--")))
        return kUsage;
    QString problem;
    QString newer;
    const std::optional<RestorePoint> point
        = RestorePoints::readForRestore(pointPath(context, args.first()), &problem, &newer);
    if (!point && !newer.isEmpty())
        return context.fail(QStringLiteral("a newer restore point cannot be read: %1\nit may hold per-user rows of "
                                           "users this restore brings back; move it out of %2 to restore without "
                                           "them; nothing was written")
                                .arg(problem, QDir::toNativeSeparators(QFileInfo(newer).absolutePath())));
    if (!point)
        return context.fail(problem + QStringLiteral("; nothing was written"));

    CSableManagerDoc doc;
    if (!loadChart(context, doc))
        return kFailure;
    MergeEdits::applyRestore(doc, *point);
    const QStringList changes = ChartDiff::summaryLines(doc.unsavedChanges());
    const int userRows = countRows(doc.pendingUserData());
    context.out << "restore point: " << whenText(point->savedAt) << "  " << whoText(point->author) << '\n';
    if (changes.isEmpty() && userRows == 0) {
        context.out << "the chart is as the restore point holds it: nothing to restore" << Qt::endl;
        return kSuccess;
    }
    context.out << "the restore changes:\n";
    for (const QString& line : changes)
        context.out << "    " << line << '\n';
    if (userRows > 0)
        context.out << "    per-user rows put back: " << userRows << '\n';
    context.out.flush();
    const int code = saveChart(context, doc, yes);
    if (code == kSuccess)
        context.out << "restored: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount()
                    << " departments" << Qt::endl;
    return code;
}

// "2024-05-01" (from local midnight) or a date and time ("2024-05-01T09:30").
std::optional<QDateTime> parseSince(const QString& text)
{
    const QDate date = QDate::fromString(text, Qt::ISODate);
    if (date.isValid())
        return date.startOfDay();
    const QDateTime at = QDateTime::fromString(text, Qt::ISODate);
    return at.isValid() ? std::optional(at) : std::nullopt;
}

// One save with its rows, the entries of one save lying next to each other as the journal gives them.
struct SaveGroup
{
    const JournalEntry* save;
    std::vector<const JournalEntry*> rows;
};

std::vector<SaveGroup> bySave(const std::vector<JournalEntry>& entries)
{
    std::vector<SaveGroup> saves;
    for (const JournalEntry& entry : entries) {
        if (saves.empty() || saves.back().save->saveId != entry.saveId)
            saves.push_back({&entry, {}});
        saves.back().rows.push_back(&entry);
    }
    return saves;
}

void printText(Context& context, const std::vector<SaveGroup>& saves)
{
    for (const SaveGroup& save : saves) {
        context.out << whenText(save.save->savedAt) << "  " << whoText(save.save->author) << "  " << save.rows.size()
                    << " rows\n";
        for (const JournalEntry* row : save.rows) {
            // The key comes last: scripts that read the columns before it by place still find them.
            QStringList fields {
                row->table, row->action, row->name, row->loginId, row->department, row->fields, row->key};
            context.out << "    " << fields.join(u'\t') << '\n';
        }
    }
    context.out.flush();
}

QByteArray json(const std::vector<SaveGroup>& saves)
{
    QJsonArray out;
    for (const SaveGroup& save : saves) {
        QJsonArray rows;
        for (const JournalEntry* row : save.rows)
            rows.append(QJsonObject {{QStringLiteral("table"), row->table}, {QStringLiteral("action"), row->action},
                {QStringLiteral("key"), row->key}, {QStringLiteral("name"), row->name},
                {QStringLiteral("loginId"), row->loginId}, {QStringLiteral("department"), row->department},
                {QStringLiteral("fields"),
                    QJsonArray::fromStringList(row->fields.split(QStringLiteral(", "), Qt::SkipEmptyParts))}});
        out.append(QJsonObject {{QStringLiteral("save"), save.save->saveId},
            {QStringLiteral("savedAt"), save.save->savedAt.toUTC().toString(Qt::ISODate)},
            {QStringLiteral("user"), save.save->author.user}, {QStringLiteral("host"), save.save->author.host},
            {QStringLiteral("program"), save.save->author.program}, {QStringLiteral("rows"), rows}});
    }
    return QJsonDocument(out).toJson();
}

int log(Context& context, QStringList args)
{
    const bool asJson = takeFlag(args, QStringLiteral("--json"));
    bool missing = false;
    const std::optional<QString> since = takeOption(args, QStringLiteral("--since"), &missing);
    if (missing || !args.isEmpty())
        return kUsage;
    JournalFilter filter;
    if (since) {
        const std::optional<QDateTime> at = parseSince(*since);
        if (!at) {
            context.err << "sablectl: --since takes a date (2024-05-01) or a date and time (2024-05-01T09:30), not "
                        << *since << Qt::endl;
            return kUsage;
        }
        filter.since = *at;
    }
    filter.limit = std::numeric_limits<int>::max();
    context.config.read();
    DbConnection db = connector(context)();
    if (db.isEmpty())
        return context.fail(QStringLiteral("cannot open the database\n") + DbConnection::lastError());
    const std::optional<std::vector<JournalEntry>> entries = ChangeJournal::read(db, filter);
    if (!entries)
        return context.fail(QStringLiteral("the change journal cannot be read\n") + DbConnection::lastError());
    const std::vector<SaveGroup> saves = bySave(*entries);
    if (asJson)
        return printBytes(context, json(saves));
    printText(context, saves);
    return kSuccess;
}

} // namespace

std::vector<Command> historyCommands()
{
    return {
        {{QStringLiteral("chart"), QStringLiteral("restore")}, QStringLiteral("chart restore --list | FILE [--yes]"),
            QStringLiteral("list the restore points, or put one back and save it as the console does"), restore},
        {{QStringLiteral("log")}, QStringLiteral("log [--since DATE] [--json]"),
            QStringLiteral("what every save changed, newest first"), log},
    };
}

} // namespace sable::ctl
