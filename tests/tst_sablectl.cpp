// sablectl as a script uses it: commands, their output and their exit codes.

#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "platform/Gzip.h"
#include "server/ServiceManagerSettings.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTest>

#include <sys/stat.h>

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
    void filesForTheOwnerOnly();
    void passwordsNeverPrinted();
    void servicePasswordKept_data();
    void servicePasswordKept();
    void chartRestoreRoundTrip_data();
    void chartRestoreRoundTrip();
    void chartRestoreRefusals_data();
    void chartRestoreRefusals();
    void chartRestoreGathersLaterRows_data();
    void chartRestoreGathersLaterRows();
    void logAfterTwoSaves_data();
    void logAfterTwoSaves();

private:
    struct Result
    {
        int code = -1;
        QString out;
        QString err;
    };
    Result run(const TempHome& home, const QStringList& args, const QByteArray& input = {});
    // A server folder with the demo organisation in its embedded database.
    bool makeDemoHome(const TempHome& home, const QString& folder);

    // The server folder of the tests of saves, restore points and the journal.
    struct DemoServer
    {
        TempHome home;
        QString folder = home.path(QStringLiteral("home"));
        QString database = sable::sqliteConnectionString(folder + QStringLiteral("/SableDB.db"));
    };
    // Fills `server` with the demo organisation and, given `edit`, saves it once so edited.
    bool makeDemoServer(const DemoServer& server, const std::function<void(QJsonObject&)>& edit = {});
    // Exports the chart, lets `edit` change the JSON and imports it with --yes: one save.
    bool saveEdited(const DemoServer& server, const std::function<void(QJsonObject&)>& edit);
    // The restore points as `chart restore --list` names them, newest first.
    QStringList restorePoints(const DemoServer& server);
    // `chart restore POINT --yes`.
    Result restore(const DemoServer& server, const QString& point);
};

namespace {

// The K_MemberID of `login` in an exported chart.
int memberId(const QJsonObject& chart, const QString& login)
{
    for (const QJsonValue& member : chart.value(QStringLiteral("members")).toArray()) {
        if (member[QStringLiteral("MemberID")].toString() == login)
            return member[QStringLiteral("K_MemberID")].toInt();
    }
    return 0;
}

// Leaves out of `key` the rows whose `field` is `value`.
void removeRows(QJsonObject& chart, const QString& key, const QString& field, int value)
{
    QJsonArray kept;
    for (const QJsonValue& row : chart.value(key).toArray()) {
        if (row[field].toInt() != value)
            kept.append(row);
    }
    chart.insert(key, kept);
}

void setField(QJsonObject& chart, const QString& key, const QString& idField, int id, const QString& field,
    const QJsonValue& value)
{
    QJsonArray rows = chart.value(key).toArray();
    for (qsizetype i = 0; i < rows.size(); ++i) {
        QJsonObject row = rows[i].toObject();
        if (row[idField].toInt() == id) {
            row.insert(field, value);
            rows[i] = row;
        }
    }
    chart.insert(key, rows);
}

void removeMember(QJsonObject& chart, const QString& login)
{
    const int id = memberId(chart, login);
    removeRows(chart, QStringLiteral("members"), QStringLiteral("K_MemberID"), id);
    removeRows(chart, QStringLiteral("relations"), QStringLiteral("K_MemberID"), id);
}

// A table dump with the rows of each table in sorted order: rows put back from several restore
// points come in another order than they were written.
QStringList sortedDump(const QString& database)
{
    QStringList dump = tableDump(database);
    for (qsizetype from = 0; from < dump.size();) {
        qsizetype to = from + 1;
        while (to < dump.size() && !dump[to].startsWith(QLatin1String("== ")))
            ++to;
        std::sort(dump.begin() + from + 1, dump.begin() + to);
        from = to;
    }
    return dump;
}

void removeEskang(QJsonObject& chart)
{
    removeMember(chart, QStringLiteral("eskang"));
}

bool execute(const QString& database, const QStringList& statements)
{
    sable::DbConnection db;
    if (!db.open(database))
        return false;
    for (const QString& sql : statements) {
        if (!db.executeNoRecords(sql))
            return false;
    }
    return true;
}

} // namespace

