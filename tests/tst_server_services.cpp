// The server's services on a real supervisord whose seven programs are stub servers: Start all and
// Stop server with their orders, the Start and Stop command states, a service the supervisor does
// not know and its registration, and a supervisor that cannot be reached.

#include "SupervisorFixture.h"
#include "TestSupport.h"
#include "server/ServerServiceControl.h"
#include "server/ServerServices.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

using namespace sable;

class TestServerServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanupTestCase();
    void startAllThenStopServer();
    void startAllRunsOnceAtATime();
    void commandStates_data();
    void commandStates();
    void onlyCheckDStoppedDisablesStart();
    void missingServiceIsRegistered();
    void supervisorUnreachable_data();
    void supervisorUnreachable();
    void probe_data();
    void probe();
    void managerChangedWhileRunning();
    void sablectlServices();

private:
    SupervisorFixture m_supervisor = SupervisorFixture::fromEnvironment();
};

void TestServerServices::init()
{
    SABLE_REQUIRE_FIXTURE(m_supervisor.isAvailable(), "the supervisord fixture");
    QVERIFY(m_supervisor.stopAll());
}

void TestServerServices::cleanupTestCase()
{
    if (m_supervisor.isAvailable())
        m_supervisor.stopAll();
}

void TestServerServices::startAllThenStopServer()
{
    TempHome home;
    ServerServiceControl control(m_supervisor.backend(), home.paths());
    qint64 offset = m_supervisor.logSize();
    const auto started = control.startAll();
    QVERIFY(started.bRan);
    QCOMPARE(started.failures, QStringList());
    QCOMPARE(m_supervisor.logged(QStringLiteral("spawned"), offset), ServerServices::kStartAllOrder);
    for (const QString& name : ServerServices::kStartAllOrder)
        QVERIFY2(control.isRunning(name), qPrintable(name));

    // Everything runs: nothing to start, and the flag does not stay set.
    offset = m_supervisor.logSize();
    QVERIFY(!control.startAll().bRan);
    QVERIFY(!control.isStartInProgress());

    QCOMPARE(control.stopServer(), QStringList());
    QCOMPARE(m_supervisor.logged(QStringLiteral("stopped"), offset), ServerServices::kStopServerOrder);
    QCOMPARE(m_supervisor.stateOf(ServerServices::kCheckD), QStringLiteral("RUNNING"));

    // Start works again after Stop in the same run, and starts only what is stopped.
    offset = m_supervisor.logSize();
    QVERIFY(control.startAll().bRan);
    QCOMPARE(m_supervisor.logged(QStringLiteral("spawned"), offset), ServerServices::kStopServerOrder);
}

void TestServerServices::startAllRunsOnceAtATime()
{
    TempHome home;
    ServerServiceControl control(m_supervisor.backend(), home.paths());
    QSignalSpy finished(&control, &ServerServiceControl::startAllFinished);
    QSignalSpy busy(&control, &ServerServiceControl::busyChanged);
    const qint64 offset = m_supervisor.logSize();
    control.requestStartAll();
    control.requestStartAll();
    QVERIFY(control.isBusy());
    QVERIFY(!control.isStartEnabled() && !control.isStopEnabled());
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 2, 60000);
    QTRY_VERIFY(!control.isBusy());
    QCOMPARE(busy.first().first().toBool(), true);
    QCOMPARE(busy.last().first().toBool(), false);
    // The second request found the first under way and did nothing.
    QCOMPARE(m_supervisor.logged(QStringLiteral("spawned"), offset), ServerServices::kStartAllOrder);
}

void TestServerServices::commandStates_data()
{
    QTest::addColumn<QStringList>("running");
    QTest::addColumn<bool>("start");
    QTest::addColumn<bool>("stop");
    const QStringList all = ServerServices::kStartAllOrder;
    QTest::newRow("nothing runs") << QStringList() << true << false;
    QTest::newRow("everything runs") << all << false << true;
    QStringList withoutCheck = all;
    withoutCheck.removeAll(ServerServices::kCheckD);
    QTest::newRow("all but Sable_CheckD") << withoutCheck << false << true;
    QTest::newRow("only Sable_CheckD") << QStringList {ServerServices::kCheckD} << true << false;
    QTest::newRow("only the file services")
        << QStringList {ServerServices::kFileDispatchD, ServerServices::kFileSessionD} << true << false;
    QTest::newRow("only the file box") << QStringList {ServerServices::kSableboxServerManager} << true << true;
    QStringList withoutSession = all;
    withoutSession.removeAll(ServerServices::kFileSessionD);
    QTest::newRow("all but the file session service") << withoutSession << true << true;
}

