// The directory sync: DNs and settings, the meeting of entries and users, and real syncs against the
// OpenLDAP server of the fixture (connections good and bad, paging, TLS, leavers, the links saved
// with the chart).

#include "ChartText.h"
#include "Messages.h"
#include "SlapdFixture.h"
#include "SmtpFixture.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbConnection.h"
#include "directory/DirectoryReader.h"
#include "directory/DirectorySyncPreview.h"
#include "directory/DistinguishedName.h"
#include "directory/PasswordGenerator.h"
#include "document/ChartReader.h"
#include "document/ChartSave.h"
#include "document/DemoOrganisation.h"
#include "document/DirectorySyncEdits.h"
#include "document/EditRecorder.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace sable;
using Fate = ImportRow::Fate;

namespace {

QString fateLetter(Fate fate)
{
    switch (fate) {
    case Fate::New:
        return QStringLiteral("N");
    case Fate::Update:
        return QStringLiteral("U");
    case Fate::Unchanged:
        return QStringLiteral("-");
    case Fate::Refused:
        return QStringLiteral("R");
    }
    return {};
}

// "login:fate" of every row in order, e.g. "jhkim:U nomail:N dup:R".
QString fates(const ImportPreview& preview)
{
    QStringList out;
    for (const ImportRow& row : preview.rows())
        out << row.member.MemberID + u':' + fateLetter(row.fate);
    return out.join(u' ');
}

QString leavers(const OrgChart& chart, const ImportPreview& preview)
{
    QStringList out;
    for (const ImportLeaver& leaver : preview.leavers())
        out << chart.member(leaver.memberRow).MemberID;
    return out.join(u' ');
}

// The reasons of the row of `login`.
QString reasons(const ImportPreview& preview, const QString& login)
{
    QStringList out;
    for (const ImportRow& row : preview.rows()) {
        if (row.member.MemberID == login) {
            for (const ImportRefusal& refusal : row.refusals)
                out << refusal.describe();
        }
    }
    return out.join(QStringLiteral(" / "));
}

// A chart "회사[팀[...]]" of the members in `layout` ("kim@e1 lee": kim kept from entry e1, lee made by
// hand), each named as its login.
ChartContents chartOf(const QString& layout)
{
    ChartContents contents;
    OrgChart& chart = *contents.chart;
    OrgNode* top = chart.appendNodeQuietly(chart.invisibleRoot(), OrgNode::makeGroup(1, QStringLiteral("회사")));
    OrgNode* team = chart.appendNodeQuietly(top, OrgNode::makeGroup(2, QStringLiteral("팀")));
    chart.appendNodeQuietly(top, OrgNode::makeGroup(3, QStringLiteral("본부")));
    int id = 0;
    for (const QString& item : layout.split(u' ', Qt::SkipEmptyParts)) {
        MemberRecord member = ImportPreview::newMember();
        member.K_MemberID = ++id;
        member.MemberID = member.MemberName = item.section(u'@', 0, 0);
        member.Passwd = QStringLiteral("pw");
        chart.appendMemberQuietly(member);
        chart.appendNodeQuietly(team, OrgNode::makeMember(id, -1));
        if (item.contains(u'@'))
            contents.directoryLinks.set(
                id, DirectoryLink {item.section(u'@', 1), QStringLiteral("uid=%1,ou=팀").arg(member.MemberID)});
    }
    return contents;
}

// Entries from `layout` ("e1:kim e2:lee:disabled e3:park:본부"): unique ID, login and name, and either
// the department (팀 when none is given) or "disabled".
DirectorySnapshot snapshotOf(const QString& layout)
{
    DirectorySnapshot snapshot;
    snapshot.mapped[ColMemberID] = snapshot.mapped[ColMemberName] = true;
    for (const QString& item : layout.split(u' ', Qt::SkipEmptyParts)) {
        const QStringList parts = item.split(u':');
        DirectoryUser user;
        user.uniqueId = parts[0];
        user.fields[ColMemberID] = user.fields[ColMemberName] = parts[1];
        const QString extra = parts.value(2, QStringLiteral("팀"));
        user.bDisabled = extra == QLatin1String("disabled");
        const QString department = user.bDisabled ? QStringLiteral("팀") : extra;
        if (!snapshot.paths.contains(QStringList {department}))
            snapshot.paths << QStringList {department};
        user.departments << int(snapshot.paths.indexOf(QStringList {department}));
        user.dn = QStringLiteral("uid=%1,ou=%2").arg(parts[1], department);
        snapshot.users.push_back(user);
    }
    return snapshot;
}

DirectorySyncOptions optionsOf(const DirectorySettings& settings)
{
    return {settings.leaverThresholdPercent, settings.passwordLength, settings.passwordAlphabet};
}

DirectorySyncPreview previewFrom(const CSableManagerDoc& doc, const DirectorySettings& settings, QString* problem)
{
    const std::optional<DirectorySnapshot> snapshot = DirectoryReader(settings).read({}, problem);
    if (!snapshot)
        return DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(), {}, optionsOf(settings));
    return DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(), *snapshot, optionsOf(settings));
}