bool TestSablectl::makeDemoServer(const DemoServer& server, const std::function<void(QJsonObject&)>& edit)
{
    return makeDemoHome(server.home, server.folder) && (!edit || saveEdited(server, edit));
}

bool TestSablectl::saveEdited(const DemoServer& server, const std::function<void(QJsonObject&)>& edit)
{
    const TempHome& home = server.home;
    const Result exported
        = run(home, {QStringLiteral("--home"), server.folder, QStringLiteral("chart"), QStringLiteral("export")});
    QJsonObject chart = QJsonDocument::fromJson(exported.out.toUtf8()).object();
    if (exported.code != 0 || chart.isEmpty())
        return false;
    edit(chart);
    home.writeFile(QStringLiteral("edited.json"), QJsonDocument(chart).toJson());
    const Result imported = run(home,
        {QStringLiteral("--home"), server.folder, QStringLiteral("chart"), QStringLiteral("import"),
            home.path(QStringLiteral("edited.json")), QStringLiteral("--yes")});
    return imported.code == 0;
}

QStringList TestSablectl::restorePoints(const DemoServer& server)
{
    const Result listed = run(server.home,
        {QStringLiteral("--home"), server.folder, QStringLiteral("chart"), QStringLiteral("restore"),
            QStringLiteral("--list")});
    static const QRegularExpression file(QStringLiteral("\\S+\\.json\\.gz$"), QRegularExpression::MultilineOption);
    QStringList names;
    for (auto match = file.globalMatch(listed.out); match.hasNext();)
        names << match.next().captured();
    return names;
}

TestSablectl::Result TestSablectl::restore(const DemoServer& server, const QString& point)
{
    return run(server.home,
        {QStringLiteral("--home"), server.folder, QStringLiteral("chart"), QStringLiteral("restore"), point,
            QStringLiteral("--yes")});
}

TestSablectl::Result TestSablectl::run(const TempHome& home, const QStringList& args, const QByteArray& input)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    env.remove(QStringLiteral("SABLE_HOME"));
    process.setProcessEnvironment(env);
    if (input.isEmpty())
        process.setStandardInputFile(QProcess::nullDevice());
    process.start(QStringLiteral(SABLECTL_PATH), args);
    if (!input.isEmpty()) {
        process.write(input);
        process.closeWriteChannel();
    }
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

void TestSablectl::filesForTheOwnerOnly()
{
    // Settings, the database, restore points and exports hold passwords: what sablectl creates is
    // its owner's only; a file that exists keeps the mode it was given.
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    QVERIFY(makeDemoHome(home, folder));
    const auto ctl = [&](QStringList args) {
        return run(home, QStringList {QStringLiteral("--home"), folder} + args).code;
    };
    QCOMPARE(ctl({QStringLiteral("users"), QStringLiteral("import"), QStringLiteral(SAMPLE_USERS),
                 QStringLiteral("--update"), QStringLiteral("--yes")}),
        0);
    home.writeFile(QStringLiteral("shared.csv"), "x");
    QVERIFY(::chmod(QFile::encodeName(home.path(QStringLiteral("shared.csv"))).constData(), 0644) == 0);
    for (const QString& file : {QStringLiteral("users.csv"), QStringLiteral("shared.csv")})
        QCOMPARE(ctl({QStringLiteral("users"), QStringLiteral("export"), home.path(file)}), 0);
    QCOMPARE(ctl({QStringLiteral("chart"), QStringLiteral("export"), home.path(QStringLiteral("chart.json"))}), 0);

    const QStringList backups = QDir(folder + QStringLiteral("/backups")).entryList(QDir::Files);
    QVERIFY(!backups.isEmpty());
    QList<std::pair<QString, int>> expected {{QStringLiteral("home/SableDB.db"), 0600},
        {QStringLiteral("registry/HKLM.reg"), 0600}, {QStringLiteral("registry"), 0700},
        {QStringLiteral("home/backups"), 0700}, {QStringLiteral("users.csv"), 0600},
        {QStringLiteral("chart.json"), 0600}, {QStringLiteral("shared.csv"), 0644}};
    for (const QString& file : backups)
        expected.append({QStringLiteral("home/backups/") + file, 0600});
    for (const auto& [file, mode] : expected) {
        struct stat info = {};
        QVERIFY2(::stat(QFile::encodeName(home.path(file)).constData(), &info) == 0, qPrintable(file));
        QVERIFY2(int(info.st_mode & 07777) == mode,
            qPrintable(QStringLiteral("%1: %2").arg(file, QString::number(info.st_mode & 07777, 8))));
    }
}

