// Start-up: the server folder, the settings read and settled when the console starts, the installer
// switch, the embedded database, the column repair and the passive-mode address.

#include "TestSupport.h"
#include "db/ConnectionString.h"
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
    void damagedConnectionStringKept_data();
    void damagedConnectionStringKept();
    void relativeDatabaseFollowsTheHome();
    void databaseOutsideHome_data();
    void databaseOutsideHome();
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
    void localAddressOfThisMachine();

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
    // Relative, so that a copy of the server's folder uses its own database.
    const QString expected = QStringLiteral("Provider=SQLite;Data Source=SableDB.db");
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
    QTest::addColumn<bool>("usable");
    QTest::newRow("249 characters") << 249 << true;
    QTest::newRow("250 characters") << 250 << false;
    QTest::newRow("1,000 characters") << 1000 << false;
    QTest::newRow("empty") << 0 << true;
}

void TestStartup::connectionStringBuffer()
{
    QFETCH(int, length);
    QFETCH(bool, usable);
    TempHome home;
    const QString stored = QStringLiteral("DSN=").leftJustified(length, u'x').left(length);
    QVERIFY(home.registry()
                .createKey(RegRoot::LocalMachine, databaseKey())
                ->writeString(QStringLiteral("ConnectionString"), stored));
    const QByteArray before = home.readFile(QStringLiteral("registry/HKLM.reg"));
    const ConnectionSetting settled = home.config().settleConnection();
    // A value too long for start-up's buffer is never replaced: the server reads up to 1,024 bytes.
    QVERIFY(!settled.bWroteDefault);
    QCOMPARE(settled.text, usable ? stored : QString());
    QCOMPARE(settled.problem.isEmpty(), usable);
    if (!usable)
        QVERIFY2(settled.problem.contains(QString::number(length)), qPrintable(settled.problem));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), before);
    QCOMPARE(home.config().read().connectionProblem, settled.problem);
}

void TestStartup::damagedConnectionStringKept_data()
{
    // The HKLM file as another program or a full disk may have left it.
    const QByteArray head
        = "Windows Registry Editor Version 5.00\r\n\r\n"
          "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableManager]\r\n\"ServerType\"=dword:00000001\r\n\r\n";
    const QByteArray key = "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\Services\\DataBase]\r\n";
    const QByteArray value = "\"ConnectionString\"=\"Provider=PostgreSQL;Host=/run/postgresql;Database=sable\"\r\n";
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<bool>("damaged");
    QTest::newRow("intact") << head + key + value << false;
    QTest::newRow("cut inside the value") << head + key + value.left(40) << true;
    QTest::newRow("cut inside the key's header") << head + key.left(30) << true;
    QTest::newRow("broken key header") << head + key.left(key.size() - 3) + "\r\n" + value << true;
    QTest::newRow("stray line in the key") << head + key + "Provider=SQLite\r\n" << true;
    QTest::newRow("value of another type") << head + key + "\"ConnectionString\"=dword:00000001\r\n" << true;
    QTest::newRow("absent") << head + key << false;
}

void TestStartup::damagedConnectionStringKept()
{
    QFETCH(QByteArray, file);
    QFETCH(bool, damaged);
    TempHome home;
    home.writeFile(QStringLiteral("registry/HKLM.reg"), file);
    const ConnectionSetting settled = home.config().settleConnection();
    QCOMPARE(!settled.problem.isEmpty(), damaged);
    if (!damaged) {
        QVERIFY(!settled.text.isEmpty());
        return;
    }
    QVERIFY(settled.text.isEmpty() && !settled.bWroteDefault);
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), file);
    // Nothing opens a database meanwhile, and the embedded default is not created in its place.
    int reports = 0;
    DbConnection db = ServerDatabase::connect(home.config(), [&reports](const QString&, const QString&) { ++reports; });
    QVERIFY(db.isEmpty());
    QCOMPARE(reports, 1);
    QVERIFY2(
        DbConnection::lastError().contains(QStringLiteral("ConnectionString")), qPrintable(DbConnection::lastError()));
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(home.config()), StartupSteps::EmbeddedDatabase::NotUsed);
    QVERIFY(!QFile::exists(home.paths().defaultDatabasePath));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), file);
}

