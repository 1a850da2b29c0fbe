// sablectl as a script uses it: commands, their output and their exit codes.

#include "TestSupport.h"
#include "db/ConnectionString.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

class TestSablectl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newFolderToDemo();
    void exitCodes_data();
    void exitCodes();
    void chartExportImportRoundTrip();
    void chartImportRefusals_data();
    void chartImportRefusals();
    void unusableDatabaseSetting_data();
    void unusableDatabaseSetting();
    void textFileIsNoDatabase();
    void usersImportSample();
    void usersImportRefusesMalformedFile();

private:
    struct Result
    {
        int code = -1;
        QString out;
        QString err;
    };
    Result run(const TempHome& home, const QStringList& args);
    // A server folder with the demo organisation in its embedded database.
    bool makeDemoHome(const TempHome& home, const QString& folder);
};

TestSablectl::Result TestSablectl::run(const TempHome& home, const QStringList& args)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    env.remove(QStringLiteral("SABLE_HOME"));
    process.setProcessEnvironment(env);
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral(SABLECTL_PATH), args);
    Result result;
    if (!process.waitForFinished(60000))
        return result;
    result.code = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

bool TestSablectl::makeDemoHome(const TempHome& home, const QString& folder)
{
    return run(home,
               {QStringLiteral("--home"), folder, QStringLiteral("db"), QStringLiteral("init"),
                   QStringLiteral("--demo")})
               .code
        == 0;
}

void TestSablectl::newFolderToDemo()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("new/server"));
    const Result config = run(home, {QStringLiteral("--home"), folder, QStringLiteral("config")});
    QCOMPARE(config.code, 0);
    for (const char* key : {"home", "settings", "database-path", "connection-string", "database-type", "server-type",
             "balloon-help", "version-tag"})
        QVERIFY2(config.out.contains(QLatin1String(key) + QStringLiteral(": ")), key);
    QVERIFY(config.out.contains(QStringLiteral("version-tag: SM41\n")));

    const Result init = run(home,
        {QStringLiteral("--home=") + folder, QStringLiteral("db"), QStringLiteral("init"), QStringLiteral("--demo")});
    QCOMPARE(init.code, 0);
    QVERIFY2(init.out.contains(QLatin1String("SD_Member")) && init.out.contains(QLatin1String("demo: written")),
        qPrintable(init.out));

    const Result info = run(home, {QStringLiteral("db"), QStringLiteral("info"), QStringLiteral("--home"), folder});
    QCOMPARE(info.code, 0);
    QVERIFY(info.out.contains(QLatin1String("driver: QSQLITE")));
    const QRegularExpression members(QStringLiteral("SD_Member +40\n"));
    QVERIFY2(members.match(info.out).hasMatch(), qPrintable(info.out));
    QVERIFY(!info.out.contains(QLatin1String("missing:")));

    const Result again = run(home,
        {QStringLiteral("--home"), folder, QStringLiteral("db"), QStringLiteral("init"), QStringLiteral("--demo")});
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.contains(QLatin1String("left as it is")));
}

void TestSablectl::exitCodes_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("stderrHas");
    QTest::newRow("no command") << QStringList {} << 2 << "usage:";
    QTest::newRow("unknown command") << QStringList {"frobnicate"} << 2 << "unknown command";
    QTest::newRow("home without folder") << QStringList {"config", "--home"} << 2 << "--home needs a folder";
    QTest::newRow("extra argument") << QStringList {"config", "extra"} << 2 << "usage: sablectl config";
    QTest::newRow("database missing") << QStringList {"db", "info"} << 1 << "Desc - ";
}

void TestSablectl::exitCodes()
{
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QString, stderrHas);
    TempHome home;
    if (!args.contains(QStringLiteral("--home")))
        args << QStringLiteral("--home") << home.path(QStringLiteral("home"));
    const Result result = run(home, args);
    QCOMPARE(result.code, code);
    QVERIFY2(result.err.contains(stderrHas), qPrintable(result.err));
}

