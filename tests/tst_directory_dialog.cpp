// The console's directory sync: the command in the 파일 menu, the dialog's settings form, and a
// preview and an application against the OpenLDAP server of the fixture, with the registration
// mail offered to the new users.

#include "ChartText.h"
#include "Messages.h"
#include "SlapdFixture.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "directory/DirectoryConnectionPage.h"
#include "directory/DirectoryMappingPage.h"
#include "directory/DirectoryPreviewPage.h"
#include "directory/DirectorySyncDialog.h"
#include "directory/DirectorySyncPreview.h"
#include "document/DemoOrganisation.h"
#include "mainwindow/CMainFrame.h"
#include "platform/ServiceBackend.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

using namespace sable;

namespace {

// Answers every question as `bYes` says and keeps what was asked and told.
struct Answers
{
    QStringList asked;
    QStringList told;
    bool bYes = true;

    Prompter prompter()
    {
        Prompter prompter;
        prompter.askYesNo = [this](QWidget*, const QString& q) { return asked << q, bYes; };
        prompter.askYesNoDetailed = [this](QWidget*, const QString& q, const QString&) { return asked << q, bYes; };
        prompter.askYesNoCancel = [this](QWidget*, const QString& q) {
            asked << q;
            return bYes ? Prompter::Answer::Yes : Prompter::Answer::No;
        };
        prompter.inform = [this](QWidget*, const QString& text) { told << text; };
        prompter.warn = prompter.inform;
        return prompter;
    }
};

QLineEdit* field(QWidget* page, const char* name)
{
    return page->findChild<QLineEdit*>(QLatin1String(name));
}

} // namespace

class TestDirectoryDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void commandInTheFileMenu();
    void formKeepsThePasswordOfItsAccount_data();
    void formKeepsThePasswordOfItsAccount();
    void presetsFillTheMapping();
    void previewApplyAndMail();
};

void TestDirectoryDialog::commandInTheFileMenu()
{
    TempHome home;
    QProcess sablectl;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    sablectl.setProcessEnvironment(env);
    sablectl.start(QStringLiteral(SABLECTL_PATH),
        {QStringLiteral("--home"), home.paths().programFolder, QStringLiteral("db"), QStringLiteral("init"),
            QStringLiteral("--demo")});
    QVERIFY(sablectl.waitForFinished(60000) && sablectl.exitCode() == 0);
    const StartupConfig config = home.config();
    CMainFrame frame(config, config.read(), std::make_shared<UnavailableServiceBackend>("none"));
    const Command* command = frame.commands().find(Cmd::kDirectorySync);
    QVERIFY(command);
    QCOMPARE(command->menu, MenuId::File);
    QCOMPARE(Cmd::kDirectorySync, 32860);
    QAction* action = frame.action(Cmd::kDirectorySync);
    QCOMPARE(action->text(), Msg::kCmdDirectorySync);
    QVERIFY(frame.menuBar()->actions().first()->menu()->actions().contains(action));
    // Before the chart is read a sync has nothing to compare with.
    frame.updateCommandStates();
    QVERIFY(!action->isEnabled());
    QSignalSpy loaded(&frame, &CMainFrame::chartLoaded);
    frame.startLoad();
    QVERIFY(loaded.wait(20000));
    frame.updateCommandStates();
    QVERIFY(action->isEnabled());
}

void TestDirectoryDialog::formKeepsThePasswordOfItsAccount_data()
{
    QTest::addColumn<QString>("bindDn");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("password");
    QTest::newRow("same account, nothing typed") << "cn=sync,dc=example"
                                                 << ""
                                                 << "stored";
    QTest::newRow("same account, new password") << "cn=sync,dc=example"
                                                << "typed"
                                                << "typed";
    QTest::newRow("another account, nothing typed") << "cn=other,dc=example"
                                                    << ""
                                                    << "";
    QTest::newRow("anonymous") << ""
                               << "typed"
                               << "";
}

