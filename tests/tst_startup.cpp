// Start-up: the server folder, the settings read and settled when the console starts, the installer
// switch, the embedded database, the column repair and the passive-mode address.

#include "TestSupport.h"
#include "db/DbSchema.h"
#include "platform/IniFile.h"
#include "platform/LocalAddress.h"
#include "server/ServerDatabase.h"
#include "server/StartupSteps.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace sable;

class TestStartup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void homeResolution_data();
    void homeResolution();
    void defaultConnectionStringWrittenOnce();
    void connectionStringBuffer_data();
    void connectionStringBuffer();
    void registrySettings_data();
    void registrySettings();
    void installSwitch_data();
    void installSwitch();
    void installLaunchesEveryProgram();
    void embeddedDatabase();
    void embeddedDatabaseNeverOverwritten();
    void columnRepair();
    void columnRepairReportsUnopenableDatabase();
    void passiveAddress();
    void localAddressChoice_data();
    void localAddressChoice();

private:
    static QString databaseKey() { return QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase"); }
};

void TestStartup::homeResolution_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("environment"); // SABLE_HOME; empty counts as unset
    QTest::addColumn<QString>("builtIn");
    QTest::addColumn<QString>("expected");
    QTest::newRow("option first") << QStringList {QStringLiteral("--home"), QStringLiteral("/a")}
                                  << QStringLiteral("/env") << QStringLiteral("/srv/sable") << "/a";
    QTest::newRow("option with equals sign among others")
        << QStringList {QStringLiteral("--view"), QStringLiteral("2"), QStringLiteral("--home=/b")}
        << QStringLiteral("/env") << QStringLiteral("/srv/sable") << "/b";
    QTest::newRow("variable before the built-in folder")
        << QStringList {QStringLiteral("--view"), QStringLiteral("2")} << QStringLiteral("/env")
        << QStringLiteral("/srv/sable") << "/env";
    QTest::newRow("built-in folder before the executable's")
        << QStringList {} << QString() << QStringLiteral("/srv/sable") << "/srv/sable";
    QTest::newRow("option without a folder names none")
        << QStringList {QStringLiteral("--home")} << QString() << QStringLiteral("/srv/sable") << "/srv/sable";
    QTest::newRow("executable's folder when nothing is built in")
        << QStringList {} << QString() << QString() << "/opt/sable/bin";
}

void TestStartup::homeResolution()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, environment);
    QFETCH(QString, builtIn);
    const bool wasSet = qEnvironmentVariableIsSet("SABLE_HOME");
    const QByteArray saved = qgetenv("SABLE_HOME");
    qputenv("SABLE_HOME", environment.toUtf8());
    const QString home = AppPaths::resolveHome(arguments, QStringLiteral("/opt/sable/bin"), builtIn);
    if (wasSet)
        qputenv("SABLE_HOME", saved);
    else
        qunsetenv("SABLE_HOME");
    QTEST(home, "expected");
}

void TestStartup::defaultConnectionStringWrittenOnce()
{
    TempHome home;
    const StartupSettings first = home.config().read();
    QVERIFY(first.bWroteDefaultConnection);
    const QString expected = QStringLiteral("Provider=SQLite;Data Source=%1").arg(home.paths().defaultDatabasePath);
    QCOMPARE(first.connectionString, expected);
    QCOMPARE(first.databaseType, QStringLiteral("SQLITE"));
    QCOMPARE(first.versionTag, QStringLiteral("SM41"));
    QVERIFY(first.bBalloonHelp);

    const auto key = home.registry().openKey(RegRoot::LocalMachine, databaseKey());
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("Type"), QStringLiteral("MSSQL")));
    const QByteArray before = home.readFile(QStringLiteral("registry/HKLM.reg"));
    const StartupSettings second = home.config().read();
    QVERIFY(!second.bWroteDefaultConnection);
    QCOMPARE(second.connectionString, expected);
    QCOMPARE(second.databaseType, QStringLiteral("MSSQL"));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), before);
}

void TestStartup::connectionStringBuffer_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("kept");
    QTest::newRow("249 characters") << 249 << true;
    QTest::newRow("250 characters") << 250 << false;
    QTest::newRow("empty") << 0 << true;
}

void TestStartup::connectionStringBuffer()
{
    QFETCH(int, length);
    QFETCH(bool, kept);
    TempHome home;
    const QString stored = QStringLiteral("DSN=").leftJustified(length, u'x').left(length);
    QVERIFY(home.registry()
                .createKey(RegRoot::LocalMachine, databaseKey())
                ->writeString(QStringLiteral("ConnectionString"), stored));
    bool wroteDefault = false;
    const QString settled = home.config().settleConnectionString(&wroteDefault);
    QCOMPARE(wroteDefault, !kept);
    QCOMPARE(settled == stored, kept);
    const auto now = home.registry()
                         .openKey(RegRoot::LocalMachine, databaseKey())
                         ->readString(QStringLiteral("ConnectionString"), 1024);
    QCOMPARE(*now, settled);
}

