// Loading and saving the chart against real databases: where the rows land in the tree, what a save
// writes, the deletion cascade, the chart version, failures and stops.

#include "ChartText.h"
#include "TestSupport.h"
#include "db/BatchInserter.h"
#include "db/DbSchema.h"
#include "db/PostgresCopy.h"
#include "document/CSableManagerDoc.h"
#include "document/ChangeJournal.h"
#include "document/ChartEdits.h"
#include "document/ChartImport.h"
#include "document/ChartJson.h"
#include "document/ChartMerge.h"
#include "document/ChartReader.h"
#include "document/ChartSave.h"
#include "document/ChartTables.h"
#include "document/DemoOrganisation.h"
#include "document/MergeEdits.h"
#include "document/RestorePoints.h"
#include "platform/ChangeNotice.h"
#include "platform/IniFile.h"

#include <QBuffer>
#include <QJsonDocument>
#include <QNetworkDatagram>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QTest>
#include <QUdpSocket>

#include <thread>

using namespace sable;

namespace {

// Counts progress and clears the continue flag at a chosen point of a chosen phase.
class StoppingProgress final : public LoadProgress
{
public:
    StoppingProgress(std::atomic<int>& flag, QString phase, int atPosition, bool atRange = false)
        : m_flag(flag)
        , m_phase(std::move(phase))
        , m_at(atPosition)
        , m_bAtRange(atRange)
    { }
    QStringList texts;

    void setText(const QString& text) override { texts << text; }
    void setRange(int) override
    {
        if (m_bAtRange && !texts.isEmpty() && texts.last() == m_phase)
            m_flag = 0;
    }
    void setPosition(int position) override
    {
        if (!m_bAtRange && !texts.isEmpty() && texts.last() == m_phase && position == m_at)
            m_flag = 0;
    }

private:
    std::atomic<int>& m_flag;
    QString m_phase;
    int m_at;
    bool m_bAtRange;
};

ChartReader::Result load(const QString& connectionString)
{
    std::atomic<int> flag {1};
    StoppingProgress progress(flag, QString(), -1);
    return ChartReader::read(
        [&] {
            DbConnection db;
            db.open(connectionString);
            return db.isOpen() ? std::move(db) : DbConnection();
        },
        progress, flag);
}

bool run(const QString& connectionString, const QStringList& statements)
{
    DbConnection db;
    if (!db.open(connectionString))
        return false;
    for (const QString& sql : statements) {
        if (!db.executeNoRecords(sql)) {
            qWarning() << sql << DbConnection::lastError();
            return false;
        }
    }
    return true;
}

QString member(int id)
{
    return QStringLiteral("INSERT INTO SD_Member (K_MemberID,MemberID,MemberName,Passwd,Gender,bPublic,bSolar,bAdmin) "
                          "VALUES (%1,'u%1','이름%1','pw',0,1,0,0)")
        .arg(id);
}

QString group(int id, const QString& name, int parent, int position, int depth)
{
    return QStringLiteral("INSERT INTO SD_Group VALUES (%1,'%2',%3,%4,%5)")
        .arg(id)
        .arg(name)
        .arg(parent)
        .arg(position)
        .arg(depth);
}

QString relation(int memberId, int groupId, int rank, int position)
{
    return QStringLiteral("INSERT INTO SD_Relation VALUES (%1,%2,%3,%4)")
        .arg(memberId)
        .arg(groupId)
        .arg(rank)
        .arg(position);
}

} // namespace

class TestChartStorage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void loadPlacement_data();
    void loadPlacement();
    void roundTrip_data();
    void roundTrip();
    void bulkRowsRoundTrip_data();
    void bulkRowsRoundTrip();
    void failedBulkCopyRollsBack_data();
    void failedBulkCopyRollsBack();
    void deletionCascade_data();
    void deletionCascade();
    void version_data();
    void version();
    void failingStatementRollsBack();
    void failingCommitLeavesVersion();
    void stopDuringLoad_data();
    void stopDuringLoad();
    void loadFailures();
    void loadProblemsAreTold_data();
    void loadProblemsAreTold();
    void saveChecksAndServices();
    void racingSavesLoseNothing_data();
    void racingSavesLoseNothing();
    void importNeedsStoredIdentifiers_data();
    void importNeedsStoredIdentifiers();
    void streamedFileReadsAsWhole_data();
    void streamedFileReadsAsWhole();
    void writtenTextsReadBack_data();
    void writtenTextsReadBack();
    void restorePointReadsBack_data();
    void restorePointReadsBack();
    void journalRowsCarryKeys_data();
    void journalRowsCarryKeys();
    void journalWithoutKeysGainsThem_data();
    void journalWithoutKeysGainsThem();
    void authorWithoutEnvironment();

private:
    ChartSave::Collaborators saveWith(const QString& connectionString, QStringList* calls = nullptr);
    void addEngineRows();
    // Saves the demo organisation into `db`, then the chart `edit` makes of what it reads back.
    bool saveDemoThenEdit(const QString& db, const std::function<void(ChartTables&)>& edit);

    TempHome m_home;
    PgServer m_pg;
};

void TestChartStorage::initTestCase()
{
    m_pg = PgServer::fromFixture();
}

ChartSave::Collaborators TestChartStorage::saveWith(const QString& connectionString, QStringList* calls)
{
    ChartSave::Collaborators with;
    with.askYesNo = [calls](const QString& question) {
        if (calls)
            *calls << QStringLiteral("ask: ") + question;
        return true;
    };
    with.showBalloon = [calls](const Balloon& balloon) {
        if (calls)
            *calls << QStringLiteral("balloon: %1 @%2,%3").arg(balloon.text).arg(balloon.row).arg(balloon.column);
    };
    with.connect = [connectionString] {
        DbConnection db;
        return db.open(connectionString) ? std::move(db) : DbConnection();
    };
    with.sendChartChangedNotice = [] { return true; };
    return with;
}

void TestChartStorage::addEngineRows()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("sqlite") << "sqlite";
    QTest::newRow("postgresql") << "postgresql";
}

void TestChartStorage::loadPlacement_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QString>("tree");
    QTest::addColumn<int>("placements");

    const QStringList members = {member(1), member(2), member(3)};
    QTest::newRow("members before a sub-department") << members
            + QStringList {group(1, "본사", -1, 1, 0), group(2, "영업부", 1, 2, 1), relation(1, 1, 3, 1),
                relation(2, 1, -1, 3)} << "본사[#1:3 영업부 #2]"
                                                     << 2;
    QTest::newRow("rows out of position order") << members
            + QStringList {group(1, "본사", -1, 1, 0), group(3, "개발부", 1, 4, 1), group(2, "영업부", 1, 1, 1),
                relation(3, 1, 2, 3), relation(2, 1, 2, 2), relation(1, 2, 1, 1)}
                                                << "본사[영업부[#1:1] #2:2 #3:2 개발부]" << 3;
    QTest::newRow("missing parent goes to the top level") << members
            + QStringList {group(1, "본사", -1, 1, 0), group(7, "고아", 99, 1, 1), group(2, "영업부", 1, 1, 1),
                relation(1, 7, 5, 1)} << "본사[영업부] 고아[#1:5]"
                                                          << 1;
    QTest::newRow("no groups: memberships are not read") << members + QStringList {relation(1, 1, 1, 1)} << "" << 0;
    QTest::newRow("membership of an unknown department is dropped")
        << members + QStringList {group(1, "본사", -1, 1, 0), relation(1, 1, 1, 1), relation(2, 42, 1, 1)}
        << "본사[#1:1]" << 1;
}