QString linksText(const DirectoryLinks& links)
{
    QStringList out;
    for (auto at = links.all().cbegin(); at != links.all().cend(); ++at)
        out << QStringLiteral("%1=%2").arg(at.key()).arg(at->dn);
    out.sort();
    return out.join(u' ');
}

} // namespace

class TestDirectorySync : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void distinguishedNames_data();
    void distinguishedNames();
    void settingsProblems_data();
    void settingsProblems();
    void settingsKeptInTheMachineStore();
    void generatedPasswords();
    void meeting_data();
    void meeting();
    void connectionTest_data();
    void connectionTest();
    void connectionFailures_data();
    void connectionFailures();
    void pagedSearchReadsEverything();
    void syncIntoTheDemo();
    void activeDirectoryEntries();
    void leaversAndTheThreshold();
    void linksSavedWithTheChart_data();
    void linksSavedWithTheChart();
    void passwordNeverOnTheCommandLine_data();
    void passwordNeverOnTheCommandLine();
    void syncFromTheCommandLine();
    void commandLineSyncStops_data();
    void commandLineSyncStops();

private:
    struct Run
    {
        int code = -1;
        QString out;
        QString err;
    };
    // sablectl on the server folder <home>/home, with `input` on its standard input.
    static Run sablectl(const TempHome& home, const QStringList& args, const QByteArray& input = {});
    // A demo server folder whose directory settings are the fixture's (OpenLDAP preset, as reader).
    static bool makeDemoHome(const TempHome& home, const SlapdServer& slapd, const QString& base);
    static QStringList databaseRows(const TempHome& home);
};

void TestDirectorySync::distinguishedNames_data()
{
    QTest::addColumn<QString>("dn");
    QTest::addColumn<QString>("base");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<bool>("within");
    QTest::addColumn<QString>("units");

    QTest::newRow("nested units, top down") << "uid=kim,ou=국내영업팀,ou=영업본부,dc=sable,dc=test"
                                            << "dc=sable,dc=test" << true << true << "영업본부/국내영업팀";
    QTest::newRow("base compares without case") << "CN=Kim\\, Minsu,OU=Sales,DC=Corp,DC=Example"
                                                << "dc=corp, dc=example" << true << true << "Sales";
    QTest::newRow("hex escapes are UTF-8") << "cn=x,ou=\\ED\\95\\9C\\EA\\B8\\80 \\2C 1,dc=x"
                                           << "dc=x" << true << true << "한글 , 1";
    QTest::newRow("containers are no units") << "cn=svc,cn=Users,dc=x"
                                             << "dc=x" << true << true << "";
    QTest::newRow("multi-valued RDN") << "cn=a,ou=Seoul+l=KR,dc=x"
                                      << "dc=x" << true << true << "Seoul";
    QTest::newRow("quoted value of the old form") << "cn=a,ou=\"Sales, Asia\",dc=x"
                                                  << "dc=x" << true << true << "Sales, Asia";
    QTest::newRow("escaped trailing space stays") << "cn=a,ou=A\\ ,dc=x"
                                                  << "dc=x" << true << true << "A ";
    QTest::newRow("outside the base") << "cn=a,ou=b,dc=other"
                                      << "dc=x" << true << false << "";
    QTest::newRow("not a DN") << "not a dn"
                              << "dc=x" << false << false << "";
    QTest::newRow("dangling escape") << "cn=a\\"
                                     << "dc=x" << false << false << "";
}

void TestDirectorySync::distinguishedNames()
{
    QFETCH(QString, dn);
    QFETCH(QString, base);
    QFETCH(bool, valid);
    QFETCH(bool, within);
    QFETCH(QString, units);
    const std::optional<DistinguishedName> parsed = DistinguishedName::parse(dn);
    QCOMPARE(parsed.has_value(), valid);
    if (!parsed)
        return;
    const DistinguishedName baseDn = *DistinguishedName::parse(base);
    QCOMPARE(parsed->isWithin(baseDn), within);
    if (within)
        QCOMPARE(parsed->organisationalUnitsBelow(baseDn).join(u'/'), units);
}

void TestDirectorySync::settingsProblems_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("problem");
    QTest::newRow("complete") << ""
                              << "";
    QTest::newRow("no address") << "url=" << Msg::kDirNoUrl;
    QTest::newRow("not LDAP") << "url=http://dir.example" << Msg::kDirBadUrl;
    QTest::newRow("ldaps and StartTLS") << "url=ldaps://dir.example starttls" << Msg::kDirTlsTwice;
    QTest::newRow("DN without password") << "password=" << Msg::kDirNoPassword;
    QTest::newRow("no base") << "base=" << Msg::kDirNoBaseDn;
    QTest::newRow("base that is no DN") << "base=sable.test" << Msg::kDirBadBaseDn.arg(QStringLiteral("sable.test"));
    QTest::newRow("no login attribute") << "login=" << Msg::kDirNoLoginAttribute;
    QTest::newRow("password too short") << "length=3" << Msg::kDirBadPasswordLength.arg(4).arg(20);
    QTest::newRow("blank in the alphabet") << "alphabet=ab cd" << Msg::kDirBadPasswordAlphabet;
    QTest::newRow("threshold over 100") << "threshold=101" << Msg::kDirBadThreshold;
}

