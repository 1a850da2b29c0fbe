#include "CommandLine.h"
#include "document/CSableManagerDoc.h"
#include "document/ImportEdits.h"
#include "userimport/ImportPreview.h"
#include "userimport/UserExport.h"

namespace sable::ctl {
namespace {

using Fate = ImportRow::Fate;

QString delimiterName(QChar delimiter)
{
    return delimiter == u'\t' ? QStringLiteral("tab") : QStringLiteral("comma");
}

void printMapping(Context& context, const ImportTable& table, const ColumnMapping& mapping)
{
    QStringList used;
    QList<bool> taken(table.columns.size(), false);
    for (int field = 0; field < ImportFieldCount; ++field) {
        if (!mapping.isMapped(field))
            continue;
        used << QStringLiteral("%1 <- %2").arg(ColumnMapping::fieldName(field), table.columns[mapping.column(field)]);
        taken[mapping.column(field)] = true;
    }
    QStringList ignored;
    for (qsizetype column = 0; column < table.columns.size(); ++column) {
        if (!taken[column])
            ignored << table.columns[column];
    }
    context.out << "columns: " << used.join(QStringLiteral(", ")) << '\n';
    if (!ignored.isEmpty())
        context.out << "ignored columns: " << ignored.join(QStringLiteral(", ")) << '\n';
}

void printPreview(Context& context, const ImportPreview& preview)
{
    QTextStream& out = context.out;
    out << "new " << preview.count(Fate::New) << ", update " << preview.count(Fate::Update) << ", unchanged "
        << preview.count(Fate::Unchanged) << ", refused " << preview.count(Fate::Refused) << '\n';
    for (const QString& path : preview.newDepartmentPaths())
        out << "new department: " << path << '\n';
    for (const QString& name : preview.newRankNames())
        out << "new rank: " << name << '\n';
    for (const ImportRow& row : preview.rows()) {
        for (const ImportRefusal& refusal : row.refusals)
            out << "refused: line " << row.line << ": " << refusal.describe() << '\n';
    }
    out.flush();
}

int importUsers(Context& context, QStringList args)
{
    const bool update = takeFlag(args, QStringLiteral("--update"));
    const bool dryRun = takeFlag(args, QStringLiteral("--dry-run"));
    const bool yes = takeFlag(args, QStringLiteral("--yes"));
    if (args.size() != 1 || args.first().startsWith(QLatin1String("--")))
        return kUsage;
    const QString& path = args.first();
    QString problem;
    const std::optional<QByteArray> bytes = ImportTableReader::load(path, &problem);
    const std::optional<ImportTable> table = bytes ? ImportTableReader::read(*bytes, {}, &problem) : std::nullopt;
    if (!table)
        return context.fail(QStringLiteral("%1: %2; nothing was written").arg(path, problem));
    const ColumnMapping mapping = ColumnMapping::matchHeaders(table->columns);
    context.out << "file: " << path << " (" << FileText::encodingName(table->encoding) << ", "
                << delimiterName(table->delimiter) << ", " << table->rows.size() << " rows)\n";
    printMapping(context, *table, mapping);
    if (!mapping.isMapped(ColMemberID))
        return context.fail(QStringLiteral("%1: no column holds the ID (아이디); nothing was written").arg(path));

    CSableManagerDoc doc;
    if (!loadChart(context, doc))
        return kFailure;
    const ImportPreview preview = ImportPreview::make(
        doc.chart(), doc.ranks(), *table, mapping, update ? ImportMode::AddAndUpdate : ImportMode::AddOnly);
    printPreview(context, preview);
    if (dryRun) {
        context.out << "dry run: nothing was written" << Qt::endl;
        return kSuccess;
    }
    const std::optional<ImportResult> result = ImportEdits::apply(doc, preview);
    if (!result) {
        context.out << "nothing to import" << Qt::endl;
        return preview.count(Fate::Refused) > 0 ? kFailure : kSuccess;
    }
    const int code = saveChart(context, doc, yes);
    if (code == kSuccess)
        context.out << "saved: " << result->added << " added, " << result->updated << " updated, "
                    << result->departments << " departments and " << result->ranks << " ranks created" << Qt::endl;
    return code;
}

int exportUsers(Context& context, QStringList args)
{
    if (args.size() > 1)
        return kUsage;
    CSableManagerDoc doc;
    if (!loadChart(context, doc))
        return kFailure;
    if (args.isEmpty())
        return printBytes(context, UserExport::csv(doc.chart(), doc.ranks()));
    QString problem;
    if (!UserExport::writeFile(doc.chart(), doc.ranks(), args.first(), &problem))
        return context.fail(problem);
    context.out << "exported: " << doc.chart().memberCount() << " users" << Qt::endl;
    return kSuccess;
}

} // namespace

std::vector<Command> usersCommands()
{
    return {
        {{QStringLiteral("users"), QStringLiteral("import")},
            QStringLiteral("users import FILE [--update] [--dry-run] [--yes]"),
            QStringLiteral("add (--update: and update) users from a CSV file and save"), importUsers},
        {{QStringLiteral("users"), QStringLiteral("export")}, QStringLiteral("users export [FILE]"),
            QStringLiteral("print the users as CSV (or write FILE)"), exportUsers},
    };
}

} // namespace sable::ctl