void TestStartup::registrySettings_data()
{
    QTest::addColumn<QString>("majorVersion"); // null: absent
    QTest::addColumn<int>("balloonHelp"); // -1: absent
    QTest::addColumn<int>("serverType"); // -1: absent
    QTest::addColumn<QString>("expectedTag");
    QTest::addColumn<bool>("expectedBalloon");
    QTest::addColumn<quint32>("expectedType");
    QTest::newRow("all absent") << QString() << -1 << -1 << "SM41" << true << 0u;
    QTest::newRow("empty tag stays empty") << QStringLiteral("") << 0 << 1 << "" << false << 1u;
    QTest::newRow("stored values") << QStringLiteral("SM40") << 1 << 2 << "SM40" << true << 2u;
    QTest::newRow("tag too long for its buffer") << QString(128, u'v') << 5 << -1 << "SM41" << true << 0u;
}

void TestStartup::registrySettings()
{
    QFETCH(QString, majorVersion);
    QFETCH(int, balloonHelp);
    QFETCH(int, serverType);
    TempHome home;
    const Registry registry = home.registry();
    const auto machine = registry.createKey(RegRoot::LocalMachine, QStringLiteral("Software\\Halvex\\SableManager"));
    if (!majorVersion.isNull())
        machine->writeString(QStringLiteral("MajorVersion"), majorVersion);
    if (serverType >= 0)
        machine->writeDword(QStringLiteral("ServerType"), static_cast<quint32>(serverType));
    if (balloonHelp >= 0)
        registry.createKey(RegRoot::CurrentUser, QStringLiteral("Software\\Halvex\\SableManager"))
            ->writeDword(QStringLiteral("BalloonHelp"), static_cast<quint32>(balloonHelp));

    const StartupSettings settings = home.config().read();
    QTEST(settings.versionTag, "expectedTag");
    QTEST(settings.bBalloonHelp, "expectedBalloon");
    QTEST(settings.serverType, "expectedType");
}

void TestStartup::installSwitch_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("present");
    QTest::newRow("alone") << QStringList {QStringLiteral("/install")} << true;
    QTest::newRow("inside a longer word") << QStringList {QStringLiteral("x/installer")} << true;
    QTest::newRow("among other text") << QStringList {QStringLiteral("--home"), QStringLiteral("/srv"),
        QStringLiteral("a/install")} << true;
    QTest::newRow("other case") << QStringList {QStringLiteral("/INSTALL")} << false;
    QTest::newRow("none") << QStringList {QStringLiteral("/service")} << false;
}

void TestStartup::installSwitch()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, present);
    QCOMPARE(StartupSteps::hasInstallSwitch(arguments), present);
}

void TestStartup::installLaunchesEveryProgram()
{
    TempHome home;
    const AppPaths paths = home.paths();
    const QStringList names = {QStringLiteral("SableD"), QStringLiteral("GroupD"),
        QStringLiteral("SableboxServerManager40"), QStringLiteral("Sable_RelayD"), QStringLiteral("Sable_CheckD"),
        QStringLiteral("Sable_FileDispatchD"), QStringLiteral("Sable_FileSessionD")};
    for (const QString& name : names) {
        const QString program = QDir(paths.programFolder).filePath(name);
        home.writeFile(
            QStringLiteral("home/") + name, "#!/bin/sh\necho \"$(basename \"$0\") $1 $(pwd)\" >> launched.log\n");
        QFile::setPermissions(program, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    QCOMPARE(StartupSteps::runInstallSwitch(paths), names);
    QTRY_COMPARE_WITH_TIMEOUT(home.readFile(QStringLiteral("home/launched.log")).count('\n'), 7, 10000);
    const QString log = QString::fromUtf8(home.readFile(QStringLiteral("home/launched.log")));
    for (const QString& name : names)
        QVERIFY2(log.contains(QStringLiteral("%1 /service %2\n").arg(name, paths.programFolder)), qPrintable(log));

    // A missing program is not started and nothing else happens.
    TempHome empty;
    QCOMPARE(StartupSteps::runInstallSwitch(empty.paths()), QStringList());
}

void TestStartup::embeddedDatabase()
{
    TempHome home;
    const StartupConfig config = home.config();
    config.read();
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(config), StartupSteps::EmbeddedDatabase::Created);
    DbConnection db = ServerDatabase::connect(config, nullptr);
    QVERIFY(!db.isEmpty());
    QCOMPARE(DbSchema::existingTables(db), DbSchema::tableNames());
    QVERIFY(db.executeNoRecords(
        QStringLiteral("INSERT INTO SD_Rank (K_RankID,RankName) VALUES (?,?)"), {1, QStringLiteral("사원")}));
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(config), StartupSteps::EmbeddedDatabase::Present);
    QCOMPARE(db.execute(QStringLiteral("SELECT COUNT(*) FROM SD_Rank")).fieldInt(0), 1);

    // Another database in use: the embedded file is left alone.
    TempHome other;
    other.registry()
        .createKey(RegRoot::LocalMachine, databaseKey())
        ->writeString(QStringLiteral("ConnectionString"), QStringLiteral("DSN=Elsewhere;"));
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(other.config()), StartupSteps::EmbeddedDatabase::NotUsed);
    IniFile(home.paths().settingsFilePath)
        .writeString(QStringLiteral("DBInfo"), QStringLiteral("DBAddr"), QStringLiteral("10.0.0.5"));
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(config), StartupSteps::EmbeddedDatabase::NotUsed);
    QVERIFY(!QFile::exists(other.paths().defaultDatabasePath));
}