void TestDirectorySync::settingsProblems()
{
    QFETCH(QString, change);
    QFETCH(QString, problem);
    DirectorySettings settings;
    settings.url = QStringLiteral("ldap://dir.example");
    settings.bindDn = QStringLiteral("cn=reader,dc=example");
    settings.password = QStringLiteral("secret");
    settings.baseDn = QStringLiteral("dc=example");
    for (const QString& item : change.split(u' ', Qt::SkipEmptyParts)) {
        const QString value = item.section(u'=', 1);
        if (item == QLatin1String("starttls"))
            settings.bStartTls = true;
        else if (item.startsWith(QLatin1String("url=")))
            settings.url = value;
        else if (item.startsWith(QLatin1String("password=")))
            settings.password = value;
        else if (item.startsWith(QLatin1String("base=")))
            settings.baseDn = value;
        else if (item.startsWith(QLatin1String("login=")))
            settings.mapping.attributes[ColMemberID] = value;
        else if (item.startsWith(QLatin1String("length=")))
            settings.passwordLength = value.toInt();
        else if (item.startsWith(QLatin1String("alphabet=")))
            settings.passwordAlphabet = change.section(QStringLiteral("alphabet="), 1);
        else if (item.startsWith(QLatin1String("threshold=")))
            settings.leaverThresholdPercent = value.toInt();
    }
    QCOMPARE(settings.problem(), problem);
    QString why;
    QCOMPARE(settings.endpoint(&why).has_value(), problem.isEmpty());
}

void TestDirectorySync::settingsKeptInTheMachineStore()
{
    TempHome home;
    DirectorySettings settings;
    settings.applyPreset(DirectoryPreset::ActiveDirectory);
    settings.url = QStringLiteral("ldaps://dc1.corp.example:3269");
    settings.bindDn = QStringLiteral("CN=Sable Sync,OU=Service,DC=corp,DC=example");
    settings.password = QStringLiteral("pa\"ss\\word");
    settings.baseDn = QStringLiteral("OU=Staff,DC=corp,DC=example");
    settings.mapping.departments = DepartmentSource::Attribute;
    settings.mapping.leavers = LeaverRule::Filter;
    settings.mapping.leaverFilter = QStringLiteral("(description=퇴사)");
    settings.leaverThresholdPercent = 25;
    settings.passwordLength = 12;
    QVERIFY(settings.write(home.registry()));
    QCOMPARE(DirectorySettings::read(home.registry()), settings);
    // Beside the mail server's password, in the machine's settings.
    const QString stored = QString::fromUtf8(home.readFile(QStringLiteral("registry/HKLM.reg")));
    QVERIFY(stored.contains(QLatin1String("[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableManager\\DirectorySync]")));
    QVERIFY(stored.contains(QLatin1String("\"BindPassword\"=\"pa\\\"ss\\\\word\"")));
    QCOMPARE(DirectorySettings::read(TempHome().registry()).mapping,
        DirectoryMapping::preset(DirectorySettings::defaultPreset()));
}

void TestDirectorySync::generatedPasswords()
{
    const QString alphabet = QStringLiteral("abc123");
    QSet<QString> seen;
    for (int i = 0; i < 50; ++i) {
        const QString password = PasswordGenerator::generate(16, alphabet);
        QCOMPARE(password.size(), 16);
        for (const QChar ch : password)
            QVERIFY(alphabet.contains(ch));
        seen.insert(password);
    }
    QCOMPARE(seen.size(), 50);
}

void TestDirectorySync::meeting_data()
{
    QTest::addColumn<QString>("chart");
    QTest::addColumn<QString>("entries");
    QTest::addColumn<QString>("fates");
    QTest::addColumn<QString>("leavers");
    QTest::addColumn<int>("linkChanges");
    QTest::addColumn<int>("removals");

    QTest::newRow("first sync meets users by login ID whatever the case") << "JHKIM sylee"
                                                                          << "e1:jhkim e2:sylee e3:newbie"
                                                                          << "jhkim:U sylee:- newbie:N"
                                                                          << "" << 3 << 0;
    QTest::newRow("a renamed entry renames its user") << "kim@e1"
                                                      << "e1:kim2"
                                                      << "kim2:U"
                                                      << "" << 1 << 0;
    QTest::newRow("no rename onto another user's ID") << "kim@e1 lee"
                                                      << "e1:LEE"
                                                      << "LEE:R"
                                                      << "" << 0 << 0;
    QTest::newRow("gone entries leave, users made by hand stay") << "kim@e1 hand"
                                                                 << ""
                                                                 << ""
                                                                 << "kim" << 0 << 0;
    QTest::newRow("disabled entries: a kept user leaves, nobody's is left out") << "kim@e1"
                                                                                << "e1:kim:disabled e2:new:disabled"
                                                                                << ""
                                                                                << "kim" << 0 << 0;
    QTest::newRow("a re-created entry takes over the user") << "kim@e1"
                                                            << "e9:kim"
                                                            << "kim:-"
                                                            << "" << 1 << 0;
    QTest::newRow("a user that another present entry keeps") << "kim@e1"
                                                             << "e1:kim2 e2:kim"
                                                             << "kim2:U kim:R"
                                                             << "" << 1 << 0;
    QTest::newRow("two users that differ only in case") << "kim KIM"
                                                        << "e1:Kim"
                                                        << "Kim:R"
                                                        << "" << 0 << 0;
    QTest::newRow("a move takes the old place away") << "kim@e1"
                                                     << "e1:kim:본부"
                                                     << "kim:U"
                                                     << "" << 1 << 1;
    QTest::newRow("login IDs twice among the entries") << ""
                                                       << "e1:twin e2:TWIN"
                                                       << "twin:R TWIN:R"
                                                       << "" << 0 << 0;
    QTest::newRow("links of deleted users are dropped") << "kim"
                                                        << "e1:kim"
                                                        << "kim:-"
                                                        << "" << 2 << 0;
}

