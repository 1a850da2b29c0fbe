// The console window as an administrator uses it: navigation, the commands each view offers, the
// chart editor's editing by hand, saving, closing and stopping a load.

#include "ChartText.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "document/JournalView.h"
#include "document/RankEdits.h"
#include "document/RestorePointDialog.h"
#include "filebox/SableBoxSettingsDialog.h"
#include "mainwindow/CMainFrame.h"
#include "mainwindow/CProgressThread.h"
#include "onboarding/RecipientModel.h"
#include "onboarding/RegistrationMailDialog.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/COrganizeTemplateView.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeModel.h"
#include "orgchart/OrgTreeView.h"
#include "platform/ServiceBackend.h"
#include "server/ServerServiceControl.h"
#include "widgets/BalloonTip.h"
#include "widgets/NavigationBar.h"

#include <QAction>
#include <QCheckBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTableView>
#include <QTableWidget>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QTreeWidget>

using namespace sable;

namespace {

// A frame on a demo server folder, with every question answered as the test says.
struct Console
{
    TempHome home;
    std::unique_ptr<CMainFrame> frame;
    QStringList asked;
    QStringList told;
    bool bYes = true;
    Prompter::Answer closeAnswer = Prompter::Answer::Cancel;

    Console()
    {
        DbConnection create;
        const QString database = home.paths().defaultDatabasePath;
        create.open(sqliteConnectionString(database) + QStringLiteral(";FailIfMissing=False"));
        create = DbConnection();
    }

    QString database() const { return sqliteConnectionString(home.paths().defaultDatabasePath); }

    CMainFrame& open()
    {
        const StartupConfig config = home.config();
        const StartupSettings settings = config.read();
        frame = std::make_unique<CMainFrame>(config, settings, std::make_shared<UnavailableServiceBackend>("none"));
        Prompter prompter;
        prompter.askYesNo = [this](QWidget*, const QString& q) { return asked << q, bYes; };
        prompter.askYesNoDetailed = [this](QWidget*, const QString& q, const QString&) { return asked << q, bYes; };
        prompter.askYesNoCancel = [this](QWidget*, const QString& q) { return asked << q, closeAnswer; };
        prompter.inform = [this](QWidget*, const QString& text) { told << text; };
        prompter.warn = prompter.inform;
        prompter.reportError = [this](QWidget*, const QString& summary, const QString&) { told << summary; };
        frame->setPrompter(prompter);
        frame->show();
        return *frame;
    }

    bool load()
    {
        QSignalSpy loaded(frame.get(), &CMainFrame::chartLoaded);
        frame->startLoad();
        return loaded.wait(20000);
    }

    // Saves as 파일 ▸ 저장 does; true when it was written.
    bool save()
    {
        QSignalSpy saved(frame.get(), &CMainFrame::saveFinished);
        frame->runCommand(Cmd::kSave);
        return saved.wait(20000) && saved.first().first().value<ChartSave::Outcome>() == ChartSave::Outcome::Saved;
    }

    COrganizeFormView* editor()
    {
        frame->switchToView(Cmd::kChartEditor);
        return frame->chartEditor()->form();
    }
};

bool writeDemo(const TempHome& home)
{
    QProcess sablectl;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("SABLE_REGISTRY_DIR"), home.registryFolder());
    sablectl.setProcessEnvironment(env);
    sablectl.start(QStringLiteral(SABLECTL_PATH),
        {QStringLiteral("--home"), home.paths().programFolder, QStringLiteral("db"), QStringLiteral("init"),
            QStringLiteral("--demo")});
    return sablectl.waitForFinished(60000) && sablectl.exitCode() == 0;
}

QLineEdit* openEditor(QAbstractItemView* view, const QModelIndex& index)
{
    view->setCurrentIndex(index);
    view->edit(index);
    return view->viewport()->findChild<QLineEdit*>();
}

// Ends an in-place edit as Enter does: the delegate hands the editor's text to the view.
void commit(QAbstractItemView* view, QLineEdit* editor, const QString& text)
{
    editor->setText(text);
    Q_EMIT view->itemDelegate()->commitData(editor);
    Q_EMIT view->itemDelegate()->closeEditor(editor);
}

} // namespace

class TestConsoleWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void navigation();
    void commandStates_data();
    void commandStates();
    void dragMembersOntoDepartment();
    void renameInPlace();
    void unsavedMarkAndMoveCommand();
    void cellLimitBalloon();
    void saveRefusedOrDeclined();
    void closeQuestion_data();
    void closeQuestion();
    void balloonHelpWritten();
    void oneUpgradeDownloadAtATime();
    void editSaveAndFindAfterRestart();
    void registrationMailFromTheChartEditor();
    void stopLoading();
    void restorePointOpensAsOneStep();
    void journalFilters_data();
    void journalFilters();

private:
    std::unique_ptr<Console> m_console;
};

void TestConsoleWindow::init()
{
    m_console = std::make_unique<Console>();
    QVERIFY(writeDemo(m_console->home));
}

void TestConsoleWindow::navigation()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    NavigationBar* bar = frame.navigationBar();
    QCOMPARE(bar->openGroupIndex(), 0);
    QCOMPARE(frame.currentView(), int(Cmd::kStartPage));
    bar->itemButton(0)->click();
    QCOMPARE(frame.currentView(), int(Cmd::kChartEditor));
    QWidget* editor = frame.view(Cmd::kChartEditor);
    // The item of the view shown does nothing: the same view, nothing reloaded.
    bar->itemButton(0)->click();
    QCOMPARE(frame.view(Cmd::kChartEditor), editor);
    QVERIFY(bar->itemButton(0)->isChecked());
    // The file-box settings item opens a dialog and leaves the view as it is.
    bar->groupButton(1)->click();
    bar->itemButton(4)->click();
    QCOMPARE(frame.currentView(), int(Cmd::kChartEditor));
    QTRY_VERIFY(frame.findChild<SableBoxSettingsDialog*>());
    frame.findChild<SableBoxSettingsDialog*>()->reject();
    bar->itemButton(1)->click();
    QCOMPARE(frame.currentView(), int(Cmd::kRankEditor));
    bar->itemButton(5)->click();
    QCOMPARE(frame.currentView(), int(Cmd::kJournal));
}

void TestConsoleWindow::commandStates_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<bool>("chart");
    QTest::addColumn<bool>("ranks");
    QTest::addColumn<bool>("upDown");
    QTest::addColumn<bool>("permissions");
    QTest::newRow("start page") << int(Cmd::kStartPage) << false << false << false << false;
    QTest::newRow("chart editor") << int(Cmd::kChartEditor) << true << false << true << false;
    QTest::newRow("rank editor") << int(Cmd::kRankEditor) << false << true << true << false;
    QTest::newRow("folder permissions") << int(Cmd::kFolderPermissions) << false << false << false << true;
    QTest::newRow("user permissions") << int(Cmd::kUserPermissions) << false << false << false << true;
}

void TestConsoleWindow::commandStates()
{
    QFETCH(int, view);
    QFETCH(bool, chart);
    QFETCH(bool, ranks);
    QFETCH(bool, upDown);
    QFETCH(bool, permissions);
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    frame.switchToView(view);
    QCOMPARE(frame.action(Cmd::kDeletePermission)->isEnabled(), permissions);
    QCOMPARE(frame.action(Cmd::kEditFolders)->isEnabled(), permissions);
    // A command that is disabled does nothing, also when it is asked for directly.
    const int groups = frame.document().chart().groupCount();
    frame.runCommand(Cmd::kAddDepartment);
    QCOMPARE(frame.document().chart().groupCount(), groups + (chart ? 1 : 0));
    for (int command = Cmd::kAddDepartment; command <= Cmd::kDeleteUser; ++command)
        QCOMPARE(frame.action(command)->isEnabled(), chart);
    for (int command = Cmd::kAddRank; command <= Cmd::kDeleteRank; ++command)
        QCOMPARE(frame.action(command)->isEnabled(), ranks);
    QCOMPARE(frame.action(Cmd::kMoveUp)->isEnabled(), upDown);
    QCOMPARE(frame.action(Cmd::kMoveDown)->isEnabled(), upDown);
    // Without a service manager nothing runs; Stop stays enabled to say why nothing can be stopped.
    QVERIFY(frame.action(Cmd::kStopServer)->isEnabled());
    QVERIFY(frame.action(Cmd::kSave)->isEnabled());
    QVERIFY(frame.action(Cmd::kBalloonHelp)->isChecked());
}

