// The file-box server settings and their dialog: what opening writes to the registry and creates on
// disk, which port ranges are refused, and what the fields and the browse button do.

#include "Messages.h"
#include "SettingsKeys.h"
#include "TestSupport.h"
#include "filebox/SableBoxSettingsDialog.h"
#include "widgets/BalloonTip.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace sable;

namespace {

const QString kAddress = QStringLiteral("10.20.30.40");

FileBoxServerSettings settingsOf(const TempHome& home)
{
    return FileBoxServerSettings(home.registry(), home.paths(), [] { return kAddress; });
}

std::optional<RegistryKey> serverKey(const TempHome& home)
{
    return home.registry().openKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
}

// A dialog whose messages are collected instead of shown.
struct Dialog
{
    explicit Dialog(const TempHome& home)
        : dialog(settingsOf(home))
    {
        Prompter prompter;
        prompter.warn = [this](QWidget*, const QString& text) { told << text; };
        prompter.inform = prompter.warn;
        dialog.setPrompter(prompter);
    }

    template <typename T>
    T* field(const char* name)
    {
        return dialog.findChild<T*>(QLatin1String(name));
    }

    SableBoxSettingsDialog dialog;
    QStringList told;
};

} // namespace

class TestFileBoxSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void openingCompletesRegistry_data();
    void openingCompletesRegistry();
    void missingHomeCreated();
    void portRange_data();
    void portRange();
    void storedPortsShownAsStored();
    void fieldsAsTyped();
    void browseButton();
};

void TestFileBoxSettings::openingCompletesRegistry_data()
{
    QTest::addColumn<bool>("withHome");
    QTest::addColumn<bool>("withPorts");
    QTest::addColumn<bool>("withAddress");
    QTest::newRow("no key at all") << false << false << false;
    QTest::newRow("only the home folder") << true << false << false;
    QTest::newRow("ports but no address") << false << true << false;
    QTest::newRow("everything there") << true << true << true;
}

void TestFileBoxSettings::openingCompletesRegistry()
{
    QFETCH(bool, withHome);
    QFETCH(bool, withPorts);
    QFETCH(bool, withAddress);
    TempHome home;
    const QString storedHome = home.path(QStringLiteral("files"));
    if (withHome || withPorts || withAddress) {
        const auto key = home.registry().createKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
        QVERIFY(key);
        if (withHome)
            key->writeString(Keys::kHomeDirectory, storedHome);
        if (withPorts) {
            key->writeDword(Keys::kCustomPasvMinPort, 6000);
            key->writeDword(Keys::kCustomPasvMaxPort, 6010);
        }
        if (withAddress)
            key->writeString(Keys::kCustomPasvIp, QStringLiteral("192.0.2.7"));
    }
    const QString expectedHome
        = withHome ? storedHome : QDir::toNativeSeparators(home.path(QStringLiteral("home/SableBox")));
    const FileBoxServerValues expected {expectedHome, withPorts ? 6000u : 55100u, withPorts ? 6010u : 55109u,
        withAddress ? QStringLiteral("192.0.2.7") : kAddress};

    {
        Dialog d(home);
        QCOMPARE(d.dialog.values(), expected);
        // Cancelling keeps what the opening wrote.
        d.dialog.reject();
    }
    const auto key = serverKey(home);
    QVERIFY(key);
    QCOMPARE(key->readString(Keys::kHomeDirectory, RegBuffer::kPath), expected.homeDirectory);
    QCOMPARE(key->readDword(Keys::kCustomPasvMinPort), expected.firstPort);
    QCOMPARE(key->readDword(Keys::kCustomPasvMaxPort), expected.lastPort);
    QCOMPARE(key->readString(Keys::kCustomPasvIp, RegBuffer::kPath), expected.passiveAddress);
    QVERIFY(QFileInfo(expectedHome).isDir());
}

void TestFileBoxSettings::missingHomeCreated()
{
    TempHome home;
    const QString deep = home.path(QStringLiteral("shares/box/root"));
    home.registry().createKey(RegRoot::LocalMachine, Keys::kSableBoxServer)->writeString(Keys::kHomeDirectory, deep);
    QVERIFY(!QFileInfo::exists(deep));
    settingsOf(home).open();
    QVERIFY(QFileInfo(deep).isDir());
    // An existing folder and what is in it are left alone.
    home.writeFile(QStringLiteral("shares/box/root/keep.txt"), "kept");
    settingsOf(home).open();
    QCOMPARE(home.readFile(QStringLiteral("shares/box/root/keep.txt")), QByteArray("kept"));
}

void TestFileBoxSettings::portRange_data()
{
    const QString badRange = QStringLiteral("포트 정보를 잘못 입력하셨습니다. 다시 입력해 주세요.");
    const QString outOfRange = QStringLiteral("포트 번호는 1부터 65535 사이의 숫자여야 합니다. 다시 입력해 주세요.");
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("refusal"); // empty: accepted
    QTest::newRow("equal ports") << "55100"
                                 << "55100" << badRange;
    QTest::newRow("one port apart") << "55100"
                                    << "55101" << QString();
    QTest::newRow("reversed") << "55109"
                              << "55100" << badRange;
    QTest::newRow("whole range") << "1"
                                 << "65535" << QString();
    QTest::newRow("port 0") << "0"
                            << "55101" << outOfRange;
    QTest::newRow("above 65535") << "55100"
                                 << "70000" << outOfRange;
    QTest::newRow("empty field") << ""
                                 << "55101" << outOfRange;
    QTest::newRow("beyond 32 bits") << "55100"
                                    << "4294967296" << outOfRange;
}

