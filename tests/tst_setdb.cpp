// The database settings program: what each choice stores, its checks, and its dialog against real
// databases, including the move of the demo chart from the embedded database to PostgreSQL.

#include "DatabaseSettingsDialog.h"
#include "Messages.h"
#include "SettingsKeys.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbSchema.h"
#include "document/DemoOrganisation.h"
#include "platform/IniFile.h"
#include "server/ServerDatabase.h"
#include "server/StartupSteps.h"

#include <QFileInfo>
#include <QProcess>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

using namespace sable;
using Kind = DatabaseChoice::Kind;

Q_DECLARE_METATYPE(DatabaseChoice)

namespace {

DatabaseChoice choiceOf(Kind kind, const QString& server, const QString& database, const QString& user,
    const QString& password, int port = DatabaseChoice::kDefaultPostgreSqlPort)
{
    DatabaseChoice choice;
    choice.kind = kind;
    choice.server = server;
    choice.databaseName = database;
    choice.user = user;
    choice.password = password;
    choice.port = port;
    return choice;
}

DatabaseChoice fileChoice(const QString& path)
{
    DatabaseChoice choice;
    choice.filePath = path;
    return choice;
}

QString stored(const TempHome& home, const QString& name)
{
    const auto key = home.registry().openKey(RegRoot::LocalMachine, Keys::kDatabase);
    return key ? key->readString(name, 1024).value_or(QStringLiteral("(missing)")) : QStringLiteral("(no key)");
}

// Every row of a table over the columns both databases have, in the order the table keeps
// (rank order for ranks, a sort otherwise), as text.
QStringList rowsOf(DbConnection& connection, const QString& table)
{
    QStringList columns;
    const QSqlRecord record = DbSchema::recordOf(connection, table);
    for (int i = 0; i < record.count(); ++i) {
        if (record.fieldName(i).compare(DbSchema::rankOrderColumn(), Qt::CaseInsensitive) != 0)
            columns << record.fieldName(i).toLower();
    }
    columns.sort();
    QString sql = QStringLiteral("SELECT %1 FROM %2").arg(columns.join(u','), table);
    if (table == QLatin1String("SD_Rank") && DbSchema::hasRankOrderColumn(connection))
        sql += QStringLiteral(" ORDER BY ") + DbSchema::rankOrderColumn();
    QStringList rows;
    QSqlQuery query(connection.database());
    if (!query.exec(sql))
        return {QStringLiteral("query failed: ") + sql};
    while (query.next()) {
        QStringList values;
        for (int i = 0; i < columns.size(); ++i)
            values << (query.value(i).isNull() ? QStringLiteral("NULL") : query.value(i).toString());
        rows << values.join(u'|');
    }
    if (table != QLatin1String("SD_Rank"))
        rows.sort();
    return rows;
}

} // namespace

class TestSetDb : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void choiceStored_data();
    void choiceStored();
    void problems_data();
    void problems();
    void newEmbeddedFile();
    void chartMovesToPostgreSql();
    void failedCopyKeepsOldSettings();
    void connectionTestShowsTheError();
    void cancelWritesNothing();

private:
    struct Answers
    {
        QMessageBox::StandardButton create = QMessageBox::Yes;
        QMessageBox::StandardButton copy = QMessageBox::Yes;
        QStringList asked;
        QStringList told;
    };
    static void answer(DatabaseSettingsDialog& dialog, Answers& answers);
    // An embedded database holding the demo organisation, in use by `home`.
    static void useDemoChart(const TempHome& home);
    QString freshPostgreSql(const QString& name) const;
    // The chart as "sablectl chart export" prints it from the database `home` uses.
    static QByteArray exportedChart(const TempHome& home);

    PgServer m_pg;
};

void TestSetDb::initTestCase()
{
    m_pg = PgServer::fromFixture();
}

void TestSetDb::answer(DatabaseSettingsDialog& dialog, Answers& answers)
{
    dialog.setAsk([&answers](const QString& text, QMessageBox::StandardButtons) {
        answers.asked << text;
        return text == Msg::kSetDbCreateTables ? answers.create : answers.copy;
    });
    dialog.setTell([&answers](const QString& text) { answers.told << text; });
}

void TestSetDb::useDemoChart(const TempHome& home)
{
    const StartupConfig config = home.config();
    config.read();
    QCOMPARE(StartupSteps::ensureEmbeddedDatabase(config), StartupSteps::EmbeddedDatabase::Created);
    DbConnection connection = ServerDatabase::connect(config, nullptr);
    QVERIFY(DemoOrganisation::write(connection));
}

QByteArray TestSetDb::exportedChart(const TempHome& home)
{
    QProcess sablectl;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    sablectl.setProcessEnvironment(env);
    sablectl.start(QStringLiteral(SABLECTL_PATH),
        {QStringLiteral("--home"), home.paths().programFolder, QStringLiteral("chart"), QStringLiteral("export")});
    if (!sablectl.waitForFinished(60000) || sablectl.exitCode() != 0)
        return "sablectl failed: " + sablectl.readAllStandardError();
    return sablectl.readAllStandardOutput();
}

