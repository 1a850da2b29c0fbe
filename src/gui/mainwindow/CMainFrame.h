#pragma once

#include "document/CSableManagerDoc.h"
#include "document/ChartSave.h"
#include "document/SaveConflictDialog.h"
#include "mainwindow/CommandIds.h"
#include "mainwindow/CommandTable.h"
#include "mainwindow/WindowLayout.h"
#include "server/ProductLinks.h"
#include "server/StartupConfig.h"
#include "widgets/Prompter.h"

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <memory>

class QAction;
class QLabel;
class QStackedWidget;
class QToolBar;

namespace sable {

class ChartMerge;
class CMainFormView;
class COrganizeTemplateView;
class CPositionFormView;
class CProgressThread;
class CReadDBThread;
class DatabaseSettingsChange;
class FileBoxPermissionView;
class JournalView;
class NavigationBar;
class RegistrationMailDialog;
class RestorePointDialog;
class SaveRunner;
class ServerServiceControl;
class ServiceBackend;
class UpgradeDownload;

// The console's main window: the navigation bar and the content pane, the menus and the tool bar,
// routing every command to the view or dialog it belongs to, and the load, save and close of the
// chart. The work itself lives in the parts it calls.
class CMainFrame final : public QMainWindow
{
    Q_OBJECT

public:
    CMainFrame(StartupConfig config, StartupSettings settings, std::shared_ptr<ServiceBackend> services,
        QWidget* parent = nullptr);
    ~CMainFrame() override;

    // The steps after the window is created: the column repair, the passive-mode address, timer 1.
    void postCreate();
    // Reads the chart behind the progress window.
    void startLoad();

    CSableManagerDoc& document() { return m_doc; }
    ServerServiceControl& services() { return *m_services; }
    QAction* action(int command) const { return m_commands.action(command); }
    const CommandTable& commands() const { return m_commands; }
    int currentView() const { return m_currentView; }
    NavigationBar* navigationBar() const { return m_navigation; }
    QWidget* view(int index) const { return m_views.value(index); }
    COrganizeTemplateView* chartEditor() const;
    CPositionFormView* rankEditor() const;
    CMainFormView* startPage() const;
    JournalView* journalView() const;
    // The file-box permission page that is shown (view 4 or 5), or nullptr.
    FileBoxPermissionView* fileBoxView() const;
    CProgressThread* progressWindow() const { return m_progress; }
    RegistrationMailDialog* registrationMailDialog() const;
    bool isChartLoaded() const { return m_bChartLoaded; }
    bool balloonHelp() const { return m_settings.bBalloonHelp; }
    void setPrompter(Prompter prompter);
    // Runs the restore-point dialog; a test drives it instead of a person (it returns when done).
    void setRestorePointRunner(std::function<void(RestorePointDialog&)> runner)
    {
        m_restorePointRunner = std::move(runner);
    }
    // How a save that met another writer's is settled; the dialog unless a test says otherwise.
    void setConflictResolver(std::function<SaveConflictDialog::Choice(ChartMerge&)> resolver)
    {
        m_conflictResolver = std::move(resolver);
    }

    // Runs a command as its menu entry or tool button does.
    void runCommand(int command);
    void switchToView(int view);
    void updateCommandStates();

Q_SIGNALS:
    void chartLoaded();
    void saveFinished(sable::ChartSave::Outcome outcome);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // The console's commands, declared once (ConsoleCommands.cpp).
    void declareCommands();
    void declareFileCommands();
    void declareEditCommands();
    void declareViewCommands();
    void declareServerCommands();
    void declareHelpCommands();
    void createNavigation();
    void onNavigationItem(int item);
    QWidget* createView(int view);

    void onChartLoaded();
    void onReaderEnded(int bContinue);
    void save(bool bClosingAfter = false);
    ChartSave::Collaborators saveCollaborators();
    void onSaveFinished(ChartSave::Outcome outcome);
    void resolveConflict(std::shared_ptr<const ChartTables> theirs);
    SaveConflictDialog::Choice askAboutConflict(ChartMerge& merge);
    void toggleBalloonHelp();
    void showRegistrationMail(const QList<int>& memberIds = {});
    void downloadUpgrade();
    void changeDatabase();
    void importUsers();
    void exportUsers();
    void syncDirectory();
    // Opens a restore point's chart in the editor as one step, after the dialog that picks it.
    void openRestorePoint();
    void moveSelection(bool bUp);
    void showAbout();
    void openFileBoxSettings();
    void startServer();
    void stopServer();
    // When no service can be reached: says why, offers the service manager settings and returns true.
    bool explainUncontrollable();
    void editServiceManager();
    // Opens a page of the user guide; says so when the guide or the page is missing.
    void openHelp(const QString& page);
    void openLink(const QUrl& url);
    // One box per failure: a failure already shown with the same text is not shown again.
    void reportDatabaseError(const QString& summary, const QString& details);
    void saveLayout();

    StartupConfig m_config;
    StartupSettings m_settings;
    ProductLinks m_links;
    WindowLayout m_layout;
    Prompter m_prompter = Prompter::messageBoxes();
    std::function<SaveConflictDialog::Choice(ChartMerge&)> m_conflictResolver;
    std::function<void(RestorePointDialog&)> m_restorePointRunner;
    CSableManagerDoc m_doc;
    std::unique_ptr<ServerServiceControl> m_services;
    NavigationBar* m_navigation = nullptr;
    QStackedWidget* m_pane = nullptr;
    QToolBar* m_toolBar = nullptr;
    QLabel* m_statusDatabase = nullptr;
    CommandTable m_commands;
    QHash<int, QWidget*> m_views;
    int m_currentView = Cmd::kStartPage;
    bool m_bChartLoaded = false;
    CReadDBThread* m_reader = nullptr;
    CProgressThread* m_progress = nullptr;
    SaveRunner* m_saveRunner = nullptr;
    bool m_bCloseAfterSave = false;
    bool m_bClosing = false;
    QTimer m_startServicesTimer;
    QPointer<RegistrationMailDialog> m_mailDialog;
    UpgradeDownload* m_upgrade = nullptr;
    DatabaseSettingsChange* m_databaseChange = nullptr;
    bool m_bReportStartAll = false; // an explicit 서버 시작 says what did not start
    QString m_shownDatabaseError;
};

} // namespace sable
