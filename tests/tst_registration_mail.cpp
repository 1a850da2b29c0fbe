// Registration mail without its window: the recipient rules, the template and its markers, the
// mail server settings, and the account notices as a real SMTP server receives them.

#include "Messages.h"
#include "SmtpFixture.h"
#include "TestSupport.h"
#include "document/CSableManagerDoc.h"
#include "onboarding/RecipientModel.h"
#include "onboarding/RecipientSelection.h"
#include "onboarding/RegistrationMailSender.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/OrgChart.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

using namespace sable;

namespace {

const QString kTemplate = QStringLiteral("<html><body>__SERVER_NAME__ / __USER_ID__ / __USER_PASSWORD__ / "
                                         "__ADDITIONAL_MEMO__ / __MAJOR_VERSION__ / __OFFICE__ (__USER_ID__)"
                                         "</body></html>");

RegistrationMail notice(const QString& templateText)
{
    return {Msg::kMailDefaultSenderName, Msg::kMailDefaultSubject, templateText,
        {QStringLiteral("10.20.30.40"), {}, {}, QStringLiteral("메모"), QStringLiteral("SM41"), QStringLiteral("1")}};
}

// Runs one sending to the end and returns what its rows reported: per row "sent", "refused" or
// "failed" (the transport), in the order they came.
QStringList runSending(RegistrationMailSender& sender, bool* bAllDone = nullptr)
{
    QSignalSpy finished(&sender, &RegistrationMailSender::rowFinished);
    QSignalSpy failed(&sender, &RegistrationMailSender::transportFailed);
    QSignalSpy done(&sender, &RegistrationMailSender::allRowsDone);
    sender.start();
    if (!sender.wait(120000))
        return {QStringLiteral("still running")};
    QStringList out;
    for (const QList<QVariant>& row : finished)
        out << QStringLiteral("%1 %2").arg(row[0].toInt()).arg(row[1].toBool() ? "sent" : "refused");
    for (const QList<QVariant>& row : failed)
        out << QStringLiteral("%1 failed").arg(row[0].toInt());
    if (bAllDone)
        *bAllDone = done.size() == 1;
    return out;
}

} // namespace

class TestRegistrationMail : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void addRecipient_data();
    void addRecipient();
    void recipientsInDepartmentOrder_data();
    void recipientsInDepartmentOrder();
    void templateRead_data();
    void templateRead();
    void markers_data();
    void markers();
    void sampleTemplateUsesEveryMarker();
    void settingsStored();
    void eachRecipientGetsTheirOwnNotice_data();
    void eachRecipientGetsTheirOwnNotice();
    void refusedRecipientDoesNotStopTheOthers();
    void transportFailureEndsTheSending_data();
    void transportFailureEndsTheSending();
    void templatesArriveAsRead_data();
    void templatesArriveAsRead();
    void stopEndsTheSending();

private:
    SmtpServer m_smtp = SmtpServer::fromFixture();
};

void TestRegistrationMail::recipientsInDepartmentOrder_data()
{
    QTest::addColumn<QString>("picked"); // a department by name, or "#id" for a member placement
    QTest::addColumn<QList<int>>("members");
    QTest::addColumn<QStringList>("listedIds"); // the dialog's rows: the first of a shared address wins
    QTest::newRow("top department") << "본사" << QList<int> {1, 2, 3, 4, 5, 6}
                                    << QStringList {"u1", "u2", "u3", "u4", "u6"};
    QTest::newRow("department with a sub-department")
        << "영업부" << QList<int> {3, 4, 5, 2} << QStringList {"u3", "u4", "u2"};
    QTest::newRow("sub-department") << "해외팀" << QList<int> {5, 2} << QStringList {"u5", "u2"};
    QTest::newRow("a member") << "#4" << QList<int> {4} << QStringList {"u4"};
}

