// sablectl as a script uses it: commands, their output and their exit codes.

#include "TestSupport.h"

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

private:
    struct Result
    {
        int code = -1;
        QString out;
        QString err;
    };
    Result run(const TempHome& home, const QStringList& args);
};

TestSablectl::Result TestSablectl::run(const TempHome& home, const QStringList& args)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    env.remove(QStringLiteral("SABLE_HOME"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(SABLECTL_PATH), args);
    Result result;
    if (!process.waitForFinished(60000))
        return result;
    result.code = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
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

QTEST_GUILESS_MAIN(TestSablectl)
#include "tst_sablectl.moc"
