// What the clients are told to show: the logo and caption keys and their counter, the home page
// links, and the file session servers in the registry, with the notices the server receives.

#include "SettingsKeys.h"
#include "TestSupport.h"
#include "clientsettings/HomePageSettings.h"
#include "clientsettings/LogoSettings.h"
#include "clientsettings/SessionServerList.h"
#include "platform/ChangeNotice.h"
#include "platform/IniFile.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkDatagram>
#include <QTest>
#include <QUdpSocket>

using namespace sable;

using Sites = QList<HomePageSite>;
Q_DECLARE_METATYPE(LogoChoice)
Q_DECLARE_METATYPE(HomePageSite)

namespace {

// A server's settings file with lines of every kind that a write must leave alone.
const QByteArray kIniHead = "; written by the setup\r\n[DBInfo]\r\nDBAddr = 10.0.0.5 \r\n\r\n[SettingInfo]\r\n";
const QByteArray kIniTail = "\r\n[GroupInfo]\r\nVersion=0007\r\n";

// Stands in for the messenger server's notice port.
class NoticeReceiver
{
public:
    NoticeReceiver() { QVERIFY(m_socket.bind(QHostAddress::LocalHost, 0)); }
    quint16 port() const { return m_socket.localPort(); }

    // The datagrams that arrived, waiting until `expected` have or a second has passed.
    QList<QByteArray> received(int expected)
    {
        QList<QByteArray> out;
        QDeadlineTimer deadline(1000);
        while (out.size() < expected && !deadline.hasExpired()) {
            if (m_socket.hasPendingDatagrams() || m_socket.waitForReadyRead(50)) {
                while (m_socket.hasPendingDatagrams())
                    out << m_socket.receiveDatagram().data();
            }
        }
        return out;
    }

private:
    QUdpSocket m_socket;
};

QString settingInfo(const TempHome& home, const QString& key)
{
    return IniFile(home.paths().settingsFilePath)
        .readString(Keys::kSettingInfo, key, QStringLiteral("<missing>"), 5200);
}

RegistryKey sessionKey(const TempHome& home)
{
    return *home.registry().createKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
}

void storeEntry(const RegistryKey& key, int index, const QString& address, quint32 port, quint32 enable)
{
    key.writeString(Keys::kSessionDAddress.arg(index), address);
    key.writeDword(Keys::kSessionDPort.arg(index), port);
    key.writeDword(Keys::kSessionDEnable.arg(index), enable);
}

} // namespace

class TestClientSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logoRead_data();
    void logoRead();
    void logoConfirm_data();
    void logoConfirm();
    void iconFile_data();
    void iconFile();
    void failedNoticeKeepsSettings();

    void siteListValue_data();
    void siteListValue();
    void homePageOpen_data();
    void homePageOpen();
    void homePageConfirm_data();
    void homePageConfirm();

    void sessionSeeding_data();
    void sessionSeeding();
    void sessionStoredEntries_data();
    void sessionStoredEntries();
    void sessionSaveKeepsEntriesPastCount();
    void sessionSaveWithoutKey();
};

void TestClientSettings::logoRead_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<LogoChoice>("expected");
    QTest::newRow("nothing stored") << QByteArray() << LogoChoice {true, "", ""};
    QTest::newRow("custom") << QByteArray(
        "bDefaultIcon=0\r\nUserDefineIconPath=C:\\ico\\a.ico\r\nCaptionBarName=세이블\r\n")
                            << LogoChoice {false, "C:\\ico\\a.ico", "세이블"};
    QTest::newRow("any other number is custom") << QByteArray("bDefaultIcon=2\r\n") << LogoChoice {false, "", ""};
    QTest::newRow("empty reads as 0") << QByteArray("bDefaultIcon=\r\n") << LogoChoice {false, "", ""};
    QTest::newRow("leading number") << QByteArray("BDEFAULTICON=1 (default)\r\n") << LogoChoice {true, "", ""};
}