void TestDirectorySync::meeting()
{
    QFETCH(QString, chart);
    QFETCH(QString, entries);
    QFETCH(QString, fates);
    QFETCH(QString, leavers);
    QFETCH(int, linkChanges);
    QFETCH(int, removals);
    CSableManagerDoc doc;
    ChartContents contents = chartOf(chart);
    if (QByteArray(QTest::currentDataTag()).startsWith("links of deleted"))
        contents.directoryLinks.set(99, DirectoryLink {QStringLiteral("e0"), QStringLiteral("uid=gone")});
    doc.adopt(std::move(contents));
    const DirectorySnapshot directory = snapshotOf(entries);
    const DirectorySyncPreview sync = DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(),
        directory, {10, 10, DirectorySettings::defaultPasswordAlphabet()});
    QCOMPARE(::fates(sync.preview()), fates);
    QCOMPARE(::leavers(doc.chart(), sync.preview()), leavers);
    QCOMPARE(int(sync.linkChanges().size()), linkChanges);
    QCOMPARE(sync.preview().removalCount(), removals);

    // Applied, and then synced again from the same entries: nothing is left to do (where nothing was
    // refused: a login ID that a rename frees is taken at the next sync).
    const QByteArray before = snapshot(doc);
    const QString linksBefore = linksText(doc.directoryLinks());
    QString refusal;
    if (!sync.hasChanges())
        return;
    QVERIFY2(DirectorySyncEdits::apply(doc, sync, true, &refusal), qPrintable(refusal));
    const DirectorySyncPreview again = DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(),
        directory, {10, 10, DirectorySettings::defaultPasswordAlphabet()});
    QVERIFY2(!again.hasChanges() || sync.preview().count(Fate::Refused) > 0, qPrintable(::fates(again.preview())));
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
    QCOMPARE(linksText(doc.directoryLinks()), linksBefore);
}

void TestDirectorySync::connectionTest_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("plain, bound as reader") << "plain";
    QTest::newRow("anonymous") << "anonymous";
    QTest::newRow("ldaps") << "ldaps";
    QTest::newRow("StartTLS") << "starttls";
}

void TestDirectorySync::connectionTest()
{
    QFETCH(QString, how);
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    DirectorySettings settings = slapd.settings();
    if (how == QLatin1String("anonymous"))
        settings.bindDn.clear();
    if (how == QLatin1String("ldaps"))
        settings.url = slapd.ldapsUrl;
    settings.bStartTls = how == QLatin1String("starttls");
    if (how == QLatin1String("ldaps") || settings.bStartTls)
        settings.caFile = slapd.ca;
    QString problem;
    const std::optional<DirectoryTestReport> report = DirectoryReader(settings).test(&problem);
    QVERIFY2(report, qPrintable(problem));
    QCOMPARE(report->entries, 14);
    const QString namingContexts = Msg::kDirTestNamingContexts.arg(QString());
    QVERIFY2(std::any_of(report->serverAnswer.cbegin(), report->serverAnswer.cend(),
                 [&](const QString& line) { return line.startsWith(namingContexts) && line.contains(slapd.base); }),
        qPrintable(report->serverAnswer.join(u'\n')));
}

void TestDirectorySync::connectionFailures_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("message");
    QTest::newRow("nobody listens") << "closed-port" << Msg::kDirUnreachable;
    QTest::newRow("wrong password") << "password=wrong" << Msg::kDirBindRefused;
    QTest::newRow("base that is not there") << "base=ou=없음,dc=sable,dc=test" << Msg::kDirNoSuchBase;
    QTest::newRow("broken filter") << "filter=(uid=" << Msg::kDirBadFilter;
    QTest::newRow("certificate of another authority") << "ldaps-other-ca" << Msg::kDirTlsFailed;
    QTest::newRow("server returns part of the result") << "limited" << Msg::kDirLimitExceeded;
}