void TestConsoleWindow::dragMembersOntoDepartment()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    COrganizeFormView* form = m_console->editor();
    const QModelIndex research = form->treeModel()->indexOf(frame.document().chart().findGroup(8));
    // The two interns, in no department, dragged from the member list.
    QMimeData* data
        = form->memberModel()->mimeData({form->memberModel()->index(38, 0), form->memberModel()->index(39, 0)});
    QVERIFY(data->hasFormat(memberDragMimeType()));
    QCOMPARE(data->data(memberDragMimeType()),
        QByteArray::fromHex("02000000"
                            "27000000"
                            "00000000"
                            "28000000"
                            "01000000"));
    QVERIFY(form->tree()->model()->canDropMimeData(data, Qt::MoveAction, -1, 0, research));
    form->tree()->model()->dropMimeData(data, Qt::MoveAction, -1, 0, research);
    form->tree()->model()->dropMimeData(data, Qt::MoveAction, -1, 0, research);
    QVERIFY(chartText(frame.document().chart(), frame.document().chart().findGroup(8))
                .endsWith(QStringLiteral("#39:6 #40:6")));
    QVERIFY(!form->memberModel()->index(38, 0).data(MemberListModel::FadedRole).toBool());
    // Not onto a member node.
    const QModelIndex member = form->treeModel()->index(0, 0, research);
    QVERIFY(!form->tree()->model()->canDropMimeData(data, Qt::MoveAction, -1, 0, member));
    delete data;
    QVERIFY(frame.document().isModified());
    QVERIFY(frame.action(Cmd::kUndo)->text().contains(QStringLiteral("기술연구소")));
}

void TestConsoleWindow::renameInPlace()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    COrganizeFormView* form = m_console->editor();
    QLineEdit* editor = openEditor(form->tree(), form->treeModel()->indexOf(frame.document().chart().findGroup(3)));
    QVERIFY(editor);
    commit(form->tree(), editor, QStringLiteral("인재개발팀"));
    QCOMPARE(frame.document().chart().findGroup(3)->name(), QStringLiteral("인재개발팀"));
    // A member node is not renamed in place.
    const QModelIndex member
        = form->treeModel()->index(0, 0, form->treeModel()->indexOf(frame.document().chart().findGroup(3)));
    QVERIFY(!(form->treeModel()->flags(member) & Qt::ItemIsEditable));
}

void TestConsoleWindow::unsavedMarkAndMoveCommand()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    QCOMPARE(frame.windowTitle(), QStringLiteral("SableManager[*]"));
    QVERIFY(!frame.isWindowModified());
    COrganizeFormView* form = m_console->editor();
    OrgChart& chart = frame.document().chart();
    // Nothing to move while the top department is selected; a department moves where it is put.
    form->tree()->setCurrentIndex(form->treeModel()->indexOf(chart.rootGroup()));
    QVERIFY(!frame.action(Cmd::kMoveToDepartment)->isEnabled());
    QCOMPARE(frame.action(Cmd::kMoveToDepartment)->text(), QStringLiteral("부서 이동(&V)..."));
    form->setDepartmentPicker(
        [&chart](const OrgNode* moving) { return moving == chart.findGroup(7) ? chart.findGroup(8) : nullptr; });
    form->tree()->setCurrentIndex(form->treeModel()->indexOf(chart.findGroup(7)));
    QVERIFY(frame.action(Cmd::kMoveToDepartment)->isEnabled());
    frame.runCommand(Cmd::kMoveToDepartment);
    QCOMPARE(chart.findGroup(7)->parent(), chart.findGroup(8));
    QVERIFY(frame.isWindowModified());
    frame.action(Cmd::kUndo)->trigger();
    QCOMPARE(chart.findGroup(7)->parent(), chart.findGroup(5));
    QVERIFY(!frame.isWindowModified());
}

