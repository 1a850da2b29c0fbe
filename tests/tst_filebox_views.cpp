// The file-box pages of the console as an administrator uses them: granting by dragging from the
// chart and from the folder tree, levels edited in place, removal, folders missing on disk,
// permissions inherited through departments, the settings dialog, and a save that reaches the SB_
// tables.

#include "SettingsKeys.h"
#include "TestSupport.h"
#include "db/ConnectionString.h"
#include "db/DbSchema.h"
#include "document/DemoOrganisation.h"
#include "filebox/CSableboxFolderFormView.h"
#include "filebox/CSableboxUserFormView.h"
#include "filebox/ChartSourcePane.h"
#include "filebox/FolderPane.h"
#include "filebox/FolderPermissionModel.h"
#include "filebox/FolderTreeModel.h"
#include "filebox/GranteePermissionModel.h"
#include "filebox/GranteeSourceModels.h"
#include "filebox/SableBoxSettingsDialog.h"
#include "mainwindow/CMainFrame.h"
#include "platform/ServiceBackend.h"
#include "widgets/NavigationBar.h"

#include <QAbstractItemModelTester>
#include <QAction>
#include <QComboBox>
#include <QDesktopServices>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

using namespace sable;

namespace {

// A console on the demo company whose file box holds \공용, \영업자료\해외 and \신규 on disk; the
// demo's \연구소 is missing.
struct Console
{
    TempHome home;
    std::unique_ptr<CMainFrame> frame;
    QStringList told;

    Console()
    {
        DbConnection db;
        db.open(sqliteConnectionString(home.paths().defaultDatabasePath) + QStringLiteral(";FailIfMissing=False"));
        bool ok = false;
        DbSchema::createMissingTables(db, &ok);
        DemoOrganisation::write(db);
        for (const char* folder : {"box/공용", "box/영업자료/해외", "box/신규"})
            QDir().mkpath(home.path(QString::fromUtf8(folder)));
        home.registry()
            .createKey(RegRoot::LocalMachine, Keys::kSableBoxServer)
            ->writeString(Keys::kHomeDirectory, boxFolder());
    }

    QString boxFolder() const { return home.path(QStringLiteral("box")); }
    QString database() const { return sqliteConnectionString(home.paths().defaultDatabasePath); }

    CMainFrame& open()
    {
        const StartupConfig config = home.config();
        frame
            = std::make_unique<CMainFrame>(config, config.read(), std::make_shared<UnavailableServiceBackend>("none"));
        Prompter prompter;
        prompter.askYesNo = [](QWidget*, const QString&) { return true; };
        prompter.askYesNoDetailed = [](QWidget*, const QString&, const QString&) { return true; };
        prompter.askYesNoCancel = [](QWidget*, const QString&) { return Prompter::Answer::No; };
        prompter.inform = [this](QWidget*, const QString& text) { told << text; };
        prompter.warn = prompter.inform;
        frame->setPrompter(prompter);
        frame->show();
        QSignalSpy loaded(frame.get(), &CMainFrame::chartLoaded);
        frame->startLoad();
        loaded.wait(20000);
        return *frame;
    }

    CSableboxFolderFormView* folderView()
    {
        frame->switchToView(Cmd::kFolderPermissions);
        return static_cast<CSableboxFolderFormView*>(frame->fileBoxView());
    }

    CSableboxUserFormView* userView()
    {
        frame->switchToView(Cmd::kUserPermissions);
        return static_cast<CSableboxUserFormView*>(frame->fileBoxView());
    }
};

// Drags `data` over `view` and drops it there, as the mouse does.
void dropOn(QAbstractItemView* view, const QMimeData* data)
{
    const QPointF at(5, 5);
    QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &enter);
    QDragMoveEvent move(at.toPoint(), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &move);
    QDropEvent drop(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view->viewport(), &drop);
}

