#include "mainwindow/CMainFrame.h"

#include "Messages.h"
#include "directory/DirectorySyncDialog.h"
#include "document/CReadDBThread.h"
#include "document/ChartDiff.h"
#include "document/ChartMerge.h"
#include "document/JournalView.h"
#include "document/MergeEdits.h"
#include "document/RestorePointDialog.h"
#include "document/RestorePoints.h"
#include "document/SaveConflictDialog.h"
#include "filebox/CSableboxFolderFormView.h"
#include "filebox/CSableboxUserFormView.h"
#include "filebox/FileBoxHome.h"
#include "filebox/SableBoxSettingsDialog.h"
#include "mainwindow/CMainFormView.h"
#include "mainwindow/CProgressThread.h"
#include "mainwindow/SaveRunner.h"
#include "mainwindow/ServiceManagerDialog.h"
#include "mainwindow/UserGuide.h"
#include "onboarding/RegistrationMailDialog.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/COrganizeTemplateView.h"
#include "orgchart/CPositionFormView.h"
#include "platform/ChangeNotice.h"
#include "platform/IniFile.h"
#include "server/DatabaseSettingsChange.h"
#include "server/ServerDatabase.h"
#include "server/ServerServiceControl.h"
#include "server/ServiceManagerSettings.h"
#include "server/StartupSteps.h"
#include "server/UpgradeDownload.h"
#include "userimport/ImportWizard.h"
#include "userimport/UserExport.h"
#include "widgets/Icons.h"
#include "widgets/NavigationBar.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QToolBar>

