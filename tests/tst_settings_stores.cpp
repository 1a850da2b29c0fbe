// The settings stores: INI files with the private-profile rules, the registry kept in regedit-format
// files, and the code-page byte counting that both rely on.

#include "TestSupport.h"
#include "platform/AtomicFile.h"
#include "platform/CodePage949.h"
#include "platform/IniFile.h"
#include "platform/RegFileBackend.h"

#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QSysInfo>
#include <QTest>
#include <QThread>

#ifdef Q_OS_UNIX
#include <sys/stat.h>
#endif

using namespace sable;

class TestSettingsStores : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void byteLength_data();
    void byteLength();
    void truncated();

    void iniRead_data();
    void iniRead();
    void iniReadInt_data();
    void iniReadInt();
    void iniWrite_data();
    void iniWrite();
    void iniUnreadableFileIsNeverReplaced();
    void iniWriteAfterKilledWriter_data();
    void iniWriteAfterKilledWriter();

    void registryKeyPathsIgnoreCase();
    void registryStringBuffer_data();
    void registryStringBuffer();
    void registryValueTypes();
    void registryFileFormat();
    void registryKeepsBrokenLines();
    void registryWritesAfterCutContinuation_data();
    void registryWritesAfterCutContinuation();
    void registryReadsWindowsExport();
    void registryUnreadableFile();
    void registryTwoWritersAtOnce();
    void registryValuesTogether();
    void registryContinuedLines_data();
    void registryContinuedLines();
    void registryFileTooLarge();
    void newFilesAreTheOwners_data();
    void newFilesAreTheOwners();
    void writerKilledAtRandomMoments();

private:
    TempHome m_home;
};

void TestSettingsStores::byteLength_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("bytes");
    QTest::newRow("ascii") << QStringLiteral("SableD") << 6;
    QTest::newRow("hangul syllables") << QStringLiteral("세이블") << 6;
    QTest::newRow("mixed") << QStringLiteral("A팀 1") << 5;
    QTest::newRow("jamo and hanja") << QStringLiteral("ㄱ漢") << 4;
    QTest::newRow("outside the page") << QStringLiteral("😀") << 1;
    QTest::newRow("empty") << QString() << 0;
}

void TestSettingsStores::byteLength()
{
    QFETCH(QString, text);
    QFETCH(int, bytes);
    QCOMPARE(CodePage949::byteLength(text), bytes);
}

void TestSettingsStores::truncated()
{
    QCOMPARE(CodePage949::truncated(QStringLiteral("가나다"), 5), QStringLiteral("가나"));
    QCOMPARE(CodePage949::truncated(QStringLiteral("가나다"), 6), QStringLiteral("가나다"));
    QCOMPARE(CodePage949::truncated(QStringLiteral("a가"), 2), QStringLiteral("a"));
    QCOMPARE(CodePage949::encode(QStringLiteral("가A")),
        QByteArray("\xB0\xA1"
                   "A"));
    QCOMPARE(CodePage949::decode(QByteArray("\xB0\xA1"
                                            "A")),
        std::optional<QString>(QStringLiteral("가A")));
}