void TestConsoleWindow::cellLimitBalloon()
{
    m_console->open();
    QVERIFY(m_console->load());
    COrganizeFormView* form = m_console->editor();
    const QModelIndex mobile = form->memberModel()->index(0, ColHP);
    QLineEdit* editor = openEditor(form->memberList(), mobile);
    QVERIFY(editor);
    commit(form->memberList(), editor, QStringLiteral("010-1234-56789"));
    QVERIFY(BalloonTip::current());
    QCOMPARE(BalloonTip::current()->balloon().text, QStringLiteral("13자를 초과할 수 없습니다."));
    QCOMPARE(mobile.data().toString(), QStringLiteral("010-2301-1001"));
    BalloonTip::hideCurrent();
}

void TestConsoleWindow::saveRefusedOrDeclined()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    const QStringList before = tableDump(m_console->database());
    COrganizeFormView* form = m_console->editor();
    form->memberModel()->setData(form->memberModel()->index(4, ColPasswd), QString());
    QSignalSpy finished(&frame, &CMainFrame::saveFinished);
    frame.runCommand(Cmd::kSave);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.first().first().value<ChartSave::Outcome>(), ChartSave::Outcome::Refused);
    QVERIFY(m_console->asked.isEmpty());
    QCOMPARE(BalloonTip::current()->balloon().text, QStringLiteral("아이디나 비밀번호가 비어있는 아이디가 있습니다."));

    form->memberModel()->setData(form->memberModel()->index(4, ColPasswd), QStringLiteral("new-pass"));
    m_console->bYes = false;
    frame.runCommand(Cmd::kSave);
    QCOMPARE(finished.last().first().value<ChartSave::Outcome>(), ChartSave::Outcome::Declined);
    QCOMPARE(
        m_console->asked.last(), QStringLiteral("조직도 및 개인정보가 삭제후  새로 저장됩니다.\n\n저장하시겠습니까?"));
    QCOMPARE(tableDump(m_console->database()), before);
}

void TestConsoleWindow::closeQuestion_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<bool>("written");
    QTest::newRow("cancel") << int(Prompter::Answer::Cancel) << false << false;
    QTest::newRow("no") << int(Prompter::Answer::No) << true << false;
    QTest::newRow("yes") << int(Prompter::Answer::Yes) << true << true;
}

void TestConsoleWindow::closeQuestion()
{
    QFETCH(int, answer);
    QFETCH(bool, closed);
    QFETCH(bool, written);
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    COrganizeFormView* form = m_console->editor();
    frame.document().chart().findGroup(2);
    form->treeModel()->setData(
        form->treeModel()->indexOf(frame.document().chart().findGroup(2)), QStringLiteral("총괄본부"));
    QVERIFY(frame.document().isModified());
    m_console->closeAnswer = static_cast<Prompter::Answer>(answer);
    frame.close();
    QCOMPARE(m_console->asked.first(), QStringLiteral("편집 내용을 저장하시겠습니까?"));
    QTRY_COMPARE(frame.isVisible(), !closed);
    QCOMPARE(tableDump(m_console->database()).filter(QStringLiteral("총괄본부")).size(), written ? 1 : 0);
}

void TestConsoleWindow::balloonHelpWritten()
{
    CMainFrame& frame = m_console->open();
    frame.runCommand(Cmd::kBalloonHelp);
    QVERIFY(!frame.action(Cmd::kBalloonHelp)->isChecked());
    QVERIFY(m_console->home.readFile(QStringLiteral("registry/HKCU.reg")).contains("\"BalloonHelp\"=dword:00000000"));
    frame.runCommand(Cmd::kBalloonHelp);
    QVERIFY(m_console->home.readFile(QStringLiteral("registry/HKCU.reg")).contains("\"BalloonHelp\"=dword:00000001"));
}

