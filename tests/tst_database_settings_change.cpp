// The change of database: a stand-in settings program that ends with a given exit code, and the
// notice that follows a change, received by the stub server as SableD on the real notice port.

#include "SupervisorFixture.h"
#include "TestSupport.h"
#include "platform/ChangeNotice.h"
#include "server/DatabaseSettingsChange.h"
#include "server/ServerServiceControl.h"
#include "server/ServerServices.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace sable;
using Outcome = DatabaseSettingsChange::Outcome;

class TestDatabaseSettingsChange : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();
    void outcome_data();
    void outcome();
    void startedInTheServerFolderWithoutArguments();
    void runsOnceAtATime();

private:
    // Writes the stand-in settings program into `folder`; `body` is its shell script.
    static void writeProgram(const QString& folder, const QByteArray& body);
    QByteArray newDatagrams(qint64 from) const;

    SupervisorFixture m_supervisor = SupervisorFixture::fromEnvironment();
};

void TestDatabaseSettingsChange::init()
{
    SABLE_REQUIRE_FIXTURE(m_supervisor.isAvailable(), "the supervisord fixture");
    QVERIFY(m_supervisor.stopAll());
}

void TestDatabaseSettingsChange::cleanupTestCase()
{
    if (m_supervisor.isAvailable())
        m_supervisor.stopAll();
}

void TestDatabaseSettingsChange::writeProgram(const QString& folder, const QByteArray& body)
{
    QFile program(QDir(folder).filePath(DatabaseSettingsChange::programName()));
    QVERIFY(program.open(QIODevice::WriteOnly));
    program.write("#!/bin/sh\n" + body + '\n');
    program.close();
    QVERIFY(program.setPermissions(program.permissions() | QFile::ExeOwner));
}

QByteArray TestDatabaseSettingsChange::newDatagrams(qint64 from) const
{
    QFile log(m_supervisor.datagramLog);
    if (!log.open(QIODevice::ReadOnly) || !log.seek(from))
        return {};
    return log.readAll();
}

void TestDatabaseSettingsChange::outcome_data()
{
    QTest::addColumn<QByteArray>("program"); // empty: there is no program
    QTest::addColumn<bool>("serverListening");
    QTest::addColumn<bool>("sendFails");
    QTest::addColumn<Outcome>("expected");
    QTest::addColumn<bool>("restarted");

    QTest::newRow("exit 0") << QByteArray("exit 0") << true << false << Outcome::Unchanged << false;
    QTest::newRow("exit 6") << QByteArray("exit 6") << true << false << Outcome::Unchanged << false;
    QTest::newRow("killed") << QByteArray("kill -9 $$") << true << false << Outcome::Unchanged << false;
    QTest::newRow("cannot be started") << QByteArray() << true << false << Outcome::NotStarted << false;
    QTest::newRow("exit 5, server listening") << QByteArray("exit 5") << true << false << Outcome::Changed << false;
    QTest::newRow("exit 5, nobody listening") << QByteArray("exit 5") << false << false << Outcome::Changed << false;
    QTest::newRow("exit 5, notice not sent") << QByteArray("exit 5") << false << true << Outcome::Changed << true;
}

void TestDatabaseSettingsChange::outcome()
{
    QFETCH(QByteArray, program);
    QFETCH(bool, serverListening);
    QFETCH(bool, sendFails);
    QFETCH(Outcome, expected);
    QFETCH(bool, restarted);

    TempHome home;
    const QString consoleFolder = home.path(QStringLiteral("console"));
    QVERIFY(QDir().mkpath(consoleFolder));
    if (!program.isEmpty())
        writeProgram(consoleFolder, program);
    if (serverListening) {
        QCOMPARE(m_supervisor.client().call(QStringLiteral("supervisor.startProcess"), {ServerServices::kSableD}).kind,
            SupervisorClient::Result::Kind::Value);
    }
    const qint64 logStart = QFile(m_supervisor.datagramLog).size();

    ServerServiceControl services(m_supervisor.backend(), home.paths());
    int restarts = 0;
    DatabaseSettingsChange change(home.paths(), consoleFolder, [&] {
        ++restarts;
        services.restartServices();
    });
    // The real notice, counted: other programs may send to the same port meanwhile.
    int notices = 0;
    change.setNoticeSender([&notices, sendFails] {
        ++notices;
        return !sendFails && ChangeNotice::send(ChangeNotice::Kind::ReloadDatabase, ChangeNotice::kDatabasePort);
    });
    QSignalSpy finished(&change, &DatabaseSettingsChange::finished);
    change.start();
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 60000);
    QCOMPARE(finished.first().first().value<Outcome>(), expected);
    QVERIFY(!change.isRunning());
    QCOMPARE(notices, expected == Outcome::Changed ? 1 : 0);
    QCOMPARE(restarts, restarted ? 1 : 0);

    const QByteArray notice
        = "port=16203 length=32 hex=" + ChangeNotice::bytes(ChangeNotice::Kind::ReloadDatabase).toHex() + '\n';
    if (expected == Outcome::Changed && serverListening)
        QTRY_VERIFY(newDatagrams(logStart).contains(notice));
    if (restarted) {
        for (const QString& name : ServerServices::kStartAllOrder)
            QCOMPARE(m_supervisor.stateOf(name), QStringLiteral("RUNNING"));
    }
}

void TestDatabaseSettingsChange::startedInTheServerFolderWithoutArguments()
{
    TempHome home;
    const QString consoleFolder = home.path(QStringLiteral("console"));
    QVERIFY(QDir().mkpath(consoleFolder));
    writeProgram(consoleFolder, "printf '%s\\n%s\\n%s\\n' \"$PWD\" \"$#\" \"$SABLE_HOME\" > seen.txt; exit 0");
    DatabaseSettingsChange change(home.paths(), consoleFolder, nullptr);
    QSignalSpy finished(&change, &DatabaseSettingsChange::finished);
    change.start();
    QTRY_COMPARE(finished.size(), 1);
    const QString folder = home.paths().programFolder;
    QCOMPARE(home.readFile(QStringLiteral("home/seen.txt")), (folder + u"\n0\n" + folder + u'\n').toUtf8());
}

void TestDatabaseSettingsChange::runsOnceAtATime()
{
    TempHome home;
    const QString consoleFolder = home.path(QStringLiteral("console"));
    QVERIFY(QDir().mkpath(consoleFolder));
    writeProgram(consoleFolder, "echo run >> runs.txt; sleep 0.5; exit 0");
    DatabaseSettingsChange change(home.paths(), consoleFolder, nullptr);
    QSignalSpy finished(&change, &DatabaseSettingsChange::finished);
    change.start();
    QVERIFY(change.isRunning());
    change.start();
    QTRY_COMPARE(finished.size(), 1);
    QTest::qWait(200);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(home.readFile(QStringLiteral("home/runs.txt")), QByteArray("run\n"));
}

QTEST_GUILESS_MAIN(TestDatabaseSettingsChange)
#include "tst_database_settings_change.moc"