void TestServerServices::commandStates()
{
    QFETCH(QStringList, running);
    QFETCH(bool, start);
    QFETCH(bool, stop);
    QCOMPARE(ServerServiceControl::startEnabledFor(running), start);
    QCOMPARE(ServerServiceControl::stopEnabledFor(running), stop);
}

void TestServerServices::onlyCheckDStoppedDisablesStart()
{
    TempHome home;
    ServerServiceControl control(m_supervisor.backend(), home.paths());
    QVERIFY(control.startAll().failures.isEmpty());
    QVERIFY(control.stopService(ServerServices::kCheckD));

    QSignalSpy changed(&control, &ServerServiceControl::statesChanged);
    control.startRefreshing(50);
    QVERIFY(control.states().isEmpty()); // the states are read on a worker, never while the caller waits
    QTRY_VERIFY(!changed.isEmpty());
    QCOMPARE(control.states().value(ServerServices::kCheckD).status.state, ServiceState::Stopped);
    QVERIFY(!control.isStartEnabled());
    QVERIFY(control.isStopEnabled());

    QVERIFY(control.stopService(ServerServices::kSableD));
    QTRY_VERIFY(control.isStartEnabled());
}

void TestServerServices::missingServiceIsRegistered()
{
    const QString name = ServerServices::kGroupD;
    const auto client = m_supervisor.client();
    QCOMPARE(client.call(QStringLiteral("supervisor.removeProcessGroup"), {name}).kind,
        SupervisorClient::Result::Kind::Value);
    TempHome home;
    ServerServiceControl control(m_supervisor.backend(), home.paths());
    QCOMPARE(control.backend().query(name.toStdString()).outcome, ServiceOutcome::DoesNotExist);
    QVERIFY(!control.isRunning(name));
    QVERIFY(control.startService(name)); // a missing service counts as started
    QVERIFY(control.stopService(name));

    // The program registers itself when started with "/service": here the stub, under the
    // service's name in the server's folder, asks the supervisor to take its program back.
    QVERIFY(QFile::link(QStringLiteral(STUB_PATH), home.paths().programFolder + u'/' + name));
    QVERIFY(m_supervisor.settings().write(home.registry()));
    qputenv("SABLE_REGISTRY_DIR", home.registryFolder().toUtf8());
    const QStringList launched = control.registerMissingServices();
    qunsetenv("SABLE_REGISTRY_DIR");
    QCOMPARE(launched, QStringList {name});
    QTRY_COMPARE(control.backend().query(name.toStdString()).outcome, ServiceOutcome::Done);
    QCOMPARE(control.registerMissingServices(), QStringList());
}

void TestServerServices::supervisorUnreachable_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("message");
    QTest::newRow("nobody listening") << QStringLiteral("http://127.0.0.1:1/RPC2") << m_supervisor.password
                                      << QStringLiteral("cannot reach the supervisor");
    QTest::newRow("wrong password") << m_supervisor.url << QStringLiteral("wrong")
                                    << QStringLiteral("refused the user name or password");
}

void TestServerServices::supervisorUnreachable()
{
    QFETCH(QString, url);
    QFETCH(QString, password);
    QFETCH(QString, message);
    ServiceManagerSettings settings = m_supervisor.settings();
    settings.supervisorUrl = url;
    settings.supervisorPassword = password;
    TempHome home;
    ServerServiceControl control(settings.createBackend(), home.paths());
    const ServiceReply reply = control.backend().query("SableD");
    QCOMPARE(reply.outcome, ServiceOutcome::Unavailable);
    QVERIFY2(QString::fromStdString(reply.message).contains(message), reply.message.c_str());

    QElapsedTimer clock;
    clock.start();
    QVERIFY(!control.isRunning(ServerServices::kSableD));
    QVERIFY(control.startAll().failures.isEmpty());
    QCOMPARE(control.stopServer(), QStringList());
    QCOMPARE(control.registerMissingServices(), QStringList());
    QVERIFY(clock.elapsed() < 5000);
    QVERIFY(control.isStartEnabled()); // nothing reads as running
    QCOMPARE(m_supervisor.stateOf(ServerServices::kSableD), QStringLiteral("STOPPED"));
}