void TestSettingsStores::iniRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("buffer");
    QTest::addColumn<QString>("expected");

    const QByteArray basic = "; server settings\n[DBInfo]\nDBAddr = 10.0.0.5 \nDBName=\"Sable\"\nUID='sa'\n"
                             "PWD=\"half\n\n[GroupInfo]\nVersion=0042\n";
    QTest::newRow("trimmed") << basic << "DBInfo"
                             << "DBAddr" << 129 << "10.0.0.5";
    QTest::newRow("case of section and key") << basic << "dbinfo"
                                             << "dbaddr" << 129 << "10.0.0.5";
    QTest::newRow("double quotes") << basic << "DBInfo"
                                   << "DBName" << 129 << "Sable";
    QTest::newRow("single quotes") << basic << "DBInfo"
                                   << "UID" << 129 << "sa";
    QTest::newRow("unbalanced quote kept") << basic << "DBInfo"
                                           << "PWD" << 129 << "\"half";
    QTest::newRow("buffer keeps n-1") << basic << "DBInfo"
                                      << "DBAddr" << 5 << "10.0";
    QTest::newRow("missing key") << basic << "DBInfo"
                                 << "Nothing" << 129 << "default";
    QTest::newRow("missing section") << basic << "Other"
                                     << "DBAddr" << 129 << "default";
    QTest::newRow("default is cut too") << basic << "Other"
                                        << "DBAddr" << 4 << "def";
    QTest::newRow("key of another section") << basic << "GroupInfo"
                                            << "DBAddr" << 129 << "default";
    QTest::newRow("hangul cut at a whole character") << QByteArray("[S]\nName=가나다\n") << "S"
                                                     << "Name" << 6 << "가나";
    QTest::newRow("first of two keys") << QByteArray("[S]\nA=1\nA=2\n") << "S"
                                       << "A" << 10 << "1";
    QTest::newRow("commented key") << QByteArray("[S]\n;A=1\n") << "S"
                                   << "A" << 10 << "default";
    QTest::newRow("broken lines ignored") << QByteArray("[S\ngarbage\n[S]\n\x01\xff nonsense\nA=ok\n") << "S"
                                          << "A" << 10 << "ok";
    QTest::newRow("crlf") << QByteArray("[S]\r\nA=x y\r\n") << "S"
                          << "A" << 10 << "x y";
    QTest::newRow("bom") << QByteArray("\xEF\xBB\xBF[S]\nA=1\n") << "S"
                         << "A" << 10 << "1";
    QTest::newRow("empty value") << QByteArray("[S]\nA=\n") << "S"
                                 << "A" << 10 << "";
}

void TestSettingsStores::iniRead()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(int, buffer);
    QFETCH(QString, expected);
    m_home.writeFile(QStringLiteral("read.ini"), file);
    const IniFile ini(m_home.path(QStringLiteral("read.ini")));
    QCOMPARE(ini.readString(section, key, QStringLiteral("default"), buffer), expected);
}

void TestSettingsStores::iniReadInt_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("decimal") << QByteArray("Version=0042") << 42;
    QTest::newRow("negative") << QByteArray("Version=-5") << -5;
    QTest::newRow("hexadecimal") << QByteArray("Version=0x1F") << 31;
    QTest::newRow("trailing text") << QByteArray("Version=7x") << 7;
    QTest::newRow("wraps round 32 bits") << QByteArray("Version=0x100000002") << 2;
    QTest::newRow("binary") << QByteArray("Version= +0b101") << 5;
    QTest::newRow("not a number") << QByteArray("Version=abc") << 0;
    QTest::newRow("empty") << QByteArray("Version=") << 99;
    QTest::newRow("missing") << QByteArray("Other=1") << 99;
}

void TestSettingsStores::iniReadInt()
{
    QFETCH(QByteArray, value);
    QFETCH(int, expected);
    m_home.writeFile(QStringLiteral("int.ini"), "[GroupInfo]\n" + value + "\n");
    QCOMPARE(IniFile(m_home.path(QStringLiteral("int.ini")))
                 .readInt(QStringLiteral("groupinfo"), QStringLiteral("VERSION"), 99),
        expected);
}