void TestSablectl::chartExportImportRoundTrip()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    const QStringList before = tableDump(database);

    const Result exported
        = run(home, {QStringLiteral("--home"), folder, QStringLiteral("chart"), QStringLiteral("export")});
    QCOMPARE(exported.code, 0);
    QVERIFY(exported.out.contains(QStringLiteral("\"GroupName\": \"세이블상사\"")));
    home.writeFile(QStringLiteral("chart.json"), exported.out.toUtf8());
    const Result imported = run(home,
        {QStringLiteral("--home"), folder, QStringLiteral("chart"), QStringLiteral("import"),
            home.path(QStringLiteral("chart.json")), QStringLiteral("--yes")});
    QVERIFY2(imported.code == 0, qPrintable(imported.err));
    QCOMPARE(tableDump(database), before);

    // Without --yes the question is asked on the terminal; no answer writes nothing.
    const Result unanswered = run(home,
        {QStringLiteral("--home"), folder, QStringLiteral("chart"), QStringLiteral("import"),
            home.path(QStringLiteral("chart.json"))});
    QCOMPARE(unanswered.code, 1);
    QVERIFY(unanswered.err.contains(QStringLiteral("저장하시겠습니까?")));
}

void TestSablectl::chartImportRefusals_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("message");
    const QByteArray ok = "\"ranks\": [], \"folders\": [], \"groupAuthorities\": [], \"userAuthorities\": []";
    const QByteArray member = "{\"K_MemberID\": 1, \"MemberID\": \"a\", \"MemberName\": \"b\", \"Passwd\": \"%1\", "
                              "\"Gender\": 0, \"bPublic\": 1, \"Email\": \"\", \"HP\": \"\", \"Address\": \"\", "
                              "\"HomePhone\": \"\", \"OfficePhone\": \"\", \"BirthDay\": \"\", \"Description\": \"\", "
                              "\"bSolar\": 1, \"bAdmin\": %2}";
    QTest::newRow("not json") << QByteArray("{\"groups\": [") << "not JSON";
    QTest::newRow("wrong type") << QByteArray("{\"groups\": [{\"K_GroupID\": \"1\", \"GroupName\": \"x\", "
                                              "\"K_GroupID_P\": -1, \"Position\": 1, \"Depth\": 0}], \"members\": [], "
                                              "\"relations\": [], "
        + ok + "}") << "groups[0].K_GroupID: expected a whole number";
    QTest::newRow("missing field") << QByteArray("{\"groups\": [], \"members\": ["
        + QByteArray(member).replace("%1", "pw").replace(", \"bAdmin\": %2", "") + "], \"relations\": [], " + ok + "}")
                                   << "members[0].bAdmin: expected a whole number";
    QTest::newRow("empty password") << QByteArray("{\"groups\": [], \"members\": ["
        + QByteArray(member).replace("%1", "").replace("%2", "0") + "], \"relations\": [], " + ok + "}")
                                    << "아이디나 비밀번호가 비어있는 아이디가 있습니다.";

    // Rows no chart can be saved from, named as the file holds them.
    const auto chart = [&ok](const QByteArray& groups, const QByteArray& members) -> QByteArray {
        return "{\"groups\": [" + groups + "], \"members\": [" + members + "], \"relations\": [], " + ok + "}";
    };
    const auto group = [](int id, qint64 parent) {
        return QStringLiteral("{\"K_GroupID\": %1, \"GroupName\": \"g%1\", \"K_GroupID_P\": %2, \"Position\": 1, "
                              "\"Depth\": 0}")
            .arg(id)
            .arg(parent)
            .toUtf8();
    };
    const auto user = [&member](qint64 id, const char* login) {
        return QByteArray(member)
            .replace("%1", "pw")
            .replace("%2", "0")
            .replace("\"K_MemberID\": 1", QByteArray("\"K_MemberID\": " + QByteArray::number(id)))
            .replace("\"a\"", QByteArray("\"" + QByteArray(login) + "\""));
    };
    const QByteArray top = group(1, -1);
    QTest::newRow("department identifier twice") << chart(top + "," + group(2, 1) + "," + group(2, 1), user(1, "a"))
                                                 << "groups[1], groups[2]: K_GroupID 2 more than once";
    QTest::newRow("user identifier twice") << chart(top, user(1, "a") + "," + user(2, "b") + "," + user(1, "c"))
                                           << "members[0], members[2]: K_MemberID 1 more than once";
    QTest::newRow("login ID twice in other case")
        << chart(top, user(1, "Kim") + "," + user(2, "b") + "," + user(3, "kIM"))
        << "members[0], members[2]: login ID \"Kim\" more than once";
    QTest::newRow("parent cycle") << chart(top + "," + group(2, 4) + "," + group(3, 2) + "," + group(4, 3),
        user(1, "a")) << "groups[1], groups[2], groups[3]: the departments' parents form a cycle";
    QTest::newRow("department its own parent")
        << chart(top + "," + group(2, 2), user(1, "a")) << "groups[1]: the departments' parents form a cycle";
    QTest::newRow("second top department") << chart(top + "," + group(2, 1) + "," + group(3, 77), user(1, "a"))
                                           << "groups[0], groups[2]: more than one top department";
    QTest::newRow("identifier over 32 bits") << chart(top, user(1, "a") + "," + user(4294967297LL, "b"))
                                             << "members[1].K_MemberID: 4294967297 is outside the 32-bit range";
    QTest::newRow("parent under 32 bits") << chart(top + "," + group(2, -2147483649LL), user(1, "a"))
                                          << "groups[1].K_GroupID_P: -2147483649 is outside the 32-bit range";
    QTest::newRow("garbage after the chart") << chart(top, user(1, "a")) + "}"
                                             << "garbage after the object";
    QTest::newRow("cut inside a row") << chart(top, user(1, "a")).left(60) << "not JSON at offset";
}