void TestClientSettings::logoRead()
{
    QFETCH(QByteArray, lines);
    QFETCH(LogoChoice, expected);
    TempHome home;
    if (!lines.isEmpty())
        home.writeFile(QStringLiteral("home/Serverinfo.ini"), kIniHead + lines + kIniTail);
    QCOMPARE(LogoSettings(home.paths()).read(), expected);
}

void TestClientSettings::logoConfirm_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<LogoChoice>("choice");
    QTest::addColumn<int>("confirms");
    QTest::addColumn<QByteArray>("after");
    QTest::newRow("counter from absent, twice, in write order")
        << QByteArray("UserDefineIconPath=C:\\old.ico\r\n") << LogoChoice {true, "C:\\new.ico", "사내 메신저"} << 2
        << QByteArray(
               "UserDefineIconPath=C:\\old.ico\r\nVersion=2\r\nbDefaultIcon=1\r\nCaptionBarName=사내 메신저\r\n");
    QTest::newRow("negative counter counts as 0")
        << QByteArray("VERSION=-5\r\nbDefaultIcon=1\r\n") << LogoChoice {false, "/srv/ico/a.ico", ""} << 1
        << QByteArray("VERSION=1\r\nbDefaultIcon=0\r\nUserDefineIconPath=/srv/ico/a.ico\r\nCaptionBarName=\r\n");
    QTest::newRow("counter goes on") << QByteArray("CaptionBarName=x\r\nVersion=41\r\n") << LogoChoice {true, "", ""}
                                     << 1 << QByteArray("CaptionBarName=\r\nVersion=42\r\nbDefaultIcon=1\r\n");
}

void TestClientSettings::logoConfirm()
{
    QFETCH(QByteArray, before);
    QFETCH(LogoChoice, choice);
    QFETCH(int, confirms);
    QFETCH(QByteArray, after);
    TempHome home;
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), kIniHead + before + kIniTail);
    NoticeReceiver server;
    LogoSettings settings(home.paths());
    settings.setNoticePort(server.port());
    for (int i = 0; i < confirms; ++i)
        QCOMPARE(settings.confirm(choice), NoticeOutcome::Sent);
    QCOMPARE(home.readFile(QStringLiteral("home/Serverinfo.ini")), kIniHead + after + kIniTail);
    const QList<QByteArray> notices = server.received(confirms);
    QCOMPARE(notices.size(), confirms);
    for (const QByteArray& notice : notices)
        QCOMPARE(notice, ChangeNotice::bytes(ChangeNotice::Kind::ReloadClientSettings));
}

void TestClientSettings::iconFile_data()
{
    QTest::addColumn<QByteArray>("bytes"); // empty: no file at all
    QTest::addColumn<LogoSettings::IconCheck>("expected");
    const QByteArray icon = QByteArray::fromHex("000001000100"
                                                "10100000010020006804000016000000");
    QTest::newRow("9,900 bytes") << icon.leftJustified(9900, '\0') << LogoSettings::IconCheck::Accepted;
    QTest::newRow("9,901 bytes") << icon.leftJustified(9901, '\0') << LogoSettings::IconCheck::TooLarge;
    QTest::newRow("too large beats not an icon") << QByteArray(9901, 'x') << LogoSettings::IconCheck::TooLarge;
    QTest::newRow("missing") << QByteArray() << LogoSettings::IconCheck::CannotOpen;
    QTest::newRow("png") << QByteArray::fromHex("89504e470d0a1a0a0000000d49484452").leftJustified(200, '\0')
                         << LogoSettings::IconCheck::NotAnIcon;
    QTest::newRow("no images") << QByteArray::fromHex("000001000000").leftJustified(200, '\0')
                               << LogoSettings::IconCheck::NotAnIcon;
    QTest::newRow("header only") << icon.left(6) << LogoSettings::IconCheck::NotAnIcon;
}

void TestClientSettings::iconFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(LogoSettings::IconCheck, expected);
    TempHome home;
    const LogoSettings settings(home.paths());
    const QString folder = settings.iconFolder();
    QVERIFY(QFileInfo(folder).isDir());
    const QString file = QDir(folder).filePath(QStringLiteral("logo.ico"));
    if (!bytes.isEmpty())
        home.writeFile(QStringLiteral("home/ico/logo.ico"), bytes);
    QCOMPARE(LogoSettings::checkIconFile(file), expected);
}