void TestSettingsStores::iniWrite_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QByteArray>("after");

    const QByteArray file
        = "; keep me\r\n[SettingInfo]\r\nVERSION=3\r\nCaptionBarName=x\r\n\r\n[DBInfo]\r\nDBAddr=\r\n";
    QTest::newRow("changes one line, keeps its key's spelling")
        << file << "settinginfo"
        << "Version"
        << "4"
        << QByteArray("; keep me\r\n[SettingInfo]\r\nVERSION=4\r\nCaptionBarName=x\r\n\r\n[DBInfo]\r\nDBAddr=\r\n");
    QTest::newRow("new key after the section's last key")
        << file << "SettingInfo"
        << "bDefaultIcon"
        << "1"
        << QByteArray(
               "; keep "
               "me\r\n[SettingInfo]\r\nVERSION=3\r\nCaptionBarName=x\r\nbDefaultIcon=1\r\n\r\n[DBInfo]\r\nDBAddr=\r\n");
    QTest::newRow("new section at the end") << file << "GroupInfo"
                                            << "Version"
                                            << "0001" << QByteArray(file + "[GroupInfo]\r\nVersion=0001\r\n");
    QTest::newRow("missing file") << QByteArray() << "GroupInfo"
                                  << "Version"
                                  << "0001" << QByteArray("[GroupInfo]\nVersion=0001\n");
    QTest::newRow("no line end at the end") << QByteArray("[S]\nA=1") << "S"
                                            << "B"
                                            << "2" << QByteArray("[S]\nA=1\nB=2\n");
    QTest::newRow("broken lines and bom kept") << QByteArray("\xEF\xBB\xBF[S]\n\xff\xfe junk\nA=1\n") << "S"
                                               << "A"
                                               << "한글" << QByteArray("\xEF\xBB\xBF[S]\n\xff\xfe junk\nA=한글\n");
    QTest::newRow("only the first of two sections") << QByteArray("[S]\nA=1\n[S]\nA=2\n") << "S"
                                                    << "A"
                                                    << "9" << QByteArray("[S]\nA=9\n[S]\nA=2\n");
}

void TestSettingsStores::iniWrite()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, section);
    QFETCH(QString, key);
    QFETCH(QString, value);
    QFETCH(QByteArray, after);
    const QString name = QStringLiteral("write.ini");
    QFile::remove(m_home.path(name));
    if (!before.isNull())
        m_home.writeFile(name, before);
    QVERIFY(IniFile(m_home.path(name)).writeString(section, key, value));
    QCOMPARE(m_home.readFile(name), after);
    QVERIFY(!QFile::exists(m_home.path(name) + QStringLiteral(".tmp")));
}

void TestSettingsStores::iniUnreadableFileIsNeverReplaced()
{
    // A path that cannot be read as a file (here a folder) reads as defaults and is never replaced.
    QDir(m_home.path()).mkpath(QStringLiteral("folder.ini/inside"));
    const IniFile ini(m_home.path(QStringLiteral("folder.ini")));
    QCOMPARE(ini.readString(QStringLiteral("S"), QStringLiteral("A"), QStringLiteral("d"), 10), QStringLiteral("d"));
    QVERIFY(!ini.writeString(QStringLiteral("S"), QStringLiteral("A"), QStringLiteral("1")));
    QVERIFY(QDir(m_home.path(QStringLiteral("folder.ini/inside"))).exists());
}

void TestSettingsStores::iniWriteAfterKilledWriter_data()
{
    QTest::addColumn<QByteArray>("lock");
    // Whatever a killed writer left in the lock file, the lock died with it.
    QTest::newRow("empty lock") << QByteArray();
    QTest::newRow("lock of a process that is gone")
        << "2147483646\nchartsaver\n" + QSysInfo::machineHostName().toUtf8() + "\n";
}

void TestSettingsStores::iniWriteAfterKilledWriter()
{
    QFETCH(QByteArray, lock);
    const QString name = QStringLiteral("killed.ini");
    m_home.writeFile(name, "[GroupInfo]\nVersion=0007\n");
    m_home.writeFile(name + QStringLiteral(".lock"), lock);
    const IniFile ini(m_home.path(name));
    QVERIFY(ini.writeString(QStringLiteral("GroupInfo"), QStringLiteral("Version"), QStringLiteral("0008")));
    QCOMPARE(m_home.readFile(name), QByteArray("[GroupInfo]\nVersion=0008\n"));
}