void TestDirectoryDialog::formKeepsThePasswordOfItsAccount()
{
    QFETCH(QString, bindDn);
    QFETCH(QString, typed);
    QFETCH(QString, password);
    TempHome home;
    DirectorySettings stored;
    stored.url = QStringLiteral("ldap://dir.example");
    stored.bindDn = QStringLiteral("cn=sync,dc=example");
    stored.password = QStringLiteral("stored");
    stored.baseDn = QStringLiteral("dc=example");
    QVERIFY(stored.write(home.registry()));
    CSableManagerDoc doc;
    Answers answers;
    DirectorySyncDialog dialog(doc, home.registry(), answers.prompter());
    QLineEdit* passwordField = field(dialog.connectionPage(), "password");
    QVERIFY(passwordField->text().isEmpty()); // never shown again
    QCOMPARE(passwordField->placeholderText(), Msg::kDirPasswordKept);
    field(dialog.connectionPage(), "bindDn")->setText(bindDn);
    passwordField->setText(typed);
    QCOMPARE(dialog.settings().password, password);
    // Another account without its password is not stored, and says why.
    QCOMPARE(dialog.saveSettings(), !bindDn.isEmpty() ? !password.isEmpty() : true);
    QCOMPARE(DirectorySettings::read(home.registry()).password,
        answers.told.contains(Msg::kDirNoPassword) ? QStringLiteral("stored") : password);
}

void TestDirectoryDialog::presetsFillTheMapping()
{
    TempHome home;
    CSableManagerDoc doc;
    Answers answers;
    DirectorySyncDialog dialog(doc, home.registry(), answers.prompter());
    DirectoryMappingPage* mapping = dialog.mappingPage();
    QComboBox* preset = mapping->findChild<QComboBox*>(QStringLiteral("preset"));
    preset->setCurrentIndex(preset->findData(int(DirectoryPreset::ActiveDirectory)));
    field(mapping, "uniqueId")->setText(QStringLiteral("typed by hand"));
    mapping->findChild<QPushButton*>(QStringLiteral("applyPreset"))->click();
    const DirectorySettings settings = dialog.settings();
    QCOMPARE(settings.mapping, DirectoryMapping::preset(DirectoryPreset::ActiveDirectory));
    QCOMPARE(field(dialog.connectionPage(), "filter")->text(),
        DirectorySettings::presetFilter(DirectoryPreset::ActiveDirectory));
    QCOMPARE(field(mapping, "attribute0")->text(), QStringLiteral("sAMAccountName"));
}

void TestDirectoryDialog::previewApplyAndMail()
{
    const SlapdServer slapd = SlapdServer::fromFixture();
    SABLE_REQUIRE_FIXTURE(slapd.isAvailable(), "the OpenLDAP server of the fixture");
    TempHome home;
    QVERIFY(slapd.settings().write(home.registry()));
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    const QByteArray before = snapshot(doc);
    Answers answers;
    DirectorySyncDialog dialog(doc, home.registry(), answers.prompter());
    dialog.show();
    DirectoryPreviewPage* page = dialog.previewPage();
    QSignalSpy finished(page, &DirectoryPreviewPage::previewFinished);
    page->startPreview();
    QVERIFY(page->isRunning());
    QVERIFY(finished.wait(20000));
    QCOMPARE(finished.first().first().toBool(), true);
    QVERIFY2(page->summaryText().startsWith(Msg::kDirSummary.arg(7).arg(1).arg(0).arg(6).arg(0)),
        qPrintable(page->summaryText()));
    QCOMPARE(page->entriesView()->model()->rowCount(), 14);
    QVERIFY(!page->forceCheck()->isEnabled());
    QVERIFY(page->applyButton()->isEnabled());
    QCOMPARE(snapshot(doc), before); // a preview changes nothing

    // Applied: one step, and the mail offered to the new users who have an address.
    page->applyButton()->click();
    QCOMPARE(answers.asked, QStringList {Msg::kDirMailQuestion.arg(5)});
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.mailRecipients().size(), 5);
    for (const int id : dialog.mailRecipients())
        QVERIFY(!doc.chart().findMember(id)->Passwd.isEmpty());
    QVERIFY(doc.isModified());
    QCOMPARE(doc.history().undoText(), Msg::kStepDirectorySync.arg(7).arg(1).arg(0));
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
}

QTEST_MAIN(TestDirectoryDialog)
#include "tst_directory_dialog.moc"