void TestClientSettings::failedNoticeKeepsSettings()
{
    // No datagram can go to port 0: the send fails after everything was written.
    TempHome home;
    LogoSettings logo(home.paths());
    logo.setNoticePort(0);
    QCOMPARE(logo.confirm({false, QStringLiteral("a.ico"), QStringLiteral("캡션")}), NoticeOutcome::SendFailed);
    QCOMPARE(settingInfo(home, Keys::kVersion), QStringLiteral("1"));
    QCOMPARE(settingInfo(home, Keys::kCaptionBarName), QStringLiteral("캡션"));
}

void TestClientSettings::siteListValue_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<Sites>("rows");
    QTest::addColumn<QString>("written");
    QTest::newRow("two sites") << "|a|http://a|b|b.example|" << Sites {{"a", "http://a"}, {"b", "b.example"}}
                               << "|a|http://a|b|b.example|";
    QTest::newRow("runs of separators count once") << "|a||b|" << Sites {{"a", "b"}} << "|a|b|";
    QTest::newRow("without the leading separator") << "a|b" << Sites {{"a", "b"}} << "|a|b|";
    QTest::newRow("odd field has no address") << "|a|b|c|" << Sites {{"a", "b"}, {"c", ""}} << "|a|b|c||";
    QTest::newRow("separators only") << "|||" << Sites {} << "";
    QTest::newRow("empty") << "" << Sites {} << "";
}

void TestClientSettings::siteListValue()
{
    QFETCH(QString, stored);
    QFETCH(Sites, rows);
    QFETCH(QString, written);
    const HomePageSiteList list = HomePageSiteList::fromValue(stored);
    QCOMPARE(list.rows(), rows);
    QCOMPARE(list.toValue(), written);
}

void TestClientSettings::homePageOpen_data()
{
    QTest::addColumn<QString>("vendorHost"); // the console's registry value; empty: none
    QTest::addColumn<QByteArray>("lines"); // empty: no settings file
    QTest::addColumn<Sites>("rows");
    const QString vendor = QStringLiteral("세이블메신저 홈페이지");
    QTest::newRow("fresh installation offers the vendor twice")
        << "" << QByteArray() << Sites {{vendor, "http://www.halvex.co.kr"}, {vendor, "www.halvex.co.kr"}};
    QTest::newRow("vendor host configured")
        << "sable.test" << QByteArray() << Sites {{vendor, "http://sable.test"}, {vendor, "sable.test"}};
    QTest::newRow("older address carried over first")
        << "" << QByteArray("HomePageURL=intra.example/home\r\nHomePageURL2=|a|b|\r\n")
        << Sites {{vendor, "http://intra.example/home"}, {"a", "b"}};
    QTest::newRow("saved empty stays empty")
        << "sable.test" << QByteArray("HomePageURL=\r\nHomePageURL2=\r\n") << Sites {};
}

void TestClientSettings::homePageOpen()
{
    QFETCH(QString, vendorHost);
    QFETCH(QByteArray, lines);
    QFETCH(Sites, rows);
    TempHome home;
    if (!vendorHost.isEmpty())
        home.registry()
            .createKey(RegRoot::LocalMachine, Keys::kSableManager)
            ->writeString(Keys::kVendorHomePageHost, vendorHost);
    if (!lines.isEmpty())
        home.writeFile(QStringLiteral("home/Serverinfo.ini"), kIniHead + lines + kIniTail);
    const HomePageSettings settings(home.paths(), HomePageSettings::readVendorHost(home.registry()));
    QCOMPARE(settings.open().rows(), rows);
    // Opened once, carried over once: the older key is empty from now on, even without a confirm.
    QCOMPARE(settingInfo(home, Keys::kHomePageURL), QString());
    QCOMPARE(settings.open().rows(), rows.mid(rows.size() > 1 ? 1 : 0));
}