QString TestSetDb::freshPostgreSql(const QString& name) const
{
    return m_pg.createDatabase(name) ? name : QString();
}

void TestSetDb::choiceStored_data()
{
    QTest::addColumn<DatabaseChoice>("choice");
    QTest::addColumn<QString>("connectionString");
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("dbAddr");
    QTest::newRow("embedded file") << fileChoice(QStringLiteral("/srv/sable/SableDB.db"))
                                   << "Provider=SQLite;Data Source=/srv/sable/SableDB.db"
                                   << "SQLITE"
                                   << "";
    QTest::newRow("access file") << fileChoice(QStringLiteral("C:\\Sable\\SableDB.mdb"))
                                 << "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=C:\\Sable\\SableDB.mdb;DefaultDir=;"
                                    "UID=admin;PWD=;"
                                 << "MDB"
                                 << "";
    QTest::newRow("sql server") << choiceOf(Kind::SqlServer, "10.0.0.5", "SableDB", "sa",
        "pw") << "Provider=sqloledb;User id=sa;password=pw;data source=10.0.0.5;initial catalog=SableDB;"
                                << "MSSQL"
                                << "10.0.0.5";
    QTest::newRow("postgresql") << choiceOf(Kind::PostgreSql, "db.local", "sable", "sable", "se;cret\"", 5433)
                                << "Provider=PostgreSQL;Host=db.local;Port=5433;Database=sable;User ID=sable;"
                                   "Password='se;cret\"'"
                                << "PGSQL"
                                << "";
}

void TestSetDb::choiceStored()
{
    QFETCH(DatabaseChoice, choice);
    QFETCH(QString, connectionString);
    QFETCH(QString, type);
    QFETCH(QString, dbAddr);
    TempHome home;
    // A SQL Server chosen before: only that choice keeps [DBInfo] filled.
    QVERIFY(choiceOf(Kind::SqlServer, "old", "old", "old", "old").write(home.config()));
    QVERIFY(choice.problem().isEmpty());
    QVERIFY(choice.write(home.config()));
    QCOMPARE(stored(home, Keys::kConnectionString), connectionString);
    QCOMPARE(stored(home, Keys::kDatabaseType), type);
    const IniFile ini(home.paths().settingsFilePath);
    QCOMPARE(ini.readString(Keys::kDBInfo, Keys::kDBAddr, QStringLiteral("(missing)"), 129), dbAddr);
    for (const QString& key : {Keys::kDBName, Keys::kUID, Keys::kPWD})
        QCOMPARE(ini.readString(Keys::kDBInfo, key, QString(), 129).isEmpty(), dbAddr.isEmpty());

    // Read back as the dialog shows it, and as start-up settles it.
    const DatabaseChoice back = DatabaseChoice::current(home.config());
    QCOMPARE(back.connectionString(), choice.connectionString());
    QCOMPARE(home.config().settleConnectionString(), connectionString);
    QCOMPARE(ServerDatabase::readServerAddress(home.config()).address, dbAddr);
}

void TestSetDb::problems_data()
{
    QTest::addColumn<DatabaseChoice>("choice");
    QTest::addColumn<QString>("problem");
    QTest::newRow("no file") << fileChoice(QStringLiteral("  ")) << Msg::kSetDbIncomplete;
    QTest::newRow("no server") << choiceOf(Kind::SqlServer, "", "db", "sa", "") << Msg::kSetDbIncomplete;
    QTest::newRow("no user") << choiceOf(Kind::PostgreSql, "host", "db", "", "") << Msg::kSetDbIncomplete;
    QTest::newRow("empty password is fine") << choiceOf(Kind::PostgreSql, "host", "db", "u", "") << QString();
    QTest::newRow("string of 249 bytes") << fileChoice(u'/' + QString(249 - 29, u'x')) << QString();
    QTest::newRow("string of 250 bytes") << fileChoice(u'/' + QString(250 - 29, u'x')) << Msg::kSetDbTooLong.arg(249);
    QTest::newRow("hangul counts two") << fileChoice(u'/' + QString(111, u'가')) << Msg::kSetDbTooLong.arg(249);
    QTest::newRow("server value over 128 bytes")
        << choiceOf(Kind::SqlServer, QString(129, u's'), "d", "u", "") << Msg::kSetDbTooLong.arg(128);
}

void TestSetDb::problems()
{
    QFETCH(DatabaseChoice, choice);
    QFETCH(QString, problem);
    QCOMPARE(choice.problem(), problem);
}