void TestFileBoxSettings::portRange()
{
    QFETCH(QString, first);
    QFETCH(QString, last);
    QFETCH(QString, refusal);
    TempHome home;
    Dialog d(home);
    d.dialog.show();
    d.field<QLineEdit>("firstPort")->setText(first);
    d.field<QLineEdit>("lastPort")->setText(last);
    d.field<QLineEdit>("passiveAddress")->setText(QStringLiteral("203.0.113.5"));
    d.dialog.accept();
    const bool accepted = refusal.isEmpty();
    QCOMPARE(d.dialog.result() == QDialog::Accepted, accepted);
    QCOMPARE(d.dialog.isVisible(), !accepted);
    const auto key = serverKey(home);
    if (accepted) {
        QVERIFY(d.told.isEmpty());
        QCOMPARE(key->readDword(Keys::kCustomPasvMinPort), first.toUInt());
        QCOMPARE(key->readDword(Keys::kCustomPasvMaxPort), last.toUInt());
        QCOMPARE(key->readString(Keys::kCustomPasvIp, RegBuffer::kPath), QStringLiteral("203.0.113.5"));
    } else {
        QCOMPARE(d.told, QStringList {refusal});
        // The dialog keeps what was typed; the registry keeps what the opening wrote.
        QCOMPARE(d.field<QLineEdit>("firstPort")->text(), first);
        QCOMPARE(d.field<QLineEdit>("lastPort")->text(), last);
        QCOMPARE(d.field<QLineEdit>("passiveAddress")->text(), QStringLiteral("203.0.113.5"));
        QCOMPARE(key->readDword(Keys::kCustomPasvMinPort), 55100u);
        QCOMPARE(key->readString(Keys::kCustomPasvIp, RegBuffer::kPath), kAddress);
    }
}

void TestFileBoxSettings::storedPortsShownAsStored()
{
    TempHome home;
    const auto key = home.registry().createKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
    QVERIFY(key->writeDword(Keys::kCustomPasvMinPort, 0));
    QVERIFY(key->writeDword(Keys::kCustomPasvMaxPort, 70000));
    Dialog d(home);
    d.dialog.show();
    QCOMPARE(d.field<QLineEdit>("firstPort")->text(), QStringLiteral("0"));
    QCOMPARE(d.field<QLineEdit>("lastPort")->text(), QStringLiteral("70000"));
    // Confirmed unchanged, the stored values are refused with a word, not quietly replaced.
    d.dialog.accept();
    QCOMPARE(d.told.size(), 1);
    QCOMPARE(key->readDword(Keys::kCustomPasvMinPort), 0u);
    QCOMPARE(key->readDword(Keys::kCustomPasvMaxPort), 70000u);
}

void TestFileBoxSettings::fieldsAsTyped()
{
    TempHome home;
    Dialog d(home);
    d.dialog.show();
    // A port field takes digits only.
    QLineEdit* last = d.field<QLineEdit>("lastPort");
    last->selectAll();
    QTest::keyClicks(last, QStringLiteral("55a2-00"));
    QCOMPARE(last->text(), QStringLiteral("55200"));
    // The address is not checked; the new home folder is created.
    d.field<QLineEdit>("passiveAddress")->setText(QStringLiteral("files.example.com"));
    const QString newHome = home.path(QStringLiteral("other box"));
    d.field<QLineEdit>("homeDirectory")->setText(newHome);
    d.dialog.accept();
    QCOMPARE(d.dialog.result(), int(QDialog::Accepted));
    const auto key = serverKey(home);
    QCOMPARE(key->readDword(Keys::kCustomPasvMaxPort), 55200u);
    QCOMPARE(key->readString(Keys::kCustomPasvIp, RegBuffer::kPath), QStringLiteral("files.example.com"));
    QCOMPARE(key->readString(Keys::kHomeDirectory, RegBuffer::kPath), newHome);
    QVERIFY(QFileInfo(newHome).isDir());
}

void TestFileBoxSettings::browseButton()
{
    TempHome home;
    Dialog d(home);
    d.dialog.show();
    QPushButton* browse = d.field<QPushButton>("browse");
    QCOMPARE(browse->text(), QStringLiteral("찾아보기(&R)"));
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(browse, &enter);
    QVERIFY(BalloonTip::current());
    QCOMPARE(BalloonTip::current()->balloon().text,
        QStringLiteral("SableBox의 기본 폴더를 설정합니다.\n여기서 설정하신 폴더가 사용자 컴퓨터의 SableBox에 보이게 "
                       "됩니다.\n설정하시려면 이 단추를 누르세요."));
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(browse, &leave);
    QVERIFY(!BalloonTip::current());
    // Without balloon help the button explains nothing.
    d.dialog.setBalloonHelp(false);
    QCoreApplication::sendEvent(browse, &enter);
    QVERIFY(!BalloonTip::current());
    // The chosen folder replaces the field in the platform's own notation; cancelling the browser keeps it.
    d.dialog.chooseHomeFolder(home.path(QStringLiteral("picked")));
    QCOMPARE(d.dialog.values().homeDirectory, QDir::toNativeSeparators(home.path(QStringLiteral("picked"))));
    d.dialog.chooseHomeFolder(QString());
    QCOMPARE(d.dialog.values().homeDirectory, QDir::toNativeSeparators(home.path(QStringLiteral("picked"))));
}

QTEST_MAIN(TestFileBoxSettings)
#include "tst_filebox_settings.moc"