void TestStartup::relativeDatabaseFollowsTheHome()
{
    // A server folder and its copy, with the same (relative) connection string: each works on its own file.
    TempHome original;
    original.config().read();
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(original.config()), StartupSteps::EmbeddedDatabase::Created);
    TempHome copy;
    QVERIFY(QFile::copy(original.paths().defaultDatabasePath, copy.paths().defaultDatabasePath));
    copy.writeFile(QStringLiteral("registry/HKLM.reg"), original.readFile(QStringLiteral("registry/HKLM.reg")));
    {
        DbConnection db = ServerDatabase::connect(copy.config(), nullptr);
        QVERIFY2(!db.isEmpty(), qPrintable(DbConnection::lastError()));
        QVERIFY(db.executeNoRecords(
            QStringLiteral("INSERT INTO SD_Rank (K_RankID,RankName) VALUES (?,?)"), {1, QStringLiteral("사원")}));
    }
    const auto rankCount = [](const TempHome& home) {
        DbConnection db;
        return db.open(sqliteConnectionString(home.paths().defaultDatabasePath))
            ? db.execute(QStringLiteral("SELECT COUNT(*) FROM SD_Rank")).fieldInt(0)
            : -1;
    };
    QCOMPARE(rankCount(copy), 1);
    QCOMPARE(rankCount(original), 0);
    QVERIFY(StartupSteps::databaseOutsideHome(copy.config()).isEmpty());
}

void TestStartup::databaseOutsideHome_data()
{
    QTest::addColumn<QString>("dataSource"); // "<elsewhere>" stands for a folder outside the home
    QTest::addColumn<bool>("outside");
    QTest::newRow("relative in the home") << "SableDB.db" << false;
    QTest::newRow("below the home") << "data/SableDB.db" << false;
    QTest::newRow("relative, above the home") << "../SableDB.db" << true;
    QTest::newRow("absolute elsewhere") << "<elsewhere>/SableDB.db" << true;
    QTest::newRow("a folder named like the home") << "<home>-old/SableDB.db" << true;
}