void TestConsoleWindow::oneUpgradeDownloadAtATime()
{
    // A web server on 127.0.0.1 that answers only when told to.
    QTcpServer web;
    QVERIFY(web.listen(QHostAddress::LocalHost));
    QList<QTcpSocket*> requests;
    connect(&web, &QTcpServer::newConnection, &web, [&] { requests << web.nextPendingConnection(); });
    m_console->home.registry()
        .createKey(RegRoot::LocalMachine, QStringLiteral("SOFTWARE\\Halvex\\SableManager"))
        ->writeString(
            QStringLiteral("UpgradeURL"), QStringLiteral("http://127.0.0.1:%1/SM40Patch.exe").arg(web.serverPort()));
    CMainFrame& frame = m_console->open();
    frame.runCommand(Cmd::kPreviousVersionData);
    QCOMPARE(
        m_console->asked, QStringList {QStringLiteral("DB업그레이드 프로그램을 다운로드 합니다.\n계속 하시겠습니까?")});
    QTRY_COMPARE(requests.size(), 1);
    frame.runCommand(Cmd::kPreviousVersionData);
    QTest::qWait(200);
    QCOMPARE(requests.size(), 1);
    QCOMPARE(m_console->asked.size(), 1);
    const QByteArray program = "#!/bin/sh\ntouch upgraded\n";
    QTRY_VERIFY(requests.first()->bytesAvailable() > 0 || requests.first()->waitForReadyRead(100));
    requests.first()->write("HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(program.size())
        + "\r\nConnection: close\r\n\r\n" + program);
    requests.first()->flush();
    // The program is stored in the server's folder and started there.
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(m_console->home.paths().programFolder + QStringLiteral("/upgraded")), 10000);
}

void TestConsoleWindow::editSaveAndFindAfterRestart()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    COrganizeFormView* form = m_console->editor();
    OrgChart& chart = frame.document().chart();
    // A new department under the top one, renamed in place; the two interns dragged into it; a rank
    // changed; then one step taken back.
    form->tree()->setCurrentIndex(form->treeModel()->indexOf(chart.rootGroup()));
    frame.runCommand(Cmd::kAddDepartment);
    QLineEdit* name = form->tree()->viewport()->findChild<QLineEdit*>();
    QVERIFY(name);
    commit(form->tree(), name, QStringLiteral("신규사업팀"));
    OrgNode* team = chart.rootGroup()->child(chart.rootGroup()->childCount() - 1);
    QCOMPARE(team->name(), QStringLiteral("신규사업팀"));
    std::unique_ptr<QMimeData> interns(
        form->memberModel()->mimeData({form->memberModel()->index(38, 0), form->memberModel()->index(39, 0)}));
    form->treeModel()->dropMimeData(interns.get(), Qt::MoveAction, -1, 0, form->treeModel()->indexOf(team));
    ChartEdits(frame.document()).setRank(team->child(0), RankEdits::kNoRankCommand + 2);
    ChartEdits(frame.document()).setRank(team->child(1), RankEdits::kNoRankCommand + 3);
    QVERIFY(frame.action(Cmd::kUndo)->isEnabled());
    frame.action(Cmd::kUndo)->trigger();
    QCOMPARE(team->child(1)->rankId(), 6);

    QSignalSpy saved(&frame, &CMainFrame::saveFinished);
    frame.runCommand(Cmd::kSave);
    QVERIFY(saved.wait(20000));
    QCOMPARE(saved.first().first().value<ChartSave::Outcome>(), ChartSave::Outcome::Saved);
    QVERIFY(!frame.document().isModified());
    frame.close();

    CMainFrame& again = m_console->open();
    QVERIFY(m_console->load());
    const OrgChart& reloaded = again.document().chart();
    const OrgNode* found = reloaded.rootGroup()->child(reloaded.rootGroup()->childCount() - 1);
    QCOMPARE(found->name(), QStringLiteral("신규사업팀"));
    QCOMPARE(chartText(reloaded, found), QStringLiteral("#39:2 #40:6"));
}