void TestChartStorage::loadPlacement()
{
    QFETCH(QStringList, rows);
    QFETCH(QString, tree);
    QFETCH(int, placements);
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    QVERIFY(run(db, rows));
    ChartReader::Result result = load(db);
    QCOMPARE(result.outcome, ChartReader::Outcome::Loaded);
    QCOMPARE(chartText(*result.contents.chart), tree);
    QCOMPARE(result.contents.chart->placementCount(), placements);
    QCOMPARE(result.contents.chart->memberCount(), 3);
}

void TestChartStorage::roundTrip_data()
{
    addEngineRows();
}

void TestChartStorage::roundTrip()
{
    QFETCH(QString, kind);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());

    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    // Ranks out of identifier order, an apostrophe, a member shown as lunar, a doubled-backslash path.
    doc.ranks().move(5, 0);
    doc.ranks().move(3, 1);
    MemberRecord first = doc.chart().member(0);
    first.MemberName = QStringLiteral("O'Neil 김");
    first.bSolar = false;
    doc.chart().setMember(0, first);
    doc.chart().renameGroup(doc.chart().findGroup(3), QStringLiteral("Kim's 팀"));
    doc.fileBox().folders.push_back({9, QStringLiteral("\\\\Team\\\\Docs")});
    doc.fileBox().groupAuthorities.push_back({9, 3, NoAccess});

    const IniFile settings(m_home.path(QStringLiteral("roundtrip-%1.ini").arg(kind)));
    QCOMPARE(ChartSave::run(doc, settings, saveWith(db)), ChartSave::Outcome::Saved);

    ChartReader::Result loaded = load(db);
    QCOMPARE(loaded.outcome, ChartReader::Outcome::Loaded);
    CSableManagerDoc reread;
    reread.adopt(std::move(loaded.contents));
    QCOMPARE(chartText(reread.chart()), chartText(doc.chart()));
    QCOMPARE(reread.ranks().ranks(), doc.ranks().ranks());
    QCOMPARE(reread.chart().member(0).MemberName, QStringLiteral("O'Neil 김"));
    QVERIFY(reread.chart().member(0).bSolar);
    QCOMPARE(reread.fileBox().folders.back().FolderPath, QStringLiteral("\\Team\\Docs"));
    QCOMPARE(reread.fileBox().groupAuthorities.back().level, int(NoAccess));
    QCOMPARE(tableDump(db).filter(QRegularExpression(QStringLiteral("^9\\|3\\|X$"))).size(), 1);

    // What a save writes is what the reloaded chart would write: the export matches once the path is
    // read back without its doubled backslashes.
    doc.fileBox().folders.back().FolderPath = QStringLiteral("\\Team\\Docs");
    QCOMPARE(ChartJson::write(reread.tables()), ChartJson::write(doc.tables()));
}

void TestChartStorage::deletionCascade_data()
{
    addEngineRows();
}

void TestChartStorage::deletionCascade()
{
    QFETCH(QString, kind);
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());
    // Members 1 to 3 keep lists of each other; members from 1001 on are many, so that the removed
    // identifiers take more than one statement.
    QList<int> ids {1, 2, 3};
    for (int id = 1001; id <= 2200; ++id)
        ids << id;
    QStringList rows;
    for (const int id : ids) {
        const int other = id <= 3 ? id % 3 + 1 : id;
        rows << QStringLiteral("INSERT INTO SD_Antenna VALUES (%1,%2)").arg(id).arg(other)
             << QStringLiteral("INSERT INTO SD_MyMember VALUES (%1,%2,NULL)").arg(id).arg(other)
             << QStringLiteral("INSERT INTO SD_MyGroup (K_MemberID) VALUES (%1)").arg(id)
             << QStringLiteral("INSERT INTO SD_LeavedMemo (K_MemberID) VALUES (%1)").arg(id);
    }
    rows.prepend(QStringLiteral("BEGIN"));
    rows << QStringLiteral("COMMIT");
    QVERIFY(run(db, rows));
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    doc.deletedMembers() = ids.mid(3);
    doc.deletedMembers().prepend(2);
    // Department 8 is in the tree again under its number (a deletion undone by hand, or an older
    // console's number reuse): its memberships stay. 99 is gone.
    doc.deletedGroups() = {8, 99};
    const IniFile settings(m_home.path(QStringLiteral("cascade.ini")));
    QCOMPARE(ChartSave::run(doc, settings, saveWith(db)), ChartSave::Outcome::Saved);
    QVERIFY(doc.deletedMembers().isEmpty());
    QVERIFY(doc.deletedGroups().isEmpty());

    const QStringList dump = tableDump(db);
    const auto section = [&dump](const QString& table) {
        const qsizetype from = dump.indexOf(QStringLiteral("== ") + table) + 1;
        QStringList out;
        for (qsizetype i = from; i < dump.size() && !dump[i].startsWith(QLatin1String("== ")); ++i)
            out << dump[i];
        out.sort();
        return out;
    };
    // Member 2's own rows and the rows naming it go, and all of the many; the others stay.
    QCOMPARE(section(QStringLiteral("SD_Antenna")), QStringList {"3|1"});
    QCOMPARE(section(QStringLiteral("SD_MyMember")), QStringList {"3|1|(null)"});
    QCOMPARE(section(QStringLiteral("SD_MyGroup")), (QStringList {"1|(null)|(null)", "3|(null)|(null)"}));
    QCOMPARE(section(QStringLiteral("SD_LeavedMemo")), (QStringList {"1|(null)|(null)", "3|(null)|(null)"}));
    const QStringList relations = section(QStringLiteral("SD_Relation"));
    QVERIFY(!relations.filter(QRegularExpression(QStringLiteral("^\\d+\\|8\\|"))).isEmpty());
    QVERIFY(!relations.filter(QRegularExpression(QStringLiteral("^\\d+\\|7\\|"))).isEmpty());
}

void TestChartStorage::version_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("absent") << QByteArray() << "0001";
    QTest::newRow("counting") << QByteArray("[GroupInfo]\nVersion=0042\n") << "0043";
    QTest::newRow("wraps after 9999") << QByteArray("[GroupInfo]\nVersion=9999\n") << "0001";
}

void TestChartStorage::version()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, after);
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    const QString ini = QStringLiteral("version-%1.ini").arg(QTest::currentDataTag());
    m_home.writeFile(ini, before);
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    const IniFile settings(m_home.path(ini));
    QCOMPARE(ChartSave::run(doc, settings, saveWith(db)), ChartSave::Outcome::Saved);
    QCOMPARE(settings.readString(QStringLiteral("GroupInfo"), QStringLiteral("Version"), QString(), 16), after);
}

