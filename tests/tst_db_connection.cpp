// DbConnection against real engines: SQLite files (directly and through its ODBC driver) and the
// PostgreSQL server of the test fixture (directly and through its ODBC driver).

#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "platform/RegFileBackend.h"
#include "server/DatabaseChoice.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace sable;

class TestDbConnection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void resolve_data();
    void resolve();
    void valueRoundTrip_data();
    void valueRoundTrip();
    void passwordsMasked_data();
    void passwordsMasked();
    void embeddedFile_data();
    void embeddedFile();

    void engines_data();
    void engines();

    void errorText_data();
    void errorText();
    void emptyConnection();
    void registryOrDefault();

    void schemaNeverTouchesExistingTables_data();
    void schemaNeverTouchesExistingTables();

private:
    void addEngineRows();
    TempHome m_home;
    PgServer m_pg;
};

void TestDbConnection::initTestCase()
{
    m_pg = PgServer::fromFixture();
}

void TestDbConnection::resolve_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("driver");
    QTest::addColumn<QString>("databaseName");
    QTest::addColumn<QString>("user");

    QTest::newRow("dsn") << "DSN=Sable;UID=sa;PWD=x;"
                         << "QODBC"
                         << "DSN=Sable;UID=sa;PWD=x;"
                         << "";
    QTest::newRow("access file")
        << "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=C:\\Sable\\SableDB.mdb;DefaultDir=;UID=admin;PWD=;"
        << "QODBC"
        << "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=C:\\Sable\\SableDB.mdb;DefaultDir=;UID=admin;PWD=;"
        << "";
    QTest::newRow("sql server")
        << "Provider=sqloledb;User id=sa;password=p;w;data source=10.0.0.5;initial catalog=Sable;"
        << "QODBC"
        << "DRIVER={FreeTDS};SERVER=10.0.0.5;DATABASE=Sable;UID=sa;PWD=p;"
        << "";
    QTest::newRow("sql server, braced password")
        << "Provider=SQLOLEDB;User ID=sa;Password={a;b};Data Source=srv;Initial Catalog=db"
        << "QODBC"
        << "DRIVER={FreeTDS};SERVER=srv;DATABASE=db;UID=sa;PWD={a;b};"
        << "";
    QTest::newRow("jet provider") << "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=C:\\a.mdb"
                                  << "QODBC"
                                  << "DRIVER={Microsoft Access Driver (*.mdb)};DBQ=C:\\a.mdb;"
                                  << "";
    QTest::newRow("sqlite") << "Provider=SQLite;Data Source=/srv/sable/SableDB.db"
                            << "QSQLITE"
                            << "file:///srv/sable/SableDB.db?mode=rw"
                            << "";
    QTest::newRow("sqlite, create, quoted path") << "provider=sqlite; data source=\"/tmp/a b;c.db\";FailIfMissing=False"
                                                 << "QSQLITE"
                                                 << "file:///tmp/a%20b;c.db?mode=rwc"
                                                 << "";
    QTest::newRow("postgresql")
        << "Provider=PostgreSQL;Host=db.local;Port=5433;Database=sable;User ID=sable;Password=pw"
        << "QPSQL"
        << "sable"
        << "sable";
    QTest::newRow("unknown provider") << "Provider=Oracle;Data Source=x"
                                      << ""
                                      << ""
                                      << "";
    QTest::newRow("empty") << ""
                           << ""
                           << ""
                           << "";
}

void TestDbConnection::resolve()
{
    QFETCH(QString, text);
    QFETCH(QString, driver);
    QFETCH(QString, databaseName);
    QFETCH(QString, user);
    const DbTarget target = resolveConnectionString(text, QStringLiteral("FreeTDS"));
    QCOMPARE(target.driver, driver);
    QCOMPARE(target.databaseName, databaseName);
    QCOMPARE(target.user, user);
    QCOMPARE(target.problem.isEmpty(), !driver.isEmpty());
}

void TestDbConnection::addEngineRows()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("sqlite") << "sqlite";
    QTest::newRow("sqlite-odbc") << "sqlite-odbc";
    QTest::newRow("postgresql") << "postgresql";
    QTest::newRow("postgresql-odbc") << "postgresql-odbc";
}