void TestDirectorySync::connectionFailures()
{
    QFETCH(QString, change);
    QFETCH(QString, message);
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    DirectorySettings settings = slapd.settings();
    settings.timeoutSeconds = 5;
    if (change == QLatin1String("closed-port"))
        settings.url = QStringLiteral("ldap://127.0.0.1:%1").arg(closedLocalPort());
    else if (change.startsWith(QLatin1String("password=")))
        settings.password = change.section(u'=', 1);
    else if (change.startsWith(QLatin1String("base=")))
        settings.baseDn = change.section(u'=', 1);
    else if (change.startsWith(QLatin1String("filter=")))
        settings.userFilter = change.section(u'=', 1);
    else if (change == QLatin1String("ldaps-other-ca"))
        std::tie(settings.url, settings.caFile) = std::pair(slapd.ldapsUrl, slapd.otherCa);
    else if (change == QLatin1String("limited"))
        std::tie(settings.bindDn, settings.password)
            = std::pair(QStringLiteral("cn=limited,") + slapd.base, QStringLiteral("limited-secret"));
    QString problem;
    QVERIFY(!DirectoryReader(settings).test(&problem));
    QVERIFY2(problem.startsWith(message), qPrintable(problem));
    problem.clear();
    QVERIFY(!DirectoryReader(settings).read({}, &problem));
    QVERIFY2(problem.startsWith(message), qPrintable(problem));
}

void TestDirectorySync::pagedSearchReadsEverything()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    QStringList dns[2];
    int pages = 0;
    for (const int pageSize : {0, 2}) {
        DirectorySettings settings = slapd.settings();
        settings.pageSize = pageSize;
        QString problem;
        const std::optional<DirectorySnapshot> snapshot = DirectoryReader(settings).read({}, &problem);
        QVERIFY2(snapshot, qPrintable(problem));
        for (const DirectoryUser& user : snapshot->users)
            dns[pages] << user.dn;
        dns[pages++].sort();
    }
    QCOMPARE(dns[0].size(), 14);
    QCOMPARE(dns[1], dns[0]);

    // Stopping on the way gives nothing to work from.
    QString problem;
    QVERIFY(!DirectoryReader(slapd.settings()).read([](int read) { return read < 3; }, &problem));
    QCOMPARE(problem, Msg::kDirStopped);
}

void TestDirectorySync::syncIntoTheDemo()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    const QByteArray before = snapshot(doc);
    const DirectorySettings settings = slapd.settings();
    QString problem;
    const DirectorySyncPreview sync = previewFrom(doc, settings, &problem);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    QCOMPARE(fates(sync.preview()),
        QStringLiteral("jhkim:U sylee:N mskim:N dhpark:N jychoi:N nomail:N :R dup:R dup:R Twin:R twin:R longphone:R "
                       "retired:N svc-backup:N"));
    QCOMPARE(reasons(sync.preview(), QString()), Msg::kDirNoLoginId.arg(QStringLiteral("uid")));
    QVERIFY(reasons(sync.preview(), QStringLiteral("twin")).startsWith(Msg::kDirIdTwice.arg(QString()).trimmed()));
    QCOMPARE(reasons(sync.preview(), QStringLiteral("longphone")),
        MemberColumns::header(ColHP) + QStringLiteral(": ") + Msg::kTooLong.arg(13));
    QCOMPARE(sync.preview().newDepartmentPaths(),
        QStringList({QStringLiteral("세이블상사/본사"), QStringLiteral("세이블상사/본사/영업본부"),
            QStringLiteral("세이블상사/본사/영업본부/국내영업팀"),
            QStringLiteral("세이블상사/본사/영업본부/해외 지사, 아시아"), QStringLiteral("세이블상사/본사/연구소")}));
    QCOMPARE(sync.preview().newRankNames(), QStringList({QStringLiteral("팀장"), QStringLiteral("수석연구원")}));
    QCOMPARE(sync.adoptedCount(), 1);
    QCOMPARE(sync.preview().removalCount(), 1); // the demo's jhkim leaves 세이블상사 for his team

    QString refusal;
    const std::optional<ImportResult> result = DirectorySyncEdits::apply(doc, sync, false, &refusal);
    QVERIFY2(result, qPrintable(refusal));
    QCOMPARE(result->added, 7);
    QCOMPARE(result->updated, 1);
    const OrgChart& chart = doc.chart();
    const MemberRecord& kim = *std::find_if(chart.members().begin(), chart.members().end(),
        [](const MemberRecord& m) { return m.MemberID == QLatin1String("mskim"); });
    QCOMPARE(kim.MemberName, QStringLiteral("Kim, Minsu"));
    QCOMPARE(kim.Passwd.size(), settings.passwordLength);
    QCOMPARE(chart.departmentPath(chart.placementsOf(kim.K_MemberID).front()),
        QStringLiteral("세이블상사/본사/영업본부/국내영업팀"));
    const MemberRecord& park = *std::find_if(chart.members().begin(), chart.members().end(),
        [](const MemberRecord& m) { return m.MemberID == QLatin1String("dhpark"); });
    QCOMPARE(park.Address, QStringLiteral("서울특별시 중구, 세종대로 110"));
    QCOMPARE(doc.directoryLinks().count(), 8);
    QVERIFY(doc.isModified());

    // A second sync of the same directory finds everything as it is.
    const DirectorySyncPreview again = previewFrom(doc, settings, &problem);
    QVERIFY(!again.hasChanges());
    QCOMPARE(again.preview().count(Fate::Unchanged), 8);

    const QByteArray after = snapshot(doc);
    const QString links = linksText(doc.directoryLinks());
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
    QCOMPARE(doc.directoryLinks().count(), 0);
    doc.history().redo();
    QCOMPARE(snapshot(doc), after);
    QCOMPARE(linksText(doc.directoryLinks()), links);
}