void TestChartStorage::bulkRowsRoundTrip_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QVariant>("id");
    QTest::addColumn<QVariant>("text");
    const struct
    {
        const char* name;
        QVariant id;
        QVariant text;
    } cases[] = {
        {"tab", 1, QStringLiteral("a\tb")},
        {"newline", 2, QStringLiteral("첫 줄\n둘째 줄")},
        {"carriage return", 3, QStringLiteral("a\r\nb\r")},
        {"backslashes", 4, QStringLiteral("C:\\Sable\\\\Box\\")},
        {"backslash N is a text", 5, QStringLiteral("\\N")},
        {"every separator together", 6, QStringLiteral("\\\t\n\r\\t")},
        {"Korean", 7, QStringLiteral("세이블상사/영업본부 김철수")},
        {"leading and trailing blanks", 8, QStringLiteral("  가 나  ")},
        {"empty text", 9, QStringLiteral("")},
        {"NULL text", 10, QVariant()},
        {"NULL identifier", QVariant(), QStringLiteral("x")},
        {"largest identifier", std::numeric_limits<int>::max(), QStringLiteral("max")},
        {"smallest identifier", std::numeric_limits<int>::min(), QStringLiteral("min")},
        {"the column's full length", 11, QString(1000, u'가')},
    };
    for (const char* kind : {"sqlite", "postgresql"}) {
        for (const auto& c : cases)
            QTest::addRow("%s: %s", kind, c.name) << QString::fromLatin1(kind) << c.id << c.text;
    }
}

void TestChartStorage::bulkRowsRoundTrip()
{
    QFETCH(QString, kind);
    QFETCH(QVariant, id);
    QFETCH(QVariant, text);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    DbConnection connection;
    QVERIFY(connection.open(db));
    if (kind == QLatin1String("postgresql")) // the bulk copy is what is tested, not the driver's path
        QCOMPARE(PostgresCopy::handle(connection.database()) != nullptr, PostgresCopy::isBuilt());
    QVERIFY(connection.beginTrans());
    {
        // Neighbours on either side: a separator that is not escaped moves values between rows.
        BatchInserter insert(connection, QStringLiteral("SD_LeavedMemo"),
            {QStringLiteral("K_MemberID"), QStringLiteral("K_MemberID_O"), QStringLiteral("Memo")});
        QVERIFY(insert.add({1, 0, QStringLiteral("before")}));
        QVERIFY(insert.add({2, id, text}));
        QVERIFY(insert.add({3, 0, QStringLiteral("after")}));
        QVERIFY2(insert.flush(), qPrintable(DbConnection::lastError()));
    }
    QVERIFY(connection.commitTrans());
    QSqlQuery rows(connection.database());
    QVERIFY(rows.exec(QStringLiteral("SELECT K_MemberID,K_MemberID_O,Memo FROM SD_LeavedMemo ORDER BY K_MemberID")));
    QList<QVariantList> read;
    while (rows.next())
        read.append({rows.value(0).toInt(), rows.value(1), rows.value(2)});
    QCOMPARE(read.size(), 3);
    QCOMPARE(read[0][2].toString(), QStringLiteral("before"));
    QCOMPARE(read[2][2].toString(), QStringLiteral("after"));
    QCOMPARE(read[1][0].toInt(), 2);
    QCOMPARE(read[1][1].isNull(), id.isNull());
    QCOMPARE(read[1][1].toLongLong(), id.toLongLong());
    QCOMPARE(read[1][2].isNull(), text.isNull());
    QCOMPARE(read[1][2].toString(), text.toString());
}

void TestChartStorage::failedBulkCopyRollsBack_data()
{
    QTest::addColumn<QString>("constraint");
    QTest::addColumn<QString>("longText"); // the description of a member in the middle
    QTest::addColumn<QString>("reason"); // in the server's message
    // The demo places user 4 in two departments.
    QTest::newRow("duplicate key") << "CREATE UNIQUE INDEX one_place ON SD_Relation (K_MemberID)" << QString()
                                   << "duplicate key";
    QTest::newRow("text over its column") << QString() << QString(1001, u'가') << "too long";
}

void TestChartStorage::failedBulkCopyRollsBack()
{
    QFETCH(QString, constraint);
    QFETCH(QString, longText);
    QFETCH(QString, reason);
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(QStringLiteral("postgresql"), m_home, m_pg);
    const IniFile settings(m_home.path(QStringLiteral("copy-%1.ini").arg(QTest::currentDataTag())));
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    QCOMPARE(ChartSave::run(doc, settings, saveWith(db)), ChartSave::Outcome::Saved);
    if (!constraint.isEmpty())
        QVERIFY(run(db, {QStringLiteral("DELETE FROM SD_Relation WHERE K_MemberID = 4"), constraint}));
    const QStringList before = tableDump(db);

    // Enough rows that the copy is sent in several pieces, and the refused one among them.
    for (int i = 0; i < 4000; ++i) {
        MemberRecord member;
        member.K_MemberID = 1000 + i;
        member.MemberID = QStringLiteral("bulk%1").arg(i);
        member.MemberName = member.Passwd = QStringLiteral("이름");
        member.Description = i == 2000 && !longText.isEmpty() ? longText : QString(500, u'설');
        doc.chart().insertMember(doc.chart().memberCount(), member);
    }
    doc.chart().renameGroup(doc.chart().rootGroup(), QStringLiteral("바뀐 이름"));
    doc.setModified(true);
    ChartSave::Collaborators with = saveWith(db);
    with.bReplace = true; // the memberships were changed behind the document's back
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::DatabaseFailed);
    QVERIFY2(DbConnection::lastError().contains(reason), qPrintable(DbConnection::lastError()));
    QCOMPARE(tableDump(db), before);
    // Once the cause is gone the same save goes through: the failure left nothing behind.
    if (!constraint.isEmpty())
        QVERIFY(run(db, {QStringLiteral("DROP INDEX one_place")}));
    const int row = doc.chart().rowOf(3000);
    MemberRecord fixed = doc.chart().member(row);
    fixed.Description.truncate(1000);
    doc.chart().setMember(row, fixed);
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Saved);
    QCOMPARE(tableDump(db).filter(QStringLiteral("bulk")).size(), 4000);
}