void TestRegistrationMail::recipientsInDepartmentOrder()
{
    QFETCH(QString, picked);
    QFETCH(QList<int>, members);
    QFETCH(QStringList, listedIds);
    // 본사[#1 #2 영업부[#3 #4 해외팀[#5 #2]] #6]; #3 and #5 share an address.
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    for (int id = 1; id <= 6; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        member.MemberID = QStringLiteral("u%1").arg(id);
        member.Email = id == 5 ? QStringLiteral("u3@example.com") : member.MemberID + QStringLiteral("@example.com");
        builder.addMember(member);
    }
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("영업부"), 1, 3, 1});
    builder.addGroup({3, QStringLiteral("해외팀"), 2, 3, 2});
    for (const RelationRow& row :
        {RelationRow {1, 1, -1, 1}, RelationRow {2, 1, -1, 2}, RelationRow {6, 1, -1, 4}, RelationRow {3, 2, -1, 1},
            RelationRow {4, 2, -1, 2}, RelationRow {5, 3, -1, 1}, RelationRow {2, 3, -1, 2}})
        builder.addRelation(row);
    builder.finish();
    const OrgChart& chart = *contents.chart;

    const OrgNode* node = nullptr;
    std::vector<const OrgNode*> pending {chart.rootGroup()};
    while (!node && !pending.empty()) {
        const OrgNode* current = pending.back();
        pending.pop_back();
        const QString name = current->isMember() ? QStringLiteral("#%1").arg(current->memberId()) : current->name();
        if (name == picked)
            node = current;
        for (int i = 0; i < current->childCount(); ++i)
            pending.push_back(current->child(i));
    }
    QVERIFY(node);
    QCOMPARE(RecipientSelection::membersBelow(node), members);

    RecipientModel model;
    for (const int id : members) {
        const MemberRecord* member = chart.findMember(id);
        model.AddRecipient(member->MemberName, member->Email, member->MemberID, member->Passwd);
    }
    QStringList listed;
    for (int row = 0; row < model.rowCount(); ++row)
        listed << model.recipient(row).id;
    QCOMPARE(listed, listedIds);
}

void TestRegistrationMail::addRecipient_data()
{
    QTest::addColumn<QStringList>("offered");
    QTest::addColumn<QStringList>("listed");
    const QString kim = QStringLiteral("kim@example.com");
    QTest::newRow("well formed") << QStringList {kim} << QStringList {kim};
    QTest::newRow("no at sign") << QStringList {QStringLiteral("kim.example.com")} << QStringList {};
    QTest::newRow("no dot") << QStringList {QStringLiteral("kim@example")} << QStringList {};
    QTest::newRow("empty") << QStringList {QString()} << QStringList {};
    QTest::newRow("same address twice") << QStringList {kim, QStringLiteral("lee@example.com"), kim}
                                        << QStringList {kim, QStringLiteral("lee@example.com")};
    QTest::newRow("same address, other spelling")
        << QStringList {kim, QStringLiteral("Kim@example.com")} << QStringList {kim, QStringLiteral("Kim@example.com")};
}

void TestRegistrationMail::addRecipient()
{
    QFETCH(QStringList, offered);
    QFETCH(QStringList, listed);
    RecipientModel model;
    for (const QString& email : offered)
        model.AddRecipient(QStringLiteral("김철수"), email, QStringLiteral("kim"), QStringLiteral("pw"));
    QStringList shown;
    for (int row = 0; row < model.rowCount(); ++row) {
        shown << model.index(row, RecipientModel::EmailColumn).data().toString();
        QCOMPARE(model.index(row, RecipientModel::NameColumn).data().toString(), QStringLiteral("김철수"));
        QCOMPARE(model.index(row, RecipientModel::IdColumn).data().toString(), QStringLiteral("kim"));
        QCOMPARE(model.index(row, RecipientModel::PasswordColumn).data().toString(), QStringLiteral("pw"));
        QCOMPARE(model.index(row, RecipientModel::ResultColumn).data().toString(), QString());
    }
    QCOMPARE(shown, listed);
}

