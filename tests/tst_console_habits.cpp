// The console as a desktop program: mnemonics that stay unique, questions that destroy only on an
// explicit Yes, keys that reach the commands, tool buttons that stay put, a layout that is kept,
// Qt's own texts in Korean, help that opens or says why, and services that explain themselves.

#include "Messages.h"
#include "SupervisorFixture.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbSchema.h"
#include "document/ChartJson.h"
#include "document/DemoOrganisation.h"
#include "filebox/CSableboxFolderFormView.h"
#include "filebox/FolderPane.h"
#include "mainwindow/CMainFormView.h"
#include "mainwindow/CMainFrame.h"
#include "mainwindow/ServiceManagerDialog.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/COrganizeTemplateView.h"
#include "orgchart/CPositionFormView.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeModel.h"
#include "orgchart/OrgTreeView.h"
#include "orgchart/RankModels.h"
#include "platform/QtTranslations.h"
#include "platform/ServiceBackend.h"
#include "server/ServerServiceControl.h"
#include "server/ServerServices.h"

#include <QAction>
#include <QCheckBox>
#include <QDesktopServices>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QTest>
#include <QToolBar>
#include <QToolButton>
#include <QTreeView>

#include <unistd.h>

using namespace sable;

namespace {

// A console on the demo company, with a service manager that is either absent or the fixture's.
struct Console
{
    TempHome home;
    std::unique_ptr<CMainFrame> frame;
    QStringList asked;
    QStringList told;

    Console()
    {
        DbConnection db;
        db.open(sqliteConnectionString(home.paths().defaultDatabasePath) + QStringLiteral(";FailIfMissing=False"));
        bool ok = false;
        DbSchema::createMissingTables(db, &ok);
        DemoOrganisation::write(db);
        QDir().mkpath(home.path(QStringLiteral("home/SableBox/공용")));
    }

    // Questions are answered No and recorded; `bRealBoxes` keeps the console's own message boxes.
    CMainFrame& open(std::shared_ptr<ServiceBackend> services = {}, bool bRealBoxes = false)
    {
        const StartupConfig config = home.config();
        frame = std::make_unique<CMainFrame>(
            config, config.read(), services ? services : std::make_shared<UnavailableServiceBackend>("not set"));
        if (!bRealBoxes) {
            Prompter prompter;
            prompter.askYesNo = [this](QWidget*, const QString& q) { return asked << q, false; };
            prompter.askYesNoDetailed
                = [this](QWidget*, const QString& q, const QString&) { return asked << q, false; };
            prompter.askYesNoCancel = [this](QWidget*, const QString& q) { return asked << q, Prompter::Answer::No; };
            prompter.inform = [this](QWidget*, const QString& text) { told << text; };
            prompter.warn = prompter.inform;
            frame->setPrompter(prompter);
        }
        frame->show();
        QSignalSpy loaded(frame.get(), &CMainFrame::chartLoaded);
        frame->startLoad();
        loaded.wait(20000);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        // The progress window goes once the reader has ended.
        if (!QTest::qWaitFor([this] { return !frame->progressWindow(); }, 10000))
            qWarning("the progress window stayed");
        return *frame;
    }

    COrganizeFormView* editor()
    {
        frame->switchToView(Cmd::kChartEditor);
        return frame->chartEditor()->form();
    }

    // Selects the first department below the top one in the chart editor's tree.
    OrgNode* selectDepartment()
    {
        COrganizeFormView* form = editor();
        const QModelIndex top = form->treeModel()->index(0, 0);
        for (int row = 0; row < form->treeModel()->rowCount(top); ++row) {
            const QModelIndex index = form->treeModel()->index(row, 0, top);
            if (form->treeModel()->nodeAt(index)->isGroup()) {
                form->tree()->setCurrentIndex(index);
                return form->treeModel()->nodeAt(index);
            }
        }
        return nullptr;
    }
};

// The letters of the visible entries of `menu` that carry a mnemonic, and the entries without one.
QStringList mnemonics(const QMenu* menu, QStringList* withoutMnemonic)
{
    QStringList letters;
    for (const QAction* action : menu->actions()) {
        if (action->isSeparator() || !action->isVisible())
            continue;
        const QKeySequence key = QKeySequence::mnemonic(action->text());
        if (key.isEmpty())
            *withoutMnemonic << action->text();
        else
            letters << key.toString();
    }
    return letters;
}

// Runs `check` on the message box that `open` brings up, then closes the box with its Enter key.
void onMessageBox(const std::function<void(QMessageBox*)>& check, const std::function<void()>& open)
{
    bool bSeen = false;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box);
        bSeen = true;
        check(box);
        QTest::keyClick(box, Qt::Key_Return);
    });
    open();
    QVERIFY(bSeen);
}