void TestChartStorage::failingStatementRollsBack()
{
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    {
        CSableManagerDoc first;
        first.adopt(DemoOrganisation::contents());
        QCOMPARE(ChartSave::run(first, IniFile(m_home.path(QStringLiteral("fail.ini"))), saveWith(db)),
            ChartSave::Outcome::Saved);
    }
    // The membership of member 40 fails to insert, after the departments and members were rewritten.
    QVERIFY(run(db,
        {QStringLiteral("CREATE TRIGGER refuse BEFORE INSERT ON SD_Relation WHEN NEW.K_MemberID = 40 "
                        "BEGIN SELECT RAISE(ABORT, 'refused'); END")}));
    const QStringList before = tableDump(db);
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    {
        DbConnection connection;
        QVERIFY(connection.open(db));
        doc.setBase(ChartFingerprint::of(*ChartTables::read(connection)));
    }
    doc.chart().renameGroup(doc.chart().rootGroup(), QStringLiteral("바뀐 이름"));
    doc.chart().insertNode(doc.chart().rootGroup(), 0, OrgNode::makeMember(40, -1));
    doc.deletedMembers() = {39};
    doc.setModified(true);
    QStringList calls;
    QCOMPARE(ChartSave::run(doc, IniFile(m_home.path(QStringLiteral("fail.ini"))), saveWith(db, &calls)),
        ChartSave::Outcome::DatabaseFailed);
    QCOMPARE(calls.last(), QStringLiteral("balloon: 데이터 베이스에 오류가 발생했습니다. @-1,-1"));
    QCOMPARE(tableDump(db), before);
    QCOMPARE(IniFile(m_home.path(QStringLiteral("fail.ini")))
                 .readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0),
        1);
    QCOMPARE(doc.deletedMembers(), QList<int> {39});
    QVERIFY(doc.isModified());
    QCOMPARE(doc.chart().rootGroup()->name(), QStringLiteral("바뀐 이름"));
}

void TestChartStorage::failingCommitLeavesVersion()
{
    SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(QStringLiteral("postgresql"), m_home, m_pg);
    // A check deferred to the commit: the statements succeed, the commit does not.
    QVERIFY(run(db,
        {QStringLiteral("CREATE FUNCTION refuse() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
                        "RAISE EXCEPTION 'refused at commit'; END $$"),
            QStringLiteral("CREATE CONSTRAINT TRIGGER at_commit AFTER INSERT ON SD_Group DEFERRABLE "
                           "INITIALLY DEFERRED FOR EACH ROW WHEN (NEW.GroupName = 'commit') "
                           "EXECUTE FUNCTION refuse()")}));
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    doc.chart().renameGroup(doc.chart().rootGroup(), QStringLiteral("commit"));
    const IniFile settings(m_home.path(QStringLiteral("commit.ini")));
    QCOMPARE(ChartSave::run(doc, settings, saveWith(db)), ChartSave::Outcome::DatabaseFailed);
    QCOMPARE(tableDump(db).filter(QStringLiteral("commit")), QStringList());
    // Never ahead of the database: the server's clients would fetch a chart that is not there.
    QCOMPARE(settings.readString(QStringLiteral("GroupInfo"), QStringLiteral("Version"), QString(), 16),
        QStringLiteral("0000"));
}

void TestChartStorage::stopDuringLoad_data()
{
    QTest::addColumn<QString>("phase");
    QTest::addColumn<int>("position"); // -1: when the phase sets its range
    QTest::addColumn<bool>("emptyRelations");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<int>("members");
    QTest::addColumn<int>("groups");
    QTest::addColumn<int>("placements");
    const int open = int(ChartReader::Outcome::OpenFailed);
    QTest::newRow("members") << QStringLiteral("사용자 정보를 읽어오고 있습니다.") << 3 << false << open << 2 << 0 << 0;
    QTest::newRow("groups") << QStringLiteral("그룹 정보를 읽어오고 있습니다.") << 2 << false << open << 40 << 2 << 0;
    QTest::newRow("memberships") << QStringLiteral("그룹에 사용자를 추가중입니다.") << 5 << false << open << 40 << 8
                                 << 4;
    QTest::newRow("between phases") << QStringLiteral("그룹에 사용자를 추가중입니다.") << -1 << true
                                    << int(ChartReader::Outcome::Stopped) << 40 << 8 << 0;
}

void TestChartStorage::stopDuringLoad()
{
    QFETCH(QString, phase);
    QFETCH(int, position);
    QFETCH(bool, emptyRelations);
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    CSableManagerDoc demo;
    demo.adopt(DemoOrganisation::contents());
    QCOMPARE(ChartSave::run(demo, IniFile(m_home.path(QStringLiteral("stop.ini"))), saveWith(db)),
        ChartSave::Outcome::Saved);
    if (emptyRelations)
        QVERIFY(run(db, {QStringLiteral("DELETE FROM SD_Relation")}));

    std::atomic<int> flag {1};
    StoppingProgress progress(flag, phase, position, position < 0);
    ChartReader::Result result = ChartReader::read(
        [&] {
            DbConnection connection;
            connection.open(db);
            return connection;
        },
        progress, flag);
    QTEST(int(result.outcome), "outcome");
    QTEST(result.contents.chart->memberCount(), "members");
    QTEST(result.contents.chart->groupCount(), "groups");
    QTEST(result.contents.chart->placementCount(), "placements");
    QCOMPARE(result.contents.ranks.count(), 0);
    QCOMPARE(progress.texts.first(), QStringLiteral("데이터 베이스를 열고 있습니다."));
    QCOMPARE(progress.texts.last(), phase);
}

void TestChartStorage::loadFailures()
{
    std::atomic<int> flag {1};
    StoppingProgress progress(flag, QString(), -1);
    const ChartReader::Result noConnection = ChartReader::read([] { return DbConnection(); }, progress, flag);
    QCOMPARE(noConnection.outcome, ChartReader::Outcome::OpenFailed);
    QCOMPARE(
        ChartReader::message(noConnection.outcome), QStringLiteral("데이터 베이스 파일을 여는중 오류가 발생했습니다."));

    // A missing table fails the read; what was read before it stays.
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    QVERIFY(run(db, {member(1), group(1, "본사", -1, 1, 0), QStringLiteral("DROP TABLE SB_Folder")}));
    ChartReader::Result result = load(db);
    QCOMPARE(result.outcome, ChartReader::Outcome::ReadFailed);
    QCOMPARE(ChartReader::message(result.outcome), QStringLiteral("데이터 베이스를 읽는 중 오류가 발생했습니다."));
    QVERIFY(result.errorText.contains(QLatin1String("SB_Folder")));
    QCOMPARE(result.contents.chart->memberCount(), 1);
    QCOMPARE(result.contents.chart->groupCount(), 1);
}

void TestChartStorage::loadProblemsAreTold_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("memberships"); // SD_Relation rows after the next save, -1: not looked at
    QTest::newRow("membership of a department not in the table")
        << relation(2, 99, -1, 1) << int(LoadProblems::MembershipOfUnknownDepartment) << 2;
    QTest::newRow("membership of a user not in the table")
        << relation(9, 1, -1, 3) << int(LoadProblems::MembershipOfUnknownUser) << 2;
    QTest::newRow("department whose parent is gone")
        << group(5, "떨어진팀", 77, 1, 1) << int(LoadProblems::DepartmentWithoutParent) << 2;
    QTest::newRow("two departments under one number")
        << group(1, "또 본사", -1, 2, 0) << int(LoadProblems::DuplicateDepartmentId) << -1;
    QTest::newRow("two users under one number")
        << QStringLiteral("INSERT INTO SD_Member (K_MemberID,MemberID,MemberName,Passwd) VALUES (2,'other','X','pw')")
        << int(LoadProblems::DuplicateUserId) << -1;
    QTest::newRow("two users with one login ID in other letter case")
        << QStringLiteral("INSERT INTO SD_Member (K_MemberID,MemberID,MemberName,Passwd) VALUES (7,'U1','X','pw')")
        << int(LoadProblems::DuplicateLoginId) << -1;
}

