// The console's commands, each declared once: the menu bar, the tool bar, the enabling rules and
// the routing to the view or dialog that does the work are all made from these declarations.

#include "Messages.h"
#include "clientsettings/ClientSettingsCommands.h"
#include "document/JournalView.h"
#include "filebox/FileBoxPermissionView.h"
#include "mainwindow/CMainFrame.h"
#include "mainwindow/SaveRunner.h"
#include "mainwindow/UserGuide.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/COrganizeTemplateView.h"
#include "orgchart/CPositionFormView.h"
#include "server/DatabaseSettingsChange.h"
#include "server/ServerServiceControl.h"
#include "widgets/Icons.h"

#include <QStatusBar>
#include <QToolBar>

namespace sable {
namespace {

const QList<int> kChartEditorOnly {Cmd::kChartEditor};
const QList<int> kRankEditorOnly {Cmd::kRankEditor};
const QList<int> kPermissionPages {Cmd::kFolderPermissions, Cmd::kUserPermissions};
const QList<int> kOrderedLists {Cmd::kChartEditor, Cmd::kRankEditor};

// A step's name inside a menu entry: its "&" shown as it is, never taken for a mnemonic.
QString menuSafe(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

} // namespace

void CMainFrame::declareCommands()
{
    declareFileCommands();
    declareEditCommands();
    declareViewCommands();
    declareServerCommands();
    declareHelpCommands();
    m_commands.add({.id = Cmd::kMoveUp,
        .text = Msg::kToolUp,
        .shortcuts = {QKeySequence(Qt::CTRL | Qt::Key_Up)},
        .icon = Icons::up(),
        .toolTip = Msg::kMoveUpTip,
        .statusTip = Msg::kMoveUpPrompt,
        .views = kOrderedLists,
        .run = [this] { moveSelection(true); },
        .toolBarGroup = 3});
    m_commands.add({.id = Cmd::kMoveDown,
        .text = Msg::kToolDown,
        .shortcuts = {QKeySequence(Qt::CTRL | Qt::Key_Down)},
        .icon = Icons::down(),
        .toolTip = Msg::kMoveDownTip,
        .statusTip = Msg::kMoveDownPrompt,
        .views = kOrderedLists,
        .run = [this] { moveSelection(false); },
        .toolBarGroup = 3});
}

void CMainFrame::declareFileCommands()
{
    const MenuId file = MenuId::File;
    m_commands.add({.id = Cmd::kRegistrationMail,
        .menu = file,
        .text = Msg::kCmdRegistrationMail,
        .toolTip = Msg::kTipRegistrationMail,
        .statusTip = Msg::kPromptRegistrationMail,
        .run = [this] { showRegistrationMail(); }});
    m_commands.add({.id = Cmd::kPreviousVersionData,
        .menu = file,
        .text = Msg::kCmdPreviousVersionData,
        .toolTip = Msg::kTipPreviousVersionData,
        .statusTip = Msg::kPromptPreviousVersionData,
        .run = [this] { downloadUpgrade(); }});
    m_commands.add({.id = Cmd::kImportUsers,
        .menu = file,
        .text = Msg::kCmdImportUsers,
        .shortcuts = {QKeySequence(Qt::CTRL | Qt::Key_O)},
        .toolTip = Msg::kTipImportUsers,
        .statusTip = Msg::kPromptImportUsers,
        .run = [this] { importUsers(); }});
    m_commands.add({.id = Cmd::kExportUsers,
        .menu = file,
        .text = Msg::kCmdExportUsers,
        .toolTip = Msg::kTipExportUsers,
        .statusTip = Msg::kPromptExportUsers,
        .run = [this] { exportUsers(); }});
    m_commands.add({.id = Cmd::kDirectorySync,
        .menu = file,
        .text = Msg::kCmdDirectorySync,
        .toolTip = Msg::kTipDirectorySync,
        .statusTip = Msg::kPromptDirectorySync,
        .run = [this] { syncDirectory(); },
        .isEnabled = [this] { return m_bChartLoaded; }});
    m_commands.add({.id = Cmd::kRestorePoints,
        .menu = file,
        .text = Msg::kCmdRestorePoints,
        .toolTip = Msg::kTipRestorePoints,
        .statusTip = Msg::kPromptRestorePoints,
        .run = [this] { openRestorePoint(); },
        .isEnabled = [this] { return m_bChartLoaded && !m_saveRunner->isRunning(); }});
    m_commands.add({.id = Cmd::kSave,
        .menu = file,
        .text = Msg::kCmdSave,
        .shortcuts = {QKeySequence(Qt::CTRL | Qt::Key_S)},
        .icon = Icons::save(),
        .toolTip = Msg::kTipSave,
        .statusTip = Msg::kPromptSave,
        .run = [this] { save(); },
        .isEnabled = [this] { return !m_saveRunner || !m_saveRunner->isRunning(); },
        .bSeparatorBefore = true,
        .toolBarGroup = 1});
    m_commands.add({.id = Cmd::kExit,
        .menu = file,
        .text = Msg::kCmdExit,
        .toolTip = Msg::kTipExit,
        .statusTip = Msg::kPromptExit,
        .run = [this] { close(); },
        .bSeparatorBefore = true});
}

void CMainFrame::declareEditCommands()
{
    const MenuId edit = MenuId::Edit;
    EditHistory& history = m_doc.history();
    // The entries keep their mnemonics whatever step they name; the tool buttons keep their width
    // and name the step in their tool tips.
    m_commands.add({.id = Cmd::kUndo,
        .menu = edit,
        .text = Msg::kCmdUndoKeyed,
        .shortcuts = QKeySequence::keyBindings(QKeySequence::Undo),
        .icon = Icons::undo(),
        .toolTip = Msg::kTipUndo,
        .statusTip = Msg::kPromptUndo,
        .run = [&history] { history.undo(); },
        .isEnabled = [&history] { return history.canUndo(); },
        .liveText =
            [&history] {
                return history.canUndo() ? Msg::kCmdUndoKeyedStep.arg(menuSafe(history.undoText()))
                                         : Msg::kCmdUndoKeyed;
            },
        .toolBarGroup = 2,
        .toolText = Msg::kToolUndo,
        .liveToolTip
        = [&history] { return history.canUndo() ? Msg::kTipUndoStep.arg(history.undoText()) : Msg::kTipUndo; }});
    m_commands.add({.id = Cmd::kRedo,
        .menu = edit,
        .text = Msg::kCmdRedoKeyed,
        .shortcuts = {QKeySequence(Qt::CTRL | Qt::Key_Y), QKeySequence(QKeySequence::Redo)},
        .icon = Icons::redo(),
        .toolTip = Msg::kTipRedo,
        .statusTip = Msg::kPromptRedo,
        .run = [&history] { history.redo(); },
        .isEnabled = [&history] { return history.canRedo(); },
        .liveText =
            [&history] {
                return history.canRedo() ? Msg::kCmdRedoKeyedStep.arg(menuSafe(history.redoText()))
                                         : Msg::kCmdRedoKeyed;
            },
        .toolBarGroup = 2,
        .toolText = Msg::kToolRedo,
        .liveToolTip
        = [&history] { return history.canRedo() ? Msg::kTipRedoStep.arg(history.redoText()) : Msg::kTipRedo; }});

    const auto form = [this] { return chartEditor()->form(); };
    m_commands.add({.id = Cmd::kAddDepartment,
        .menu = edit,
        .text = Msg::kCmdAddDepartment,
        .toolTip = Msg::kTipAddDepartment,
        .statusTip = Msg::kPromptAddDepartment,
        .views = kChartEditorOnly,
        .run = [form] { form()->addDepartment(); },
        .bSeparatorBefore = true});
    m_commands.add({.id = Cmd::kRenameDepartment,
        .menu = edit,
        .text = Msg::kCmdRenameDepartment,
        .toolTip = Msg::kTipRenameDepartment,
        .statusTip = Msg::kPromptRenameDepartment,
        .views = kChartEditorOnly,
        .run = [form] { form()->renameDepartment(); }});
    m_commands.add({.id = Cmd::kDeleteDepartment,
        .menu = edit,
        .text = Msg::kCmdDeleteDepartment,
        .toolTip = Msg::kTipDeleteDepartment,
        .statusTip = Msg::kPromptDeleteDepartment,
        .views = kChartEditorOnly,
        .run = [form] { form()->deleteSelectedNode(); }});
    m_commands.add({.id = Cmd::kMoveToDepartment,
        .menu = edit,
        .text = Msg::kCmdMoveDepartment,
        .toolTip = Msg::kTipMoveDepartment,
        .statusTip = Msg::kPromptMoveDepartment,
        .views = kChartEditorOnly,
        .run = [form] { form()->moveToDepartment(); },
        .isEnabled = [this] { return chartEditor() && chartEditor()->form()->canMoveToDepartment(); }});
    m_commands.add({.id = Cmd::kAddUser,
        .menu = edit,
        .text = Msg::kCmdAddUser,
        .toolTip = Msg::kTipAddUser,
        .statusTip = Msg::kPromptAddUser,
        .views = kChartEditorOnly,
        .run = [form] { form()->addUser(); }});
    m_commands.add({.id = Cmd::kDeleteUser,
        .menu = edit,
        .text = Msg::kCmdDeleteUser,
        .toolTip = Msg::kTipDeleteUser,
        .statusTip = Msg::kPromptDeleteUser,
        .views = kChartEditorOnly,
        .run = [form] { form()->deleteUsers(); }});
    m_commands.add({.id = Cmd::kFindUser,
        .menu = edit,
        .text = Msg::kCmdFindUser,
        .shortcuts = {QKeySequence(QKeySequence::Find)},
        .toolTip = Msg::kTipFindUser,
        .statusTip = Msg::kPromptFindUser,
        .views = kChartEditorOnly,
        .run = [form] { form()->focusSearch(); }});

    m_commands.add({.id = Cmd::kAddRank,
        .menu = edit,
        .text = Msg::kCmdAddRank,
        .toolTip = Msg::kTipAddRank,
        .statusTip = Msg::kPromptAddRank,
        .views = kRankEditorOnly,
        .run = [this] { rankEditor()->addRank(); },
        .bSeparatorBefore = true});
    m_commands.add({.id = Cmd::kRenameRank,
        .menu = edit,
        .text = Msg::kCmdRenameRank,
        .toolTip = Msg::kTipRenameRank,
        .statusTip = Msg::kPromptRenameRank,
        .views = kRankEditorOnly,
        .run = [this] { rankEditor()->renameRank(); }});
    m_commands.add({.id = Cmd::kDeleteRank,
        .menu = edit,
        .text = Msg::kCmdDeleteRank,
        .toolTip = Msg::kTipDeleteRank,
        .statusTip = Msg::kPromptDeleteRank,
        .views = kRankEditorOnly,
        .run = [this] { rankEditor()->deleteRank(); }});

    m_commands.add({.id = Cmd::kDeletePermission,
        .menu = edit,
        .text = Msg::kCmdDeletePermission,
        .toolTip = Msg::kTipDeletePermission,
        .statusTip = Msg::kPromptDeletePermission,
        .views = kPermissionPages,
        .run = [this] { fileBoxView()->deleteSelectedPermissions(); },
        .bSeparatorBefore = true});
    m_commands.add({.id = Cmd::kEditFolders,
        .menu = edit,
        .text = Msg::kCmdEditFolders,
        .toolTip = Msg::kTipEditFolders,
        .statusTip = Msg::kPromptEditFolders,
        .views = kPermissionPages,
        .run = [this] { fileBoxView()->editFolders(); }});
}

void CMainFrame::declareViewCommands()
{
    const MenuId view = MenuId::View;
    // Before the window is first shown its bars count as shown, so the entries start checked.
    m_commands.add({.id = Cmd::kToolBar,
        .menu = view,
        .text = Msg::kCmdToolBar,
        .toolTip = Msg::kTipToolBar,
        .statusTip = Msg::kPromptToolBar,
        .run = [this] { m_toolBar->setVisible(!m_toolBar->isVisible()); },
        .isChecked = [this] { return m_toolBar->isVisible() || !isVisible(); }});
    m_commands.add({.id = Cmd::kStatusBar,
        .menu = view,
        .text = Msg::kCmdStatusBar,
        .toolTip = Msg::kTipStatusBar,
        .statusTip = Msg::kPromptStatusBar,
        .run = [this] { statusBar()->setVisible(!statusBar()->isVisible()); },
        .isChecked = [this] { return statusBar()->isVisible() || !isVisible(); }});
    m_commands.add({.id = Cmd::kBalloonHelp,
        .menu = view,
        .text = Msg::kCmdBalloonHelp,
        .toolTip = Msg::kTipBalloonHelp,
        .statusTip = Msg::kPromptBalloonHelp,
        .run = [this] { toggleBalloonHelp(); },
        .isChecked = [this] { return m_settings.bBalloonHelp; }});
    m_commands.add({.id = Cmd::kShowJournal,
        .menu = view,
        .text = Msg::kCmdJournal,
        .toolTip = Msg::kTipJournal,
        .statusTip = Msg::kPromptJournal,
        .run = [this] { switchToView(Cmd::kJournal); },
        .isChecked = [this] { return m_currentView == Cmd::kJournal; },
        .bSeparatorBefore = true});
    m_commands.add({.id = Cmd::kRefreshJournal,
        .menu = view,
        .text = Msg::kCmdRefreshJournal,
        .shortcuts = {QKeySequence::Refresh},
        .toolTip = Msg::kTipRefreshJournal,
        .statusTip = Msg::kPromptRefreshJournal,
        .views = {Cmd::kJournal},
        .run = [this] { journalView()->refresh(); }});
}

void CMainFrame::declareServerCommands()
{
    const MenuId server = MenuId::Server;
    m_commands.add({.id = Cmd::kStartServer,
        .menu = server,
        .text = Msg::kCmdStartServer,
        .toolTip = Msg::kTipStartServer,
        .statusTip = Msg::kPromptStartServer,
        .run = [this] { startServer(); },
        .isEnabled = [this] { return m_services->isStartEnabled(); }});
    m_commands.add({.id = Cmd::kStopServer,
        .menu = server,
        .text = Msg::kCmdStopServer,
        .toolTip = Msg::kTipStopServer,
        .statusTip = Msg::kPromptStopServer,
        .run = [this] { stopServer(); },
        .isEnabled = [this] { return m_services->isStopEnabled(); }});
    m_commands.add({.id = Cmd::kDatabaseSettings,
        .menu = server,
        .text = Msg::kCmdDatabaseSettings,
        .toolTip = Msg::kTipDatabaseSettings,
        .statusTip = Msg::kPromptDatabaseSettings,
        .run = [this] { changeDatabase(); },
        .isEnabled = [this] { return !m_databaseChange || !m_databaseChange->isRunning(); },
        .bSeparatorBefore = true});
    m_commands.add({.id = Cmd::kFileServers,
        .menu = server,
        .text = Msg::kCmdFileServers,
        .toolTip = Msg::kTipFileServers,
        .statusTip = Msg::kPromptFileServers,
        .run = [this] { ClientSettingsCommands::runFileServers(m_config, this); }});
    m_commands.add({.id = Cmd::kServiceManager,
        .menu = server,
        .text = Msg::kCmdServiceManager,
        .toolTip = Msg::kTipServiceManager,
        .statusTip = Msg::kPromptServiceManager,
        .run = [this] { editServiceManager(); }});

    const MenuId settings = MenuId::ServerSettings;
    m_commands.add({.id = Cmd::kLogo,
        .menu = settings,
        .text = Msg::kCmdLogo,
        .toolTip = Msg::kTipLogo,
        .statusTip = Msg::kPromptLogo,
        .run = [this] { ClientSettingsCommands::runLogo(m_config, this); }});
    m_commands.add({.id = Cmd::kHomePage,
        .menu = settings,
        .text = Msg::kCmdHomePage,
        .toolTip = Msg::kTipHomePage,
        .statusTip = Msg::kPromptHomePage,
        .run = [this] { ClientSettingsCommands::runHomePage(m_config, this); }});
}

void CMainFrame::declareHelpCommands()
{
    const MenuId help = MenuId::Help;
    m_commands.add({.id = Cmd::kHelp,
        .menu = help,
        .text = Msg::kCmdHelp,
        .shortcuts = {QKeySequence(Qt::Key_F1)},
        .toolTip = Msg::kTipHelp,
        .statusTip = Msg::kPromptHelp,
        .run = [this] { openHelp(UserGuide::pageOfView(m_currentView)); }});
    m_commands.add({.id = Cmd::kProductHome,
        .menu = help,
        .text = Msg::kCmdProductHome,
        .toolTip = Msg::kTipProductHome,
        .statusTip = Msg::kPromptProductHome,
        .run = [this] { openLink(m_links.home); }});
    m_commands.add({.id = Cmd::kQuickGuide,
        .menu = help,
        .text = Msg::kCmdQuickGuide,
        .toolTip = Msg::kTipQuickGuide,
        .statusTip = Msg::kPromptQuickGuide,
        .run = [this] { openHelp(UserGuide::kIndexPage); }});
    m_commands.add({.id = Cmd::kAbout,
        .menu = help,
        .text = Msg::kCmdAbout,
        .toolTip = Msg::kTipAbout,
        .statusTip = Msg::kPromptAbout,
        .run = [this] { showAbout(); },
        .bSeparatorBefore = true});
}

} // namespace sable