void TestDirectorySync::activeDirectoryEntries()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    DirectorySettings settings = slapd.settings();
    settings.applyPreset(DirectoryPreset::ActiveDirectory);
    settings.userFilter = QStringLiteral("(objectClass=sableTestAccount)");
    settings.mapping.departments = DepartmentSource::Attribute;
    CSableManagerDoc doc;
    QString problem;
    const DirectorySyncPreview sync = previewFrom(doc, settings, &problem);
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    // The disabled account is nobody's here: left out, not created.
    QCOMPARE(sync.disabledEntries(), 1);
    QCOMPARE(sync.preview().count(Fate::New), 7);
    QCOMPARE(reasons(sync.preview(), QString()), Msg::kDirNoLoginId.arg(QStringLiteral("sAMAccountName")));
    // An empty chart takes the base's name for its top department; the attribute's paths start there.
    QCOMPARE(sync.preview().newDepartmentPaths().first(), QStringLiteral("sable"));
    QVERIFY(sync.preview().newDepartmentPaths().contains(QStringLiteral("sable/본사/영업본부/해외 지사, 아시아")));
    QString refusal;
    QVERIFY2(DirectorySyncEdits::apply(doc, sync, false, &refusal), qPrintable(refusal));
    // Binary GUIDs are written as AD writes them.
    const DirectoryLink* link = doc.directoryLinks().find(doc.chart().member(0).K_MemberID);
    QVERIFY(link);
    QVERIFY2(QRegularExpression(QStringLiteral("^[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}$"))
                 .match(link->entryId)
                 .hasMatch(),
        qPrintable(link->entryId));
    const int jhkim = doc.chart().member(0).K_MemberID;
    QCOMPARE(doc.chart().member(0).MemberName, QStringLiteral("김지훈 팀장")); // displayName before cn
    QCOMPARE(doc.chart().departmentPath(doc.chart().placementsOf(jhkim).front()),
        QStringLiteral("sable/본사/영업본부/국내영업팀"));
}

void TestDirectorySync::leaversAndTheThreshold()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    QStringList logins;
    for (int i = 1; i <= 10; ++i)
        logins << QStringLiteral("leaver%1").arg(i);
    const QString unit = slapd.addUnit(QStringLiteral("leavers"), logins);
    QVERIFY(!unit.isEmpty());
    DirectorySettings settings = slapd.settings();
    settings.baseDn = unit;
    settings.mapping.leavers = LeaverRule::Filter;
    settings.mapping.leaverFilter = QStringLiteral("(title=퇴사)");
    CSableManagerDoc doc;
    QString problem;
    QString refusal;
    QVERIFY(DirectorySyncEdits::apply(doc, previewFrom(doc, settings, &problem), false, &refusal));
    QCOMPARE(doc.chart().memberCount(), 10);
    {
        EditRecorder edit(doc, QStringLiteral("by hand"));
        MemberRecord hand = ImportPreview::newMember();
        hand.K_MemberID = 99;
        hand.MemberID = QStringLiteral("hand");
        edit.insertMember(doc.chart().memberCount(), hand);
        edit.insertNode(doc.chart().rootGroup(), 0, OrgNode::makeMember(99, -1));
    }

    // One gone and nobody else: within the threshold of 10 %.
    QVERIFY(slapd.modify(QStringLiteral("dn: %1\nchangetype: delete\n").arg(SlapdServer::userDn(unit, logins[0]))));
    DirectorySyncPreview sync = previewFrom(doc, settings, &problem);
    QCOMPARE(leavers(doc.chart(), sync.preview()), QStringLiteral("leaver1"));
    QCOMPARE(sync.preview().leavers().front().why, ImportLeaver::Why::Gone);
    QVERIFY(!sync.exceedsThreshold());
    QVERIFY(DirectorySyncEdits::apply(doc, sync, false, &refusal));
    QVERIFY(!doc.chart().hasPlacement(doc.chart().member(0).K_MemberID));
    QCOMPARE(doc.chart().member(0).MemberID, QStringLiteral("leaver1")); // still a user
    QVERIFY(doc.chart().hasPlacement(99));

    // Two more, one gone and one by the leaver filter: 2 of 10 is over the threshold.
    QVERIFY(slapd.modify(QStringLiteral("dn: %1\nchangetype: delete\n\ndn: %2\nchangetype: modify\nreplace: "
                                        "title\ntitle: 퇴사\n")
                             .arg(SlapdServer::userDn(unit, logins[1]), SlapdServer::userDn(unit, logins[2]))));
    sync = previewFrom(doc, settings, &problem);
    QCOMPARE(leavers(doc.chart(), sync.preview()), QStringLiteral("leaver2 leaver3"));
    QCOMPARE(sync.preview().leavers().back().why, ImportLeaver::Why::Disabled);
    QVERIFY(sync.exceedsThreshold());
    const QByteArray before = snapshot(doc);
    QVERIFY(!DirectorySyncEdits::apply(doc, sync, false, &refusal));
    QCOMPARE(refusal, Msg::kDirTooManyLeavers.arg(10).arg(2).arg(10));
    QCOMPARE(snapshot(doc), before);
    QVERIFY(DirectorySyncEdits::apply(doc, sync, true, &refusal));
    QVERIFY(!doc.chart().hasPlacement(doc.chart().member(2).K_MemberID));
    QVERIFY(doc.chart().hasPlacement(99));
}