// Where QDesktopServices sends local files in these tests.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> opened;

public Q_SLOTS:
    void open(const QUrl& url) { opened << url; }
};

} // namespace

class TestConsoleHabits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void koreanStandardTexts();
    void mnemonicsInEveryState_data();
    void mnemonicsInEveryState();
    void destructiveQuestionsDefaultToNo_data();
    void destructiveQuestionsDefaultToNo();
    void keysReachTheCommands();
    void focusOrder();
    void toolButtonsKeepTheirPlace();
    void layoutRestored();
    void helpOpensTheViewsPage();
    void servicesExplainThemselves();

private:
    SupervisorFixture m_supervisor = SupervisorFixture::fromEnvironment();
};

void TestConsoleHabits::initTestCase()
{
    QVERIFY(QtTranslations::installKorean(*QCoreApplication::instance()));
}

void TestConsoleHabits::koreanStandardTexts()
{
    QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QCOMPARE(buttons.button(QDialogButtonBox::Ok)->text(), QStringLiteral("확인"));
    QCOMPARE(buttons.button(QDialogButtonBox::Cancel)->text(), QStringLiteral("취소"));
    QMessageBox box(QMessageBox::Question, QString(), QString(), QMessageBox::Yes | QMessageBox::No);
    QCOMPARE(box.button(QMessageBox::Yes)->text().remove(u'&'), QStringLiteral("예(Y)"));
    // A failure's technical text waits under "자세히".
    box.setDetailedText(QStringLiteral("(1a) file is not a database"));
    QStringList actions;
    for (QAbstractButton* button : box.buttons()) {
        if (box.buttonRole(button) == QMessageBox::ActionRole)
            actions << button->text();
    }
    QCOMPARE(actions, QStringList {Msg::kDetailsButton});
}

void TestConsoleHabits::mnemonicsInEveryState_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<int>("edits"); // steps done, the last one undone when negative
    QTest::newRow("start page, nothing to undo") << int(Cmd::kStartPage) << 0;
    QTest::newRow("chart editor, a step to undo") << int(Cmd::kChartEditor) << 1;
    QTest::newRow("chart editor, steps both ways") << int(Cmd::kChartEditor) << -2;
    QTest::newRow("rank editor, a step to undo") << int(Cmd::kRankEditor) << 1;
    QTest::newRow("folder permissions, steps both ways") << int(Cmd::kFolderPermissions) << -2;
    QTest::newRow("user permissions") << int(Cmd::kUserPermissions) << 0;
}

void TestConsoleHabits::mnemonicsInEveryState()
{
    QFETCH(int, view);
    QFETCH(int, edits);
    Console console;
    CMainFrame& frame = console.open();
    // A department whose name holds "&", the mark of a mnemonic, is renamed: the step names it.
    OrgNode* department = console.selectDepartment();
    for (int i = 0; i < std::abs(edits); ++i)
        console.editor()->treeModel()->setData(
            console.editor()->treeModel()->indexOf(department), QStringLiteral("R&D %1").arg(i));
    if (edits < 0)
        frame.document().history().undo();
    frame.switchToView(view);

    QStringList titles;
    for (QAction* entry : frame.menuBar()->actions()) {
        titles << QKeySequence::mnemonic(entry->text()).toString();
        QStringList without;
        const QStringList letters = mnemonics(entry->menu(), &without);
        QCOMPARE(QSet<QString>(letters.cbegin(), letters.cend()).size(), letters.size());
        // The two entries of the server's own console that never had one stay as they were.
        for (const QString& text : without)
            QVERIFY2(text == Msg::kCmdPreviousVersionData || text == Msg::kCmdDatabaseSettings, qPrintable(text));
    }
    QCOMPARE(QSet<QString>(titles.cbegin(), titles.cend()).size(), titles.size());
    for (const int command : {int(Cmd::kUndo), int(Cmd::kRedo)}) {
        QVERIFY(!QKeySequence::mnemonic(frame.action(command)->text()).isEmpty());
        QVERIFY2(
            !frame.action(command)->text().contains(QStringLiteral("R&D")), qPrintable(frame.action(command)->text()));
    }
    if (edits != 0)
        QVERIFY(frame.action(Cmd::kUndo)->toolTip().contains(QStringLiteral("R&D")));
}