// Picks a level in the drop-down of a level cell.
void chooseLevel(QTableView* list, int row, int column, int level)
{
    const QModelIndex cell = list->model()->index(row, column);
    list->setCurrentIndex(cell);
    list->edit(cell);
    auto* combo = list->viewport()->findChild<QComboBox*>();
    QVERIFY(combo);
    combo->setCurrentIndex(level);
    Q_EMIT combo->activated(level);
}

// The rows of one table in a dump of the database.
QStringList rowsOf(const QStringList& dump, const QString& table)
{
    const qsizetype start = dump.indexOf(QStringLiteral("== ") + table);
    QStringList rows;
    for (qsizetype i = start + 1; start >= 0 && i < dump.size() && !dump[i].startsWith(QLatin1String("== ")); ++i)
        rows << dump[i];
    return rows;
}

QStringList columnTexts(const QAbstractItemModel* model, int column)
{
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row)
        texts << model->index(row, column).data().toString();
    return texts;
}

} // namespace

class TestFileBoxViews : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void dragReadWriteAndSave();
    void missingFolderStaysAndIsRemovable();
    void userPageWithInheritedPermissions();
    void commandsFollowThePage_data();
    void commandsFollowThePage();
    void settingsDialogMovesTheHome();

private:
    std::unique_ptr<Console> m_console;
};

void TestFileBoxViews::init()
{
    m_console = std::make_unique<Console>();
}

void TestFileBoxViews::dragReadWriteAndSave()
{
    CMainFrame& frame = m_console->open();
    QVERIFY(frame.isChartLoaded());
    CSableboxFolderFormView* view = m_console->folderView();
    FolderPane* folders = view->folders();
    const auto mode = QAbstractItemModelTester::FailureReportingMode::QtTest;
    QAbstractItemModelTester folderTester(folders->model(), mode);
    QAbstractItemModelTester permissionTester(view->permissionModel(), mode);
    QCOMPARE(folders->model()->homeIndex().data().toString(), QStringLiteral("\\"));
    QTRY_VERIFY(folders->selectFolder(QStringLiteral("\\신규")));
    QCOMPARE(view->permissionModel()->rowCount(), 0);

    // 영업본부 from the chart, then a user from the member list, dropped on the folder's list.
    ChartSourcePane* chart = view->chart();
    const QModelIndex sales = chart->treeModel()->indexOf(frame.document().chart().findGroup(5));
    std::unique_ptr<QMimeData> department(chart->treeModel()->mimeData({sales}));
    dropOn(view->permissionList(), department.get());
    std::unique_ptr<QMimeData> user(chart->memberModel()->mimeData({chart->memberModel()->index(2, 0)}));
    dropOn(view->permissionList(), user.get());
    QCOMPARE(columnTexts(view->permissionModel(), FolderPermissionModel::ColGrantee),
        (QStringList {QStringLiteral("영업본부"), QStringLiteral("이민재 (mjlee)")}));
    QCOMPARE(columnTexts(view->permissionModel(), FolderPermissionModel::ColLevel),
        (QStringList {QStringLiteral("읽기"), QStringLiteral("읽기")}));
    chooseLevel(view->permissionList(), 0, FolderPermissionModel::ColLevel, ReadWrite);
    QCOMPARE(view->permissionModel()->index(0, FolderPermissionModel::ColLevel).data().toString(),
        QStringLiteral("읽기/쓰기"));
    QVERIFY(frame.document().isModified());
    // The folder in bold now that it holds permissions.
    QVERIFY(folders->model()->indexOfFolder(QStringLiteral("\\신규")).data(Qt::FontRole).value<QFont>().bold());

    // The console saves only once the chart editor has been opened.
    frame.switchToView(Cmd::kChartEditor);
    QSignalSpy finished(&frame, &CMainFrame::saveFinished);
    frame.runCommand(Cmd::kSave);
    QTRY_COMPARE_WITH_TIMEOUT(finished.size(), 1, 20000);
    QCOMPARE(finished.first().first().value<ChartSave::Outcome>(), ChartSave::Outcome::Saved);
    // The demo's folders are 1 to 4: the new one takes 5.
    const QStringList dump = tableDump(m_console->database());
    QVERIFY(rowsOf(dump, QStringLiteral("SB_Folder")).contains(QStringLiteral("5|\\신규")));
    QVERIFY(rowsOf(dump, QStringLiteral("SB_GroupAuthority")).contains(QStringLiteral("5|5|W")));
    QVERIFY(rowsOf(dump, QStringLiteral("SB_UserAuthority")).contains(QStringLiteral("5|3|R")));

    // Read back by a new console.
    m_console->frame.reset();
    m_console->open();
    view = m_console->folderView();
    QTRY_VERIFY(view->folders()->selectFolder(QStringLiteral("\\신규")));
    QCOMPARE(columnTexts(view->permissionModel(), FolderPermissionModel::ColLevel),
        (QStringList {QStringLiteral("읽기/쓰기"), QStringLiteral("읽기")}));
}