void TestServerServices::probe_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("reached");
    QTest::addColumn<QString>("answerHas");
    QTest::newRow("the fixture") << "supervisord" << m_supervisor.url << m_supervisor.password << true
                                 << "서버의 서비스 7개를 알고 있습니다";
    QTest::newRow("wrong password") << "supervisord" << m_supervisor.url << "wrong" << false << "HTTP 401";
    QTest::newRow("nobody listening") << "supervisord"
                                      << "http://127.0.0.1:1/RPC2" << m_supervisor.password << false
                                      << "cannot reach the supervisor";
    QTest::newRow("no manager") << "none" << m_supervisor.url << m_supervisor.password << false
                                << "서비스 관리자가 설정되어 있지 않아";
    QTest::newRow("no Windows service manager here") << "scm" << QString() << QString() << false << "Windows";
}

void TestServerServices::probe()
{
    QFETCH(QString, kind);
    QFETCH(QString, url);
    QFETCH(QString, password);
    QFETCH(bool, reached);
    QFETCH(QString, answerHas);
    ServiceManagerSettings settings = m_supervisor.settings();
    settings.kind = *ServiceManagerSettings::kindNamed(kind);
    settings.supervisorUrl = url;
    settings.supervisorPassword = password;
    const ServiceManagerSettings::Probe probe = settings.probe();
    QCOMPARE(probe.bReached, reached);
    QVERIFY2(probe.answer.contains(answerHas), qPrintable(probe.answer));
    if (reached)
        QVERIFY2(
            probe.answer.startsWith(QLatin1String("supervisord ")) && probe.answer.contains(QLatin1String("RUNNING")),
            qPrintable(probe.answer));
}

void TestServerServices::managerChangedWhileRunning()
{
    TempHome home;
    ServiceManagerSettings wrong = m_supervisor.settings();
    wrong.supervisorPassword = QStringLiteral("wrong");
    ServerServiceControl control(wrong.createBackend(), home.paths());
    QSignalSpy changed(&control, &ServerServiceControl::statesChanged);
    control.refreshStates();
    QVERIFY(changed.wait(10000));
    QVERIFY2(control.unavailableReason().contains(QLatin1String("HTTP 401")), qPrintable(control.unavailableReason()));
    // Stop stays enabled so that it can say why; nothing can be stopped.
    QVERIFY(control.isStopEnabled());

    control.setBackend(m_supervisor.backend());
    QVERIFY(changed.wait(10000));
    QCOMPARE(control.unavailableReason(), QString());
    QCOMPARE(control.states().size(), ServerServices::kStartAllOrder.size());
    QVERIFY(!control.isStopEnabled()); // reachable, and nothing runs
    QVERIFY(control.startService(ServerServices::kSableD));
    QCOMPARE(m_supervisor.stateOf(ServerServices::kSableD), QStringLiteral("RUNNING"));
}

void TestServerServices::sablectlServices()
{
    TempHome home;
    const auto run = [&home](const QStringList& args) {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(SABLECTL_PATH), QStringList {"--home", home.paths().programFolder} + args);
        process.waitForFinished(60000);
        return std::tuple {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
    };
    auto [code, out, err] = run({"services", "status"});
    QCOMPARE(code, 1);
    QVERIFY2(err.contains(QLatin1String("no service manager is configured")), qPrintable(err));

    home.writeFile(QStringLiteral("supervisor.pw"), m_supervisor.password.toUtf8() + '\n');
    std::tie(code, out, err) = run({"services", "configure", "supervisord", "--url", m_supervisor.url, "--user",
        m_supervisor.user, "--password-file", home.path(QStringLiteral("supervisor.pw"))});
    QCOMPARE(code, 0);
    std::tie(code, out, err) = run({"services", "start"});
    QCOMPARE(code, 0);
    QVERIFY2(out.contains(QLatin1String("Sable_CheckD             running\nstart: disabled, stop: enabled")),
        qPrintable(out));
    std::tie(code, out, err) = run({"services", "stop"});
    QCOMPARE(code, 0);
    QVERIFY2(out.endsWith(QLatin1String("Sable_CheckD             running\nstart: enabled, stop: disabled\n")),
        qPrintable(out));
    QCOMPARE(m_supervisor.stateOf(ServerServices::kGroupD), QStringLiteral("STOPPED"));

    std::tie(code, out, err) = run({"services", "configure", "supervisord", "--password", "wrong"});
    std::tie(code, out, err) = run({"services", "start"});
    QCOMPARE(code, 1);
    QVERIFY2(err.contains(QLatin1String("HTTP 401")), qPrintable(err));
}

QTEST_GUILESS_MAIN(TestServerServices)
#include "tst_server_services.moc"
