#pragma once

// The console's command identifiers, numbered as the server's administration tools always have.

namespace sable::Cmd {

// 파일
constexpr int kRegistrationMail = 32803;
constexpr int kPreviousVersionData = 32817;
constexpr int kImportUsers = 32804;
constexpr int kExportUsers = 32826; // the member list as a file that the import reads back
constexpr int kDirectorySync = 32860; // the chart kept from an LDAP or Active Directory server (32860-32869)
// The chart as it was before an earlier save, opened in the editor to be saved again.
constexpr int kRestorePoints = 32830;
constexpr int kSave = 32781;
constexpr int kExit = 57665;
// 편집
constexpr int kUndo = 57643;
constexpr int kRedo = 57644;
constexpr int kAddDepartment = 32784;
constexpr int kRenameDepartment = 32785;
constexpr int kDeleteDepartment = 32786;
constexpr int kAddUser = 32787;
constexpr int kDeleteUser = 32788;
// "부서 이동...": a department, member nodes or member-list rows to another department.
constexpr int kMoveToDepartment = 32840;
constexpr int kAddRank = 32789;
constexpr int kRenameRank = 32790;
constexpr int kDeleteRank = 32791;
constexpr int kDeletePermission = 32792;
// Opens the file box's home folder in the system's file manager (the file-box views' "폴더 편집").
constexpr int kEditFolders = 32793;
constexpr int kFindUser = 32851; // the chart editor's search box (Ctrl+F)
// 보기
constexpr int kToolBar = 59392;
constexpr int kStatusBar = 59393;
constexpr int kBalloonHelp = 32808;
// The change journal's view and its commands (32831-32839).
constexpr int kShowJournal = 32831;
constexpr int kRefreshJournal = 32832;
// 서버관리
constexpr int kStartServer = 32801;
constexpr int kStopServer = 32802;
constexpr int kDatabaseSettings = 32823;
constexpr int kFileServers = 32825;
constexpr int kServiceManager = 32850; // which service manager runs the services, and a test of it
// 서버설정
constexpr int kLogo = 32821;
constexpr int kHomePage = 32820;
// 도움말
constexpr int kHelp = 32779;
constexpr int kProductHome = 32780;
constexpr int kQuickGuide = 32813;
constexpr int kAbout = 57664;
// Tool bar
constexpr int kMoveUp = 32795;
constexpr int kMoveDown = 32796;

// The views of the content pane, as the navigation bar's items carry them.
enum View
{
    kStartPage = 1,
    kChartEditor = 2,
    kRankEditor = 3,
    kFolderPermissions = 4,
    kUserPermissions = 5,
    kFileBoxSettings = 6, // a dialog, not a view
    kJournal = 7,
};

} // namespace sable::Cmd