void TestSablectl::passwordsNeverPrinted()
{
    TempHome home;
    const QString folder = home.path(QStringLiteral("home"));
    const auto key = home.registry().createKey(
        sable::RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase"));
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("ConnectionString"),
        QStringLiteral("Provider=PostgreSQL;Host=%1;Database=d;User ID=u;Password='very;secret'")
            .arg(home.path(QStringLiteral("no-server")))));
    const Result config = run(home, {QStringLiteral("--home"), folder, QStringLiteral("config")});
    QCOMPARE(config.code, 0);
    QVERIFY2(config.out.contains(QLatin1String(";User ID=u;Password=****\n")), qPrintable(config.out));
    const Result info = run(home, {QStringLiteral("--home"), folder, QStringLiteral("db"), QStringLiteral("info")});
    QCOMPARE(info.code, 1);
    for (const Result& result : {config, info}) {
        const QString printed = result.out + result.err;
        QVERIFY2(!printed.contains(QLatin1String("secret")), qPrintable(printed));
    }
}

void TestSablectl::servicePasswordKept_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("stderrHas"); // empty: nothing on stderr
    QTest::newRow("from a file") << QStringList {"--password-file", "FILE"} << QByteArray() << 0 << "";
    QTest::newRow("from standard input") << QStringList {"--password", "-"} << QByteArray("pa;ss word\nnext\n") << 0
                                         << "";
    QTest::newRow("on the command line, warned")
        << QStringList {"--password", "pa;ss word"} << QByteArray() << 0 << "prefer --password-file";
    QTest::newRow("twice") << QStringList {"--password-file", "FILE", "--password", "-"} << QByteArray("x\n") << 2
                           << "--password-file FILE";
    QTest::newRow("a file that is not there") << QStringList {"--password-file", "NONE"} << QByteArray() << 2 << "none";
}

void TestSablectl::servicePasswordKept()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, input);
    QFETCH(int, code);
    QFETCH(QString, stderrHas);
    TempHome home;
    home.writeFile(QStringLiteral("password"), "pa;ss word\r\n");
    options.replaceInStrings(QStringLiteral("FILE"), home.path(QStringLiteral("password")));
    options.replaceInStrings(QStringLiteral("NONE"), home.path(QStringLiteral("none")));
    const Result configure = run(home,
        QStringList {QStringLiteral("--home"), home.path(QStringLiteral("home")), QStringLiteral("services"),
            QStringLiteral("configure"), QStringLiteral("supervisord"), QStringLiteral("--url"),
            QStringLiteral("http://127.0.0.1:9/RPC2"), QStringLiteral("--user"), QStringLiteral("sable")}
            + options,
        input);
    QCOMPARE(configure.code, code);
    QVERIFY2(
        stderrHas.isEmpty() ? configure.err.isEmpty() : configure.err.contains(stderrHas), qPrintable(configure.err));
    const sable::ServiceManagerSettings settings = sable::ServiceManagerSettings::read(home.registry());
    QCOMPARE(settings.supervisorPassword, code == 0 ? QStringLiteral("pa;ss word") : QString());
    QCOMPARE(settings.supervisorUser, code == 0 ? QStringLiteral("sable") : QString());
}

void TestSablectl::chartRestoreRoundTrip_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QString>("changeLine");
    QTest::newRow("user deleted") << "delete"
                                  << "사용자: 추가 1, 변경 0, 삭제 0";
    QTest::newRow("department renamed, user deleted") << "rename+delete"
                                                      << "부서: 추가 0, 변경 1, 삭제 0";
    QTest::newRow("user added") << "add"
                                << "사용자: 추가 0, 변경 0, 삭제 1";
}