void TestDbConnection::valueRoundTrip_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("asPassword"); // also a login password of the PostgreSQL fixture
    QTest::newRow("plain") << "secret" << true;
    QTest::newRow("opening brace") << "{abc" << true;
    QTest::newRow("braced") << "{abc}" << true;
    QTest::newRow("closing brace") << "abc}" << true;
    QTest::newRow("opening single quote") << "'abc" << true;
    QTest::newRow("opening double quote") << "\"abc" << true;
    QTest::newRow("semicolon") << "a;b" << true;
    QTest::newRow("every quote and a semicolon") << "'a\"b;c'" << true;
    QTest::newRow("doubled quotes") << "\"\"''" << true;
    QTest::newRow("leading and trailing blanks") << "  pad  " << true;
    QTest::newRow("equals sign") << "a=b" << true;
    QTest::newRow("Hangul") << "비밀;번호" << true;
    QTest::newRow("empty") << "" << false;
}

void TestDbConnection::valueRoundTrip()
{
    QFETCH(QString, value);
    QFETCH(bool, asPassword);
    // Read back alone, at the end and followed by another value.
    const QString quoted = ConnectionString::quote(value);
    for (const QString& text : QStringList {QStringLiteral("Password=") + quoted,
             QStringLiteral("User ID=u;Password=") + quoted + QStringLiteral(";Port=1")}) {
        const ConnectionString cs = ConnectionString::parse(text);
        QCOMPARE(cs.value(QStringLiteral("password")), value);
        if (cs.has(QStringLiteral("port")))
            QCOMPARE(cs.value(QStringLiteral("port")), QStringLiteral("1"));
    }
    // As the settings program writes it, and as the engine receives it.
    DatabaseChoice choice;
    choice.kind = DatabaseChoice::Kind::PostgreSql;
    choice.server = m_pg.host;
    choice.port = m_pg.port;
    choice.databaseName = QStringLiteral("sable");
    choice.user = QStringLiteral("quoted_%1").arg(QCoreApplication::applicationPid());
    choice.password = value;
    const ConnectionString written = ConnectionString::parse(choice.connectionString());
    QCOMPARE(written.value(QStringLiteral("password")), value);
    QCOMPARE(written.value(QStringLiteral("user id")), choice.user);
    if (!asPassword)
        return;
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    {
        DbConnection admin;
        QVERIFY(admin.open(m_pg.connectionString(QStringLiteral("sable"), QStringLiteral("postgres"), QString())));
        QVERIFY(admin.executeNoRecords(QStringLiteral("DROP ROLE IF EXISTS %1").arg(choice.user)));
        QVERIFY(
            admin.executeNoRecords(QStringLiteral("CREATE ROLE %1 LOGIN PASSWORD $pw$%2$pw$").arg(choice.user, value)));
    }
    DbConnection db;
    QVERIFY2(db.open(choice.connectionString()), qPrintable(DbConnection::lastError()));
}

void TestDbConnection::passwordsMasked_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("masked");
    QTest::newRow("plain") << "Provider=PostgreSQL;Host=h;Password=secret;Database=d"
                           << "Provider=PostgreSQL;Host=h;Password=****;Database=d";
    QTest::newRow("braced, with a brace and a semicolon") << "DRIVER={PostgreSQL Unicode};PWD={se;cr}}et};UID=u"
                                                          << "DRIVER={PostgreSQL Unicode};PWD=****;UID=u";
    QTest::newRow("quoted, blanks around") << "password = 'it''s;x' ;Port=1"
                                           << "password = **** ;Port=1";
    QTest::newRow("two of them") << "Password=a;pwd=\"b;c\""
                                 << "Password=****;pwd=****";
    QTest::newRow("last, without a semicolon, in a message")
        << "지원하지 않는 연결 문자열입니다: Provider=x;Pwd=abc\r\nSource - SableManager"
        << "지원하지 않는 연결 문자열입니다: Provider=x;Pwd=****\r\nSource - SableManager";
    QTest::newRow("a user named pwd") << "User ID=pwd;Data Source=x"
                                      << "User ID=pwd;Data Source=x";
    QTest::newRow("none") << "Provider=SQLite;Data Source=SableDB.db"
                          << "Provider=SQLite;Data Source=SableDB.db";
}

