// A save killed with SIGKILL at random moments, on the embedded database and on PostgreSQL: after
// every kill each table holds wholly the chart before or wholly the chart after, the chart version
// in the settings file is never ahead of what the database holds, and the next save goes through
// (no lock of the dead process is left in its way). A save whose restore point cannot be written
// writes nothing.

#include "TestSupport.h"
#include "db/DbConnection.h"
#include "document/ChartJson.h"
#include "document/ChartSave.h"
#include "platform/IniFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTest>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/resource.h>

using namespace sable;

namespace {

constexpr int kKills = 24;

// A chart of `members` users in 20 departments with ranks, folders and permissions. The two
// generations have the same rows under the same keys and differ in every table.
ChartTables chartOf(int generation, int members)
{
    const QString mark = generation == 0 ? QStringLiteral("구") : QStringLiteral("신");
    ChartTables tables;
    tables.groups.push_back({1, QStringLiteral("본사 ") + mark, -1, 1, 0});
    for (int g = 2; g <= 21; ++g)
        tables.groups.push_back({g, QStringLiteral("부서 %1 %2").arg(g).arg(mark), 1, g, 1});
    for (int r = 1; r <= 5; ++r)
        tables.ranks.insert(r - 1, {r, QStringLiteral("직급 %1 %2").arg(r).arg(mark)});
    for (int m = 1; m <= members; ++m) {
        MemberRecord member;
        member.K_MemberID = m;
        member.MemberID = QStringLiteral("user%1").arg(m);
        member.MemberName = QStringLiteral("사용자 %1 %2").arg(m).arg(mark);
        member.Passwd = QStringLiteral("pw");
        member.Email = member.MemberID + QStringLiteral("@example.org");
        member.bAdmin = false;
        tables.members.push_back(member);
        tables.relations.push_back({m, 2 + m % 20, 1 + (m + generation) % 5, m});
    }
    for (int f = 1; f <= 20; ++f) {
        tables.fileBox.folders.push_back({f, QStringLiteral("/share/%1/%2").arg(f).arg(mark)});
        const int level = (f + generation) % 2 == 0 ? Read : ReadWrite;
        tables.fileBox.groupAuthorities.push_back({f, 1 + f, level});
        tables.fileBox.userAuthorities.push_back({f, f, level});
    }
    return tables;
}

// Every table's rows, sorted: the order a database returns them in is not the chart's.
QMap<QString, QStringList> tablesOf(const QString& connection)
{
    QMap<QString, QStringList> tables;
    QString current;
    for (const QString& row : tableDump(connection)) {
        if (row.startsWith(QLatin1String("== ")))
            current = row.mid(3);
        tables[current] << row;
    }
    for (QStringList& rows : tables)
        std::sort(rows.begin(), rows.end());
    return tables;
}

// Waits until the server has done with the sessions of killed savers: a COMMIT sent just before the
// kill still lands after it, and the tables read meanwhile would show a state no save left. False
// when a session is still there after ten seconds.
bool otherSessionsEnded(const QString& connection)
{
    DbConnection db;
    if (!db.open(connection))
        return false;
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 10000) {
        DbRecordset others
            = db.execute(QStringLiteral("SELECT COUNT(*) FROM pg_stat_activity "
                                        "WHERE datname = current_database() AND pid <> pg_backend_pid()"));
        if (others.isValid() && !others.isEof() && others.fieldInt(0) == 0)
            return true;
        others.close();
        QThread::msleep(20);
    }
    return false;
}

} // namespace

class TestSaveKill : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void killedSaves_data();
    void killedSaves();
    void unwritableRestorePointStopsTheSave();

private:
    // Runs the saving program to its end; its exit code, or -1 when it did not end within a minute.
    int saveFully(const QString& connection, const QString& chartFile);

    TempHome m_home;
    PgServer m_pg;
    QString m_settings;
    QString m_points;
};

void TestSaveKill::initTestCase()
{
    m_pg = PgServer::fromFixture();
    m_settings = m_home.path(QStringLiteral("Serverinfo.ini"));
    m_points = m_home.path(QStringLiteral("backups"));
    m_home.writeFile(QStringLiteral("chart0.json"), ChartJson::write(chartOf(0, 1500)));
    m_home.writeFile(QStringLiteral("chart1.json"), ChartJson::write(chartOf(1, 1500)));
}

int TestSaveKill::saveFully(const QString& connection, const QString& chartFile)
{
    QProcess saver;
    saver.start(QStringLiteral(CHARTSAVER_PATH), {connection, m_settings, chartFile, m_points});
    if (!saver.waitForFinished(60000)) {
        saver.kill();
        saver.waitForFinished();
        return -1;
    }
    return saver.exitStatus() == QProcess::NormalExit ? saver.exitCode() : -1;
}

void TestSaveKill::killedSaves_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("sqlite") << "sqlite";
    QTest::newRow("postgresql") << "postgresql";
}

