// Load and save of a large chart, each beside a reference measured in the same run: the same rows
// written with the SQLite C API (one prepared statement per table, one transaction) and read back
// with plain SELECTs; with --pg, the save into PostgreSQL beside psql's \copy of the rows it wrote,
// in one transaction over the same socket. usage: bench_chart [--pg CONNECTION_STRING] [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "document/ChartReader.h"
#include "document/ChartSave.h"
#include "orgchart/ChartRows.h"
#include "platform/IniFile.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <limits>
#include <sqlite3.h>

using namespace sable;
using namespace sable::bench;

namespace {

constexpr int kPgRuns = 3;

class NoProgress final : public LoadProgress
{
public:
    void setText(const QString&) override { }
    void setRange(int) override { }
    void setPosition(int) override { }
};

// --- The reference: the SQLite C API directly -------------------------------------------------------

void bindText(sqlite3_stmt* statement, int index, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(statement, index, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_TRANSIENT);
}

template <typename Rows, typename Bind>
void insertAll(sqlite3* db, const char* sql, const Rows& rows, Bind&& bind)
{
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(db, sql, -1, &statement, nullptr);
    for (const auto& row : rows) {
        bind(statement, row);
        sqlite3_step(statement);
        sqlite3_reset(statement);
    }
    sqlite3_finalize(statement);
}

qint64 referenceWrite(const QString& file, const CSableManagerDoc& doc)
{
    sqlite3* db = nullptr;
    sqlite3_open(file.toUtf8().constData(), &db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    const auto groups = ChartRows::groups(doc.chart());
    const auto members = ChartRows::members(doc.chart());
    const auto relations = ChartRows::relations(doc.chart());
    insertAll(db, "INSERT INTO SD_Group VALUES (?,?,?,?,?)", groups, [](sqlite3_stmt* s, const GroupRow& g) {
        sqlite3_bind_int(s, 1, g.K_GroupID);
        bindText(s, 2, g.GroupName);
        sqlite3_bind_int(s, 3, g.K_GroupID_P);
        sqlite3_bind_int(s, 4, g.Position);
        sqlite3_bind_int(s, 5, g.Depth);
    });
    insertAll(db, "INSERT INTO SD_Member VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)", members,
        [](sqlite3_stmt* s, const MemberRecord& m) {
            sqlite3_bind_int(s, 1, m.K_MemberID);
            const QString texts[] = {m.MemberID, m.MemberName, m.Passwd};
            for (int i = 0; i < 3; ++i)
                bindText(s, 2 + i, texts[i]);
            sqlite3_bind_int(s, 5, m.Gender);
            sqlite3_bind_int(s, 6, m.bPublic);
            const QString more[] = {m.Email, m.HP, m.Address, m.HomePhone, m.OfficePhone, m.BirthDay, m.Description};
            for (int i = 0; i < 7; ++i)
                bindText(s, 7 + i, more[i]);
            sqlite3_bind_int(s, 14, 1);
            sqlite3_bind_int(s, 15, m.bAdmin);
        });
    insertAll(db, "INSERT INTO SD_Relation VALUES (?,?,?,?)", relations, [](sqlite3_stmt* s, const RelationRow& r) {
        sqlite3_bind_int(s, 1, r.K_MemberID);
        sqlite3_bind_int(s, 2, r.K_GroupID);
        sqlite3_bind_int(s, 3, r.K_RankID);
        sqlite3_bind_int(s, 4, r.Position);
    });
    insertAll(db, "INSERT INTO SD_Rank VALUES (?,?)", doc.ranks().ranks(), [](sqlite3_stmt* s, const RankRecord& r) {
        sqlite3_bind_int(s, 1, r.K_RankID);
        bindText(s, 2, r.RankName);
    });
    insertAll(
        db, "INSERT INTO SB_Folder VALUES (?,?)", doc.fileBox().folders, [](sqlite3_stmt* s, const FolderRecord& f) {
            sqlite3_bind_int(s, 1, f.K_FolderID);
            bindText(s, 2, f.FolderPath);
        });
    const auto authority = [](sqlite3_stmt* s, const AuthorityRecord& a) {
        sqlite3_bind_int(s, 1, a.K_FolderID);
        sqlite3_bind_int(s, 2, a.grantee);
        bindText(s, 3, FileBoxLists::levelToText(a.level));
    };
    insertAll(db, "INSERT INTO SB_GroupAuthority VALUES (?,?,?)", doc.fileBox().groupAuthorities, authority);
    insertAll(db, "INSERT INTO SB_UserAuthority VALUES (?,?,?)", doc.fileBox().userAuthorities, authority);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
    return static_cast<qint64>(groups.size() + members.size() + relations.size() + doc.ranks().ranks().size()
        + doc.fileBox().folders.size() + doc.fileBox().groupAuthorities.size() + doc.fileBox().userAuthorities.size());
}

qint64 referenceRead(const QString& file)
{
    sqlite3* db = nullptr;
    sqlite3_open(file.toUtf8().constData(), &db);
    qint64 rows = 0;
    qint64 bytes = 0;
    for (const QString& table : DbSchema::tableNames()) {
        sqlite3_stmt* statement = nullptr;
        sqlite3_prepare_v2(
            db, QStringLiteral("SELECT * FROM %1").arg(table).toUtf8().constData(), -1, &statement, nullptr);
        const int columns = sqlite3_column_count(statement);
        while (sqlite3_step(statement) == SQLITE_ROW) {
            ++rows;
            for (int c = 0; c < columns; ++c)
                bytes += sqlite3_column_bytes(statement, c);
        }
        sqlite3_finalize(statement);
    }
    sqlite3_close(db);
    return bytes > 0 ? rows : 0;
}

// --- The PostgreSQL reference: psql's \copy -----------------------------------------------------------

// psql on the database `connection` names, running `script`; false when it failed.
bool runPsql(const QString& connection, const QString& script)
{
    const DbTarget target = resolveConnectionString(connection, QString());
    QProcess psql;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("PGPASSWORD"), target.password);
    psql.setProcessEnvironment(env);
    psql.start(QStringLiteral("psql"),
        {QStringLiteral("-h"), target.host, QStringLiteral("-p"), QString::number(target.port), QStringLiteral("-U"),
            target.user, QStringLiteral("-d"), target.databaseName, QStringLiteral("-q"), QStringLiteral("-X"),
            QStringLiteral("-v"), QStringLiteral("ON_ERROR_STOP=1")});
    psql.write(script.toUtf8());
    psql.closeWriteChannel();
    return psql.waitForFinished(600000) && psql.exitStatus() == QProcess::NormalExit && psql.exitCode() == 0;
}

// The chart tables with the columns a save writes (the rank order column numbers itself).
QString copyTarget(const QString& table)
{
    return table == QLatin1String("SD_Rank") ? QStringLiteral("SD_Rank (K_RankID,RankName)") : table;
}

// Each table's rows, as the save left them, in files of `dir`; false when psql failed.
bool dumpTables(const QString& connection, const QTemporaryDir& dir)
{
    QString script;
    for (const QString& table : ChartSave::lockedTables())
        script += QStringLiteral("\\copy %1 TO '%2'\n").arg(copyTarget(table), dir.filePath(table));
    return runPsql(connection, script);
}

// What psql takes to replace every row with the dumped ones in one transaction.
double referenceCopy(const QString& connection, const QTemporaryDir& dir)
{
    QString script = QStringLiteral("BEGIN;\n");
    for (const QString& table : ChartSave::lockedTables()) {
        script += QStringLiteral("DELETE FROM %1;\n\\copy %2 FROM '%3'\n")
                      .arg(table, copyTarget(table), dir.filePath(table));
    }
    script += QStringLiteral("COMMIT;\n");
    bool ok = false;
    const double seconds = timeIt([&] { ok = runPsql(connection, script); });
    return ok ? seconds : -1;
}

void report(QTextStream& out, const char* what, double ours, double reference, qint64 rows, double memory)
{
    out << QStringLiteral("%1  ours %2 s (%3 rows/s)  reference %4 s  ours/reference %5  peak %6 MiB\n")
               .arg(QString::fromLatin1(what).leftJustified(14))
               .arg(ours, 0, 'f', 3)
               .arg(static_cast<double>(rows) / ours, 0, 'f', 0)
               .arg(reference, 0, 'f', 3)
               .arg(ours / reference, 0, 'f', 2)
               .arg(memory, 0, 'f', 0);
    out.flush();
}

bool saved(QTextStream& out, const char* where, ChartSave::Outcome outcome)
{
    if (outcome == ChartSave::Outcome::Saved)
        return true;
    static const char* const names[] = {"saved", "declined", "refused", "database failed", "conflict"};
    out << where << ": the save did not write (" << names[static_cast<int>(outcome)]
        << "): " << DbConnection::lastError() << Qt::endl;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    const qsizetype pgAt = args.indexOf(QStringLiteral("--pg"));
    const QString pg = pgAt > 0 && pgAt + 1 < args.size() ? args[pgAt + 1] : QString();
    const ChartSize size = scaledChartSize(args);
    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments, "
        << doc.chart().placementCount() << " memberships, " << doc.ranks().count() << " ranks, "
        << doc.fileBox().folders.size() << " folders, " << doc.fileBox().groupAuthorities.size() << " + "
        << doc.fileBox().userAuthorities.size() << " permissions\n";

    QTemporaryDir dir;
    const QString referenceFile = dir.filePath(QStringLiteral("reference.db"));
    const QString oursFile = dir.filePath(QStringLiteral("ours.db"));
    createTables(sqliteConnectionString(referenceFile));
    createTables(sqliteConnectionString(oursFile));

    qint64 rows = 0;
    const double referenceSave = timeIt([&] { rows = referenceWrite(referenceFile, doc); });
    const double referenceLoad = timeIt([&] { referenceRead(referenceFile); });

    const IniFile settings(dir.filePath(QStringLiteral("Serverinfo.ini")));
    ChartSave::Collaborators with;
    with.askYesNo = [](const QString&) { return true; };
    with.connect = connector(sqliteConnectionString(oursFile));
    with.sendChartChangedNotice = [] { return true; };
    // The first save fills empty tables like the reference; the second replaces every row, as saves do.
    // A save that did not write measured nothing: its figure would be a lie.
    ChartSave::Outcome first = ChartSave::Outcome::Saved;
    ChartSave::Outcome second = ChartSave::Outcome::Saved;
    const double firstSave = timeIt([&] { first = ChartSave::run(doc, settings, with); });
    resetPeakMemory();
    const double save = timeIt([&] { doc.setModified(true), second = ChartSave::run(doc, settings, with); });
    const double saveMemory = peakMemoryMiB();
    if (!saved(out, "SQLite", first) || !saved(out, "SQLite", second))
        return 1;

    NoProgress progress;
    const std::atomic<int> bContinue {1};
    ChartReader::Result loaded;
    resetPeakMemory();
    const double load
        = timeIt([&] { loaded = ChartReader::read(connector(sqliteConnectionString(oursFile)), progress, bContinue); });
    const double loadMemory = peakMemoryMiB();
    if (loaded.outcome != ChartReader::Outcome::Loaded
        || loaded.contents.chart->placementCount() != doc.chart().placementCount()) {
        out << "load failed: " << loaded.errorText << Qt::endl;
        return 1;
    }

    out << "rows: " << rows << "\n";
    report(out, "save (empty)", firstSave, referenceSave, rows, saveMemory);
    report(out, "save (replace)", save, referenceSave, rows, saveMemory);
    report(out, "load", load, referenceLoad, rows, loadMemory);

    if (!pg.isEmpty()) {
        if (!createTables(pg)) {
            out << "postgresql: the database cannot be reached or set up: " << DbConnection::lastError() << Qt::endl;
            return 1;
        }
        // The document was read from the embedded database: the first save replaces what it finds.
        ChartSave::Collaborators replace = with;
        replace.connect = connector(pg);
        replace.bReplace = true;
        first = ChartSave::Outcome::DatabaseFailed;
        const double pgFirst = timeIt([&] { first = ChartSave::run(doc, settings, replace); });
        if (!saved(out, "postgresql", first))
            return 1;
        // A server on the same cores answers with a spread of a third: the best of a few runs of each,
        // ours and the reference alike.
        with.connect = replace.connect;
        resetPeakMemory();
        double pgSave = std::numeric_limits<double>::max();
        for (int run = 0; run < kPgRuns; ++run) {
            doc.setModified(true);
            second = ChartSave::Outcome::DatabaseFailed;
            pgSave = std::min(pgSave, timeIt([&] { second = ChartSave::run(doc, settings, with); }));
            if (!saved(out, "postgresql", second))
                return 1;
        }
        const double pgMemory = peakMemoryMiB();
        QTemporaryDir copies;
        double reference = dumpTables(pg, copies) ? std::numeric_limits<double>::max() : -1;
        for (int run = 0; run < kPgRuns && reference >= 0; ++run) {
            const double once = referenceCopy(pg, copies);
            reference = once < 0 ? -1 : std::min(reference, once);
        }
        if (reference < 0) {
            out << "psql \\copy failed" << Qt::endl;
            return 1;
        }
        out << QStringLiteral("postgresql     save (empty) %1 s\n").arg(pgFirst, 0, 'f', 3);
        out << QStringLiteral("best of %1 runs each:\n").arg(kPgRuns);
        report(out, "pg save (repl)", pgSave, reference, rows, pgMemory);
    }
    return 0;
}