namespace sable {
namespace {

constexpr int kStartServicesDelayMs = 500;
constexpr int kReaderEndWaitMs = 2000;

} // namespace

CMainFrame::CMainFrame(
    StartupConfig config, StartupSettings settings, std::shared_ptr<ServiceBackend> services, QWidget* parent)
    : QMainWindow(parent)
    , m_config(std::move(config))
    , m_settings(std::move(settings))
    , m_links(ProductLinks::read(m_config.registry()))
    , m_layout(m_config.registry())
    , m_services(std::make_unique<ServerServiceControl>(std::move(services), m_config.paths()))
    , m_commands(this, [this](int command) { runCommand(command); })
{
    setObjectName(QStringLiteral("Frame"));
    // The title bar marks unsaved edits, as desktop programs do.
    setWindowTitle(Msg::kAppTitle + QStringLiteral("[*]"));
    setWindowIcon(Icons::app());
    declareCommands();
    m_commands.fillMenuBar(menuBar());
    m_toolBar = addToolBar(Msg::kAppTitle);
    m_toolBar->setObjectName(QStringLiteral("ToolBar"));
    m_toolBar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_toolBar->setIconSize(QSize(16, 16));
    m_commands.fillToolBar(m_toolBar);
    createNavigation();

    m_statusDatabase = new QLabel(ServerDatabase::describe(m_config), this);
    statusBar()->addPermanentWidget(m_statusDatabase);
    statusBar()->showMessage(m_config.paths().programFolder);

    m_startServicesTimer.setSingleShot(true);
    m_startServicesTimer.setInterval(kStartServicesDelayMs);
    connect(&m_startServicesTimer, &QTimer::timeout, m_services.get(), &ServerServiceControl::requestStartAll);
    connect(m_services.get(), &ServerServiceControl::statesChanged, this, &CMainFrame::updateCommandStates);
    connect(m_services.get(), &ServerServiceControl::busyChanged, this, &CMainFrame::updateCommandStates);
    connect(&m_doc.history(), &EditHistory::changed, this, &CMainFrame::updateCommandStates);
    connect(&m_doc, &CSableManagerDoc::modifiedChanged, this, &QWidget::setWindowModified);
    m_saveRunner = new SaveRunner(m_doc, IniFile(m_config.paths().settingsFilePath), this);
    connect(m_saveRunner, &SaveRunner::finished, this, &CMainFrame::onSaveFinished);
    connect(m_services.get(), &ServerServiceControl::startAllFinished, this, [this](const QStringList& failures) {
        if (std::exchange(m_bReportStartAll, false) && !failures.isEmpty())
            m_prompter.showError(this, Msg::kServicesStartFailed, failures.join(u'\n'));
    });
    connect(m_services.get(), &ServerServiceControl::stopServerFinished, this, [this](const QStringList& notStopped) {
        if (!notStopped.isEmpty())
            m_prompter.warn(this, Msg::kServicesStopFailed.arg(notStopped.join(QStringLiteral(", "))));
    });

    // As the administrator left it; a first start opens wide enough for the member list.
    if (!m_layout.restoreWindow(*this))
        WindowLayout::applyFirstStartSize(*this);
    const int lastView = m_layout.lastView().value_or(Cmd::kStartPage);
    const bool bView = (lastView >= Cmd::kStartPage && lastView <= Cmd::kUserPermissions) || lastView == Cmd::kJournal;
    switchToView(bView ? lastView : Cmd::kStartPage);
    m_services->startRefreshing(5000);
}

CMainFrame::~CMainFrame()
{
    if (m_reader) {
        m_reader->stop();
        m_reader->wait();
    }
    // The views and helpers use the document and the services, which go with this object's members,
    // before the base class would delete its children: they go first.
    delete centralWidget();
    delete m_mailDialog;
    delete m_saveRunner;
    delete m_databaseChange;
    delete m_upgrade;
}

RegistrationMailDialog* CMainFrame::registrationMailDialog() const
{
    return m_mailDialog;
}

void CMainFrame::setPrompter(Prompter prompter)
{
    m_prompter = std::move(prompter);
    if (chartEditor())
        chartEditor()->form()->setPrompter(m_prompter);
    if (rankEditor())
        rankEditor()->setPrompter(m_prompter);
    for (const int view : {Cmd::kFolderPermissions, Cmd::kUserPermissions}) {
        if (auto* page = static_cast<FileBoxPermissionView*>(m_views.value(view)))
            page->setPrompter(m_prompter);
    }
}

// --- Navigation ----------------------------------------------------------------------------------

void CMainFrame::createNavigation()
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("Navigation"));
    m_navigation = new NavigationBar(splitter);
    m_pane = new QStackedWidget(splitter);
    splitter->addWidget(m_navigation);
    splitter->addWidget(m_pane);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({110, 660});
    splitter->setChildrenCollapsible(false);
    setCentralWidget(splitter);
    m_layout.restoreSplitter(*splitter, objectName());

    const int chart = m_navigation->addGroup(Msg::kNavChartGroup);
    m_navigation->addItem(chart, Icons::navigation("orgchart"), Msg::kNavChartEditor, Cmd::kChartEditor);
    m_navigation->addItem(chart, Icons::navigation("ranks"), Msg::kNavRankEditor, Cmd::kRankEditor);
    const int fileBox = m_navigation->addGroup(Msg::kNavFileBoxGroup);
    m_navigation->addItem(fileBox, Icons::navigation("folders"), Msg::kNavFolderPermissions, Cmd::kFolderPermissions);
    m_navigation->addItem(fileBox, Icons::navigation("users"), Msg::kNavUserPermissions, Cmd::kUserPermissions);
    m_navigation->addItem(fileBox, Icons::navigation("settings"), Msg::kNavFileBoxSettings, Cmd::kFileBoxSettings);
    // Below the chart's editors; added last so that the items keep the numbers they always had.
    m_navigation->addItem(chart, Icons::navigation("journal"), Msg::kNavJournal, Cmd::kJournal);
    m_navigation->openGroup(chart);
    connect(m_navigation, &NavigationBar::itemClicked, this, &CMainFrame::onNavigationItem);
}

void CMainFrame::onNavigationItem(int item)
{
    const int view = m_navigation->itemData(item);
    if (view != m_currentView)
        switchToView(view);
}

// --- Views ------------------------------------------------------------------------------------------