void TestRegistrationMail::templateRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray hangul = QByteArrayLiteral("\xea\xb0\x80"); // U+AC00, three bytes
    QTest::newRow("short") << QByteArray("<p>" + hangul + "</p>") << QByteArray("<p>" + hangul + "</p>");
    QTest::newRow("5000 bytes") << QByteArray(5000, 'x') << QByteArray(4096, 'x');
    QTest::newRow("character ends at 4096")
        << QByteArray(4093, 'x') + hangul + "tail" << QByteArray(4093, 'x') + hangul;
    QTest::newRow("character across 4096") << QByteArray(4094, 'x') + hangul + "tail" << QByteArray(4094, 'x');
    QTest::newRow("four-byte character across 4096")
        << QByteArray(4093, 'x') + QByteArrayLiteral("\xf0\x9f\x98\x80") << QByteArray(4093, 'x');
    QTest::newRow("empty") << QByteArray() << QByteArray();
}

void TestRegistrationMail::templateRead()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, expected);
    TempHome home;
    home.writeFile(QStringLiteral("home/Template.html"), file);
    const std::optional<QString> text = MailTemplate::read(home.path(QStringLiteral("home/Template.html")));
    QVERIFY(text);
    QCOMPARE(text->toUtf8(), expected);
    QVERIFY(!MailTemplate::read(home.path(QStringLiteral("home/Missing.html"))));
}

void TestRegistrationMail::markers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("memo");
    QTest::addColumn<QString>("expected");
    QTest::newRow("every marker, every time")
        << kTemplate << QStringLiteral("kim") << QStringLiteral("안녕하세요")
        << QStringLiteral("<html><body>10.0.0.7 / kim / pw1 / 안녕하세요 / SM41 / 0 (kim)</body></html>");
    QTest::newRow("a value that names a later marker")
        << QStringLiteral("[__USER_ID__]") << QStringLiteral("__MAJOR_VERSION__") << QString()
        << QStringLiteral("[SM41]");
    QTest::newRow("a value that names an earlier marker")
        << QStringLiteral("[__ADDITIONAL_MEMO__]") << QString() << QStringLiteral("__USER_ID__")
        << QStringLiteral("[__USER_ID__]");
    QTest::newRow("no markers") << QStringLiteral("<b>__USER ID__ _OFFICE_</b>") << QStringLiteral("kim") << QString()
                                << QStringLiteral("<b>__USER ID__ _OFFICE_</b>");
}

void TestRegistrationMail::markers()
{
    QFETCH(QString, text);
    QFETCH(QString, id);
    QFETCH(QString, memo);
    QFETCH(QString, expected);
    const TemplateValues values {QStringLiteral("10.0.0.7"), id, QStringLiteral("pw1"), memo, QStringLiteral("SM41"),
        TemplateValues::officeFlag(2)};
    QCOMPARE(MailTemplate::expand(text, values), expected);
}

void TestRegistrationMail::sampleTemplateUsesEveryMarker()
{
    QFile sample(QStringLiteral(SAMPLE_TEMPLATE));
    QVERIFY(sample.open(QIODevice::ReadOnly));
    QVERIFY2(sample.size() <= MailTemplate::kMaxBytes, "the sample would be sent cut short");
    const std::optional<QString> text = MailTemplate::read(sample.fileName());
    QVERIFY(text);
    const TemplateValues values {QStringLiteral("S"), QStringLiteral("I"), QStringLiteral("P"), QStringLiteral("M"),
        QStringLiteral("V"), QStringLiteral("O")};
    for (const char* marker : {"__SERVER_NAME__", "__USER_ID__", "__USER_PASSWORD__", "__ADDITIONAL_MEMO__",
             "__MAJOR_VERSION__", "__OFFICE__"})
        QVERIFY2(text->contains(QLatin1String(marker)), marker);
    QVERIFY(!MailTemplate::expand(*text, values).contains(QLatin1String("__")));
}

void TestRegistrationMail::settingsStored()
{
    TempHome home;
    const MailServerSettings none = MailServerSettings::read(home.registry());
    QCOMPARE(none.port, quint16(25));
    QVERIFY(!none.isComplete());

    MailServerSettings settings;
    settings.host = QStringLiteral("mail.example.com");
    settings.port = 2587;
    settings.security = MailSecurity::StartTls;
    settings.user = QStringLiteral("관리자");
    settings.password = QStringLiteral("p\"a\\ss word");
    settings.senderAddress = QStringLiteral("admin@example.com");
    QVERIFY(settings.write(home.registry()));
    QCOMPARE(MailServerSettings::read(home.registry()), settings);
    QVERIFY(home.readFile(QStringLiteral("registry/HKLM.reg")).contains("\"MailSecurity\"=dword:00000001"));
}