void TestChartStorage::loadProblemsAreTold()
{
    QFETCH(QString, statement);
    QFETCH(int, kind);
    QFETCH(int, memberships);
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    QVERIFY(run(db,
        {member(1), member(2), group(1, "본사", -1, 1, 0), relation(1, 1, -1, 1), relation(2, 1, -1, 2), statement}));
    ChartReader::Result result = load(db);
    QCOMPARE(result.outcome, ChartReader::Outcome::Loaded);
    for (int k = 0; k < LoadProblems::KindCount; ++k)
        QCOMPARE(result.problems.counts[static_cast<size_t>(k)], k == kind ? 1 : 0);
    QVERIFY(!ChartReader::describe(result.problems).isEmpty());
    if (memberships < 0)
        return;
    // What the message says of the next save holds: the rows it cannot place are saved as shown.
    CSableManagerDoc doc;
    doc.adopt(std::move(result.contents));
    doc.setModified(true);
    QCOMPARE(ChartSave::run(doc, IniFile(m_home.path(QStringLiteral("problems.ini"))), saveWith(db)),
        ChartSave::Outcome::Saved);
    QCOMPARE(load(db).problems.total(), 0);
    DbConnection connection;
    QVERIFY(connection.open(db));
    QCOMPARE(connection.execute(QStringLiteral("SELECT COUNT(*) FROM SD_Relation")).fieldInt(0), memberships);
}

void TestChartStorage::saveChecksAndServices()
{
    const QString db = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    const IniFile settings(m_home.path(QStringLiteral("checks.ini")));
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    QStringList calls;
    ChartSave::Collaborators with = saveWith(db, &calls);

    // An empty password stops the save before the question.
    MemberRecord third = doc.chart().member(2);
    third.Passwd.clear();
    doc.chart().setMember(2, third);
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Refused);
    QCOMPARE(calls, QStringList {"balloon: 아이디나 비밀번호가 비어있는 아이디가 있습니다. @2,2"});

    // An empty name is found after the question.
    third.Passwd = QStringLiteral("pw");
    third.MemberName.clear();
    doc.chart().setMember(2, third);
    calls.clear();
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Refused);
    QCOMPARE(calls.size(), 2);
    QVERIFY(calls[0].startsWith(QStringLiteral("ask: 조직도 및 개인정보가 삭제후  새로 저장됩니다.")));
    QCOMPARE(calls[1], QStringLiteral("balloon: 아이디나 비밀번호가 비어있는 아이디가 있습니다. @2,1"));

    third.MemberName = QStringLiteral("이름");
    doc.chart().setMember(2, third);
    with.bEditorOpen = false;
    calls.clear();
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Refused);
    QCOMPARE(calls.last(), QStringLiteral("balloon: 편집화면에서 저장버튼을 눌러주세요. @-1,-1"));
    with.bEditorOpen = true;
    with.askYesNo = [](const QString&) { return false; };
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Declined);
    QCOMPARE(tableDump(db).filter(QStringLiteral("sable1234")), QStringList());
    QCOMPARE(settings.readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0), 0);

    // A save: the file-box service stops while the tables are written, all services start after it,
    // the notice reaches the server, and a notice that cannot be sent restarts the services.
    QUdpSocket server;
    QVERIFY(server.bind(QHostAddress::LocalHost, 0));
    with = saveWith(db, &calls);
    with.isFileBoxServerRunning = [&calls] { return calls << QStringLiteral("running?"), true; };
    with.stopFileBoxServer = [&calls] { calls << QStringLiteral("stop file box"); };
    with.requestStartAll = [&calls] { calls << QStringLiteral("start all"); };
    with.restartAll = [&calls] { calls << QStringLiteral("restart all"); };
    with.sendChartChangedNotice = [&] {
        calls << QStringLiteral("notice");
        return ChangeNotice::send(ChangeNotice::Kind::ReloadDatabase, server.localPort());
    };
    calls.clear();
    doc.setModified(true);
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Saved);
    QCOMPARE(calls.mid(1), (QStringList {"running?", "stop file box", "start all", "notice"}));
    QVERIFY(!doc.isModified());
    QTRY_VERIFY(server.hasPendingDatagrams());
    QCOMPARE(server.receiveDatagram().data(), ChangeNotice::bytes(ChangeNotice::Kind::ReloadDatabase));

    with.sendChartChangedNotice = [] { return false; };
    calls.clear();
    QCOMPARE(ChartSave::run(doc, settings, with), ChartSave::Outcome::Saved);
    QCOMPARE(calls.mid(1), (QStringList {"running?", "stop file box", "start all", "restart all"}));
}

void TestChartStorage::importNeedsStoredIdentifiers_data()
{
    QTest::addColumn<QStringList>("damage");
    QTest::addColumn<QString>("error");
    QTest::newRow("table missing") << QStringList {"DROP TABLE SD_Group"} << "SD_Group";
    // The statement starts and gives a row, then fails: the rows so far are not all there are.
    QTest::newRow("reading stops half-way") << QStringList {"DROP TABLE SD_Member",
        "CREATE VIEW SD_Member AS SELECT 7 AS K_MemberID UNION ALL SELECT abs(-9223372036854775807 - 1)"}
                                            << "integer overflow";
}

void TestChartStorage::importNeedsStoredIdentifiers()
{
    QFETCH(QStringList, damage);
    QFETCH(QString, error);
    const QString connection = freshDatabase(QStringLiteral("sqlite"), m_home, m_pg);
    QVERIFY(!connection.isEmpty());
    QVERIFY(run(connection, {member(7), member(8), group(999, QStringLiteral("top"), -1, 1, 0)}));
    CSableManagerDoc demo;
    demo.adopt(DemoOrganisation::contents());

    // The file keeps member 8 only: member 7 and department 999 are to be deleted.
    ChartTables file = demo.tables();
    file.members.resize(1);
    file.members[0].K_MemberID = 8;
    DbConnection db;
    QVERIFY(db.open(connection));
    CSableManagerDoc doc;
    QVERIFY(ChartImport::replaceChart(db, doc, ChartTables(file)));
    QCOMPARE(doc.deletedMembers(), QList<int> {7});
    QCOMPARE(doc.deletedGroups(), QList<int> {999});
    QVERIFY(doc.isModified());

    QVERIFY(run(connection, damage));
    CSableManagerDoc untouched;
    QVERIFY(!ChartImport::replaceChart(db, untouched, ChartTables(file)));
    QVERIFY2(DbConnection::lastError().contains(error), qPrintable(DbConnection::lastError()));
    QCOMPARE(untouched.chart().memberCount(), 0);
    QVERIFY(untouched.deletedMembers().isEmpty() && untouched.deletedGroups().isEmpty());
    QVERIFY(!untouched.isModified());
}