QWidget* CMainFrame::createView(int view)
{
    switch (view) {
    case Cmd::kStartPage: {
        auto* page = new CMainFormView(m_doc, *m_services, ServerDatabase::describe(m_config), m_links, m_pane);
        page->setChartLoaded(m_bChartLoaded);
        page->setServiceProblemSummary(
            [this] { return ServiceManagerSettings::read(m_config.registry()).unavailableSummary(); });
        connect(this, &CMainFrame::chartLoaded, page, [page] { page->setChartLoaded(true); });
        connect(page, &CMainFormView::serviceManagerRequested, this, &CMainFrame::editServiceManager);
        connect(page, &CMainFormView::guideRequested, this, [this] { openHelp(UserGuide::kIndexPage); });
        connect(page, &CMainFormView::linkRequested, this, &CMainFrame::openLink);
        return page;
    }
    case Cmd::kChartEditor: {
        auto* editor = new COrganizeTemplateView(m_doc, m_pane);
        COrganizeFormView* form = editor->form();
        form->setBalloonHelp(m_settings.bBalloonHelp);
        form->setPrompter(m_prompter);
        connect(form, &COrganizeFormView::selectionChanged, this, &CMainFrame::updateCommandStates);
        connect(form, &COrganizeFormView::registrationMailRequested, this, &CMainFrame::showRegistrationMail);
        return editor;
    }
    case Cmd::kRankEditor: {
        auto* ranks = new CPositionFormView(m_doc, m_pane);
        ranks->setBalloonHelp(m_settings.bBalloonHelp);
        ranks->setPrompter(m_prompter);
        connect(ranks, &CPositionFormView::selectionChanged, this, &CMainFrame::updateCommandStates);
        return ranks;
    }
    case Cmd::kFolderPermissions:
    case Cmd::kUserPermissions: {
        const auto home = [this] { return FileBoxHome::homeDirectory(m_config.registry(), m_config.paths()); };
        FileBoxPermissionView* page = view == Cmd::kFolderPermissions
            ? static_cast<FileBoxPermissionView*>(new CSableboxFolderFormView(m_doc, home, m_pane))
            : new CSableboxUserFormView(m_doc, home, m_pane);
        page->setPrompter(m_prompter);
        connect(page, &FileBoxPermissionView::selectionChanged, this, &CMainFrame::updateCommandStates);
        return page;
    }
    case Cmd::kJournal:
        // The journal is read on a thread of its own, with a connection of its own.
        return new JournalView([this] { return ServerDatabase::connect(m_config, nullptr); }, m_pane);
    default:
        return nullptr;
    }
}

void CMainFrame::switchToView(int view)
{
    if (view == Cmd::kFileBoxSettings) {
        // A dialog of its own, after the click that asked for it has been handled.
        QTimer::singleShot(0, this, &CMainFrame::openFileBoxSettings);
        return;
    }
    QWidget* page = m_views.value(view);
    if (!page) {
        page = createView(view);
        if (!page)
            return;
        page->setObjectName(QStringLiteral("View%1").arg(view));
        m_layout.restoreParts(*page);
        m_views.insert(view, page);
        m_pane->addWidget(page);
    }
    m_currentView = view;
    m_pane->setCurrentWidget(page);
    m_navigation->setCurrentData(view);
    if (view == Cmd::kChartEditor && m_bChartLoaded)
        chartEditor()->form()->showHints();
    if (view == Cmd::kRankEditor && m_bChartLoaded)
        rankEditor()->showHints();
    updateCommandStates();
}

COrganizeTemplateView* CMainFrame::chartEditor() const
{
    return static_cast<COrganizeTemplateView*>(m_views.value(Cmd::kChartEditor));
}

CPositionFormView* CMainFrame::rankEditor() const
{
    return static_cast<CPositionFormView*>(m_views.value(Cmd::kRankEditor));
}

CMainFormView* CMainFrame::startPage() const
{
    return static_cast<CMainFormView*>(m_views.value(Cmd::kStartPage));
}

JournalView* CMainFrame::journalView() const
{
    return static_cast<JournalView*>(m_views.value(Cmd::kJournal));
}

FileBoxPermissionView* CMainFrame::fileBoxView() const
{
    const bool bFileBox = m_currentView == Cmd::kFolderPermissions || m_currentView == Cmd::kUserPermissions;
    return bFileBox ? static_cast<FileBoxPermissionView*>(m_views.value(m_currentView)) : nullptr;
}