void TestRegistrationMail::eachRecipientGetsTheirOwnNotice_data()
{
    QTest::addColumn<QString>("senderName");
    QTest::addColumn<QString>("subject");
    QTest::newRow("as the dialog opens") << Msg::kMailDefaultSenderName << Msg::kMailDefaultSubject;
    QTest::newRow("long Korean subject, folded")
        << QStringLiteral("세이블 메신저 관리자") << QStringLiteral("가나다라마바사아자차카타파하").repeated(5);
    QTest::newRow("ASCII with quotes and line breaks")
        << QStringLiteral("Admin \"Sable\", HQ") << QStringLiteral("Welcome\r\nBcc: someone@example.com\nX-Sent: 1");
}

void TestRegistrationMail::eachRecipientGetsTheirOwnNotice()
{
    QFETCH(QString, senderName);
    QFETCH(QString, subject);
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    const Recipient kim {QStringLiteral("김철수"), uniqueAddress(QStringLiteral("kim")), QStringLiteral("kim01"),
        QStringLiteral("비번1")};
    const Recipient lee {QStringLiteral("이영희"), uniqueAddress(QStringLiteral("lee")), QStringLiteral("lee02"),
        QStringLiteral("pw<2>")};
    RegistrationMail mail = notice(kTemplate);
    mail.senderName = senderName;
    mail.subject = subject;
    RegistrationMailSender sender(m_smtp.settings(), mail, {{0, kim}, {1, lee}});
    bool bAllDone = false;
    QCOMPARE(runSending(sender, &bAllDone), QStringList({"0 sent", "1 sent"}));
    QVERIFY(bAllDone);

    for (const Recipient& who : {kim, lee}) {
        const QList<ReceivedMail> received = m_smtp.receivedBy(who.email);
        QCOMPARE(received.size(), 1);
        const ReceivedMail& got = received.first();
        QCOMPARE(got.defects, 0);
        QVERIFY2(got.longestLine <= 78, qPrintable(QString::number(got.longestLine)));
        QCOMPARE(got.fromName, senderName);
        QCOMPARE(got.fromAddress, QStringLiteral("postmaster@sable.example"));
        QCOMPARE(got.toName, who.name);
        QCOMPARE(got.toAddress, who.email);
        QCOMPARE(got.subject, QString(subject).replace(QLatin1String("\r\n"), QLatin1String(" ")).replace(u'\n', u' '));
        QCOMPARE(got.contentType, QStringLiteral("text/html"));
        QCOMPARE(got.charset, QStringLiteral("utf-8"));
        QVERIFY(got.bDated);
        QVERIFY(got.messageId.endsWith(QLatin1String("@sable.example>")));
        const QString body = QStringLiteral("<html><body>10.20.30.40 / %1 / %2 / 메모 / SM41 / 1 (%1)</body></html>")
                                 .arg(who.id, who.password);
        QCOMPARE(QString::fromUtf8(got.body), body);
    }
}

void TestRegistrationMail::refusedRecipientDoesNotStopTheOthers()
{
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    const Recipient first {QStringLiteral("박"), uniqueAddress(QStringLiteral("park")), QStringLiteral("p"), {}};
    const Recipient refused {QStringLiteral("최"), m_smtp.refusedAddress, QStringLiteral("c"), {}};
    const Recipient last {QStringLiteral("정"), uniqueAddress(QStringLiteral("jung")), QStringLiteral("j"), {}};
    RegistrationMailSender sender(m_smtp.settings(), notice(kTemplate), {{0, first}, {1, refused}, {2, last}});
    bool bAllDone = false;
    QCOMPARE(runSending(sender, &bAllDone), QStringList({"0 sent", "1 refused", "2 sent"}));
    QVERIFY(bAllDone);
    QCOMPARE(m_smtp.receivedBy(first.email).size(), 1);
    QCOMPARE(m_smtp.receivedBy(last.email).size(), 1);
}