void TestStartup::embeddedDatabaseNeverOverwritten()
{
    TempHome home;
    const QByteArray garbage("this is not a database file, and it must stay as it is");
    home.writeFile(QStringLiteral("home/SableDB.db"), garbage);
    const StartupConfig config = home.config();
    config.read();
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(config), StartupSteps::EmbeddedDatabase::Failed);
    QCOMPARE(home.readFile(QStringLiteral("home/SableDB.db")), garbage);
}

void TestStartup::columnRepair()
{
    TempHome home;
    const StartupConfig config = home.config();
    config.read();
    StartupSteps::ensureEmbeddedDatabase(config);
    int reports = 0;
    const auto report = [&reports](const QString&, const QString&) { ++reports; };
    // The embedded engine has no such statement; its error is swallowed, twice alike.
    QCOMPARE(StartupSteps::repairBuddyListColumn(config, report), StartupSteps::ColumnRepair::Done);
    QCOMPARE(StartupSteps::repairBuddyListColumn(config, report), StartupSteps::ColumnRepair::Done);
    QCOMPARE(reports, 0);
}

void TestStartup::columnRepairReportsUnopenableDatabase()
{
    int reports = 0;
    const auto report = [&reports](const QString&, const QString&) { ++reports; };

    // The default file is missing: the connection reports its error, the step asks for the message.
    TempHome home;
    QCOMPARE(StartupSteps::repairBuddyListColumn(home.config(), report), StartupSteps::ColumnRepair::DatabaseFailed);
    QCOMPARE(reports, 1);

    // A database server that cannot be reached: no report from the connection, only the message.
    IniFile(home.paths().settingsFilePath)
        .writeString(QStringLiteral("DBInfo"), QStringLiteral("DBAddr"), QStringLiteral("192.0.2.1"));
    QCOMPARE(StartupSteps::repairBuddyListColumn(home.config(), report), StartupSteps::ColumnRepair::DatabaseFailed);
    QCOMPARE(reports, 1);
}

void TestStartup::passiveAddress()
{
    TempHome home;
    const StartupSteps::PassiveAddress filled = StartupSteps::fillPassiveAddress(home.config());
    QVERIFY(filled.bWritten);
    QCOMPARE(filled.address, LocalAddress::firstHostAddress());
    const auto key = home.registry().openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableBoxServer"));
    QCOMPARE(key->readString(QStringLiteral("Custom PASV IP"), 260), std::optional<QString>(filled.address));

    QVERIFY(key->writeString(QStringLiteral("Custom PASV IP"), QStringLiteral("not an address")));
    const StartupSteps::PassiveAddress kept = StartupSteps::fillPassiveAddress(home.config());
    QVERIFY(!kept.bWritten);
    QCOMPARE(key->readString(QStringLiteral("Custom PASV IP"), 260),
        std::optional<QString>(QStringLiteral("not an address")));
}

void TestStartup::localAddressChoice_data()
{
    QTest::addColumn<QStringList>("addresses");
    QTest::addColumn<QString>("chosen");
    QTest::newRow("first usable") << QStringList {"127.0.0.1", "169.254.3.4", "10.1.2.3", "10.9.9.9"} << "10.1.2.3";
    QTest::newRow("loopback and link-local only") << QStringList {"127.0.0.1", "169.254.3.4"} << "169.254.3.4";
    QTest::newRow("other loopback counts") << QStringList {"127.0.1.1"} << "127.0.1.1";
    QTest::newRow("none") << QStringList {} << "";
}

void TestStartup::localAddressChoice()
{
    QFETCH(QStringList, addresses);
    QFETCH(QString, chosen);
    QCOMPARE(LocalAddress::pickLocalAddress(addresses), chosen);
}

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
