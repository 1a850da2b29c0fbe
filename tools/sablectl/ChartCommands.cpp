#include "CommandLine.h"
#include "db/DbConnection.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartImport.h"
#include "document/ChartJson.h"
#include "document/ChartTables.h"
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
    // The process ends after the export: the chart is left to the system instead of being freed
    // row by row, which took a sixth of the export of a large chart. Kept reachable, so it is no leak.
    static CSableManagerDoc* const kept = new CSableManagerDoc;
    CSableManagerDoc& doc = *kept;
    if (!loadChart(context, doc, nullptr, ChartReader::Use::ReadingOnly))
        return kFailure;
    // Written as it is made: the text of a large chart is never held whole beside the chart.
    if (args.isEmpty()) {
        context.out.flush();
        QFile out;
        if (!out.open(stdout, QIODevice::WriteOnly) || !ChartJson::write(doc.tables(), out) || !out.flush())
            return context.fail(QStringLiteral("cannot write the chart: %1").arg(out.errorString()));
        return kSuccess;
    }
    // A file that cannot be written whole keeps what it held; the chart holds every user's password.
    QSaveFile file(args.first());
    if (!PrivateFiles::open(file) || !ChartJson::write(doc.tables(), file) || !PrivateFiles::commit(file))
        return context.fail(QStringLiteral("cannot write %1: %2").arg(args.first(), file.errorString()));
    return kSuccess;
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
    std::optional<ChartTables> tables = ChartJson::readFile(file, &problem);
    if (!tables)
        return context.fail(QStringLiteral("%1: %2; nothing was written").arg(args.first(), problem));
    file.close();

    context.config.read();
    CSableManagerDoc doc;
    {
        DbConnection db = connector(context)();
        if (!ChartImport::replaceChart(db, doc, std::move(*tables)))
            return context.fail(QStringLiteral("cannot read the identifiers stored now: %1; nothing was written")
                                    .arg(DbConnection::lastError()));
    }
    tables.reset();

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