void TestRegistrationMail::transportFailureEndsTheSending_data()
{
    QTest::addColumn<int>("port");
    QTest::addColumn<int>("security");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("bDelivered");
    const int served = m_smtp.port;
    QTest::newRow("login accepted") << served << 0 << m_smtp.user << m_smtp.password << true;
    QTest::newRow("server down") << closedLocalPort() << 0 << QString() << QString() << false;
    QTest::newRow("login refused") << served << 0 << m_smtp.user << QStringLiteral("wrong") << false;
    QTest::newRow("STARTTLS not offered") << served << int(MailSecurity::StartTls) << QString() << QString() << false;
}

void TestRegistrationMail::transportFailureEndsTheSending()
{
    QFETCH(int, port);
    QFETCH(int, security);
    QFETCH(QString, user);
    QFETCH(QString, password);
    QFETCH(bool, bDelivered);
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    MailServerSettings settings = m_smtp.settings();
    settings.port = static_cast<quint16>(port);
    settings.security = static_cast<MailSecurity>(security);
    settings.user = user;
    settings.password = password;
    const Recipient first {QStringLiteral("한"), uniqueAddress(QStringLiteral("han")), QStringLiteral("h"), {}};
    const Recipient second {QStringLiteral("오"), uniqueAddress(QStringLiteral("oh")), QStringLiteral("o"), {}};
    RegistrationMailSender sender(settings, notice(kTemplate), {{0, first}, {1, second}});
    bool bAllDone = false;
    const QStringList rows = runSending(sender, &bAllDone);
    QCOMPARE(rows, bDelivered ? QStringList({"0 sent", "1 sent"}) : QStringList({"0 failed"}));
    QCOMPARE(bAllDone, bDelivered);
    QCOMPARE(m_smtp.receivedBy(second.email).size(), bDelivered ? 1 : 0);
}

void TestRegistrationMail::templatesArriveAsRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray plain = "<html>\r\n<body>\n.\r\n..leading dots survive\r\n<p>\xec\x95\x88\xeb\x85\x95</p>\n\n"
                             "</body></html>";
    QTest::newRow("no markers, mixed line ends") << plain << plain;
    const QByteArray head = "<p>__USER_ID__</p>";
    const QByteArray filler(5000 - head.size(), 'x');
    QTest::newRow("5000 bytes") << head + filler << QByteArray("<p>ID-7</p>") + filler.left(4096 - head.size());
}

void TestRegistrationMail::templatesArriveAsRead()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, expected);
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    TempHome home;
    home.writeFile(QStringLiteral("home/Template.html"), file);
    const std::optional<QString> text = MailTemplate::read(home.path(QStringLiteral("home/Template.html")));
    QVERIFY(text);
    const Recipient who {QStringLiteral("윤"), uniqueAddress(QStringLiteral("yoon")), QStringLiteral("ID-7"), {}};
    RegistrationMailSender sender(m_smtp.settings(), notice(*text), {{0, who}});
    QCOMPARE(runSending(sender), QStringList {"0 sent"});
    const QList<ReceivedMail> received = m_smtp.receivedBy(who.email);
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.first().body, expected);
}

void TestRegistrationMail::stopEndsTheSending()
{
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    const Recipient first {QStringLiteral("서"), uniqueAddress(QStringLiteral("seo")), QStringLiteral("s"), {}};
    const Recipient second {QStringLiteral("신"), uniqueAddress(QStringLiteral("shin")), QStringLiteral("n"), {}};
    RegistrationMailSender sender(m_smtp.settings(), notice(kTemplate), {{0, first}, {1, second}});
    // Pressed while the first message goes out: that one finishes, the next never starts.
    connect(
        &sender, &RegistrationMailSender::rowFinished, &sender, &RegistrationMailSender::stop, Qt::DirectConnection);
    QSignalSpy started(&sender, &RegistrationMailSender::rowStarted);
    bool bAllDone = true;
    QCOMPARE(runSending(sender, &bAllDone), QStringList {"0 sent"});
    QVERIFY(!bAllDone);
    QCOMPARE(started.size(), 1);
    QCOMPARE(m_smtp.receivedBy(second.email).size(), 0);
}

QTEST_GUILESS_MAIN(TestRegistrationMail)
#include "tst_registration_mail.moc"