void TestChartStorage::streamedFileReadsAsWhole_data()
{
    QTest::addColumn<QByteArray>("json");
    const QByteArray empty = "\"ranks\": [], \"folders\": [], \"groupAuthorities\": [], \"userAuthorities\": []";
    QTest::newRow("braces, brackets and escapes inside texts")
        << QByteArray("{\"groups\": [{\"K_GroupID\": 1, \"GroupName\": \"a}]\\\" \\\\\\\"{[\", \"K_GroupID_P\": -1, "
                      "\"Position\": 1, \"Depth\": 0}], \"members\": [], \"relations\": [], \"ranks\": [{\"K_RankID\": "
                      "2, \"RankName\": \"\\ud55c\\u0041\\n\\t\"}], \"folders\": [], \"groupAuthorities\": [], "
                      "\"userAuthorities\": []}");
    QTest::newRow("other order, unknown keys, no blanks")
        << QByteArray("{\"x\":{\"y\":[1,{\"z\":\"]\"}]},\"relations\":[],\"ranks\":[],\"members\":[],\"v\":null,"
                      "\"groups\":[],\"folders\":[],\"groupAuthorities\":[],\"userAuthorities\":[],\"directoryLinks\":"
                      "[{\"K_MemberID\":3,\"EntryID\":\"e\",\"EntryDN\":\"cn=a\\\\,b\"}]}");
    // Many rows of long texts: the reader's buffer is refilled and cut many times.
    QByteArray many = "{\n\"groups\": [],\n\"members\": [\n";
    for (int i = 1; i <= 3000; ++i) {
        many += QStringLiteral(
            "%1{\"K_MemberID\": %2, \"MemberID\": \"u%2\", \"MemberName\": \"이름 %2\", \"Passwd\": "
            "\"p\", \"Gender\": 1, \"bPublic\": 1, \"Email\": \"\", \"HP\": \"\", \"Address\": \"%3\","
            " \"HomePhone\": \"\", \"OfficePhone\": \"\", \"BirthDay\": \"\", \"Description\": "
            "\"}\\\"\", \"bSolar\": 1, \"bAdmin\": 0}\r\n")
                    .arg(i == 1 ? QString() : QStringLiteral(","))
                    .arg(i)
                    .arg(QString(i % 400, u'주'))
                    .toUtf8();
    }
    QTest::newRow("more than the reader's buffer") << many + "],\n\"relations\": [], " + empty + "}\n";
}

void TestChartStorage::streamedFileReadsAsWhole()
{
    QFETCH(QByteArray, json);
    QBuffer file(&json);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QString streamError;
    const std::optional<ChartTables> streamed = ChartJson::readFile(file, &streamError);
    QVERIFY2(streamed, qPrintable(streamError));
    QString wholeError;
    const std::optional<ChartTables> whole = ChartJson::read(QJsonDocument::fromJson(json).object(), &wholeError);
    QVERIFY2(whole, qPrintable(wholeError));
    QCOMPARE(ChartJson::write(*streamed), ChartJson::write(*whole));
    QVERIFY(!streamed->members.empty() || !streamed->groups.empty() || streamed->ranks.count() > 0
        || !streamed->links.all().isEmpty());
}

void TestChartStorage::writtenTextsReadBack_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("quotes and backslashes") << QStringLiteral("\"a\\\\b\" \\");
    QTest::newRow("control characters") << QStringLiteral("a\x01\nb\tc\r\x1f");
    QTest::newRow("Korean") << QStringLiteral("세이블상사 영업본부");
    QTest::newRow("beyond the basic plane") << QStringLiteral("팀 \U0001F600 \U00020000");
    QTest::newRow("half a surrogate pair at the end") << QString(QStringLiteral("끝")) + QChar(0xD83D);
    QTest::newRow("longer than the writer's buffer") << QString(300 * 1024, u'가') + u'"';
    QTest::newRow("empty") << QString();
}

void TestChartStorage::writtenTextsReadBack()
{
    QFETCH(QString, text);
    ChartTables tables;
    tables.groups = {{1, text, -1, 1, 0}, {2, QStringLiteral("다음"), -1, 2, 0}};
    const QByteArray json = ChartJson::write(tables);
    QJsonParseError parsed;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parsed);
    QCOMPARE(parsed.error, QJsonParseError::NoError);
    QString error;
    const std::optional<ChartTables> read = ChartJson::read(document.object(), &error);
    QVERIFY2(read, qPrintable(error));
    QCOMPARE(read->groups.size(), size_t(2));
    // What any conversion to UTF-8 makes of the text (half a surrogate pair cannot be written).
    QCOMPARE(read->groups[0].GroupName, QString::fromUtf8(text.toUtf8()));
    QCOMPARE(read->groups[1].GroupName, QStringLiteral("다음"));
}

void TestChartStorage::restorePointReadsBack_data()
{
    QTest::addColumn<int>("extraMembers");
    QTest::newRow("demo") << 0;
    // Several megabytes of text: packed and written in many pieces.
    QTest::newRow("large") << 20000;
}

void TestChartStorage::restorePointReadsBack()
{
    QFETCH(int, extraMembers);
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    RestorePoint point {QDateTime::currentDateTimeUtc(), SaveAuthor::current(QStringLiteral("test")),
        {QStringLiteral("a line")}, doc.tables(),
        {{QStringLiteral("SD_MyGroup"), {QStringLiteral("K_MemberID"), QStringLiteral("MyGroupName")},
            {{7, QStringLiteral("친구 \"1\"")}, {8, QVariant()}}}}};
    for (int i = 0; i < extraMembers; ++i) {
        MemberRecord member;
        member.K_MemberID = 100000 + i;
        member.MemberID = QStringLiteral("user%1").arg(i);
        member.Description = QStringLiteral("설명\t%1\n").arg(i).repeated(i % 20);
        point.tables.members.push_back(member);
    }
    const RestorePoints points(m_home.path(QStringLiteral("points-%1").arg(extraMembers)), 5);
    QString problem;
    QVERIFY2(points.prepare(&problem) && points.write(point, &problem), qPrintable(problem));
    const std::vector<RestorePointInfo> listed = points.list();
    QCOMPARE(listed.size(), size_t(1));
    const std::optional<RestorePoint> read = RestorePoints::read(listed.front().path, &problem);
    QVERIFY2(read, qPrintable(problem));
    QCOMPARE(ChartJson::write(read->tables), ChartJson::write(point.tables));
    QCOMPARE(read->changes, point.changes);
    QCOMPARE(read->userData.size(), size_t(1));
    const std::vector<QVariantList>& rows = read->userData[0].rows;
    QCOMPARE(rows.size(), size_t(2));
    QCOMPARE(rows[0][1].toString(), QStringLiteral("친구 \"1\""));
    QCOMPARE(rows[1][0].toInt(), 8);
    QVERIFY(rows[1][1].isNull());
}