void TestSablectl::chartImportRefusals()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, message);
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    const QStringList before = tableDump(database);
    home.writeFile(QStringLiteral("bad.json"), json);
    const Result result = run(home,
        {QStringLiteral("--home"), folder, QStringLiteral("chart"), QStringLiteral("import"),
            home.path(QStringLiteral("bad.json")), QStringLiteral("--yes")});
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.contains(message), qPrintable(result.err));
    QVERIFY2(result.err.contains(QLatin1String("nothing was written")), qPrintable(result.err));
    QCOMPARE(tableDump(database), before);
}

void TestSablectl::unusableDatabaseSetting_data()
{
    QTest::addColumn<QString>("damage");
    QTest::newRow("longer than start-up reads") << "long";
    QTest::newRow("registry file cut in the value") << "cut";
}

void TestSablectl::unusableDatabaseSetting()
{
    QFETCH(QString, damage);
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    const QStringList before = tableDump(database);
    const Result exported
        = run(home, {QStringLiteral("--home"), folder, QStringLiteral("chart"), QStringLiteral("export")});
    home.writeFile(QStringLiteral("changed.json"),
        QString(exported.out).replace(QStringLiteral("세이블상사"), QStringLiteral("다른상사")).toUtf8());

    const QString registryFile = QStringLiteral("registry/HKLM.reg");
    if (damage == QLatin1String("long")) {
        // A PostgreSQL server behind a deep socket folder: valid, and more than 249 bytes.
        const QString text
            = QStringLiteral("Provider=PostgreSQL;Host=/srv/%1;Port=5432;Database=sable;User ID=sable;Password=x")
                  .arg(QString(230, u's'));
        QVERIFY(home.registry()
                    .openKey(sable::RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase"))
                    ->writeString(QStringLiteral("ConnectionString"), text));
    } else {
        const QByteArray whole = home.readFile(registryFile);
        const qsizetype value = whole.indexOf("\"ConnectionString\"=");
        QVERIFY(value > 0);
        home.writeFile(registryFile, whole.left(value + 30));
    }
    const QByteArray registryBefore = home.readFile(registryFile);

    const QList<QStringList> commands {{QStringLiteral("config")}, {QStringLiteral("start-up")},
        {QStringLiteral("db"), QStringLiteral("info")},
        {QStringLiteral("chart"), QStringLiteral("import"), home.path(QStringLiteral("changed.json")),
            QStringLiteral("--yes")},
        {QStringLiteral("users"), QStringLiteral("export")}};
    for (const QStringList& command : commands) {
        const Result result = run(home, QStringList {QStringLiteral("--home"), folder} + command);
        QVERIFY2(result.code == 1, qPrintable(command.join(u' ') + u'\n' + result.out));
        QVERIFY2(result.err.contains(QLatin1String("ConnectionString")), qPrintable(result.err));
        QVERIFY2(!result.out.contains(QLatin1String("saved")), qPrintable(result.out));
    }
    QCOMPARE(home.readFile(registryFile), registryBefore);
    QCOMPARE(tableDump(database), before);
}

void TestSablectl::textFileIsNoDatabase()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const QByteArray text("These are notes about the server, not its database.\n");
    home.writeFile(QStringLiteral("home/SableDB.db"), text);
    const Result info = run(home, {QStringLiteral("--home"), folder, QStringLiteral("db"), QStringLiteral("info")});
    QCOMPARE(info.code, 1);
    QVERIFY2(!info.out.contains(QLatin1String("tables:")), qPrintable(info.out));
    QVERIFY2(info.err.contains(QLatin1String("not a database")), qPrintable(info.err));
    const Result startUp = run(home, {QStringLiteral("--home"), folder, QStringLiteral("start-up")});
    QCOMPARE(startUp.code, 1);
    QVERIFY2(!startUp.out.contains(QLatin1String("column-repair: done")), qPrintable(startUp.out));
    QCOMPARE(home.readFile(QStringLiteral("home/SableDB.db")), text);
}