void TestClientSettings::homePageConfirm_data()
{
    QTest::addColumn<Sites>("added");
    QTest::addColumn<QString>("written");
    QTest::newRow("empty name takes the address") << Sites {{"", "intra/login"}} << "|intra/login|intra/login|";
    QTest::newRow("address stored as typed") << Sites {{"메일", "mail.example/login?id=%ID&pass=%PASS"}, {"이름만", ""}}
                                             << "|메일|mail.example/login?id=%ID&pass=%PASS|이름만||";
    QTest::newRow("empty list") << Sites {} << "";
}

void TestClientSettings::homePageConfirm()
{
    QFETCH(Sites, added);
    QFETCH(QString, written);
    TempHome home;
    home.writeFile(
        QStringLiteral("home/Serverinfo.ini"), kIniHead + "HomePageURL=\r\nHomePageURL2=|x|y|\r\n" + kIniTail);
    NoticeReceiver server;
    HomePageSettings settings(home.paths(), QStringLiteral("vendor.example"));
    settings.setNoticePort(server.port());
    HomePageSiteList list;
    for (const HomePageSite& site : added)
        list.AddSiteRow(site.name, site.address);
    QCOMPARE(settings.confirm(list), NoticeOutcome::Sent);
    QCOMPARE(home.readFile(QStringLiteral("home/Serverinfo.ini")),
        kIniHead + "HomePageURL=\r\nHomePageURL2=" + written.toUtf8() + "\r\n" + kIniTail);
    QCOMPARE(server.received(1), QList<QByteArray> {ChangeNotice::bytes(ChangeNotice::Kind::ReloadClientSettings)});
    QCOMPARE(settings.open().rows(), list.rows());
}

void TestClientSettings::sessionSeeding_data()
{
    QTest::addColumn<QString>("localAddress");
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("the machine's address") << "192.168.10.20" << QStringLiteral("192.168.10.20") << "192.168.10.20";
    QTest::newRow("no address") << QString() << QString() << "255.255.255.255";
}

void TestClientSettings::sessionSeeding()
{
    QFETCH(QString, localAddress);
    QFETCH(QString, stored);
    QFETCH(QString, shown);
    TempHome home;
    const SessionServerList list(home.registry(), [localAddress] { return localAddress; });
    QCOMPARE(list.open(), (QList<SessionServerEntry> {{shown, SessionServerList::kPort, true}}));
    const RegistryKey key = sessionKey(home);
    QCOMPARE(key.readString(QStringLiteral("SessionD_0_Address"), 128), std::optional<QString>(stored));
    QCOMPARE(key.readDword(QStringLiteral("SessionD_0_Port")), std::optional<quint32>(55056));
    QCOMPARE(key.readDword(QStringLiteral("SessionD_0_Enable")), std::optional<quint32>(1));
    QCOMPARE(key.readDword(QStringLiteral("SessionDCount")), std::optional<quint32>(1));
    QCOMPARE(key.readDword(QStringLiteral("SessionDChanged")), std::optional<quint32>(1));

    // Saved empty, it comes back with the default entry on the next opening.
    QVERIFY(list.save({}));
    QCOMPARE(key.readDword(QStringLiteral("SessionDCount")), std::optional<quint32>(0));
    QCOMPARE(list.open().size(), 1);
}

void TestClientSettings::sessionStoredEntries_data()
{
    QTest::addColumn<QString>("address"); // "<none>": the value is missing
    QTest::addColumn<quint32>("port");
    QTest::addColumn<int>("enable"); // -1: the value is missing
    QTest::addColumn<bool>("bReadable");
    QTest::addColumn<SessionServerEntry>("row");
    QTest::newRow("dotted") << "10.0.0.1" << 55056u << 1 << true << SessionServerEntry {"10.0.0.1", 55056, true};
    QTest::newRow("other port shown and saved as ours")
        << "10.0.0.2" << 1234u << 0 << true << SessionServerEntry {"10.0.0.2", 55056, false};
    QTest::newRow("leading zeros") << "010.000.000.001" << 55056u << 1 << true
                                   << SessionServerEntry {"10.0.0.1", 55056, true};
    QTest::newRow("host name") << "files.example" << 55056u << 1 << true
                               << SessionServerEntry {"255.255.255.255", 55056, true};
    QTest::newRow("octet out of range") << "10.0.0.256" << 55056u << 1 << true
                                        << SessionServerEntry {"255.255.255.255", 55056, true};
    QTest::newRow("enable missing") << "10.0.0.3" << 55056u << -1 << false
                                    << SessionServerEntry {"10.0.0.3", 55056, false};
    QTest::newRow("address missing") << "<none>" << 55056u << 1 << false
                                     << SessionServerEntry {"255.255.255.255", 55056, false};
}