void TestSaveKill::killedSaves()
{
    QFETCH(QString, kind);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());
    const QString charts[2] = {m_home.path(QStringLiteral("chart0.json")), m_home.path(QStringLiteral("chart1.json"))};
    const IniFile settings(m_settings);
    auto version = [&settings] { return settings.readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0); };

    // Both charts saved in full once: what each leaves in the tables, and how long a save takes.
    QMap<QString, QStringList> stored[2];
    qint64 longest = 0;
    for (int generation : {0, 1}) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(saveFully(db, charts[generation]), 0);
        longest = std::max(longest, timer.elapsed());
        stored[generation] = tablesOf(db);
    }
    QVERIFY(stored[0] != stored[1]);

    const quint32 seed = QRandomGenerator::global()->generate();
    QRandomGenerator random(seed);
    int kept = 0;
    int replaced = 0;
    int current = 1;
    for (int kill = 0; kill < kKills; ++kill) {
        const QString round = QStringLiteral("%1 kill %2 (seed %3)").arg(kind).arg(kill).arg(seed);
        const int before = version();
        const int target = 1 - current;
        QProcess saver;
        saver.start(QStringLiteral(CHARTSAVER_PATH), {db, m_settings, charts[target], m_points});
        QVERIFY2(saver.waitForStarted(), qPrintable(round));
        if (!saver.waitForFinished(static_cast<int>(random.bounded(longest + longest / 10 + 1)))) {
            saver.kill();
            QVERIFY2(saver.waitForFinished(60000), qPrintable(round));
        }
        if (kind == QLatin1String("postgresql"))
            QVERIFY2(otherSessionsEnded(db), qPrintable(round + QStringLiteral(": the killed session stays")));

        const QMap<QString, QStringList> now = tablesOf(db);
        for (auto table = now.begin(); table != now.end(); ++table) {
            QVERIFY2(*table == stored[0].value(table.key()) || *table == stored[1].value(table.key()),
                qPrintable(round + QStringLiteral(": %1 is neither chart").arg(table.key())));
        }
        QVERIFY2(now == stored[0] || now == stored[1], qPrintable(round + QStringLiteral(": tables of both charts")));
        const bool committed = now == stored[target];
        (committed ? replaced : kept) += 1;
        if (committed)
            QVERIFY2(version() == before || version() == ChartSave::nextVersion(before), qPrintable(round));
        else
            QVERIFY2(version() == before, qPrintable(round + QStringLiteral(": the version is ahead of the database")));

        // The next save goes through and counts on from the version the kill left.
        const int left = version();
        QVERIFY2(saveFully(db, charts[target]) == 0, qPrintable(round + QStringLiteral(": the next save failed")));
        QVERIFY2(tablesOf(db) == stored[target], qPrintable(round));
        QCOMPARE(version(), ChartSave::nextVersion(left));
        current = target;
    }
    qInfo("%s: %d kills left the chart before, %d the chart after (a save takes about %lld ms)", qPrintable(kind), kept,
        replaced, longest);
}

void TestSaveKill::unwritableRestorePointStopsTheSave()
{
    // The point is packed while the database takes the chart; failing there, it must still stop the
    // commit. A file-size limit lets the saver write the settings but not the point, and PostgreSQL
    // keeps the tables out of its reach.
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(QStringLiteral("postgresql"), m_home, m_pg);
    QVERIFY(!db.isEmpty());
    QCOMPARE(saveFully(db, m_home.path(QStringLiteral("chart0.json"))), 0);
    const QMap<QString, QStringList> before = tablesOf(db);
    const IniFile settings(m_settings);
    const int version = settings.readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0);
    const QStringList points = QDir(m_points).entryList(QDir::Files);

    QProcess saver;
    saver.setChildProcessModifier([] {
        const rlimit small {16 * 1024, 16 * 1024};
        setrlimit(RLIMIT_FSIZE, &small);
        signal(SIGXFSZ, SIG_IGN); // a write past the limit fails instead of killing the saver
    });
    saver.start(
        QStringLiteral(CHARTSAVER_PATH), {db, m_settings, m_home.path(QStringLiteral("chart1.json")), m_points});
    QVERIFY(saver.waitForFinished(60000));
    QCOMPARE(saver.exitStatus(), QProcess::NormalExit);
    QCOMPARE(saver.exitCode(), 1);
    // The administrator is told why, not that an unknown error happened.
    const QString said = QString::fromLocal8Bit(saver.readAllStandardError());
    QVERIFY2(said.contains(QString::fromLocal8Bit(std::strerror(EFBIG))), qPrintable(said));
    QVERIFY(tablesOf(db) == before);
    QCOMPARE(settings.readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0), version);
    QCOMPARE(QDir(m_points).entryList(QDir::Files), points);
}

QTEST_GUILESS_MAIN(TestSaveKill)
#include "tst_save_kill.moc"