bool TestChartStorage::saveDemoThenEdit(const QString& db, const std::function<void(ChartTables&)>& edit)
{
    const IniFile settings(m_home.path(QStringLiteral("journal.ini")));
    CSableManagerDoc demo;
    demo.adopt(DemoOrganisation::contents());
    if (ChartSave::run(demo, settings, saveWith(db)) != ChartSave::Outcome::Saved)
        return false;
    ChartReader::Result loaded = load(db);
    if (loaded.outcome != ChartReader::Outcome::Loaded)
        return false;
    CSableManagerDoc doc;
    doc.adopt(std::move(loaded.contents));
    ChartTables tables = doc.tables();
    edit(tables);
    // As a chart file is saved: in place of what the database holds.
    ChartSave::Collaborators with = saveWith(db);
    with.bReplace = true;
    DbConnection connection;
    return connection.open(db) && ChartImport::replaceChart(connection, doc, std::move(tables))
        && ChartSave::run(doc, settings, with) == ChartSave::Outcome::Saved;
}

namespace {

// The rows of the newest save in the journal, a row as "table|action|key|login ID|department".
QStringList newestJournalRows(const QString& connectionString)
{
    DbConnection db;
    if (!db.open(connectionString))
        return {QStringLiteral("not opened")};
    const std::optional<std::vector<JournalEntry>> entries = ChangeJournal::read(db, {});
    if (!entries)
        return {QStringLiteral("not read: ") + DbConnection::lastError()};
    QStringList rows;
    for (const JournalEntry& entry : *entries) {
        if (entry.saveId == entries->front().saveId)
            rows << QStringList {entry.table, entry.action, entry.key, entry.loginId, entry.department}.join(u'|');
    }
    return rows;
}

void renameGroup4(ChartTables& tables)
{
    for (GroupRow& group : tables.groups) {
        if (group.K_GroupID == 4)
            group.GroupName = QStringLiteral("재무회계팀");
    }
}

template <typename Row, typename Keep>
void keepOnly(std::vector<Row>& rows, Keep keep)
{
    std::erase_if(rows, [&keep](const Row& row) { return !keep(row); });
}

} // namespace

void TestChartStorage::journalRowsCarryKeys_data()
{
    using Edit = std::function<void(ChartTables&)>;
    QTest::addColumn<QString>("kind");
    QTest::addColumn<Edit>("edit");
    QTest::addColumn<QStringList>("expected");
    const auto addGroup = [](ChartTables& t) { t.groups.push_back({90, QStringLiteral("신설팀"), 2, 9, 2}); };
    const auto removeGroup = [](ChartTables& t) {
        keepOnly(t.groups, [](const GroupRow& g) { return g.K_GroupID != 4; });
        keepOnly(t.relations, [](const RelationRow& r) { return r.K_GroupID != 4; });
    };
    const auto addMember = [](ChartTables& t) {
        MemberRecord added = t.members.front();
        added.K_MemberID = 900;
        added.MemberID = QStringLiteral("newcomer");
        t.members.push_back(added);
        t.relations.push_back({900, 7, 6, 9});
    };
    const auto changeMember = [](ChartTables& t) {
        for (MemberRecord& m : t.members) {
            if (m.K_MemberID == 3)
                m.Email = QStringLiteral("mj@example.com");
        }
    };
    const auto removeMember = [](ChartTables& t) {
        keepOnly(t.members, [](const MemberRecord& m) { return m.K_MemberID != 6; });
        keepOnly(t.relations, [](const RelationRow& r) { return r.K_MemberID != 6; });
    };
    const auto addMembership = [](ChartTables& t) { t.relations.push_back({6, 4, 3, 9}); };
    const auto changeMembership = [](ChartTables& t) {
        for (RelationRow& r : t.relations) {
            if (r.K_MemberID == 6)
                r.K_RankID = 2;
        }
    };
    for (const char* kind : {"sqlite", "postgresql"}) {
        const auto row
            = [kind](const char* name) -> QTestData& { return QTest::addRow("%s, %s", kind, name) << QString(kind); };
        row("department added") << Edit(addGroup) << QStringList {"부서|추가|90||신설팀"};
        row("department changed") << Edit(renameGroup4) << QStringList {"부서|변경|4||재무회계팀"};
        row("department removed") << Edit(removeGroup)
                                  << QStringList {"부서|삭제|4||재무팀", "소속|삭제|7/4|dhyoon|재무팀",
                                         "소속|삭제|10/4|yjhan|재무팀"};
        row("user and membership added") << Edit(
            addMember) << QStringList {"사용자|추가|900|newcomer|", "소속|추가|900/7|newcomer|해외영업팀"};
        row("user changed") << Edit(changeMember) << QStringList {"사용자|변경|3|mjlee|"};
        row("user removed") << Edit(removeMember)
                            << QStringList {"사용자|삭제|6|eskang|", "소속|삭제|6/3|eskang|인사팀"};
        row("membership added") << Edit(addMembership) << QStringList {"소속|추가|6/4|eskang|재무팀"};
        row("membership changed") << Edit(changeMembership) << QStringList {"소속|변경|6/3|eskang|인사팀"};
    }
}

void TestChartStorage::journalRowsCarryKeys()
{
    using Edit = std::function<void(ChartTables&)>;
    QFETCH(QString, kind);
    QFETCH(Edit, edit);
    QFETCH(QStringList, expected);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());
    QVERIFY(saveDemoThenEdit(db, edit));
    const QStringList rows = newestJournalRows(db);
    for (const QString& row : expected)
        QVERIFY2(rows.contains(row), qPrintable(row + QStringLiteral(" not in:\n") + rows.join(u'\n')));
}

void TestChartStorage::authorWithoutEnvironment()
{
    // A save from a service or a scheduled job, where neither variable is set, still names its account.
    const QByteArray user = qgetenv("USER");
    const QByteArray userName = qgetenv("USERNAME");
    qunsetenv("USER");
    qunsetenv("USERNAME");
    const SaveAuthor author = SaveAuthor::current(QStringLiteral("sablectl"));
    if (!user.isNull())
        qputenv("USER", user);
    if (!userName.isNull())
        qputenv("USERNAME", userName);
    QVERIFY(!author.user.isEmpty());
    QCOMPARE(author.program, QStringLiteral("sablectl"));
}

void TestChartStorage::journalWithoutKeysGainsThem_data()
{
    addEngineRows();
}