void TestSablectl::chartRestoreRoundTrip()
{
    QFETCH(QString, edit);
    QFETCH(QString, changeLine);
    const DemoServer server;
    QVERIFY(makeDemoServer(server));
    const QString& database = server.database;
    // eskang (6) keeps lists and a memo, and is on jhkim's (1) list; jhkim's list of sypark (2) is
    // nobody's who leaves.
    QVERIFY(execute(database,
        {QStringLiteral("INSERT INTO SD_Antenna VALUES (1,2)"), QStringLiteral("INSERT INTO SD_Antenna VALUES (6,1)"),
            QStringLiteral("INSERT INTO SD_MyMember VALUES (1,6,NULL)"),
            QStringLiteral("INSERT INTO SD_MyGroup VALUES (6,1,'동기')"),
            QStringLiteral("INSERT INTO SD_LeavedMemo VALUES (6,1,'회의 자료')")}));
    const QStringList before = tableDump(database);

    QVERIFY(saveEdited(server, [&edit](QJsonObject& chart) {
        if (edit.contains(QLatin1String("delete"))) {
            QCOMPARE(memberId(chart, QStringLiteral("eskang")), 6);
            removeMember(chart, QStringLiteral("eskang"));
        }
        if (edit.contains(QLatin1String("rename")))
            setField(chart, QStringLiteral("groups"), QStringLiteral("K_GroupID"), 4, QStringLiteral("GroupName"),
                QStringLiteral("재무회계팀"));
        if (edit == QLatin1String("add")) {
            QJsonArray members = chart.value(QStringLiteral("members")).toArray();
            QJsonObject added = members.first().toObject();
            added.insert(QStringLiteral("K_MemberID"), 900);
            added.insert(QStringLiteral("MemberID"), QStringLiteral("newcomer"));
            members.append(added);
            chart.insert(QStringLiteral("members"), members);
        }
    }));
    QVERIFY(tableDump(database) != before);

    const QStringList points = restorePoints(server);
    QVERIFY2(!points.isEmpty(), "no restore point listed");
    const Result restored = restore(server, points.first());
    QVERIFY2(restored.code == 0, qPrintable(restored.err));
    QVERIFY2(restored.out.contains(changeLine), qPrintable(restored.out));
    QCOMPARE(restored.out.contains(QLatin1String("per-user rows put back: 4")), edit.contains(QLatin1String("delete")));
    QCOMPARE(tableDump(database), before);
    // The restore is a save like any other: it leaves a point of its own, and the journal has it.
    QCOMPARE(restorePoints(server).size(), points.size() + 1);

    const Result again = restore(server, points.first());
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.contains(QLatin1String("nothing to restore")));
}

void TestSablectl::chartRestoreRefusals_data()
{
    QTest::addColumn<QString>("damage");
    QTest::addColumn<QString>("reason");
    QTest::newRow("chart export, not compressed") << "plain"
                                                  << "not a gzip file";
    QTest::newRow("cut short") << "cut"
                               << "not a gzip file";
    QTest::newRow("other compressed JSON") << "foreign"
                                           << "not a restore point";
    QTest::newRow("rows of another table") << "table"
                                           << "per-user rows are not in the expected form";
    QTest::newRow("missing") << "missing"
                             << "bad.json.gz: ";
}

void TestSablectl::chartRestoreRefusals()
{
    QFETCH(QString, damage);
    QFETCH(QString, reason);
    const DemoServer server;
    QVERIFY(makeDemoServer(server, removeEskang));
    const TempHome& home = server.home;
    const QStringList points = restorePoints(server);
    QCOMPARE(points.size(), 1);
    const QByteArray good = home.readFile(QStringLiteral("home/backups/") + points.first());
    const QByteArray json = *sable::Gzip::decompress(good, 1 << 30);
    QByteArray bad;
    if (damage == QLatin1String("plain"))
        bad = json;
    else if (damage == QLatin1String("cut"))
        bad = good.left(good.size() / 2);
    else if (damage == QLatin1String("foreign"))
        bad = sable::Gzip::compress("{\"chart\": {}}");
    else if (damage == QLatin1String("table")) // the chart's own table passed off as a user's
        bad = sable::Gzip::compress(QByteArray(json).replace("\"userData\": []",
            "\"userData\": [{\"table\": \"SD_Member\", \"columns\": [\"K_MemberID\"], \"rows\": [[1]]}]"));
    if (damage != QLatin1String("missing"))
        home.writeFile(QStringLiteral("bad.json.gz"), bad);
    if (damage == QLatin1String("table"))
        QVERIFY(*sable::Gzip::decompress(bad, 1 << 30) != json);

    const QStringList before = tableDump(server.database);
    const Result result = restore(server, home.path(QStringLiteral("bad.json.gz")));
    QCOMPARE(result.code, 1);
    QVERIFY2(result.err.contains(QStringLiteral("bad.json.gz: ")) && result.err.contains(reason)
            && result.err.contains(QLatin1String("nothing was written")),
        qPrintable(result.err));
    QCOMPARE(tableDump(server.database), before);
    QCOMPARE(restorePoints(server), points);
}