void TestDbConnection::passwordsMasked()
{
    QFETCH(QString, text);
    QFETCH(QString, masked);
    QCOMPARE(maskPasswords(text), masked);
    // The error of a string that names no engine quotes it masked.
    if (text.contains(QLatin1String("Source")) || text.contains(QLatin1String("DRIVER")))
        return;
    DbConnection db;
    QVERIFY(!db.open(QStringLiteral("Provider=Nothing;") + text));
    QVERIFY2(DbConnection::lastError().contains(maskPasswords(QStringLiteral("Provider=Nothing;") + text)),
        qPrintable(DbConnection::lastError()));
}

void TestDbConnection::embeddedFile_data()
{
    QTest::addColumn<QString>("dataSource"); // relative to the server folder given to open()
    QTest::addColumn<QByteArray>("contents"); // of the file at dataSource; null: no file
    QTest::addColumn<QString>("failure"); // in the error text; empty: opens
    QTest::newRow("relative, in the server folder") << "SableDB.db" << QByteArray("") << "";
    QTest::newRow("relative, below it") << "data/SableDB.db" << QByteArray("") << "";
    QTest::newRow("empty") << "" << QByteArray() << "Data Source";
    QTest::newRow("blank") << "  " << QByteArray() << "Data Source";
    QTest::newRow("a text file") << "SableDB.db" << QByteArray("tables: none, this is text\n") << "not a database";
}

void TestDbConnection::embeddedFile()
{
    QFETCH(QString, dataSource);
    QFETCH(QByteArray, contents);
    QFETCH(QString, failure);
    TempHome home;
    const QString server = home.path(QStringLiteral("server"));
    QVERIFY(QDir().mkpath(home.path(QStringLiteral("cwd"))));
    if (!contents.isNull()) {
        QVERIFY(QDir().mkpath(QFileInfo(QDir(server), dataSource).absolutePath()));
        if (contents.isEmpty()) {
            DbConnection create;
            QVERIFY(create.open(
                sqliteConnectionString(QDir(server).filePath(dataSource)) + QStringLiteral(";FailIfMissing=False")));
        } else {
            home.writeFile(QStringLiteral("server/") + dataSource, contents);
        }
    }
    // Whatever the current folder is, nothing is looked for or created there.
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(home.path(QStringLiteral("cwd"))));
    DbConnection db;
    const bool opened = db.open(QStringLiteral("Provider=SQLite;Data Source=") + dataSource, server);
    QDir::setCurrent(previous);
    QCOMPARE(opened, failure.isEmpty());
    QCOMPARE(QDir(home.path(QStringLiteral("cwd"))).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
    if (opened)
        QVERIFY(db.database().databaseName().contains(QDir(server).filePath(dataSource)));
    else
        QVERIFY2(DbConnection::lastError().contains(failure), qPrintable(DbConnection::lastError()));
    if (!contents.isEmpty() && !contents.isNull())
        QCOMPARE(home.readFile(QStringLiteral("server/") + dataSource), contents);
}

void TestDbConnection::engines_data()
{
    addEngineRows();
}