void TestChartStorage::journalWithoutKeysGainsThem()
{
    QFETCH(QString, kind);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());
    // The journal as the version before keys wrote it, with one save of one row.
    QVERIFY(run(db,
        {QStringLiteral("CREATE TABLE SM_Journal (K_SaveID INTEGER NULL, SavedAt VARCHAR(32) NULL, OsUser "
                        "VARCHAR(100) NULL, Host VARCHAR(100) NULL, Program VARCHAR(50) NULL, RowCount INTEGER NULL)"),
            QStringLiteral("CREATE TABLE SM_JournalRow (K_SaveID INTEGER NULL, TableName VARCHAR(50) NULL, Action "
                           "VARCHAR(20) NULL, RowName VARCHAR(400) NULL, LoginID VARCHAR(50) NULL, Department "
                           "VARCHAR(100) NULL, Fields VARCHAR(1000) NULL)"),
            QStringLiteral("INSERT INTO SM_Journal VALUES (1,'2024-05-01T09:00:00Z','old','host','console',1)"),
            QStringLiteral("INSERT INTO SM_JournalRow VALUES (1,'부서','변경','옛 부서','','옛 부서','이름')")}));
    DbConnection connection;
    QVERIFY(connection.open(db));
    // Read before any save adds the column, the old rows show without keys.
    std::optional<std::vector<JournalEntry>> entries = ChangeJournal::read(connection, {});
    QVERIFY2(entries, qPrintable(DbConnection::lastError()));
    QCOMPARE(entries->size(), size_t(1));
    QVERIFY(!DbSchema::hasColumn(connection, QStringLiteral("SM_JournalRow"), QStringLiteral("RowKey")));
    connection.close();

    QVERIFY(saveDemoThenEdit(db, renameGroup4));
    QVERIFY(connection.open(db));
    QVERIFY(DbSchema::hasColumn(connection, QStringLiteral("SM_JournalRow"), QStringLiteral("RowKey")));
    entries = ChangeJournal::read(connection, {});
    QVERIFY2(entries, qPrintable(DbConnection::lastError()));
    QVERIFY(entries->size() > 2);
    QCOMPARE(entries->back().name, QStringLiteral("옛 부서"));
    QVERIFY(entries->back().key.isEmpty());
    QCOMPARE(entries->front().key, QStringLiteral("4"));
    // The key finds the row it names and the rows that join it, never a number it is only part of.
    JournalFilter byKey;
    byKey.key = QStringLiteral("4");
    entries = ChangeJournal::read(connection, byKey);
    QVERIFY(entries && !entries->empty());
    for (const JournalEntry& entry : *entries)
        QVERIFY2(QRegularExpression(QStringLiteral("^(4|\\d+/4|4/\\d+)$")).match(entry.key).hasMatch(),
            qPrintable(entry.key));
    connection.close();
}

QTEST_GUILESS_MAIN(TestChartStorage)
#include "tst_chart_storage.moc"

namespace {

// Saves as sablectl does: when someone saved meanwhile, merges and tries again. False (with the
// reason) when it cannot get through.
bool saveMerging(CSableManagerDoc& doc, const IniFile& settings, const ChartSave::Collaborators& with, QString* why)
{
    for (int attempt = 0; attempt < 200; ++attempt) {
        std::shared_ptr<const ChartTables> theirs;
        switch (ChartSave::run(doc, settings, with, &theirs)) {
        case ChartSave::Outcome::Saved:
            // Writers pause between saves, however briefly, as people and scripts do.
            std::this_thread::sleep_for(std::chrono::milliseconds(QRandomGenerator::global()->bounded(3)));
            return true;
        case ChartSave::Outcome::Conflict: {
            ChartMerge merge(doc.base(), doc.tables(), theirs);
            if (!merge.conflicts().empty()) {
                *why = QStringLiteral("a conflict: ") + merge.conflicts().front().name;
                return false;
            }
            QStringList dropped;
            MergeEdits::applyMerge(doc, merge, &dropped);
            if (!dropped.isEmpty()) {
                *why = QStringLiteral("dropped: ") + dropped.join(QLatin1Char(','));
                return false;
            }
            // A writer that saves without pause would otherwise get in first every time.
            std::this_thread::sleep_for(
                std::chrono::milliseconds(QRandomGenerator::global()->bounded(1 << std::min(attempt, 6))));
            break;
        }
        default:
            *why = QStringLiteral("not saved: ") + DbConnection::lastError();
            return false;
        }
    }
    *why = QStringLiteral("never got through");
    return false;
}

// One writer of the race: each round adds a department named after the writer and the round, and
// puts the round into the e-mail of the writer's own user, then saves.
void raceWriter(const QString& db, const IniFile& settings, const ChartSave::Collaborators& with, const QString& name,
    int memberRow, int rounds, QString* failure)
{
    ChartReader::Result loaded = load(db);
    if (loaded.outcome != ChartReader::Outcome::Loaded) {
        *failure = name + QStringLiteral(": not loaded");
        return;
    }
    CSableManagerDoc doc;
    doc.adopt(std::move(loaded.contents));
    for (int round = 0; round < rounds; ++round) {
        ChartEdits edits(doc);
        const EditOutcome added = edits.addDepartment(doc.chart().rootGroup());
        edits.renameDepartment(added.node, QStringLiteral("%1-%2").arg(name).arg(round));
        edits.editCell(memberRow, ColEmail, QStringLiteral("%1@round%2").arg(name).arg(round));
        QString why;
        if (!saveMerging(doc, settings, with, &why)) {
            *failure = QStringLiteral("%1, round %2: %3").arg(name).arg(round).arg(why);
            return;
        }
    }
}

} // namespace

void TestChartStorage::racingSavesLoseNothing_data()
{
    addEngineRows();
}

// Two writers on their own connections save in turn as fast as they can: every save is checked
// against the database under the lock, so each round of both survives, whoever saved last.
void TestChartStorage::racingSavesLoseNothing()
{
    QFETCH(QString, kind);
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(m_pg.isAvailable(), "the PostgreSQL fixture");
    const QString db = freshDatabase(kind, m_home, m_pg);
    QVERIFY(!db.isEmpty());
    {
        CSableManagerDoc demo;
        demo.adopt(DemoOrganisation::contents());
        QCOMPARE(ChartSave::run(demo, IniFile(m_home.path(QStringLiteral("race-%1.ini").arg(kind))), saveWith(db)),
            ChartSave::Outcome::Saved);
    }
    const int groupsBefore = load(db).contents.chart->groupCount();
    const IniFile settings(m_home.path(QStringLiteral("race-%1.ini").arg(kind)));
    const ChartSave::Collaborators with = saveWith(db);
    constexpr int kRounds = 100;
    QString failureA;
    QString failureB;
    std::thread a(raceWriter, db, std::cref(settings), std::cref(with), QStringLiteral("A"), 0, kRounds, &failureA);
    std::thread b(raceWriter, db, std::cref(settings), std::cref(with), QStringLiteral("B"), 1, kRounds, &failureB);
    a.join();
    b.join();
    QVERIFY2(failureA.isEmpty(), qPrintable(failureA));
    QVERIFY2(failureB.isEmpty(), qPrintable(failureB));

    DbConnection connection;
    QVERIFY(connection.open(db));
    const std::optional<ChartTables> tables = ChartTables::read(connection);
    QVERIFY(tables);
    QStringList names;
    for (const GroupRow& row : tables->groups)
        names << row.GroupName;
    QCOMPARE(names.size(), groupsBefore + 2 * kRounds);
    for (int round = 0; round < kRounds; ++round) {
        for (const QString& writer : {QStringLiteral("A"), QStringLiteral("B")}) {
            const QString name = QStringLiteral("%1-%2").arg(writer).arg(round);
            QVERIFY2(names.count(name) == 1, qPrintable(name));
        }
    }
    QCOMPARE(tables->members[0].Email, QStringLiteral("A@round%1").arg(kRounds - 1));
    QCOMPARE(tables->members[1].Email, QStringLiteral("B@round%1").arg(kRounds - 1));
    // Each save raised the version once: the demo's and the two hundred.
    QCOMPARE(settings.readInt(QStringLiteral("GroupInfo"), QStringLiteral("Version"), 0), 1 + 2 * kRounds);
}