void CMainFrame::updateCommandStates()
{
    m_commands.updateStates(m_currentView);
}

// --- Commands ---------------------------------------------------------------------------------------

void CMainFrame::runCommand(int command)
{
    m_commands.run(command, m_currentView);
    updateCommandStates();
}

void CMainFrame::importUsers()
{
    ImportWizard wizard(m_doc, this);
    wizard.exec();
}

void CMainFrame::exportUsers()
{
    const QString path = QFileDialog::getSaveFileName(
        this, Msg::kExportDialogTitle, QDir::home().filePath(QStringLiteral("users.csv")), Msg::kExportFileFilter);
    QString problem;
    if (!path.isEmpty() && !UserExport::writeFile(m_doc.chart(), m_doc.ranks(), path, &problem))
        m_prompter.warn(this, problem);
}

void CMainFrame::syncDirectory()
{
    DirectorySyncDialog dialog(m_doc, m_config.registry(), m_prompter, this);
    dialog.exec();
    if (!dialog.mailRecipients().isEmpty())
        showRegistrationMail(dialog.mailRecipients());
}

void CMainFrame::openRestorePoint()
{
    const RestorePoints points(
        RestorePoints::defaultFolder(m_config.paths().programFolder), m_config.restorePointsKept());
    RestorePointDialog dialog(points, m_prompter, this);
    if (m_restorePointRunner)
        m_restorePointRunner(dialog);
    else
        dialog.exec();
    if (dialog.result() != QDialog::Accepted || !dialog.chosen())
        return;
    MergeEdits::applyRestore(m_doc, *dialog.chosen());
    switchToView(Cmd::kChartEditor);
    m_prompter.inform(this, Msg::kRestoreOpened.arg(ChartDiff::summaryLines(m_doc.unsavedChanges()).join(u'\n')));
}

void CMainFrame::moveSelection(bool bUp)
{
    if (m_currentView == Cmd::kChartEditor && chartEditor())
        chartEditor()->form()->moveSelectedNode(bUp ? ChartEdits::Move::Up : ChartEdits::Move::Down);
    else if (m_currentView == Cmd::kRankEditor && rankEditor())
        rankEditor()->moveSelectedRank(bUp);
}

void CMainFrame::openHelp(const QString& page)
{
    const QString folder = UserGuide::folder(m_config.paths().programFolder, QCoreApplication::applicationDirPath());
    const QString path = QDir(folder).filePath(page);
    if (!QFileInfo::exists(path)) {
        m_prompter.warn(this, Msg::kHelpMissing.arg(QDir::toNativeSeparators(path)));
        return;
    }
    openLink(QUrl::fromLocalFile(path));
}

void CMainFrame::openLink(const QUrl& url)
{
    if (!QDesktopServices::openUrl(url))
        m_prompter.warn(this, Msg::kAddressOpenFailed.arg(url.toDisplayString()));
}

void CMainFrame::showAbout()
{
    QMessageBox::about(this, Msg::kCmdAbout.left(Msg::kCmdAbout.indexOf(u'(')),
        QStringLiteral("<h3>%1</h3><p>%2</p>").arg(Msg::kProductName, QStringLiteral(SABLE_VERSION_STRING)));
}