void TestFileBoxViews::missingFolderStaysAndIsRemovable()
{
    CMainFrame& frame = m_console->open();
    CSableboxFolderFormView* view = m_console->folderView();
    QListWidget* missing = view->folders()->missingList();
    QVERIFY(missing->isVisible());
    QCOMPARE(missing->count(), 1);
    QCOMPARE(missing->item(0)->text(), QStringLiteral("\\연구소"));
    QVERIFY(!missing->item(0)->toolTip().isEmpty());
    missing->setCurrentRow(0);
    QCOMPARE(view->permissionModel()->rowCount(), 3); // 기술연구소, and two users
    view->permissionList()->selectAll();
    frame.runCommand(Cmd::kDeletePermission);
    QCOMPARE(view->permissionModel()->rowCount(), 0);
    // The folder is still in the list: only the administrator's edits change it.
    QCOMPARE(missing->count(), 1);
    QVERIFY(frame.document().fileBox().findFolderByPath(QStringLiteral("\\연구소")));
    frame.action(Cmd::kUndo)->trigger(); // undo
    QCOMPARE(view->permissionModel()->rowCount(), 3);
    // Made on disk again, it leaves the missing ones when the page is shown next.
    QDir().mkpath(m_console->home.path(QStringLiteral("box/연구소")));
    frame.switchToView(Cmd::kChartEditor);
    m_console->folderView();
    QVERIFY(!missing->isVisible());
}

