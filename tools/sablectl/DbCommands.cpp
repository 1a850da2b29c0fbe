#include "CommandLine.h"
#include "db/DbSchema.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartReader.h"
#include "document/DemoOrganisation.h"
#include "server/ServerDatabase.h"
#include "server/StartupSteps.h"

namespace sable::ctl {
namespace {

// Opens the database as start-up chooses it; on failure prints the error text and returns an
// empty connection.
DbConnection openDatabase(Context& context)
{
    context.config.read();
    DbConnection connection = ServerDatabase::connect(context.config, nullptr);
    if (connection.isEmpty())
        context.fail(QStringLiteral("cannot open the database\n") + DbConnection::lastError());
    return connection;
}

int rowCount(DbConnection& connection, const QString& table)
{
    DbRecordset rows = connection.execute(QStringLiteral("SELECT COUNT(*) FROM ") + table);
    return rows.isValid() && !rows.isEof() ? rows.fieldInt(0) : -1;
}

int showInfo(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    DbConnection connection = openDatabase(context);
    if (connection.isEmpty())
        return kFailure;
    QTextStream& out = context.out;
    out << "database: " << ServerDatabase::describe(context.config) << '\n'
        << "driver: " << connection.driverName() << '\n';
    const QStringList chartTables = DbSchema::existingTables(connection);
    QStringList all = connection.tables();
    all.sort(Qt::CaseInsensitive);
    out << "tables: " << all.size() << '\n';
    for (const QString& table : all) {
        const bool ours = chartTables.contains(table, Qt::CaseInsensitive);
        out << "  " << table.leftJustified(20) << ' '
            << (ours ? QString::number(rowCount(connection, table)) : QStringLiteral("-")) << '\n';
    }
    const QStringList missing = [&] {
        QStringList names;
        for (const QString& name : DbSchema::tableNames()) {
            if (!chartTables.contains(name))
                names << name;
        }
        return names;
    }();
    if (!missing.isEmpty())
        out << "missing: " << missing.join(u' ') << '\n';
    out.flush();
    return kSuccess;
}

int initDatabase(Context& context, QStringList args)
{
    const bool demo = takeFlag(args, QStringLiteral("--demo"));
    if (!args.isEmpty())
        return kUsage;
    context.config.read();
    const auto embedded = StartupSteps::ensureEmbeddedDatabase(context.config);
    if (embedded == StartupSteps::EmbeddedDatabase::Failed)
        return context.fail(QStringLiteral("cannot create the database\n") + DbConnection::lastError());
    DbConnection connection = openDatabase(context);
    if (connection.isEmpty())
        return kFailure;
    bool ok = true;
    const QStringList created = embedded == StartupSteps::EmbeddedDatabase::Created
        ? DbSchema::tableNames()
        : DbSchema::createMissingTables(connection, &ok);
    if (!ok)
        return context.fail(QStringLiteral("cannot create the tables\n") + DbConnection::lastError());
    context.out << "created: " << (created.isEmpty() ? QStringLiteral("(none)") : created.join(u' ')) << '\n';
    // Databases made before the lookups of the save's deletion cascade were indexed get the indexes.
    const QStringList indexes = DbSchema::createMissingIndexes(connection, &ok);
    if (!ok)
        return context.fail(QStringLiteral("cannot create the indexes\n") + DbConnection::lastError());
    if (!indexes.isEmpty())
        context.out << "indexes created: " << indexes.join(u' ') << '\n';
    if (demo) {
        if (!DemoOrganisation::isChartEmpty(connection)) {
            context.out << "demo: the chart is not empty, left as it is" << Qt::endl;
            return kSuccess;
        }
        if (!DemoOrganisation::write(connection))
            return context.fail(QStringLiteral("cannot write the demo organisation\n") + DbConnection::lastError());
        context.out << "demo: written" << '\n';
    }
    context.out.flush();
    return kSuccess;
}

// Reads the chart as the console does and says what it could not place; 1 when there is anything.
int checkChart(Context& context, QStringList args)
{
    if (!args.isEmpty())
        return kUsage;
    CSableManagerDoc doc;
    LoadProblems problems;
    if (!loadChart(context, doc, &problems))
        return kFailure;
    if (!problems.any()) {
        context.out << "the chart reads as it is stored: " << doc.chart().memberCount() << " users, "
                    << doc.chart().groupCount() << " departments" << Qt::endl;
        return kSuccess;
    }
    context.out << ChartReader::describe(problems) << Qt::endl;
    return kFailure;
}

} // namespace

std::vector<Command> dbCommands()
{
    return {
        {{QStringLiteral("db"), QStringLiteral("check")}, QStringLiteral("db check"),
            QStringLiteral("read the chart and report what it cannot place (exit 1 when there is anything)"),
            checkChart},
        {{QStringLiteral("db"), QStringLiteral("info")}, QStringLiteral("db info"),
            QStringLiteral("open the database and list its tables"), showInfo},
        {{QStringLiteral("db"), QStringLiteral("init")}, QStringLiteral("db init [--demo]"),
            QStringLiteral("create missing tables; --demo fills an empty chart"), initDatabase},
    };
}

} // namespace sable::ctl