void TestDbConnection::engines()
{
    QFETCH(QString, kind);
    if (kind.startsWith(QLatin1String("postgresql")))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString text = freshDatabase(kind, m_home, m_pg, false);
    QVERIFY(!text.isEmpty());

    DbConnection db;
    QVERIFY2(db.open(text), qPrintable(DbConnection::lastError()));
    QCOMPARE(db.state(), 1);
    bool ok = false;
    QCOMPARE(DbSchema::createMissingTables(db, &ok), DbSchema::tableNames());
    QVERIFY2(ok, qPrintable(DbConnection::lastError()));

    // Bound values keep apostrophes and Hangul as they are; NULL reads as 0, "" or "(null)".
    QVERIFY(db.executeNoRecords(QStringLiteral("INSERT INTO SD_Group (K_GroupID,GroupName,K_GroupID_P,Position,Depth) "
                                               "VALUES (?,?,?,?,?)"),
        {7, QStringLiteral("O'Brien 영업부"), -1, 1, 0}));
    QVERIFY(db.executeNoRecords(QStringLiteral("INSERT INTO SD_Group (K_GroupID) VALUES (8)")));
    DbRecordset rows = db.execute(
        QStringLiteral("SELECT K_GroupID,GroupName,K_GroupID_P,Position FROM SD_Group ORDER BY K_GroupID"));
    QVERIFY(rows.isValid());
    QVERIFY(!rows.isEof());
    QCOMPARE(rows.fieldInt(0), 7);
    QCOMPARE(rows.fieldText(1), QStringLiteral("O'Brien 영업부"));
    QCOMPARE(rows.fieldInt(2), -1);
    rows.moveNext();
    QCOMPARE(rows.fieldInt(3), 0);
    QCOMPARE(rows.fieldText(1), QString());
    QCOMPARE(rows.fieldTextOrNull(1), QStringLiteral("(null)"));
    rows.moveNext();
    QVERIFY(rows.isEof());
    rows.close();

    // A rolled-back transaction leaves nothing; a committed one stays.
    QVERIFY(db.beginTrans());
    QVERIFY(db.executeNoRecords(QStringLiteral("DELETE FROM SD_Group")));
    QVERIFY(db.rollbackTrans());
    QCOMPARE(db.execute(QStringLiteral("SELECT COUNT(*) FROM SD_Group")).fieldInt(0), 2);
    QVERIFY(db.beginTrans());
    QVERIFY(db.executeNoRecords(QStringLiteral("DELETE FROM SD_Group WHERE K_GroupID = ?"), {8}));
    QVERIFY(db.commitTrans());
    QCOMPARE(db.execute(QStringLiteral("SELECT COUNT(*) FROM SD_Group")).fieldInt(0), 1);

    db.close();
    QCOMPARE(db.state(), 0);
    QVERIFY(!db.execute(QStringLiteral("SELECT 1")).isValid());
}

void TestDbConnection::errorText_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("failure");
    QTest::newRow("sqlite: missing file") << "sqlite"
                                          << "missing file";
    QTest::newRow("sqlite: syntax error") << "sqlite"
                                          << "syntax";
    QTest::newRow("sqlite-odbc: syntax error") << "sqlite-odbc"
                                               << "syntax";
    QTest::newRow("postgresql: wrong password") << "postgresql"
                                                << "password";
    QTest::newRow("postgresql: syntax error") << "postgresql"
                                              << "syntax";
    QTest::newRow("postgresql-odbc: wrong password") << "postgresql-odbc"
                                                     << "password";
}

void TestDbConnection::errorText()
{
    QFETCH(QString, kind);
    QFETCH(QString, failure);
    if (kind.startsWith(QLatin1String("postgresql")))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");

    QString text;
    if (failure == QLatin1String("missing file"))
        text = sqliteConnectionString(m_home.path(QStringLiteral("no/such/SableDB.db")));
    else if (failure == QLatin1String("password"))
        text = kind == QLatin1String("postgresql")
            ? m_pg.connectionString(QStringLiteral("sable"), QStringLiteral("sable"), QStringLiteral("wrong"))
            : m_pg.odbcConnectionString(QStringLiteral("sable"), QStringLiteral("wrong"));
    else
        text = freshDatabase(kind, m_home, m_pg, false);

    DbConnection db;
    const bool opened = db.open(text);
    if (failure == QLatin1String("syntax")) {
        QVERIFY(opened);
        QVERIFY(!db.execute(QStringLiteral("SELEC nothing FROM")).isValid());
    } else {
        QVERIFY(!opened);
        QVERIFY(!QFile::exists(m_home.path(QStringLiteral("no/such/SableDB.db"))));
    }
    const QString error = DbConnection::lastError();
    const QRegularExpression format(QStringLiteral("^\\(\\w+\\) .+\\r\\nSource - Q(SQLITE|PSQL|ODBC)\\r\\nDesc - .*"),
        QRegularExpression::DotMatchesEverythingOption);
    QVERIFY2(format.match(error).hasMatch(), qPrintable(error));
    if (failure == QLatin1String("password"))
        QVERIFY2(error.contains(QLatin1String("password"), Qt::CaseInsensitive), qPrintable(error));
    // PostgreSQL's SQLSTATE as it stands, never read as a number.
    if (kind == QLatin1String("postgresql") && failure == QLatin1String("syntax"))
        QVERIFY2(error.startsWith(QLatin1String("(42601) ")), qPrintable(error));
}