void TestConsoleHabits::destructiveQuestionsDefaultToNo_data()
{
    QTest::addColumn<int>("command");
    QTest::newRow("delete department") << int(Cmd::kDeleteDepartment);
    QTest::newRow("delete user") << int(Cmd::kDeleteUser);
    QTest::newRow("delete rank") << int(Cmd::kDeleteRank);
    QTest::newRow("stop server") << int(Cmd::kStopServer);
}

void TestConsoleHabits::destructiveQuestionsDefaultToNo()
{
    QFETCH(int, command);
    std::shared_ptr<ServiceBackend> services;
    if (command == Cmd::kStopServer) {
        SABLE_REQUIRE_FIXTURE(m_supervisor.isAvailable(), "the supervisord fixture");
        QVERIFY(
            m_supervisor.client().call(QStringLiteral("supervisor.startProcess"), {ServerServices::kSableD, true}).kind
            == SupervisorClient::Result::Kind::Value);
        services = m_supervisor.backend();
    }
    Console console;
    CMainFrame& frame = console.open(services, true);
    if (command == Cmd::kDeleteDepartment) {
        QVERIFY(console.selectDepartment());
    } else if (command == Cmd::kDeleteUser) {
        console.editor()->memberList()->selectRow(0);
    } else if (command == Cmd::kDeleteRank) {
        frame.switchToView(Cmd::kRankEditor);
        frame.rankEditor()->rankTree()->setCurrentIndex(frame.rankEditor()->rankModel()->rankIndex(0));
    } else {
        QTRY_VERIFY_WITH_TIMEOUT(frame.action(Cmd::kStopServer)->isEnabled(), 10000);
    }
    const QByteArray before = ChartJson::write(frame.document().tables());
    // Enter alone answers the question: it must keep everything.
    onMessageBox(
        [](QMessageBox* box) {
            QCOMPARE(box->defaultButton(), box->button(QMessageBox::No));
            QCOMPARE(box->escapeButton(), static_cast<QAbstractButton*>(box->button(QMessageBox::No)));
        },
        [&] { frame.runCommand(command); });
    QCOMPARE(ChartJson::write(frame.document().tables()), before);
    if (command == Cmd::kStopServer) {
        QTest::qWait(300);
        QCOMPARE(m_supervisor.stateOf(ServerServices::kSableD), QStringLiteral("RUNNING"));
        QVERIFY(m_supervisor.stopAll());
    }
}

void TestConsoleHabits::keysReachTheCommands()
{
    Console console;
    CMainFrame& frame = console.open();
    frame.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&frame));
    COrganizeFormView* form = console.editor();

    // Delete on the tree and on the list asks the questions of the menu's delete commands.
    OrgNode* department = console.selectDepartment();
    form->tree()->setFocus();
    QTest::keyClick(form->tree(), Qt::Key_Delete);
    QCOMPARE(console.asked, QStringList {Msg::kDeleteDepartmentQuestion});
    form->memberList()->setFocus();
    form->memberList()->selectRow(0);
    QTest::keyClick(form->memberList(), Qt::Key_Delete);
    QCOMPARE(console.asked.last(), Msg::kDeleteUsersQuestion);

    // Ctrl+F goes to the search box, also from a cell that takes typing.
    QTest::keyClick(form->memberList(), Qt::Key_F, Qt::ControlModifier);
    QVERIFY(form->searchBox()->hasFocus());
    QVERIFY(!form->memberList()->viewport()->findChild<QLineEdit*>());

    // Ctrl+Up and Ctrl+Down move the selected department as 위로 and 아래로 do.
    form->tree()->setFocus();
    form->tree()->setCurrentIndex(form->treeModel()->indexOf(department));
    const int row = department->row();
    QTest::keyClick(form->tree(), Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(department->row(), row + 1);
    QTest::keyClick(form->tree(), Qt::Key_Up, Qt::ControlModifier);
    QCOMPARE(department->row(), row);

    // Shift+F10 opens the context menu of the current item.
    bool bMenu = false;
    QTimer::singleShot(0, [&bMenu] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        bMenu = menu && !menu->actions().isEmpty();
        if (menu)
            menu->close();
    });
    QTest::keyClick(form->tree(), Qt::Key_F10, Qt::ShiftModifier);
    QVERIFY(bMenu);

    // Delete on a permission list removes the selected permissions.
    frame.activateWindow(); // the offscreen platform gives it back to no one after the menu
    QVERIFY(QTest::qWaitForWindowActive(&frame));
    frame.switchToView(Cmd::kFolderPermissions);
    auto* page = static_cast<CSableboxFolderFormView*>(frame.view(Cmd::kFolderPermissions));
    QTRY_VERIFY(page->folders()->selectFolder(QStringLiteral("\\공용")));
    QTableView* permissions = page->permissionList();
    QTRY_VERIFY(permissions->model()->rowCount() > 0);
    const int granted = permissions->model()->rowCount();
    permissions->setFocus();
    // (selectRow() would read the Shift left over from Shift+F10 as a range without an anchor.)
    permissions->selectionModel()->select(
        permissions->model()->index(0, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QTest::keyClick(permissions, Qt::Key_Delete);
    QCOMPARE(permissions->model()->rowCount(), granted - 1);
}

void TestConsoleHabits::focusOrder()
{
    Console console;
    CMainFrame& frame = console.open();
    frame.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&frame));
    COrganizeFormView* form = console.editor();
    form->tree()->setFocus();
    QList<QWidget*> stops;
    for (int i = 0; i < 4; ++i) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        stops << QApplication::focusWidget();
    }
    const QList<QWidget*> expected {form->searchBox(), form->findChild<QCheckBox*>(), form->memberList()};
    QCOMPARE(stops.mid(0, 3), expected);
    // Tab leaves the list rather than walking its cells.
    QVERIFY(stops[3] != form->memberList() && !form->memberList()->isAncestorOf(stops[3]));
}