void CMainFrame::openFileBoxSettings()
{
    auto* dialog = new SableBoxSettingsDialog(FileBoxServerSettings(m_config.registry(), m_config.paths()), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setPrompter(m_prompter);
    dialog->setBalloonHelp(m_settings.bBalloonHelp);
    // The home folder may have moved: the permission pages show the folders below the new one.
    connect(dialog, &QDialog::accepted, this, [this] {
        for (const int view : {Cmd::kFolderPermissions, Cmd::kUserPermissions}) {
            if (auto* page = static_cast<FileBoxPermissionView*>(m_views.value(view)))
                page->refreshHome();
        }
    });
    dialog->open();
}

void CMainFrame::startServer()
{
    if (explainUncontrollable())
        return;
    m_bReportStartAll = true;
    m_services->requestStartAll();
}

void CMainFrame::stopServer()
{
    if (explainUncontrollable() || !m_prompter.confirmDestroy(this, Msg::kStopServerQuestion))
        return;
    m_services->requestStopServer();
}

bool CMainFrame::explainUncontrollable()
{
    const QString reason = m_services->unavailableReason();
    if (reason.isEmpty())
        return false;
    const QString summary = ServiceManagerSettings::read(m_config.registry()).unavailableSummary();
    if (m_prompter.askYesNoDetailed(this, summary + QStringLiteral("\n\n") + Msg::kOpenServiceManagerQuestion, reason))
        editServiceManager();
    return true;
}

void CMainFrame::editServiceManager()
{
    ServiceManagerDialog dialog(m_config.registry(), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_services->setBackend(ServiceManagerSettings::read(m_config.registry()).createBackend());
    updateCommandStates();
}

void CMainFrame::toggleBalloonHelp()
{
    m_settings.bBalloonHelp = !m_settings.bBalloonHelp;
    // The switch changes for this run even when the setting cannot be written.
    m_config.writeBalloonHelp(m_settings.bBalloonHelp);
    if (chartEditor())
        chartEditor()->form()->setBalloonHelp(m_settings.bBalloonHelp);
    if (rankEditor())
        rankEditor()->setBalloonHelp(m_settings.bBalloonHelp);
}

void CMainFrame::showRegistrationMail(const QList<int>& memberIds)
{
    if (m_currentView != Cmd::kChartEditor)
        switchToView(Cmd::kChartEditor);
    if (!m_mailDialog)
        m_mailDialog = new RegistrationMailDialog(m_config, m_settings, this);
    QList<Recipient> recipients;
    for (const int id : memberIds) {
        if (const MemberRecord* member = m_doc.chart().findMember(id))
            recipients.append({member->MemberName, member->Email, member->MemberID, member->Passwd});
    }
    m_mailDialog->recipients()->addRecipients(recipients);
    m_mailDialog->show();
    m_mailDialog->raise();
    m_mailDialog->activateWindow();
}

void CMainFrame::downloadUpgrade()
{
    if (m_upgrade && m_upgrade->isRunning())
        return;
    if (!m_prompter.askYesNo(this, Msg::kDownloadUpgradeQuestion))
        return;
    if (!m_upgrade)
        m_upgrade = new UpgradeDownload(m_links.upgradeProgram, m_config.paths().programFolder, this);
    auto* progress = new QProgressDialog(Msg::kDownloading, QString(), 0, 0, this);
    progress->setWindowTitle(Msg::kAppTitle);
    progress->setAttribute(Qt::WA_DeleteOnClose);
    progress->show();
    connect(m_upgrade, &UpgradeDownload::progress, progress, [progress](qint64 received, qint64 total) {
        progress->setMaximum(static_cast<int>(std::max<qint64>(total, 0) / 1024));
        progress->setValue(static_cast<int>(received / 1024));
    });
    connect(m_upgrade, &UpgradeDownload::finished, progress, [this, progress](const QString& error) {
        progress->close();
        if (!error.isEmpty())
            m_prompter.warn(this, Msg::kDownloadFailed.arg(error));
    });
    m_upgrade->start();
}

void CMainFrame::changeDatabase()
{
    if (!m_databaseChange) {
        m_databaseChange = new DatabaseSettingsChange(
            m_config.paths(), QCoreApplication::applicationDirPath(), [this] { m_services->restartServices(); }, this);
        connect(
            m_databaseChange, &DatabaseSettingsChange::finished, this, [this](DatabaseSettingsChange::Outcome outcome) {
                updateCommandStates();
                if (outcome != DatabaseSettingsChange::Outcome::Changed)
                    return;
                m_prompter.inform(this, Msg::kDatabaseSettingsChanged);
                close();
            });
    }
    m_databaseChange->start();
}

// --- Loading ------------------------------------------------------------------------------------------

void CMainFrame::reportDatabaseError(const QString& summary, const QString& details)
{
    m_shownDatabaseError = details;
    m_prompter.showError(this, summary, details);
}

void CMainFrame::postCreate()
{
    StartupSteps::ensureEmbeddedDatabase(m_config);
    if (StartupSteps::repairBuddyListColumn(m_config, nullptr) == StartupSteps::ColumnRepair::DatabaseFailed)
        reportDatabaseError(Msg::kDatabaseOpenFailed, DbConnection::lastError());
    if (const QString outside = StartupSteps::databaseOutsideHome(m_config); !outside.isEmpty())
        m_prompter.warn(this, Msg::kDatabaseOutsideHome.arg(outside, m_config.paths().programFolder));
    StartupSteps::fillPassiveAddress(m_config);
    m_startServicesTimer.start();
}

void CMainFrame::startLoad()
{
    if (m_reader)
        return;
    // The reader opens its connection on its own thread; its failure is told once the load ends.
    const auto connect = [this] { return ServerDatabase::connect(m_config, nullptr); };
    m_reader = new CReadDBThread(connect, this);
    m_progress = new CProgressThread(this);
    QObject::connect(m_reader, &CReadDBThread::progressText, m_progress, &CProgressThread::setText);
    QObject::connect(m_reader, &CReadDBThread::progressRange, m_progress, &CProgressThread::setRange);
    QObject::connect(m_reader, &CReadDBThread::progressPosition, m_progress, &CProgressThread::setPosition);
    QObject::connect(m_progress, &CProgressThread::stopRequested, m_reader, &CReadDBThread::stop);
    QObject::connect(m_reader, &CReadDBThread::loaded, this, &CMainFrame::onChartLoaded);
    QObject::connect(m_reader, &CReadDBThread::ended, this, &CMainFrame::onReaderEnded);
    m_progress->show();
    m_reader->start();
}

void CMainFrame::onChartLoaded()
{
    ChartReader::Result result = m_reader->takeResult();
    m_doc.adopt(std::move(result.contents));
    m_bChartLoaded = true;
    Q_EMIT chartLoaded();
    switchToView(m_currentView);
    // What the chart could not place is told once the window shows it, before anyone saves.
    if (const QString problems = ChartReader::describe(result.problems); !problems.isEmpty())
        QTimer::singleShot(0, this, [this, problems] { m_prompter.warn(this, problems); });
}

void CMainFrame::onReaderEnded(int bContinue)
{
    if (!m_reader)
        return;
    if (!m_reader->wait(kReaderEndWaitMs))
        m_reader->terminate();
    ChartReader::Result result = m_reader->takeResult();
    m_reader->deleteLater();
    m_reader = nullptr;
    m_progress->deleteLater();
    m_progress = nullptr;
    if (!m_bChartLoaded) {
        // What was read before the load failed stays in the views.
        m_doc.adopt(std::move(result.contents));
        // The same failure as the start-up's own (the database could not be opened) is told once.
        const QString message = ChartReader::message(result.outcome);
        const bool bToldAlready = !result.errorText.isEmpty() && result.errorText == m_shownDatabaseError;
        if (!message.isEmpty() && !bToldAlready)
            reportDatabaseError(message, result.errorText);
    }
    m_shownDatabaseError.clear();
    if (bContinue == 0)
        close();
}

// --- Saving and closing -------------------------------------------------------------------------------

ChartSave::Collaborators CMainFrame::saveCollaborators()
{
    ChartSave::Collaborators with;
    with.askYesNo = [this](const QString& question) {
        // Beside the question, what the save will change in the database.
        const QString summary = ChartDiff::summaryText(m_doc.unsavedChanges());
        return m_prompter.askYesNoDetailed(this, question, summary);
    };
    with.showBalloon = [this](const Balloon& balloon) {
        // A failed write is told with the database's own words beside it.
        if (balloon.text == Msg::kSaveDatabaseError) {
            reportDatabaseError(Msg::kDatabaseWriteFailed, DbConnection::lastError());
            return;
        }
        if (chartEditor()) {
            switchToView(Cmd::kChartEditor);
            chartEditor()->form()->showBalloon(balloon);
        } else {
            m_prompter.warn(this, balloon.text);
        }
    };
    with.connect = [this] { return ServerDatabase::connect(m_config, nullptr); };
    with.isFileBoxServerRunning = [this] { return m_services->isFileBoxServerRunning(); };
    with.stopFileBoxServer = [this] { m_services->stopFileBoxServer(); };
    with.requestStartAll = [this] { m_services->requestStartAll(); };
    with.restartAll = [this] { m_services->requestRestart(); };
    // The chart is read into the editing data when the console starts; without it there is nothing to save.
    with.bEditorOpen = m_bChartLoaded;
    with.program = QStringLiteral("console");
    with.restoreFolder = RestorePoints::defaultFolder(m_config.paths().programFolder);
    with.restorePointsKept = m_config.restorePointsKept();
    return with;
}

void CMainFrame::save(bool bClosingAfter)
{
    m_bCloseAfterSave = bClosingAfter;
    m_saveRunner->start(saveCollaborators());
    updateCommandStates();
}

void CMainFrame::onSaveFinished(ChartSave::Outcome outcome)
{
    updateCommandStates();
    if (outcome == ChartSave::Outcome::Conflict)
        resolveConflict(m_saveRunner->takeConflict());
    // A hidden journal view reads again when it is shown.
    if (outcome == ChartSave::Outcome::Saved && journalView() && journalView()->isVisible())
        journalView()->refresh();
    Q_EMIT saveFinished(outcome);
    if (std::exchange(m_bCloseAfterSave, false) && outcome == ChartSave::Outcome::Saved) {
        m_bClosing = true;
        close();
    }
}

void CMainFrame::resolveConflict(std::shared_ptr<const ChartTables> theirs)
{
    if (!theirs)
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    ChartMerge merge(m_doc.base(), m_doc.tables(), std::move(theirs));
    QApplication::restoreOverrideCursor();
    switch (m_conflictResolver ? m_conflictResolver(merge) : askAboutConflict(merge)) {
    case SaveConflictDialog::Choice::Merge: {
        QStringList dropped;
        MergeEdits::applyMerge(m_doc, merge, &dropped);
        QStringList notes {Msg::kMergeDone.arg(merge.theirChanges().size())};
        QStringList renumbered;
        for (const Renumbering& r : merge.renumbered())
            renumbered << QStringLiteral("%1 %2 → %3").arg(r.name).arg(r.from).arg(r.to);
        if (!renumbered.isEmpty())
            notes << Msg::kMergeRenumbered.arg(renumbered.join(QStringLiteral(", ")));
        if (!dropped.isEmpty())
            notes << Msg::kMergeDropped.arg(dropped.join(QStringLiteral(", ")));
        m_prompter.inform(this, notes.join(u'\n'));
        break;
    }
    case SaveConflictDialog::Choice::Reload:
        if (m_prompter.askYesNo(this, Msg::kConflictReloadQuestion.arg(merge.myChanges().size())))
            MergeEdits::reload(m_doc, merge);
        break;
    case SaveConflictDialog::Choice::Cancel:
        break;
    }
}

SaveConflictDialog::Choice CMainFrame::askAboutConflict(ChartMerge& merge)
{
    SaveConflictDialog dialog(merge, this);
    dialog.exec();
    return dialog.choice();
}

void CMainFrame::closeEvent(QCloseEvent* event)
{
    if (m_reader) {
        // The reader ends first; its end closes the window.
        m_reader->stop();
        event->ignore();
        return;
    }
    if (m_saveRunner->isRunning() || (m_databaseChange && m_databaseChange->isRunning())) {
        event->ignore();
        return;
    }
    if (!m_bClosing && m_doc.isModified()) {
        switch (m_prompter.askYesNoCancel(this, Msg::kCloseQuestion)) {
        case Prompter::Answer::Cancel:
            event->ignore();
            return;
        case Prompter::Answer::Yes:
            event->ignore();
            save(true);
            return;
        case Prompter::Answer::No:
            break;
        }
    }
    if (m_mailDialog)
        m_mailDialog->close();
    saveLayout();
    event->accept();
}

void CMainFrame::saveLayout()
{
    m_layout.saveWindow(*this);
    m_layout.saveSplitter(*static_cast<QSplitter*>(centralWidget()), objectName());
    m_layout.saveLastView(m_currentView);
    for (const QWidget* page : std::as_const(m_views))
        m_layout.saveParts(*page);
}

} // namespace sable