void TestSablectl::usersImportSample()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    const auto users = [&](QStringList args) {
        return run(home, QStringList {QStringLiteral("--home"), folder, QStringLiteral("users")} + args);
    };
    QVERIFY(makeDemoHome(home, folder));
    const QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    const QStringList before = tableDump(database);
    const QString sample = QStringLiteral(SAMPLE_USERS);

    // The dry run tells everything and writes nothing.
    const Result dry = users({QStringLiteral("import"), sample, QStringLiteral("--dry-run")});
    QCOMPARE(dry.code, 0);
    for (const char* line :
        {"new 5, update 0, unchanged 0, refused 6", "new department: 세이블상사/고객지원본부/상담팀/야간조",
            "new rank: 선임연구원", "refused: line 7: 아이디: 이미 존재하는 아이디입니다.",
            "refused: line 8: 비밀번호: 비밀번호를 입력하세요.",
            "refused: line 10: 아이디: 같은 아이디가 9번째 줄에도 있습니다.",
            "refused: line 11: 휴대폰: 13자를 초과할 수 없습니다.",
            "refused: line 12: 이메일: 이메일 주소에 @가 없습니다.", "dry run: nothing was written"})
        QVERIFY2(dry.out.contains(QString::fromUtf8(line)), line);
    QCOMPARE(tableDump(database), before);

    // Without --yes the save asks; no answer writes nothing.
    const Result unanswered = users({QStringLiteral("import"), sample});
    QCOMPARE(unanswered.code, 1);
    QCOMPARE(tableDump(database), before);

    const Result imported
        = users({QStringLiteral("import"), sample, QStringLiteral("--update"), QStringLiteral("--yes")});
    QVERIFY2(imported.code == 0, qPrintable(imported.err));
    QVERIFY(imported.out.contains(QLatin1String("saved: 5 added, 1 updated, 4 departments and 2 ranks created")));
    const Result exported = users({QStringLiteral("export")});
    QCOMPARE(exported.code, 0);
    QVERIFY(
        exported.out.contains(QStringLiteral("\njhkim,김정훈,sable1234,남자,있음,jhkim@example.com,010-9000-0001,")));
    QVERIFY(exported.out.contains(QStringLiteral(",세이블상사/고객지원본부/상담팀/야간조,사원\r\n")));

    // What was saved reads back as it is.
    home.writeFile(QStringLiteral("users.csv"), exported.out.toUtf8());
    const QStringList saved = tableDump(database);
    const Result again = users({QStringLiteral("import"), home.path(QStringLiteral("users.csv")),
        QStringLiteral("--update"), QStringLiteral("--yes")});
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.contains(QLatin1String("new 0, update 0, unchanged 45, refused 0")));
    QVERIFY(again.out.contains(QLatin1String("nothing to import")));
    QCOMPARE(tableDump(database), saved);
}

void TestSablectl::usersImportRefusesMalformedFile()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    const QStringList before = tableDump(database);
    home.writeFile(QStringLiteral("bad.csv"), "아이디,이름,비밀번호\nnew1,가,pw\nnew2,\"나,pw\nnew3,다,pw\n");
    const Result result = run(home,
        {QStringLiteral("--home"), folder, QStringLiteral("users"), QStringLiteral("import"),
            home.path(QStringLiteral("bad.csv")), QStringLiteral("--yes")});
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.contains(QStringLiteral("3번째 줄: 따옴표가 닫히지 않았습니다.; nothing was written")),
        qPrintable(result.err));
    QCOMPARE(tableDump(database), before);
}

QTEST_GUILESS_MAIN(TestSablectl)
#include "tst_sablectl.moc"