void TestSablectl::chartRestoreGathersLaterRows_data()
{
    QTest::addColumn<QStringList>("steps"); // saves after the oldest point, in order
    QTest::addColumn<bool>("bRestored");
    QTest::newRow("two later saves each removed a user") << QStringList {"remove eskang", "remove jwjung"} << true;
    QTest::newRow("removed, restored, removed again")
        << QStringList {"remove eskang", "restore oldest", "remove eskang"} << true;
    QTest::newRow("a newer point is damaged")
        << QStringList {"remove eskang", "remove jwjung", "damage newest"} << false;
}

void TestSablectl::chartRestoreGathersLaterRows()
{
    QFETCH(QStringList, steps);
    QFETCH(bool, bRestored);
    const DemoServer server;
    QVERIFY(makeDemoServer(server));
    const QString& database = server.database;
    // jwjung (5) and eskang (6) keep lists and memos, naming each other and jhkim (1); jwjung's memo
    // from eskang outlives eskang until jwjung goes too.
    QVERIFY(execute(database,
        {QStringLiteral("INSERT INTO SD_Antenna VALUES (1,6)"), QStringLiteral("INSERT INTO SD_Antenna VALUES (6,5)"),
            QStringLiteral("INSERT INTO SD_Antenna VALUES (5,1)"),
            QStringLiteral("INSERT INTO SD_MyMember VALUES (5,6,NULL)"),
            QStringLiteral("INSERT INTO SD_MyGroup VALUES (6,1,'동기')"),
            QStringLiteral("INSERT INTO SD_MyGroup VALUES (5,1,'팀')"),
            QStringLiteral("INSERT INTO SD_LeavedMemo VALUES (6,1,'회의 자료')"),
            QStringLiteral("INSERT INTO SD_LeavedMemo VALUES (5,6,'인수인계')")}));
    const QStringList original = sortedDump(database);
    // A save that changes nothing of the users, so that the oldest point holds them all and no rows.
    QVERIFY(saveEdited(server, [](QJsonObject& chart) {
        setField(chart, QStringLiteral("groups"), QStringLiteral("K_GroupID"), 4, QStringLiteral("GroupName"),
            QStringLiteral("재무회계팀"));
    }));
    const QString oldest = restorePoints(server).value(0);
    const auto restoreOldest = [&] { return restore(server, oldest); };
    QString damaged;
    for (const QString& step : steps) {
        const QString login = step.section(u' ', 1);
        if (step.startsWith(QLatin1String("remove")))
            QVERIFY(saveEdited(server, [&login](QJsonObject& chart) { removeMember(chart, login); }));
        else if (step == QLatin1String("restore oldest"))
            QCOMPARE(restoreOldest().code, 0);
        else if (step == QLatin1String("damage newest")) {
            damaged = restorePoints(server).value(0);
            server.home.writeFile(QStringLiteral("home/backups/") + damaged, "not a restore point");
        }
    }
    QVERIFY(sortedDump(database) != original);
    const QStringList before = sortedDump(database);

    const Result restored = restoreOldest();
    if (!bRestored) {
        QCOMPARE(restored.code, 1);
        QVERIFY2(restored.err.contains(damaged) && restored.err.contains(QLatin1String("nothing was written")),
            qPrintable(restored.err));
        QCOMPARE(sortedDump(database), before);
        return;
    }
    QVERIFY2(restored.code == 0, qPrintable(restored.err));
    // Every user and per-user row back, each row once, and the department's first name.
    QCOMPARE(sortedDump(database), original);
}