void TestFileBoxViews::userPageWithInheritedPermissions()
{
    CMainFrame& frame = m_console->open();
    CSableboxUserFormView* view = m_console->userView();
    ChartSourcePane* chart = view->chart();
    // 최하윤 sits in 인사팀 and, as its liaison, in 기술연구소, which writes to \연구소.
    const int row = frame.document().chart().rowOf(4);
    chart->memberList()->setCurrentIndex(chart->memberModel()->index(row, 0));
    GranteePermissionModel* model = view->permissionModel();
    QAbstractItemModelTester tester(model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(columnTexts(model, GranteePermissionModel::ColFolder),
        (QStringList {QStringLiteral("\\연구소"), QStringLiteral("\\연구소")}));
    QCOMPARE(columnTexts(model, GranteePermissionModel::ColLevel),
        (QStringList {QStringLiteral("읽기"), QStringLiteral("읽기/쓰기")}));
    QCOMPARE(columnTexts(model, GranteePermissionModel::ColSource),
        (QStringList {QStringLiteral("직접"), QStringLiteral("기술연구소 (부서)")}));
    QVERIFY(model->index(0, 0).data(GranteePermissionModel::MissingRole).toBool());
    QVERIFY(model->flags(model->index(0, GranteePermissionModel::ColLevel)) & Qt::ItemIsEditable);
    QVERIFY(!(model->flags(model->index(1, GranteePermissionModel::ColLevel)) & Qt::ItemIsEditable));

    // A folder dragged from the tree; then every row deleted: the inherited one stays.
    FolderPane* folders = view->folders();
    QModelIndex sales;
    QTRY_VERIFY((sales = folders->model()->indexOfFolder(QStringLiteral("\\영업자료\\해외"))).isValid());
    std::unique_ptr<QMimeData> folder(folders->model()->mimeData({sales}));
    dropOn(view->permissionList(), folder.get());
    QCOMPARE(model->rowCount(), 3);
    QCOMPARE(model->index(1, GranteePermissionModel::ColFolder).data().toString(), QStringLiteral("\\영업자료\\해외"));
    view->permissionList()->selectAll();
    frame.runCommand(Cmd::kDeletePermission);
    QCOMPARE(columnTexts(model, GranteePermissionModel::ColSource), QStringList {QStringLiteral("기술연구소 (부서)")});

    // A department shows its own permissions only.
    chart->tree()->setCurrentIndex(chart->treeModel()->indexOf(frame.document().chart().findGroup(5)));
    QCOMPARE(columnTexts(model, GranteePermissionModel::ColFolder), QStringList {QStringLiteral("\\영업자료")});
    chooseLevel(view->permissionList(), 0, GranteePermissionModel::ColLevel, NoAccess);
    QCOMPARE(FileBoxEdits(frame.document()).levelOf({2, Grantee::department(5)}), std::optional<int>(NoAccess));
}

void TestFileBoxViews::commandsFollowThePage_data()
{
    QTest::addColumn<int>("view");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("chart editor") << int(Cmd::kChartEditor) << false;
    QTest::newRow("folder permissions") << int(Cmd::kFolderPermissions) << true;
    QTest::newRow("user permissions") << int(Cmd::kUserPermissions) << true;
}

// Receives what the console asks the desktop to open.
class UrlCatcher : public QObject
{
    Q_OBJECT

public:
    QList<QUrl> urls;

public Q_SLOTS:
    void open(const QUrl& url) { urls << url; }
};

void TestFileBoxViews::commandsFollowThePage()
{
    QFETCH(int, view);
    QFETCH(bool, enabled);
    CMainFrame& frame = m_console->open();
    frame.switchToView(view);
    QCOMPARE(frame.action(Cmd::kDeletePermission)->isEnabled(), enabled);
    QCOMPARE(frame.action(Cmd::kEditFolders)->isEnabled(), enabled);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler(QStringLiteral("file"), &catcher, "open");
    frame.runCommand(Cmd::kEditFolders);
    QDesktopServices::unsetUrlHandler(QStringLiteral("file"));
    QCOMPARE(catcher.urls, enabled ? QList<QUrl> {QUrl::fromLocalFile(m_console->boxFolder())} : QList<QUrl> {});
}

void TestFileBoxViews::settingsDialogMovesTheHome()
{
    CMainFrame& frame = m_console->open();
    CSableboxFolderFormView* view = m_console->folderView();
    QTRY_VERIFY(view->folders()->selectFolder(QStringLiteral("\\공용")));
    NavigationBar* bar = frame.navigationBar();
    bar->groupButton(1)->click();
    bar->itemButton(4)->click();
    SableBoxSettingsDialog* dialog = nullptr;
    QTRY_VERIFY((dialog = frame.findChild<SableBoxSettingsDialog*>()) && dialog->isVisible());
    QCOMPARE(frame.currentView(), int(Cmd::kFolderPermissions));
    const QString other = m_console->home.path(QStringLiteral("other"));
    dialog->findChild<QLineEdit*>(QStringLiteral("homeDirectory"))->setText(other);
    dialog->accept();
    // The page shows the folders of the new home at once; the folder chosen before is gone.
    QCOMPARE(view->folders()->home(), other);
    QVERIFY(view->folders()->currentFolder().isEmpty());
    QVERIFY(QFileInfo(other).isDir());
    QCOMPARE(view->folders()->missingList()->count(), 4);
}

QTEST_MAIN(TestFileBoxViews)
#include "tst_filebox_views.moc"