void TestDirectorySync::linksSavedWithTheChart_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("embedded") << "sqlite";
    QTest::newRow("PostgreSQL") << "postgresql";
}

void TestDirectorySync::linksSavedWithTheChart()
{
    QFETCH(QString, kind);
    const PgServer pg = PgServer::fromFixture();
    if (kind == QLatin1String("postgresql"))
        SABLE_REQUIRE_FIXTURE(pg.isAvailable(), "the PostgreSQL server of the fixture");
    TempHome home;
    const QString database = freshDatabase(kind, home, pg);
    QVERIFY(!database.isEmpty());
    const auto connect = [&database] {
        DbConnection db;
        db.open(database);
        return db;
    };
    CSableManagerDoc doc;
    doc.adopt(chartOf(QStringLiteral("kim lee park")));
    DirectorySyncPreview sync = DirectorySyncPreview::make(doc.chart(), doc.ranks(), doc.directoryLinks(),
        snapshotOf(QStringLiteral("e1:kim e2:lee")), {10, 10, DirectorySettings::defaultPasswordAlphabet()});
    QString refusal;
    QVERIFY(DirectorySyncEdits::apply(doc, sync, false, &refusal));
    const auto save = [&] {
        DbConnection db = connect();
        return db.beginTrans() && ChartSave::writeTables(db, doc, doc.tables()) && db.commitTrans();
    };
    QVERIFY2(save(), qPrintable(DbConnection::lastError()));

    class Quiet final : public LoadProgress
    {
        void setText(const QString&) override { }
        void setRange(int) override { }
        void setPosition(int) override { }
    } progress;
    const std::atomic<int> going {1};
    ChartReader::Result loaded = ChartReader::read(connect, progress, going);
    QCOMPARE(int(loaded.outcome), int(ChartReader::Outcome::Loaded));
    QCOMPARE(linksText(loaded.contents.directoryLinks), linksText(doc.directoryLinks()));
    QCOMPARE(loaded.contents.directoryLinks.memberOf(QStringLiteral("e2")), 2);

    // A user deleted since takes its link with it; the table is rewritten, not appended to.
    {
        EditRecorder edit(doc, QStringLiteral("delete"));
        edit.removeNode(doc.chart().placementsOf(1).front());
        edit.removeMembers({0});
    }
    QVERIFY(save());
    loaded = ChartReader::read(connect, progress, going);
    QCOMPARE(loaded.contents.directoryLinks.count(), 1);
    QVERIFY(!loaded.contents.directoryLinks.find(1));
}

// --- sablectl --------------------------------------------------------------------------------------

TestDirectorySync::Run TestDirectorySync::sablectl(
    const TempHome& home, const QStringList& args, const QByteArray& input)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    env.remove(QStringLiteral("SABLE_HOME"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(SABLECTL_PATH),
        QStringList {QStringLiteral("--home"), home.path(QStringLiteral("home"))} + args);
    process.write(input);
    process.closeWriteChannel();
    Run run;
    if (!process.waitForFinished(60000))
        return run;
    run.code = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

bool TestDirectorySync::makeDemoHome(const TempHome& home, const SlapdServer& slapd, const QString& base)
{
    return sablectl(home, {QStringLiteral("db"), QStringLiteral("init"), QStringLiteral("--demo")}).code == 0
        && sablectl(home,
               {QStringLiteral("directory"), QStringLiteral("configure"), QStringLiteral("--preset"),
                   QStringLiteral("openldap"), QStringLiteral("--url"), slapd.url, QStringLiteral("--bind-dn"),
                   QStringLiteral("cn=reader,") + slapd.base, QStringLiteral("--password"), QStringLiteral("-"),
                   QStringLiteral("--base-dn"), base},
               "reader-secret\n")
               .code
        == 0;
}

QStringList TestDirectorySync::databaseRows(const TempHome& home)
{
    return tableDump(sqliteConnectionString(home.path(QStringLiteral("home/SableDB.db"))));
}

void TestDirectorySync::passwordNeverOnTheCommandLine_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<int>("code");
    QTest::newRow("on the command line") << QStringList {"--password", "very-secret"} << QByteArray() << 2;
    QTest::newRow("from standard input") << QStringList {"--password", "-"} << QByteArray("very-secret\n") << 0;
    QTest::newRow("from a file") << QStringList {"--password-file", "FILE"} << QByteArray() << 0;
    QTest::newRow("from a file that is not there") << QStringList {"--password-file", "NONE"} << QByteArray() << 2;
}