void TestSablectl::logAfterTwoSaves_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("saves");
    const QString today = QDate::currentDate().toString(Qt::ISODate);
    const QString tomorrow = QDate::currentDate().addDays(1).toString(Qt::ISODate);
    QTest::newRow("all") << QStringList {} << 2;
    QTest::newRow("since today") << QStringList {"--since", today} << 2;
    QTest::newRow("since tomorrow") << QStringList {"--since=" + tomorrow} << 0;
    QTest::newRow("json") << QStringList {"--json"} << 2;
    QTest::newRow("json since tomorrow") << QStringList {"--json", "--since", tomorrow + "T00:00"} << 0;
}

void TestSablectl::logAfterTwoSaves()
{
    QFETCH(QStringList, args);
    QFETCH(int, saves);
    const DemoServer server;
    QVERIFY(makeDemoServer(server, removeEskang));
    QVERIFY(saveEdited(server, [](QJsonObject& chart) {
        setField(chart, QStringLiteral("members"), QStringLiteral("K_MemberID"), 1, QStringLiteral("Passwd"),
            QStringLiteral("s3cret-new"));
        setField(chart, QStringLiteral("groups"), QStringLiteral("K_GroupID"), 4, QStringLiteral("GroupName"),
            QStringLiteral("재무회계팀"));
    }));

    const Result log
        = run(server.home, QStringList {QStringLiteral("--home"), server.folder, QStringLiteral("log")} + args);
    QVERIFY2(log.code == 0, qPrintable(log.err));
    // Passwords are never shown, only that they changed.
    QVERIFY(!log.out.contains(QLatin1String("s3cret-new")));
    QStringList lines; // a row a line: the save's place (1 the newest), table, action, name, login ID, fields, key
    if (args.contains(QStringLiteral("--json"))) {
        const QJsonArray array = QJsonDocument::fromJson(log.out.toUtf8()).array();
        QCOMPARE(array.size(), saves);
        for (qsizetype i = 0; i < array.size(); ++i) {
            QCOMPARE(array[i][QStringLiteral("program")].toString(), QStringLiteral("sablectl"));
            for (const QJsonValue& row : array[i][QStringLiteral("rows")].toArray())
                lines << QStringList {QString::number(i + 1), row[QStringLiteral("table")].toString(),
                    row[QStringLiteral("action")].toString(), row[QStringLiteral("name")].toString(),
                    row[QStringLiteral("loginId")].toString(),
                    row[QStringLiteral("fields")].toVariant().toStringList().join(QStringLiteral(", ")),
                    row[QStringLiteral("key")].toString()}
                             .join(u'|');
        }
    } else {
        static const QRegularExpression header(
            QStringLiteral("^\\d{4}-\\d\\d-\\d\\d \\S+  \\S*@\\S* \\(sablectl\\)  \\d+ rows$"));
        int save = 0;
        for (const QString& line : log.out.split(u'\n', Qt::SkipEmptyParts)) {
            if (!line.startsWith(QLatin1String("    "))) {
                QVERIFY2(header.match(line).hasMatch(), qPrintable(line));
                ++save;
                continue;
            }
            const QStringList f = line.trimmed().split(u'\t');
            lines << QStringList {QString::number(save), f.value(0), f.value(1), f.value(2), f.value(3), f.value(5),
                f.value(6)}
                         .join(u'|');
        }
        QCOMPARE(save, saves);
    }
    QCOMPARE(lines.isEmpty(), saves == 0);
    if (saves == 0)
        return;
    // Newest first: the password and the rename, then the deleted user and membership, each by its key.
    for (const char* expected : {"1|사용자|변경|김정훈 (jhkim)|jhkim|비밀번호|1", "1|부서|변경|재무회계팀||이름|4",
             "2|사용자|삭제|강은서 (eskang)|eskang||6", "2|소속|삭제|강은서 (eskang) - 인사팀|eskang||6/3"})
        QVERIFY2(lines.contains(QString::fromUtf8(expected)), qPrintable(lines.join(u'\n')));
}

QTEST_GUILESS_MAIN(TestSablectl)
#include "tst_sablectl.moc"