void TestConsoleWindow::registrationMailFromTheChartEditor()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    frame.switchToView(Cmd::kRankEditor);
    frame.runCommand(Cmd::kRegistrationMail);
    QCOMPARE(frame.currentView(), int(Cmd::kChartEditor));
    RegistrationMailDialog* dialog = frame.registrationMailDialog();
    QVERIFY(dialog && dialog->isVisible());
    dialog->hide();
    frame.runCommand(Cmd::kRegistrationMail);
    QCOMPARE(frame.registrationMailDialog(), dialog);
    QVERIFY(dialog->isVisible());

    // From the tree, a department gives every member below it; from the list, the selected rows.
    COrganizeFormView* form = frame.chartEditor()->form();
    form->tree()->setCurrentIndex(form->treeModel()->indexOf(frame.document().chart().findGroup(5)));
    form->requestRegistrationMail(true);
    QCOMPARE(dialog->recipients()->rowCount(), 16);
    form->memberList()->selectRow(0);
    form->memberList()->selectionModel()->select(
        form->memberModel()->index(38, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    form->requestRegistrationMail(false);
    QCOMPARE(dialog->recipients()->rowCount(), 18);
    form->requestRegistrationMail(false); // already listed: nothing more
    QCOMPARE(dialog->recipients()->rowCount(), 18);
}

void TestConsoleWindow::stopLoading()
{
    // The database is held so that the load waits at its first statement while stop is pressed.
    DbConnection holder;
    QVERIFY(holder.open(m_console->database()));
    QVERIFY(holder.executeNoRecords(QStringLiteral("BEGIN EXCLUSIVE")));
    CMainFrame& frame = m_console->open();
    frame.startLoad();
    QVERIFY(frame.progressWindow());
    QTRY_VERIFY(frame.progressWindow()->isVisible());
    frame.progressWindow()->stopButton()->click();
    QVERIFY(holder.executeNoRecords(QStringLiteral("COMMIT")));
    // A stop inside the load shows the open failure, then the console closes.
    QTRY_VERIFY_WITH_TIMEOUT(!frame.isVisible(), 20000);
    QCOMPARE(m_console->told, QStringList {QStringLiteral("데이터 베이스 파일을 여는중 오류가 발생했습니다.")});
}

namespace {

// Renames 재무팀 (4) and saves; then gives mjlee a new password and saves again.
bool saveTwice(Console& console)
{
    CSableManagerDoc& doc = console.frame->document();
    if (!ChartEdits(doc).renameDepartment(doc.chart().findGroup(4), QStringLiteral("재무회계팀")).bChanged
        || !console.save())
        return false;
    for (int row = 0; row < doc.chart().memberCount(); ++row) {
        if (doc.chart().member(row).MemberID == QLatin1String("mjlee"))
            return ChartEdits(doc).editCell(row, ColPasswd, QStringLiteral("new-secret")).bChanged && console.save();
    }
    return false;
}

} // namespace

void TestConsoleWindow::restorePointOpensAsOneStep()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    QVERIFY(saveTwice(*m_console));
    CSableManagerDoc& doc = frame.document();
    QCOMPARE(doc.chart().findGroup(4)->name(), QStringLiteral("재무회계팀"));

    // The older point (before the rename) is chosen; the question says that edits are replaced.
    bool bRan = false;
    frame.setRestorePointRunner([&bRan](RestorePointDialog& dialog) {
        QSignalSpy listed(&dialog, &RestorePointDialog::listRead);
        QVERIFY(listed.wait(10000));
        QTreeWidget* list = dialog.list();
        QCOMPARE(list->topLevelItemCount(), 2);
        QVERIFY2(list->topLevelItem(1)->text(3).contains(QStringLiteral("부서: 추가 0, 변경 1, 삭제 0")),
            qPrintable(list->topLevelItem(1)->text(3)));
        QCOMPARE(list->topLevelItem(0)->text(2), QStringLiteral("console"));
        list->setCurrentItem(list->topLevelItem(1));
        dialog.openButton()->click();
        QTRY_COMPARE_WITH_TIMEOUT(dialog.result(), int(QDialog::Accepted), 10000);
        bRan = true;
    });
    m_console->asked.clear();
    frame.runCommand(Cmd::kRestorePoints);
    QVERIFY(bRan);
    QCOMPARE(m_console->asked.size(), 1);
    QVERIFY(m_console->asked.first().contains(QStringLiteral("저장하지 않은 변경")));
    QCOMPARE(doc.chart().findGroup(4)->name(), QStringLiteral("재무팀"));
    QVERIFY(doc.isModified());
    QCOMPARE(frame.currentView(), int(Cmd::kChartEditor));
    QVERIFY(doc.history().undoText().startsWith(QStringLiteral("복원 지점 열기")));
    frame.runCommand(Cmd::kUndo);
    QCOMPARE(doc.chart().findGroup(4)->name(), QStringLiteral("재무회계팀"));
    frame.runCommand(Cmd::kRedo);
    QCOMPARE(doc.chart().findGroup(4)->name(), QStringLiteral("재무팀"));

    // Saved as any edit: the journal view, shown, reads the third save.
    frame.switchToView(Cmd::kJournal);
    JournalView* journal = frame.journalView();
    QSignalSpy refreshed(journal, &JournalView::refreshed);
    QVERIFY(refreshed.wait(10000));
    QCOMPARE(journal->saveList()->rowCount(), 2);
    QVERIFY(m_console->save());
    QTRY_COMPARE_WITH_TIMEOUT(journal->saveList()->rowCount(), 3, 10000);
    QCOMPARE(frame.document().chart().findGroup(4)->name(), QStringLiteral("재무팀"));
}