void TestStartup::databaseOutsideHome()
{
    QFETCH(QString, dataSource);
    QFETCH(bool, outside);
    TempHome home;
    dataSource.replace(QStringLiteral("<elsewhere>"), home.path(QStringLiteral("elsewhere")));
    dataSource.replace(QStringLiteral("<home>"), home.paths().programFolder);
    QVERIFY(home.registry()
                .createKey(RegRoot::LocalMachine, databaseKey())
                ->writeString(QStringLiteral("ConnectionString"), sqliteConnectionString(dataSource)));
    const QString reported = StartupSteps::databaseOutsideHome(home.config());
    QCOMPARE(!reported.isEmpty(), outside);
    if (outside)
        QVERIFY(reported.endsWith(QStringLiteral("SableDB.db")));
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
    QTest::newRow("in the home folder's path")
        << QStringList {QStringLiteral("--home"), QStringLiteral("/opt/install/sable")} << false;
    QTest::newRow("in the home folder, with =") << QStringList {QStringLiteral("--home=/opt/install")} << false;
    QTest::newRow("in a screenshot's path") << QStringList {QStringLiteral("--screenshot"),
        QStringLiteral("/tmp/install/a.png"), QStringLiteral("--view"), QStringLiteral("2")}
                                            << false;
    QTest::newRow("after an option's value")
        << QStringList {QStringLiteral("--home"), QStringLiteral("/opt/install"), QStringLiteral("/install")} << true;
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
    QCOMPARE(filled.address, LocalAddress::GetLocalAddress());
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
    // The resolver's answer for the host name, and the interfaces as "up|loopback|address,address".
    QTest::addColumn<QStringList>("resolved");
    QTest::addColumn<QStringList>("interfaces");
    QTest::addColumn<QString>("chosen");
    const QStringList machine {"1|1|127.0.0.1,::1", "1|0|10.0.2.15,fe80::1"};
    QTest::newRow("first usable of the name")
        << QStringList {"127.0.0.1", "169.254.3.4", "10.1.2.3", "10.9.9.9"} << machine << "10.1.2.3";
    QTest::newRow("name on 127.0.1.1, as Debian has it") << QStringList {"127.0.1.1"} << machine << "10.0.2.15";
    QTest::newRow("any of 127.0.0.0/8 and ::1")
        << QStringList {"::1", "127.5.5.5"} << QStringList {"1|0|172.16.0.4"} << "172.16.0.4";
    QTest::newRow("link-local of the name, usable interface")
        << QStringList {"169.254.9.9"} << QStringList {"1|0|10.1.1.1"} << "10.1.1.1";
    QTest::newRow("interface down") << QStringList {"127.0.1.1"} << QStringList {"0|0|10.0.0.9", "1|0|192.168.0.7"}
                                    << "192.168.0.7";
    QTest::newRow("loopback interface never")
        << QStringList {"127.0.1.1"} << QStringList {"1|1|127.0.0.1", "1|1|10.3.3.3"} << "127.0.1.1";
    QTest::newRow("only link-local besides loopback")
        << QStringList {"127.0.1.1"} << QStringList {"1|0|169.254.1.2"} << "169.254.1.2";
    QTest::newRow("nothing else: as before") << QStringList {"127.0.1.1"} << QStringList {} << "127.0.1.1";
    QTest::newRow("nothing at all") << QStringList {"::1"} << QStringList {} << "";
}

void TestStartup::localAddressChoice()
{
    QFETCH(QStringList, resolved);
    QFETCH(QStringList, interfaces);
    QFETCH(QString, chosen);
    int interfaceQueries = 0;
    LocalAddress::Sources sources;
    sources.resolveHostName = [resolved] {
        QList<QHostAddress> out;
        for (const QString& text : resolved)
            out << QHostAddress(text);
        return out;
    };
    sources.interfaces = [interfaces, &interfaceQueries] {
        ++interfaceQueries;
        QList<LocalAddress::Interface> out;
        for (const QString& text : interfaces) {
            const QStringList parts = text.split(u'|');
            LocalAddress::Interface entry {parts[0] == u'1', parts[1] == u'1', {}};
            for (const QString& address : parts[2].split(u','))
                entry.addresses << QHostAddress(address);
            out << entry;
        }
        return out;
    };
    QCOMPARE(LocalAddress::GetLocalAddress(sources), chosen);
    // The interfaces are asked only when the name gives nothing usable.
    QCOMPARE(interfaceQueries, QTest::currentDataTag() == QByteArray("first usable of the name") ? 0 : 1);
}

void TestStartup::localAddressOfThisMachine()
{
    const QString chosen = LocalAddress::GetLocalAddress();
    bool hasOther = false;
    for (const LocalAddress::Interface& entry : LocalAddress::Sources::system().interfaces()) {
        for (const QHostAddress& address : entry.addresses) {
            hasOther = hasOther
                || (entry.bUp && !entry.bLoopback && address.protocol() == QAbstractSocket::IPv4Protocol
                    && !address.isLoopback());
        }
    }
    if (chosen.isEmpty())
        QVERIFY(!hasOther);
    else
        QCOMPARE(QHostAddress(chosen).protocol(), QAbstractSocket::IPv4Protocol);
    if (hasOther)
        QVERIFY2(!QHostAddress(chosen).isLoopback(), qPrintable(chosen));
}

QTEST_GUILESS_MAIN(TestStartup)
#include "tst_startup.moc"