void TestConsoleHabits::toolButtonsKeepTheirPlace()
{
    Console console;
    CMainFrame& frame = console.open();
    QToolBar* bar = frame.findChild<QToolBar*>();
    const auto placeOf = [bar, &frame](int command) { return bar->widgetForAction(frame.action(command))->geometry(); };
    const QRect up = placeOf(Cmd::kMoveUp);
    const QRect undo = placeOf(Cmd::kUndo);
    console.selectDepartment();
    frame.runCommand(Cmd::kMoveDown);
    frame.runCommand(Cmd::kMoveDown);
    QVERIFY(frame.document().history().canUndo());
    QApplication::processEvents();
    QCOMPARE(placeOf(Cmd::kMoveUp), up);
    QCOMPARE(placeOf(Cmd::kUndo), undo);
    QVERIFY2(frame.action(Cmd::kUndo)->toolTip().contains(frame.document().history().undoText()),
        qPrintable(frame.action(Cmd::kUndo)->toolTip()));
}

void TestConsoleHabits::layoutRestored()
{
    Console console;
    {
        CMainFrame& frame = console.open();
        frame.resize(700, 500);
        frame.move(40, 30);
        COrganizeFormView* form = console.editor();
        form->findChild<QSplitter*>(QStringLiteral("Chart"))->setSizes({250, 400});
        form->memberList()->setColumnWidth(1, 151);
        frame.findChild<QToolBar*>()->hide();
        frame.statusBar()->hide();
        frame.switchToView(Cmd::kRankEditor);
        QVERIFY(frame.close());
    }
    CMainFrame& frame = console.open();
    QCOMPARE(frame.size(), QSize(700, 500));
    QCOMPARE(frame.currentView(), int(Cmd::kRankEditor));
    QVERIFY(!frame.findChild<QToolBar*>()->isVisible());
    QVERIFY(!frame.statusBar()->isVisible());
    COrganizeFormView* form = console.editor();
    QCOMPARE(form->memberList()->columnWidth(1), 151);
    // The splitter keeps its proportions, to a pixel of rounding.
    const QList<int> sizes = form->findChild<QSplitter*>(QStringLiteral("Chart"))->sizes();
    QVERIFY2(std::abs(sizes.value(0) * 400 - sizes.value(1) * 250) <= 650, qPrintable(QString::number(sizes.value(0))));

    // Another administrator (another HKCU) starts with the first-start layout: the start page, and
    // the member list wide enough for its columns from the ID to the e-mail address.
    Console other;
    CMainFrame& fresh = other.open();
    QCOMPARE(fresh.currentView(), int(Cmd::kStartPage));
    QTableView* list = other.editor()->memberList();
    QApplication::processEvents();
    QVERIFY2(list->columnViewportPosition(ColEmail) + list->columnWidth(ColEmail) <= list->viewport()->width(),
        qPrintable(QStringLiteral("%1 + %2 > %3")
                       .arg(list->columnViewportPosition(ColEmail))
                       .arg(list->columnWidth(ColEmail))
                       .arg(list->viewport()->width())));
}