void TestDbConnection::emptyConnection()
{
    DbConnection db;
    QVERIFY(db.isEmpty());
    QCOMPARE(db.state(), 0);
    QVERIFY(!db.execute(QStringLiteral("SELECT 1")).isValid());
    QVERIFY(!db.executeNoRecords(QStringLiteral("DELETE FROM SD_Group")));
    QVERIFY(!db.beginTrans());
    QVERIFY(DbConnection::lastError().startsWith(QStringLiteral("(0) ")));
    db.close();

    // A connection string of an unknown kind fails to open with a readable reason.
    QVERIFY(!db.open(QStringLiteral("Provider=Oracle;Data Source=x")));
    QVERIFY(DbConnection::lastError().contains(QLatin1String("Provider=Oracle")));
}

void TestDbConnection::registryOrDefault()
{
    TempHome home;
    const QString defaultPath = home.path(QStringLiteral("home/SableDB.db"));
    QStringList reports;
    const auto report = [&reports](const QString& caption, const QString& text) { reports << caption << text; };

    // No key: the default file, which does not exist, so the open fails and is reported once.
    DbConnection missing = DbConnection::connectByRegistryOrDefault(home.registry(), defaultPath, report);
    QVERIFY(missing.isEmpty());
    QCOMPARE(reports.size(), 2);
    QVERIFY(reports[1].startsWith(u'('));
    QCOMPARE(reports[0], DbConnection::lastErrorMessage());

    // An empty value is still read: its open fails and is reported.
    const auto key
        = home.registry().createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\Database"));
    QVERIFY(key->writeString(QStringLiteral("ConnectionString"), QString()));
    reports.clear();
    QVERIFY(DbConnection::connectByRegistryOrDefault(home.registry(), defaultPath, report).isEmpty());
    QCOMPARE(reports.size(), 2);

    // The registry's string wins over the default path.
    const QString other = home.path(QStringLiteral("other.db"));
    DbConnection create;
    QVERIFY(create.open(sqliteConnectionString(other) + QStringLiteral(";FailIfMissing=False")));
    QVERIFY(key->writeString(QStringLiteral("ConnectionString"), sqliteConnectionString(other)));
    reports.clear();
    DbConnection chosen = DbConnection::connectByRegistryOrDefault(home.registry(), defaultPath, report);
    QVERIFY(!chosen.isEmpty());
    QVERIFY(reports.isEmpty());
    QVERIFY(chosen.database().databaseName().contains(QLatin1String("other.db")));
}

void TestDbConnection::schemaNeverTouchesExistingTables_data()
{
    addEngineRows();
}

void TestDbConnection::schemaNeverTouchesExistingTables()
{
    QFETCH(QString, kind);
    if (kind.startsWith(QLatin1String("postgresql")))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString text = freshDatabase(kind, m_home, m_pg, false);
    DbConnection db;
    QVERIFY(db.open(text));
    QVERIFY(db.executeNoRecords(
        QStringLiteral("CREATE TABLE SD_Rank (K_RankID INTEGER, RankName VARCHAR(10), Extra INTEGER)")));
    QVERIFY(db.executeNoRecords(QStringLiteral("INSERT INTO SD_Rank VALUES (3, 'x', 1)")));
    bool ok = false;
    const QStringList created = DbSchema::createMissingTables(db, &ok);
    QVERIFY(ok);
    QVERIFY(!created.contains(QStringLiteral("SD_Rank")));
    QCOMPARE(created.size(), DbSchema::tableNames().size() - 1);
    QCOMPARE(db.execute(QStringLiteral("SELECT Extra FROM SD_Rank")).fieldInt(0), 1);
    QCOMPARE(DbSchema::createMissingTables(db, &ok), QStringList());
    QVERIFY(!DbSchema::hasRankOrderColumn(db));
    // The cascade's lookups were indexed with the tables; asked again, nothing is added.
    QCOMPARE(DbSchema::createMissingIndexes(db, &ok), QStringList());
    QVERIFY(ok);
    QVERIFY(db.executeNoRecords(QStringLiteral("DROP INDEX IX_SD_Antenna_Other")));
    QCOMPARE(DbSchema::createMissingIndexes(db, &ok), QStringList {QStringLiteral("IX_SD_Antenna_Other")});
}

QTEST_GUILESS_MAIN(TestDbConnection)
#include "tst_db_connection.moc"
