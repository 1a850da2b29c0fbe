// The client settings dialogs as an administrator uses them: which fields and buttons are open to
// input, what typing does at the limits, and what the dialogs refuse.

#include "Messages.h"
#include "SettingsKeys.h"
#include "TestSupport.h"
#include "clientsettings/AddSiteDialog.h"
#include "clientsettings/HomePageDialog.h"
#include "clientsettings/LogoDialog.h"
#include "clientsettings/SessionServerDialog.h"
#include "clientsettings/SessionServerEditDialog.h"
#include "widgets/Ipv4AddressEdit.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

using namespace sable;

namespace {

// Closes the next modal window as soon as it shows, noting what it was and what it said.
class ModalWatcher
{
public:
    ModalWatcher()
    {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            m_timer.stop();
            className = QString::fromLatin1(dialog->metaObject()->className());
            if (auto* box = qobject_cast<QMessageBox*>(dialog))
                text = box->text();
            dialog->reject();
        });
        m_timer.start();
    }

    QString className;
    QString text;

private:
    QTimer m_timer;
};

template <typename T = QWidget>
T* child(const QWidget& parent, const char* name)
{
    T* found = parent.findChild<T*>(QLatin1String(name));
    if (!found)
        qFatal("no child %s", name);
    return found;
}

// Types one character after another into whichever widget has the focus then, or into `target`.
void typeText(const QString& text, QWidget* target = nullptr)
{
    for (const QChar ch : text) {
        QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(ch));
        QApplication::sendEvent(target ? target : QApplication::focusWidget(), &press);
    }
}

void selectRows(QTreeWidget* list, const QList<int>& rows)
{
    list->clearSelection();
    for (const int row : rows)
        list->topLevelItem(row)->setSelected(true);
}

} // namespace

class TestClientSettingsDialogs : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void logoFieldsFollowTheRadioChoice();
    void captionStopsAtTheByteLimit_data();
    void captionStopsAtTheByteLimit();
    void iconFileChoice();

    void homePageAddWhenFull();
    void addSiteRefusals();
    void homePageButtons();

    void sessionServerButtons();
    void addressField_data();
    void addressField();
};

void TestClientSettingsDialogs::logoFieldsFollowTheRadioChoice()
{
    TempHome home;
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), "[SettingInfo]\nbDefaultIcon=2\n");
    const LogoSettings settings(home.paths());
    LogoDialog dialog(settings);
    const auto radios = dialog.findChildren<QRadioButton*>();
    QCOMPARE(radios.size(), 2);
    for (const bool bUser : {true, false}) {
        for (QRadioButton* radio : radios)
            QCOMPARE(radio->isChecked(), (radio->text() == Msg::kLogoUserIcon) == bUser);
        for (const char* field : {"iconPath", "browse", "caption"})
            QCOMPARE(child(dialog, field)->isEnabled(), bUser);
        QCOMPARE(dialog.choice().bDefaultIcon, !bUser);
        // A click on the other choice applies at once.
        (radios[0]->isChecked() ? radios[1] : radios[0])->click();
    }
}

void TestClientSettingsDialogs::captionStopsAtTheByteLimit_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("kept");
    QTest::newRow("12 syllables keep 11") << "가나다라마바사아자차카타"
                                          << "가나다라마바사아자차카";
    QTest::newRow("ascii keeps 22") << "Sable Messenger Office 2024"
                                    << "Sable Messenger Office";
    QTest::newRow("odd byte left over") << "a가나다라마바사아자차카"
                                        << "a가나다라마바사아자차";
    QTest::newRow("ascii fills the last byte") << "a가나다라마바사아자차카b"
                                               << "a가나다라마바사아자차b";
}

void TestClientSettingsDialogs::captionStopsAtTheByteLimit()
{
    QFETCH(QString, typed);
    QFETCH(QString, kept);
    TempHome home;
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), "[SettingInfo]\nbDefaultIcon=0\n");
    const LogoSettings settings(home.paths());
    LogoDialog dialog(settings);
    auto* caption = child<QLineEdit>(dialog, "caption");
    typeText(typed, caption);
    QCOMPARE(caption->text(), kept);
    QCOMPARE(dialog.choice().caption, kept);
    QCOMPARE(child<QLabel>(dialog, "previewCaption")->text(), kept);
}

void TestClientSettingsDialogs::iconFileChoice()
{
    TempHome home;
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), "[SettingInfo]\nbDefaultIcon=0\n");
    const QString icon = home.path(QStringLiteral("logo.ico"));
    const QString picture = home.path(QStringLiteral("logo.png"));
    QImage image(16, 16, QImage::Format_ARGB32);
    image.fill(Qt::darkBlue);
    QVERIFY(image.save(icon, "ICO") && image.save(picture, "PNG"));
    const LogoSettings settings(home.paths());
    LogoDialog dialog(settings);
    auto* preview = child<QLabel>(dialog, "previewIcon");
    QVERIFY(preview->pixmap().isNull());

    dialog.chooseIconFile(icon);
    QCOMPARE(dialog.choice().iconPath, icon);
    QVERIFY(!preview->pixmap().isNull());
    // A refused file leaves the earlier choice in place.
    ModalWatcher watcher;
    dialog.chooseIconFile(picture);
    QCOMPARE(watcher.text, Msg::kIconNotAnIcon);
    QCOMPARE(dialog.choice().iconPath, icon);
}