void TestSettingsStores::registryKeyPathsIgnoreCase()
{
    const Registry registry = m_home.registry();
    QVERIFY(!registry.openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\Database")));
    const auto written
        = registry.createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase"));
    QVERIFY(written);
    QVERIFY(written->writeString(QStringLiteral("ConnectionString"), QStringLiteral("DSN=x;")));
    const auto read = registry.openKey(RegRoot::LocalMachine, QStringLiteral("software\\halvex\\services\\database"));
    QVERIFY(read);
    QCOMPARE(
        read->readString(QStringLiteral("connectionstring"), 1024), std::optional<QString>(QStringLiteral("DSN=x;")));
    // Keys above a key exist; the other root does not share them.
    QVERIFY(registry.openKey(RegRoot::LocalMachine, QStringLiteral("Software\\Halvex")));
    QVERIFY(!registry.openKey(RegRoot::CurrentUser, QStringLiteral("Software\\Halvex")));
    QVERIFY(!registry.openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halv")));
}

void TestSettingsStores::registryStringBuffer_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("buffer");
    QTest::addColumn<bool>("fits");
    QTest::newRow("249 characters in 250") << QString(249, u'c') << 250 << true;
    QTest::newRow("250 characters in 250") << QString(250, u'c') << 250 << false;
    QTest::newRow("hangul counts two") << QString(125, u'가') << 250 << false;
    QTest::newRow("hangul that fits") << QString(124, u'가') + u'a' << 250 << true;
    QTest::newRow("empty value") << QString() << 1 << true;
}

void TestSettingsStores::registryStringBuffer()
{
    QFETCH(QString, value);
    QFETCH(int, buffer);
    QFETCH(bool, fits);
    const auto key = m_home.registry().createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Buffer"));
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("Value"), value));
    const auto read = key->readString(QStringLiteral("Value"), buffer);
    QCOMPARE(read.has_value(), fits);
    if (fits)
        QCOMPARE(*read, value);
}

void TestSettingsStores::registryValueTypes()
{
    const auto key
        = m_home.registry().createKey(RegRoot::CurrentUser, QStringLiteral("Software\\Halvex\\SableManager"));
    QVERIFY(key);
    QVERIFY(key->writeDword(QStringLiteral("BalloonHelp"), 0));
    QVERIFY(key->writeDword(QStringLiteral("Port"), 55100));
    QVERIFY(key->writeString(QStringLiteral("Text"), QStringLiteral("C:\\Sable \"4.0\"\n둘째 줄")));
    QCOMPARE(key->readDword(QStringLiteral("balloonhelp")), std::optional<quint32>(0));
    QCOMPARE(key->readDword(QStringLiteral("Port")), std::optional<quint32>(55100));
    QCOMPARE(key->readString(QStringLiteral("Text"), 1024),
        std::optional<QString>(QStringLiteral("C:\\Sable \"4.0\"\n둘째 줄")));
    QVERIFY(!key->readString(QStringLiteral("Port"), 1024));
    QVERIFY(!key->readDword(QStringLiteral("Text")));
    QVERIFY(!key->readDword(QStringLiteral("Missing")));
    QVERIFY(key->writeDword(QStringLiteral("Port"), 0xFFFFFFFF));
    QCOMPARE(key->readDword(QStringLiteral("Port")), std::optional<quint32>(0xFFFFFFFF));
}

void TestSettingsStores::registryFileFormat()
{
    TempHome home;
    const auto key
        = home.registry().createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableBoxServer"));
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("Home Directory"), QStringLiteral("C:\\Sable\\SableBox")));
    QVERIFY(key->writeDword(QStringLiteral("Custom PASV min port"), 55100));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")),
        QByteArray("Windows Registry Editor Version 5.00\r\n\r\n"
                   "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableBoxServer]\r\n"
                   "\"Home Directory\"=\"C:\\\\Sable\\\\SableBox\"\r\n"
                   "\"Custom PASV min port\"=dword:0000d73c\r\n"));
}