void TestConsoleWindow::journalFilters_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("summaries"); // the saves shown, newest first
    const QString password = QStringLiteral("사용자 변경 1");
    const QString rename = QStringLiteral("부서 변경 1");
    QTest::newRow("none") << ""
                          << "" << QStringList {password, rename};
    QTest::newRow("administrator") << "user"
                                   << "ADMIN" << QStringList {password, rename};
    QTest::newRow("another administrator") << "user"
                                           << "no-such-admin" << QStringList {};
    QTest::newRow("department") << "department"
                                << "재무" << QStringList {rename};
    QTest::newRow("login ID") << "login"
                              << "MJLEE" << QStringList {password};
    // Department 4 was renamed, user 3 (mjlee) had the password changed; 14 is nobody's number.
    QTest::newRow("department's number") << "key"
                                         << "4" << QStringList {rename};
    QTest::newRow("user's number") << "key"
                                   << "3" << QStringList {password};
    QTest::newRow("number of no row") << "key"
                                      << "14" << QStringList {};
    QTest::newRow("today") << "period"
                           << "0" << QStringList {password, rename};
    QTest::newRow("from tomorrow") << "period"
                                   << "1" << QStringList {};
}

void TestConsoleWindow::journalFilters()
{
    QFETCH(QString, filter);
    QFETCH(QString, text);
    QFETCH(QStringList, summaries);
    // The account the saves name, whoever runs the test.
    const QByteArray account = qgetenv("USER");
    qputenv("USER", "sable-admin");
    const auto restoreAccount = qScopeGuard([&account] { qputenv("USER", account); });
    CMainFrame& frame = m_console->open();
    QVERIFY(m_console->load());
    QVERIFY(saveTwice(*m_console));
    frame.runCommand(Cmd::kShowJournal);
    QCOMPARE(frame.currentView(), int(Cmd::kJournal));
    JournalView* journal = frame.journalView();
    QSignalSpy refreshed(journal, &JournalView::refreshed);
    QVERIFY(refreshed.wait(10000));
    QCOMPARE(journal->saveList()->rowCount(), 2);

    if (filter == QLatin1String("period")) {
        const QDate from = QDate::currentDate().addDays(text.toInt());
        journal->fromEdit()->setDate(from);
        journal->toEdit()->setDate(from);
        journal->periodBox()->setChecked(true);
    } else if (!filter.isEmpty()) {
        QLineEdit* edit = filter == QLatin1String("user") ? journal->userEdit()
            : filter == QLatin1String("department")       ? journal->departmentEdit()
            : filter == QLatin1String("key")              ? journal->keyEdit()
                                                          : journal->loginEdit();
        edit->setText(text);
    }
    if (filter.isEmpty())
        frame.runCommand(Cmd::kRefreshJournal);
    QVERIFY(refreshed.wait(10000));
    QStringList shown;
    for (int row = 0; row < journal->saveList()->rowCount(); ++row)
        shown << journal->saveList()->item(row, 3)->text();
    QCOMPARE(shown, summaries);
    // The rows of the selected save, the newest: a password shows only as changed.
    if (!summaries.isEmpty() && summaries.first() == QStringLiteral("사용자 변경 1")) {
        QTableWidget* rows = journal->rowList();
        QCOMPARE(rows->rowCount(), 1);
        QCOMPARE(rows->item(0, 2)->text(), QStringLiteral("3"));
        QCOMPARE(rows->item(0, 4)->text(), QStringLiteral("mjlee"));
        QCOMPARE(rows->item(0, 6)->text(), QStringLiteral("비밀번호"));
    }
}

QTEST_MAIN(TestConsoleWindow)
#include "tst_console_window.moc"