void TestClientSettingsDialogs::homePageAddWhenFull()
{
    TempHome home;
    QByteArray list = "|";
    for (int i = 0; i < HomePageSiteList::kMaxSites; ++i)
        list += "site" + QByteArray::number(i) + "|site" + QByteArray::number(i) + ".example|";
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), "[SettingInfo]\nHomePageURL=\nHomePageURL2=" + list + "\n");
    const HomePageSettings settings(home.paths(), HomePageSettings::kDefaultVendorHost);
    HomePageDialog dialog(settings);
    QCOMPARE(child<QTreeWidget>(dialog, "sites")->topLevelItemCount(), 20);

    ModalWatcher watcher;
    child<QPushButton>(dialog, "add")->click();
    QCOMPARE(watcher.className, QStringLiteral("QMessageBox"));
    QCOMPARE(watcher.text, Msg::kHomePageListFull);
    QCOMPARE(dialog.sites().size(), 20);
}

void TestClientSettingsDialogs::addSiteRefusals()
{
    AddSiteDialog dialog(HomePageSiteList::kForbidden);
    dialog.setSite(QStringLiteral("a|b"), QStringLiteral("x"));
    ModalWatcher forbidden;
    dialog.accept();
    QCOMPARE(forbidden.text, QStringLiteral("표시이름과 사이트 주소에 다음 문자를 입력하실수 없습니다.\n\t|"));
    dialog.setSite(QString(), QString());
    ModalWatcher empty;
    dialog.accept();
    QCOMPARE(empty.text, Msg::kAddSiteEmpty);
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    // Either field alone is enough.
    dialog.setSite(QString(), QStringLiteral("intra/login"));
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void TestClientSettingsDialogs::homePageButtons()
{
    TempHome home;
    home.writeFile(QStringLiteral("home/Serverinfo.ini"), "[SettingInfo]\nHomePageURL=\nHomePageURL2=|a|1|b|2|c|3|\n");
    const HomePageSettings settings(home.paths(), HomePageSettings::kDefaultVendorHost);
    HomePageDialog dialog(settings);
    auto* list = child<QTreeWidget>(dialog, "sites");
    const auto states = [&dialog] {
        QString out;
        for (const char* name : {"edit", "remove", "up", "down"})
            out += child(dialog, name)->isEnabled() ? u'1' : u'0';
        return out;
    };
    QCOMPARE(states(), QStringLiteral("0000"));
    selectRows(list, {1});
    QCOMPARE(states(), QStringLiteral("1111"));
    child<QPushButton>(dialog, "up")->click();
    QCOMPARE(dialog.sites().toValue(), QStringLiteral("|b|2|a|1|c|3|"));
    QCOMPARE(list->topLevelItem(0)->text(0), QStringLiteral("b"));
    QVERIFY(list->topLevelItem(0)->isSelected());
    QCOMPARE(states(), QStringLiteral("1101"));
    selectRows(list, {0, 2});
    QCOMPARE(states(), QStringLiteral("0100"));
    child<QPushButton>(dialog, "remove")->click();
    QCOMPARE(list->topLevelItemCount(), 1);
    QCOMPARE(dialog.sites().toValue(), QStringLiteral("|a|1|"));
}

void TestClientSettingsDialogs::sessionServerButtons()
{
    TempHome home;
    const RegistryKey key = *home.registry().createKey(RegRoot::LocalMachine, Keys::kSessionDInfo);
    for (int i = 0; i < 3; ++i) {
        key.writeString(Keys::kSessionDAddress.arg(i), QStringLiteral("10.0.0.%1").arg(i + 1));
        key.writeDword(Keys::kSessionDPort.arg(i), 55056);
        key.writeDword(Keys::kSessionDEnable.arg(i), i == 1 ? 0 : 1);
    }
    key.writeDword(Keys::kSessionDCount, 3);
    const SessionServerList servers(home.registry());
    SessionServerDialog dialog(servers);
    auto* list = child<QTreeWidget>(dialog, "servers");
    QVERIFY(list->isColumnHidden(1));
    QCOMPARE(list->topLevelItem(1)->text(2), Msg::kFileServerDisabled);
    auto* remove = child(dialog, "remove");
    auto* edit = child(dialog, "edit");
    for (const QList<int>& rows : {QList<int> {}, QList<int> {1}, QList<int> {0, 2}}) {
        selectRows(list, rows);
        QCOMPARE(remove->isEnabled(), !rows.isEmpty());
        QCOMPARE(edit->isEnabled(), rows.size() == 1);
    }
    child<QPushButton>(dialog, "remove")->click();
    dialog.accept();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(key.readDword(Keys::kSessionDCount), std::optional<quint32>(1));
    QCOMPARE(key.readString(Keys::kSessionDAddress.arg(0), 128), std::optional<QString>("10.0.0.2"));
    QCOMPARE(key.readDword(Keys::kSessionDEnable.arg(0)), std::optional<quint32>(0));
}

void TestClientSettingsDialogs::addressField_data()
{
    QTest::addColumn<QString>("stored"); // what the dialog opens with
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("address");
    QTest::newRow("untouched") << QString() << QString() << "0.0.0.0";
    QTest::newRow("three digits move on") << QString() << QStringLiteral("192168") << "192.168.0.0";
    QTest::newRow("octet stops at 255") << QString() << QStringLiteral("300.7") << "30.7.0.0";
    QTest::newRow("dot in an empty octet") << QString() << QStringLiteral("1..2") << "1.2.0.0";
    QTest::newRow("stored host name") << QStringLiteral("files.example") << QString() << "255.255.255.255";
}

void TestClientSettingsDialogs::addressField()
{
    QFETCH(QString, stored);
    QFETCH(QString, typed);
    QFETCH(QString, address);
    SessionServerEditDialog dialog;
    dialog.setEntry(stored, true);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    dialog.findChild<Ipv4AddressEdit*>()->setFocus();
    typeText(typed);
    QCOMPARE(dialog.address(), address);
    QVERIFY(dialog.isServerEnabled());
}

QTEST_MAIN(TestClientSettingsDialogs)
#include "tst_client_settings_dialogs.moc"