void TestSettingsStores::registryKeepsBrokenLines()
{
    TempHome home;
    const QByteArray broken = "Windows Registry Editor Version 5.00\r\n\r\n"
                              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableManager]\r\n"
                              "\"ServerType\"=dword:zz\r\n"
                              "this line means nothing\r\n"
                              "\"Unclosed=\"x\r\n"
                              "\"MajorVersion\"=\"SM40\"\r\n";
    home.writeFile(QStringLiteral("registry/HKLM.reg"), broken);
    const auto key = home.registry().openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableManager"));
    QVERIFY(key);
    QVERIFY(!key->readDword(QStringLiteral("ServerType")));
    QCOMPARE(key->readString(QStringLiteral("MajorVersion"), 128), std::optional<QString>(QStringLiteral("SM40")));
    QVERIFY(key->writeString(QStringLiteral("MajorVersion"), QStringLiteral("SM41")));
    QVERIFY(key->writeDword(QStringLiteral("ServerType"), 1));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")),
        QByteArray(broken).replace("SM40", "SM41").replace("dword:zz", "dword:00000001"));
}

void TestSettingsStores::registryWritesAfterCutContinuation_data()
{
    // A value whose last line asks to go on, cut there (at the end of the file or of its key): a
    // value added after it must not become part of it.
    QTest::addColumn<QByteArray>("tail");
    QTest::newRow("end of the file") << QByteArray();
    QTest::newRow("end of the key") << QByteArray("\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Other]\r\n\"A\"=\"1\"\r\n");
}

void TestSettingsStores::registryWritesAfterCutContinuation()
{
    QFETCH(QByteArray, tail);
    TempHome home;
    const QByteArray cut = "Windows Registry Editor Version 5.00\r\n\r\n"
                           "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableManager]\r\n"
                           "\"Long\"=hex(1):41,00,\\\r\n";
    home.writeFile(QStringLiteral("registry/HKLM.reg"), cut + tail);
    const auto key = home.registry().openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableManager"));
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("MajorVersion"), QStringLiteral("SM41")));
    QCOMPARE(key->readString(QStringLiteral("MajorVersion"), 128), std::optional<QString>(QStringLiteral("SM41")));
    QVERIFY(home.readFile(QStringLiteral("registry/HKLM.reg")).startsWith(cut));
}

void TestSettingsStores::registryReadsWindowsExport()
{
    TempHome home;
    const QString exported = QStringLiteral("Windows Registry Editor Version 5.00\r\n\r\n"
                                            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\Services\\SessionDInfo]\r\n"
                                            "\"SessionDCount\"=dword:00000001\r\n"
                                            "\"SessionD_0_Address\"=\"192.168.0.10\"\r\n"
                                            "\"Note\"=hex(1):c4,c1,00,00\r\n");
    QByteArray utf16("\xFF\xFE");
    utf16 += QByteArray(reinterpret_cast<const char*>(exported.utf16()), exported.size() * 2);
    home.writeFile(QStringLiteral("registry/HKLM.reg"), utf16);
    const auto key
        = home.registry().openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\Services\\SessionDInfo"));
    QVERIFY(key);
    QCOMPARE(key->readDword(QStringLiteral("SessionDCount")), std::optional<quint32>(1));
    QCOMPARE(key->readString(QStringLiteral("SessionD_0_Address"), 260),
        std::optional<QString>(QStringLiteral("192.168.0.10")));
    QCOMPARE(key->readString(QStringLiteral("Note"), 260), std::optional<QString>(QStringLiteral("쇄")));
    QVERIFY(key->writeDword(QStringLiteral("SessionDChanged"), 1));
    const QByteArray after = home.readFile(QStringLiteral("registry/HKLM.reg"));
    QVERIFY(after.startsWith("\xFF\xFE"));
    const QString text
        = QString::fromUtf16(reinterpret_cast<const char16_t*>(after.constData() + 2), (after.size() - 2) / 2);
    QCOMPARE(text, exported + QStringLiteral("\"SessionDChanged\"=dword:00000001\r\n"));
}