void TestClientSettings::sessionStoredEntries()
{
    QFETCH(QString, address);
    QFETCH(quint32, port);
    QFETCH(int, enable);
    QFETCH(bool, bReadable);
    QFETCH(SessionServerEntry, row);
    TempHome home;
    const RegistryKey key = sessionKey(home);
    storeEntry(key, 0, QStringLiteral("10.9.9.9"), 55056, 1);
    if (address != QLatin1String("<none>"))
        key.writeString(QStringLiteral("SessionD_1_Address"), address);
    key.writeDword(QStringLiteral("SessionD_1_Port"), port);
    if (enable >= 0)
        key.writeDword(QStringLiteral("SessionD_1_Enable"), static_cast<quint32>(enable));
    key.writeDword(QStringLiteral("SessionDCount"), 2);

    const SessionServerList list(home.registry(), [] { return QStringLiteral("10.1.1.1"); });
    SessionServerEntry entry;
    QCOMPARE(list.ReadEntry(1, entry), bReadable);
    const QList<SessionServerEntry> rows = list.open();
    QCOMPARE(rows, (QList<SessionServerEntry> {{"10.9.9.9", 55056, true}, row}));

    // What is shown is what is saved.
    QVERIFY(list.save(rows));
    QCOMPARE(key.readString(QStringLiteral("SessionD_1_Address"), 128), std::optional<QString>(row.address));
    QCOMPARE(key.readDword(QStringLiteral("SessionD_1_Port")), std::optional<quint32>(55056));
    QCOMPARE(key.readDword(QStringLiteral("SessionD_1_Enable")), std::optional<quint32>(row.bEnabled ? 1 : 0));
}

void TestClientSettings::sessionSaveKeepsEntriesPastCount()
{
    TempHome home;
    const RegistryKey key = sessionKey(home);
    QList<SessionServerEntry> stored;
    for (int i = 0; i < 3; ++i) {
        stored.append({QStringLiteral("10.0.0.%1").arg(i + 1), 55056, true});
        storeEntry(key, i, stored[i].address, 55056, 1);
    }
    key.writeDword(QStringLiteral("SessionDCount"), 3);
    key.writeDword(QStringLiteral("SessionDChanged"), 0);

    const SessionServerList list(home.registry());
    QCOMPARE(list.open(), stored);
    stored[0] = {QStringLiteral("10.0.0.3"), 55056, false};
    QVERIFY(list.save(stored.mid(0, 1)));
    QCOMPARE(key.readDword(QStringLiteral("SessionDCount")), std::optional<quint32>(1));
    QCOMPARE(key.readDword(QStringLiteral("SessionDChanged")), std::optional<quint32>(1));
    for (int i = 0; i < 3; ++i) {
        SessionServerEntry entry;
        QVERIFY(list.ReadEntry(i, entry));
        QCOMPARE(entry, stored[i]);
    }
}

void TestClientSettings::sessionSaveWithoutKey()
{
    TempHome home;
    const SessionServerList list(home.registry());
    QVERIFY(!list.save({{QStringLiteral("10.0.0.1"), 55056, true}}));
    list.WriteEntry(0, {QStringLiteral("10.0.0.1"), 55056, true});
    QVERIFY(!home.registry().openKey(RegRoot::LocalMachine, Keys::kSessionDInfo));
}

QTEST_GUILESS_MAIN(TestClientSettings)
#include "tst_client_settings.moc"