void TestDirectorySync::passwordNeverOnTheCommandLine()
{
    QFETCH(QStringList, options);
    QFETCH(QByteArray, input);
    QFETCH(int, code);
    TempHome home;
    home.writeFile(QStringLiteral("password"), "very-secret\n");
    options.replaceInStrings(QStringLiteral("FILE"), home.path(QStringLiteral("password")));
    options.replaceInStrings(QStringLiteral("NONE"), home.path(QStringLiteral("none")));
    const Run configure = sablectl(home,
        QStringList {QStringLiteral("directory"), QStringLiteral("configure"), QStringLiteral("--url"),
            QStringLiteral("ldap://dir.example"), QStringLiteral("--bind-dn"), QStringLiteral("cn=sync,dc=example"),
            QStringLiteral("--base-dn"), QStringLiteral("dc=example")}
            + options,
        input);
    QCOMPARE(configure.code, code);
    const Run show = sablectl(home, {QStringLiteral("directory"), QStringLiteral("show")});
    QCOMPARE(show.code, 0);
    const QString printed = configure.out + configure.err + show.out;
    QVERIFY2(!printed.contains(QLatin1String("very-secret")), qPrintable(printed));
    QCOMPARE(show.out.contains(QLatin1String("password: (stored)")), code == 0);
    QCOMPARE(DirectorySettings::read(home.registry()).password, code == 0 ? QStringLiteral("very-secret") : QString());
}

void TestDirectorySync::syncFromTheCommandLine()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    TempHome home;
    QVERIFY(makeDemoHome(home, slapd, slapd.base));
    const auto directory
        = [&home](const QStringList& args) { return sablectl(home, QStringList {QStringLiteral("directory")} + args); };
    const Run test = directory({QStringLiteral("test")});
    QCOMPARE(test.code, 0);
    QVERIFY2(test.out.contains(Msg::kDirTestCount.arg(14)), qPrintable(test.out));

    const QStringList before = databaseRows(home);
    const Run dryRun = directory({QStringLiteral("sync"), QStringLiteral("--dry-run"), QStringLiteral("--json")});
    QCOMPARE(dryRun.code, 0);
    const QJsonObject summary
        = QJsonDocument::fromJson(dryRun.out.toUtf8()).object().value(QLatin1String("summary")).toObject();
    QCOMPARE(summary.value(QLatin1String("new")).toInt(), 7);
    QCOMPARE(summary.value(QLatin1String("refused")).toInt(), 6);
    QCOMPARE(databaseRows(home), before);

    const Run apply = directory({QStringLiteral("sync"), QStringLiteral("--yes")});
    QVERIFY2(apply.code == 0, qPrintable(apply.err));
    QVERIFY(apply.out.contains(QLatin1String("saved: 7 added, 1 updated")));
    QVERIFY(databaseRows(home).join(u'\n').contains(QLatin1String("|mskim|Kim, Minsu|")));
    const Run again = directory({QStringLiteral("sync"), QStringLiteral("--yes")});
    QCOMPARE(again.code, 0);
    QVERIFY(again.out.contains(QLatin1String("unchanged 8")));
    QVERIFY(again.out.endsWith(QLatin1String("nothing to change\n")));
}

void TestDirectorySync::commandLineSyncStops_data()
{
    QTest::addColumn<QString>("what");
    QTest::addColumn<QString>("reason");
    QTest::newRow("unreachable directory") << "unreachable" << Msg::kDirUnreachable;
    QTest::newRow("too many leavers") << "leavers" << Msg::kDirTooManyLeavers.arg(5).arg(2).arg(10);
}

void TestDirectorySync::commandLineSyncStops()
{
    QFETCH(QString, what);
    QFETCH(QString, reason);
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    const QStringList logins {QStringLiteral("cli1"), QStringLiteral("cli2"), QStringLiteral("cli3"),
        QStringLiteral("cli4"), QStringLiteral("cli5")};
    const QString unit = slapd.addUnit(QStringLiteral("cli"), logins);
    QVERIFY(!unit.isEmpty());
    TempHome home;
    QVERIFY(makeDemoHome(home, slapd, unit));
    const QStringList sync {QStringLiteral("directory"), QStringLiteral("sync"), QStringLiteral("--yes")};
    QCOMPARE(sablectl(home, sync).code, 0);
    if (what == QLatin1String("unreachable")) {
        QCOMPARE(sablectl(home,
                     {QStringLiteral("directory"), QStringLiteral("configure"), QStringLiteral("--url"),
                         QStringLiteral("ldap://127.0.0.1:%1").arg(closedLocalPort())})
                     .code,
            0);
    } else {
        QVERIFY(slapd.modify(QStringLiteral("dn: %1\nchangetype: delete\n\ndn: %2\nchangetype: delete\n")
                                 .arg(SlapdServer::userDn(unit, logins[0]), SlapdServer::userDn(unit, logins[1]))));
    }
    const QStringList before = databaseRows(home);
    const Run stopped = sablectl(home, sync);
    QCOMPARE(stopped.code, 1);
    QVERIFY2(stopped.err.contains(reason), qPrintable(stopped.err));
    QVERIFY(stopped.err.contains(QLatin1String("nothing was written")));
    QCOMPARE(databaseRows(home), before);
    if (what == QLatin1String("leavers")) {
        QCOMPARE(sablectl(home, sync + QStringList {QStringLiteral("--force")}).code, 0);
        QVERIFY(databaseRows(home) != before);
    }
}

QTEST_GUILESS_MAIN(TestDirectorySync)
#include "tst_directory_sync.moc"