void TestSettingsStores::registryUnreadableFile()
{
    TempHome home;
    QDir(home.path()).mkpath(QStringLiteral("registry/HKLM.reg/inside"));
    const Registry registry = home.registry();
    QVERIFY(!registry.openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex")));
    QVERIFY(!registry.createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex")));
    QVERIFY(QDir(home.path(QStringLiteral("registry/HKLM.reg/inside"))).exists());
}

void TestSettingsStores::registryTwoWritersAtOnce()
{
    TempHome home;
    const QString file = home.path(QStringLiteral("HKLM.reg"));
    QProcess first;
    QProcess second;
    first.start(QStringLiteral(REGWRITER_PATH), {file, QStringLiteral("a"), QStringLiteral("60")});
    second.start(QStringLiteral(REGWRITER_PATH), {file, QStringLiteral("b"), QStringLiteral("60")});
    QVERIFY(first.waitForFinished(120000));
    QVERIFY(second.waitForFinished(120000));
    QCOMPARE(first.exitCode(), 0);
    QCOMPARE(second.exitCode(), 0);
    RegFileBackend backend(file, file + QStringLiteral(".hkcu"));
    for (int i = 0; i < 60; ++i) {
        for (const char* prefix : {"a", "b"}) {
            const auto value
                = backend.readDword(RegRoot::LocalMachine, "SOFTWARE\\Halvex\\Race", prefix + std::to_string(i));
            QVERIFY2(value == std::optional<std::uint32_t>(i),
                qPrintable(QStringLiteral("%1%2").arg(QLatin1String(prefix)).arg(i)));
        }
    }
}

void TestSettingsStores::registryValuesTogether()
{
    TempHome home;
    const Registry registry = home.registry();
    const auto key = registry.createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableManager"));
    QVERIFY(key);
    QVERIFY(key->writeString(QStringLiteral("SupervisorUser"), QStringLiteral("old")));
    QVERIFY(key->writeValues(RegistryValues()
                                 .string(QStringLiteral("SupervisorURL"), QStringLiteral("http://127.0.0.1:9001/RPC2"))
                                 .string(QStringLiteral("SupervisorUser"), QStringLiteral("sable"))
                                 .string(QStringLiteral("SupervisorPassword"), QStringLiteral("암호\n둘째 줄"))
                                 .dword(QStringLiteral("MailPort"), 587)));
    QCOMPARE(key->readString(QStringLiteral("SupervisorURL"), 1024),
        std::optional<QString>(QStringLiteral("http://127.0.0.1:9001/RPC2")));
    QCOMPARE(key->readString(QStringLiteral("SupervisorUser"), 1024), std::optional<QString>(QStringLiteral("sable")));
    QCOMPARE(key->readString(QStringLiteral("SupervisorPassword"), 1024),
        std::optional<QString>(QStringLiteral("암호\n둘째 줄")));
    QCOMPARE(key->readDword(QStringLiteral("MailPort")), std::optional<quint32>(587));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")).count("SupervisorUser"), 1);

    // Into a key that is not there: nothing at all.
    const QByteArray before = home.readFile(QStringLiteral("registry/HKLM.reg"));
    QVERIFY(!registry.backend().writeValues(
        RegRoot::LocalMachine, "SOFTWARE\\Halvex\\Missing", {{"A", std::string("1")}, {"B", std::uint32_t {2}}}));
    QCOMPARE(home.readFile(QStringLiteral("registry/HKLM.reg")), before);
}

void TestSettingsStores::registryContinuedLines_data()
{
    QTest::addColumn<QByteArray>("values");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected"); // read as a string; empty: no string
    QTest::addColumn<QString>("next"); // "Next" read afterwards
    // "AB" as regedit writes a long hex(1) string: over lines that end in a backslash.
    const QByteArray hex = "\"Text\"=hex(1):41,00,\\\r\n  42,00,\\\r\n  00,00\r\n";
    QTest::newRow("hex data goes on") << hex + "\"Next\"=\"n\"\r\n"
                                      << "Text"
                                      << "AB"
                                      << "n";
    QTest::newRow("a hand-edited string cut after a backslash")
        << QByteArray("\"Path\"=\"C:\\Sable\\\r\n\"Next\"=\"n\"\r\n") << "Path"
        << ""
        << "n";
    QTest::newRow("a dword ends with its line")
        << QByteArray("\"Port\"=dword:00000015\\\r\n\"Next\"=\"n\"\r\n") << "Port"
        << ""
        << "n";
    QTest::newRow("default value with hex data")
        << QByteArray("@=hex(1):41,00,\\\r\n  00,00\r\n\"Next\"=\"n\"\r\n") << ""
        << "A"
        << "n";
}

void TestSettingsStores::registryContinuedLines()
{
    QFETCH(QByteArray, values);
    QFETCH(QString, name);
    QFETCH(QString, expected);
    QFETCH(QString, next);
    TempHome home;
    home.writeFile(QStringLiteral("registry/HKLM.reg"),
        "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\SableManager]\r\n"
            + values);
    const auto key = home.registry().openKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableManager"));
    QVERIFY(key);
    QCOMPARE(key->readString(name, 1024).value_or(QString()), expected);
    QCOMPARE(key->readString(QStringLiteral("Next"), 1024), std::optional<QString>(next));
    // Written back, the value after keeps its line.
    QVERIFY(key->writeString(QStringLiteral("Next"), QStringLiteral("m")));
    QCOMPARE(key->readString(QStringLiteral("Next"), 1024), std::optional<QString>(QStringLiteral("m")));
    QCOMPARE(key->readString(name, 1024).value_or(QString()), expected);
}

void TestSettingsStores::registryFileTooLarge()
{
    TempHome home;
    const QByteArray head = "Windows Registry Editor Version 5.00\r\n\r\n"
                            "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvex\\Services\\DataBase]\r\n"
                            "\"ConnectionString\"=\"Provider=SQLite;Data Source=SableDB.db\"\r\n";
    home.writeFile(QStringLiteral("registry/HKLM.reg"), head);
    const QString file = home.path(QStringLiteral("registry/HKLM.reg"));
    // Sparse: the test writes no 64 MiB, and the reader must not read them either.
    QVERIFY(QFile(file).resize(AtomicFile::kMaxBytes + 1));
    const Registry registry = home.registry();
    const QString path = QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase");
    QVERIFY(!registry.openKey(RegRoot::LocalMachine, path));
    QCOMPARE(registry.presence(RegRoot::LocalMachine, path, QStringLiteral("ConnectionString")),
        ValuePresence::FileTooLarge);
    QVERIFY(!registry.createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex")));
    const ConnectionSetting settled = home.config().settleConnection();
    QVERIFY(settled.text.isEmpty() && !settled.bWroteDefault);
    QVERIFY2(settled.problem.contains(QLatin1String("64MiB")), qPrintable(settled.problem));
    QCOMPARE(QFileInfo(file).size(), AtomicFile::kMaxBytes + 1);
    QFile in(file);
    QVERIFY(in.open(QIODevice::ReadOnly));
    QCOMPARE(in.read(head.size()), head);
    // One byte less is a registry again.
    QVERIFY(QFile(file).resize(AtomicFile::kMaxBytes));
    QVERIFY(registry.openKey(RegRoot::LocalMachine, path));
}

void TestSettingsStores::newFilesAreTheOwners_data()
{
    QTest::addColumn<QString>("file"); // below the temporary folder
    QTest::addColumn<int>("modeBefore"); // 0: no file
    QTest::addColumn<int>("modeAfter");
    QTest::newRow("new registry in a new folder") << "registry/HKLM.reg" << 0 << 0600;
    QTest::newRow("new settings file") << "home/Serverinfo.ini" << 0 << 0600;
    QTest::newRow("shared with a group") << "home/Serverinfo.ini" << 0660 << 0660;
    QTest::newRow("readable by all") << "registry/HKLM.reg" << 0644 << 0644;
}

void TestSettingsStores::newFilesAreTheOwners()
{
#ifndef Q_OS_UNIX
    QSKIP("file modes are POSIX's");
#else
    QFETCH(QString, file);
    QFETCH(int, modeBefore);
    QFETCH(int, modeAfter);
    TempHome home;
    const QString path = home.path(file);
    if (modeBefore != 0) {
        home.writeFile(file, "Windows Registry Editor Version 5.00\r\n\r\n");
        QVERIFY(::chmod(QFile::encodeName(path).constData(), static_cast<mode_t>(modeBefore)) == 0);
    }
    if (file.endsWith(QLatin1String(".ini")))
        QVERIFY(IniFile(path).writeString(QStringLiteral("DBInfo"), QStringLiteral("PWD"), QStringLiteral("secret")));
    else
        QVERIFY(home.registry().createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex")));
    const auto modeOf = [](const QString& name) {
        struct stat info = {};
        return ::stat(QFile::encodeName(name).constData(), &info) == 0 ? int(info.st_mode & 07777) : -1;
    };
    QCOMPARE(modeOf(path), modeAfter);
    // The lock file: no more open than the file it guards (less where the umask says so).
    QCOMPARE(modeOf(path + QStringLiteral(".lock")) & ~modeAfter, 0);
    QVERIFY((modeOf(path + QStringLiteral(".lock")) & 0600) == 0600);
    if (modeBefore == 0 && file.startsWith(QLatin1String("registry")))
        QCOMPARE(modeOf(QFileInfo(path).absolutePath()), 0700);
#endif
}

void TestSettingsStores::writerKilledAtRandomMoments()
{
    // The writer replaces the file again and again with one batch of values that name their
    // generation; killed at any moment, it leaves the file whole and one generation throughout,
    // and its lock dies with it.
    TempHome home;
    const QString file = home.path(QStringLiteral("HKLM.reg"));
    RegFileBackend backend(file, file + QStringLiteral(".hkcu"));
    const std::string key = "SOFTWARE\\Halvex\\Race";
    int generationsSeen = 0;
    for (int round = 0; round < 40; ++round) {
        QProcess writer;
        writer.start(QStringLiteral(REGWRITER_PATH), {file, QStringLiteral("--generations")});
        QVERIFY(writer.waitForStarted());
        // Most rounds wait for the first write, so that the kill lands among the writes; others
        // kill it while it starts, takes the lock or writes its first generation.
        if (round % 4 != 0)
            QVERIFY2(writer.waitForReadyRead(20000), "no writer got the lock");
        QThread::usleep(QRandomGenerator::global()->bounded(30000));
        writer.kill();
        QVERIFY(writer.waitForFinished(10000));
        const auto generation = backend.readDword(RegRoot::LocalMachine, key, "Generation");
        if (!generation) {
            QVERIFY(!backend.readString(RegRoot::LocalMachine, key, "URL", 1024));
            continue;
        }
        ++generationsSeen;
        const std::string tag = std::to_string(*generation);
        QCOMPARE(backend.readString(RegRoot::LocalMachine, key, "URL", 1024),
            std::optional<std::string>("http://host-" + tag + "/RPC2"));
        QCOMPARE(
            backend.readString(RegRoot::LocalMachine, key, "User", 1024), std::optional<std::string>("user-" + tag));
        QCOMPARE(backend.readString(RegRoot::LocalMachine, key, "Password", 1024),
            std::optional<std::string>("secret-" + tag));
        QCOMPARE(backend.valuePresence(RegRoot::LocalMachine, key, "Padding"), ValuePresence::Present);
        QCOMPARE(
            backend.readString(RegRoot::LocalMachine, key, "Padding", 1 << 20).value_or("").size(), size_t(64 * 1024));
    }
    QVERIFY(generationsSeen > 0);
    // The next writer is not kept waiting by any of the killed ones, and clears what they left.
    QVERIFY(backend.writeValues(RegRoot::LocalMachine, key, {{"Generation", std::uint32_t {0}}}));
    QCOMPARE(backend.readDword(RegRoot::LocalMachine, key, "Generation"), std::optional<std::uint32_t>(0));
    QVERIFY(!QFile::exists(file + QStringLiteral(".tmp")));
}

QTEST_GUILESS_MAIN(TestSettingsStores)
#include "tst_settings_stores.moc"