void TestConsoleHabits::helpOpensTheViewsPage()
{
    Console console;
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
    CMainFrame& frame = console.open();
    frame.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&frame));
    // Without the guide the console says where it looked.
    frame.switchToView(Cmd::kChartEditor);
    frame.runCommand(Cmd::kHelp);
    QCOMPARE(console.told.size(), 1);
    QVERIFY(console.told[0].contains(QStringLiteral("chart-editor.html")));
    QVERIFY(catcher.opened.isEmpty());

    for (const char* page : {"Call.html", "chart-editor.html", "rank-editor.html"})
        console.home.writeFile(QStringLiteral("home/QuickGuide/") + QLatin1String(page), "<html></html>");
    frame.runCommand(Cmd::kHelp);
    frame.switchToView(Cmd::kRankEditor);
    QTest::keyClick(&frame, Qt::Key_F1);
    frame.runCommand(Cmd::kQuickGuide);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QStringList names;
    for (const QUrl& url : catcher.opened)
        names << url.fileName();
    QCOMPARE(names, (QStringList {"chart-editor.html", "rank-editor.html", "Call.html"}));
    QCOMPARE(console.told.size(), 1);
}

void TestConsoleHabits::servicesExplainThemselves()
{
    SABLE_REQUIRE_FIXTURE(m_supervisor.isAvailable(), "the supervisord fixture");
    Console console;
    CMainFrame& frame = console.open();
    auto* start = static_cast<CMainFormView*>(frame.view(Cmd::kStartPage));
    QTRY_VERIFY(start->serviceProblemText().startsWith(Msg::kServicesNotConfigured));
    // The two commands say why instead of doing nothing; No leaves the settings closed.
    frame.runCommand(Cmd::kStartServer);
    frame.runCommand(Cmd::kStopServer);
    QCOMPARE(console.asked.size(), 2);
    for (const QString& question : console.asked)
        QVERIFY(question.startsWith(Msg::kServicesNotConfigured));

    // The settings dialog: supervisord with the fixture's address, tested, then taken.
    bool bTested = false;
    QTimer::singleShot(0, [&] {
        auto* dialog = qobject_cast<ServiceManagerDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->findChild<QRadioButton*>(QStringLiteral("supervisord"))->setChecked(true);
        dialog->findChild<QLineEdit*>(QStringLiteral("url"))->setText(m_supervisor.url);
        dialog->findChild<QLineEdit*>(QStringLiteral("user"))->setText(m_supervisor.user);
        dialog->findChild<QLineEdit*>(QStringLiteral("password"))->setText(m_supervisor.password);
        QSignalSpy tested(dialog, &ServiceManagerDialog::testFinished);
        dialog->testConnection();
        bTested = tested.wait(10000) && tested.first().at(0).toBool();
        QVERIFY(dialog->findChild<QPlainTextEdit*>()->toPlainText().contains(QStringLiteral("supervisord")));
        dialog->accept();
    });
    frame.runCommand(Cmd::kServiceManager);
    QVERIFY(bTested);
    QCOMPARE(ServiceManagerSettings::read(console.home.registry()).kind, ServiceManagerSettings::Kind::Supervisord);
    QTRY_VERIFY_WITH_TIMEOUT(start->serviceProblemText().isEmpty(), 10000);
    QTRY_COMPARE(start->serviceText(ServerServices::kSableD), Msg::kServiceStopped);
}

int main(int argc, char** argv)
{
    // A screen the size of an administrator's, so that the window is not held to the default 800x600.
    const QString screen = QDir::temp().filePath(QStringLiteral("sable-screen-%1.json").arg(getpid()));
    QFile file(screen);
    if (!file.open(QIODevice::WriteOnly)
        || file.write(R"({"screens": [{"name": "screen", "x": 0, "y": 0, "width": 1600, "height": 1200,
                          "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})")
            < 0)
        return 1;
    file.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screen));
    QApplication app(argc, argv);
    TestConsoleHabits test;
    QTEST_SET_MAIN_SOURCE_PATH
    const int failures = QTest::qExec(&test, argc, argv);
    QFile::remove(screen);
    return failures;
}
#include "tst_console_habits.moc"