void TestSetDb::newEmbeddedFile()
{
    TempHome home;
    const QString path = home.path(QStringLiteral("data/New.db"));
    DatabaseSettingsDialog dialog(home.config());
    Answers answers;
    answers.copy = QMessageBox::No;
    answer(dialog, answers);
    dialog.setChoice(fileChoice(path));
    dialog.testConnection();
    QCOMPARE(dialog.testResult(), Msg::kSetDbFileWillBeCreated);
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(answers.asked, (QStringList {Msg::kSetDbCreateTables, Msg::kSetDbCopyChart}));
    QCOMPARE(stored(home, Keys::kConnectionString), sqliteConnectionString(path));
    DbConnection connection;
    QVERIFY(connection.open(sqliteConnectionString(path)));
    QCOMPARE(DbSchema::existingTables(connection), DbSchema::tableNames());
    QVERIFY(DemoOrganisation::isChartEmpty(connection));
}

void TestSetDb::chartMovesToPostgreSql()
{
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    TempHome home;
    useDemoChart(home);
    const QByteArray chartBefore = exportedChart(home);
    QVERIFY2(chartBefore.startsWith('{'), chartBefore.constData());
    const QString database = freshPostgreSql(QStringLiteral("setdb_move"));
    QVERIFY(!database.isEmpty());
    DatabaseSettingsDialog dialog(home.config());
    Answers answers;
    answer(dialog, answers);
    dialog.setChoice(choiceOf(Kind::PostgreSql, m_pg.host, database, "sable", "sable-secret", m_pg.port));
    dialog.testConnection();
    QCOMPARE(dialog.testResult(), Msg::kSetDbTestSucceeded);
    dialog.accept();
    QVERIFY2(answers.told.isEmpty(), qPrintable(answers.told.join(u'\n')));
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(stored(home, Keys::kConnectionString), m_pg.connectionString(database));
    QCOMPARE(stored(home, Keys::kDatabaseType), QStringLiteral("PGSQL"));

    DbConnection before;
    QVERIFY(before.open(sqliteConnectionString(home.paths().defaultDatabasePath)));
    DbConnection after = ServerDatabase::connect(home.config(), nullptr);
    QCOMPARE(after.driverName(), QStringLiteral("QPSQL"));
    for (const QString& table : DbSchema::tableNames()) {
        const QStringList rows = rowsOf(before, table);
        QCOMPARE(rowsOf(after, table), rows);
        if (table == QLatin1String("SD_Member"))
            QCOMPARE(rows.size(), 40);
    }
    QCOMPARE(exportedChart(home), chartBefore);
}

void TestSetDb::failedCopyKeepsOldSettings()
{
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    TempHome home;
    useDemoChart(home);
    {
        // A department name longer than a database server's column allows: the copy must fail.
        DbConnection connection = ServerDatabase::connect(home.config(), nullptr);
        QVERIFY(connection.executeNoRecords(
            QStringLiteral("UPDATE SD_Group SET GroupName = ? WHERE K_GroupID = 1"), {QString(101, u'가')}));
    }
    const QByteArray registryBefore = home.readFile(QStringLiteral("registry/HKLM.reg"));
    const QString database = freshPostgreSql(QStringLiteral("setdb_fail"));
    QVERIFY(!database.isEmpty());
    DatabaseSettingsDialog dialog(home.config());
    Answers answers;
    answer(dialog, answers);
    dialog.setChoice(choiceOf(Kind::PostgreSql, m_pg.host, database, "sable", "sable-secret", m_pg.port));
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(answers.told.size(), 1);
    QVERIFY2(answers.told.first().startsWith(Msg::kSetDbCopyFailed.arg(QString()))
            && answers.told.first().contains(QLatin1String("SD_Group")),
        qPrintable(answers.told.first()));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), registryBefore);
    DbConnection target;
    QVERIFY(target.open(m_pg.connectionString(database)));
    QVERIFY(DemoOrganisation::isChartEmpty(target));
}

void TestSetDb::connectionTestShowsTheError()
{
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    TempHome home;
    const QByteArray registryBefore = home.readFile(QStringLiteral("registry/HKLM.reg"));
    DatabaseSettingsDialog dialog(home.config());
    Answers answers;
    answer(dialog, answers);
    dialog.setChoice(choiceOf(Kind::PostgreSql, m_pg.host, "sable", "sable", "wrong", m_pg.port));
    dialog.testConnection();
    QVERIFY2(
        dialog.testResult().contains(QLatin1String("\r\nSource - QPSQL\r\nDesc - ")), qPrintable(dialog.testResult()));
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(answers.told, QStringList {Msg::kSetDbConnectFailed.arg(DbConnection::lastError())});
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), registryBefore);
}

void TestSetDb::cancelWritesNothing()
{
    TempHome home;
    home.config().read();
    const QByteArray registryBefore = home.readFile(QStringLiteral("registry/HKLM.reg"));
    DatabaseSettingsDialog dialog(home.config());
    QCOMPARE(dialog.choice().filePath, QStringLiteral("SableDB.db")); // as stored, relative to the server folder
    dialog.setChoice(fileChoice(home.path(QStringLiteral("other.db"))));
    dialog.reject();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), registryBefore);
    QVERIFY(!QFileInfo::exists(home.path(QStringLiteral("other.db"))));
}

QTEST_MAIN(TestSetDb)
#include "tst_setdb.moc"
