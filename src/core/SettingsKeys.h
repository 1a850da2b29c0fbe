#pragma once

// Registry keys and values, and Serverinfo.ini sections and keys, that the console and the server
// share. Key paths ignore case; the server's own programs spell some of them differently.

#include <QString>

namespace sable::Keys {

inline const QString kSableManager = QStringLiteral("SOFTWARE\\Halvex\\SableManager");
inline const QString kSableManagerUser = QStringLiteral("Software\\Halvex\\SableManager");
inline const QString kDatabase = QStringLiteral("SOFTWARE\\Halvex\\Services\\DataBase");
inline const QString kSableBoxServer = QStringLiteral("SOFTWARE\\Halvex\\SableBoxServer");
inline const QString kSessionDInfo = QStringLiteral("SOFTWARE\\Halvex\\Services\\SessionDInfo");

inline const QString kServerType = QStringLiteral("ServerType");
inline const QString kBalloonHelp = QStringLiteral("BalloonHelp");
inline const QString kMajorVersion = QStringLiteral("MajorVersion");
inline const QString kConnectionString = QStringLiteral("ConnectionString");
inline const QString kDatabaseType = QStringLiteral("Type");
inline const QString kCustomPasvIp = QStringLiteral("Custom PASV IP");
inline const QString kHomeDirectory = QStringLiteral("Home Directory");
inline const QString kSqlServerOdbcDriver = QStringLiteral("SqlServerOdbcDriver");

inline const QString kDBInfo = QStringLiteral("DBInfo");
inline const QString kDBAddr = QStringLiteral("DBAddr");
inline const QString kDBName = QStringLiteral("DBName");
inline const QString kUID = QStringLiteral("UID");
inline const QString kPWD = QStringLiteral("PWD");
inline const QString kGroupInfo = QStringLiteral("GroupInfo");
inline const QString kSettingInfo = QStringLiteral("SettingInfo");
inline const QString kVersion = QStringLiteral("Version");

// Client presentation settings: [SettingInfo] of Serverinfo.ini, the file session servers' values
// under kSessionDInfo, and the console's own choice of the vendor's home page host.
inline const QString kDefaultIcon = QStringLiteral("bDefaultIcon");
inline const QString kUserDefineIconPath = QStringLiteral("UserDefineIconPath");
inline const QString kCaptionBarName = QStringLiteral("CaptionBarName");
inline const QString kLogoVersionRead = QStringLiteral("VERSION"); // the same key as kVersion, read so
inline const QString kHomePageURL = QStringLiteral("HomePageURL");
inline const QString kHomePageURL2 = QStringLiteral("HomePageURL2");
inline const QString kVendorHomePageHost = QStringLiteral("VendorHomePageHost");
inline const QString kSessionDCount = QStringLiteral("SessionDCount");
inline const QString kSessionDChanged = QStringLiteral("SessionDChanged");
inline const QString kSessionDAddress = QStringLiteral("SessionD_%1_Address");
inline const QString kSessionDPort = QStringLiteral("SessionD_%1_Port");
inline const QString kSessionDEnable = QStringLiteral("SessionD_%1_Enable");

// The mail server of the registration mail (values under kSableManager).
inline const QString kMailServer = QStringLiteral("MailServer");
inline const QString kMailPort = QStringLiteral("MailPort");
inline const QString kMailSecurity = QStringLiteral("MailSecurity");
inline const QString kMailUser = QStringLiteral("MailUser");
inline const QString kMailPassword = QStringLiteral("MailPassword");
inline const QString kMailSenderAddress = QStringLiteral("MailSenderAddress");

// The product's web addresses (values under kSableManager).
inline const QString kHelpUrl = QStringLiteral("HelpURL");
inline const QString kProductHomeUrl = QStringLiteral("ProductHomeURL");
inline const QString kUpgradeUrl = QStringLiteral("UpgradeURL");

// Which service manager runs the server's services, under kSableManager: "scm", "supervisord" or
// "none", and where the supervisor listens.
inline const QString kServiceManager = QStringLiteral("ServiceManager");
inline const QString kSupervisorUrl = QStringLiteral("SupervisorURL");
inline const QString kSupervisorUser = QStringLiteral("SupervisorUser");
inline const QString kSupervisorPassword = QStringLiteral("SupervisorPassword");

// How many restore points a server folder keeps (under kSableManager, a number).
inline const QString kRestorePointsKept = QStringLiteral("RestorePointsKept");

// The file-box server's passive-mode port range (values under kSableBoxServer, 32-bit numbers).
inline const QString kCustomPasvMinPort = QStringLiteral("Custom PASV min port");
inline const QString kCustomPasvMaxPort = QStringLiteral("Custom PASV max port");

// The console's window layout, per administrator: values under HKCU kSableManagerLayout.
inline const QString kSableManagerLayout = QStringLiteral("Software\\Halvex\\SableManager\\Layout");
inline const QString kLayoutGeometry = QStringLiteral("WindowGeometry");
inline const QString kLayoutBars = QStringLiteral("ToolBars");
inline const QString kLayoutStatusBar = QStringLiteral("StatusBar");
inline const QString kLayoutLastView = QStringLiteral("LastView");
inline const QString kLayoutSplitter = QStringLiteral("Splitter %1"); // the splitter's place, as "View2/Chart"
inline const QString kLayoutColumns = QStringLiteral("Columns %1"); // a list's columns, as "View2/MemberList"

// The directory sync: its own key below kSableManager. The bind password is kept as the mail and
// supervisor passwords are.
inline const QString kDirectorySync = QStringLiteral("SOFTWARE\\Halvex\\SableManager\\DirectorySync");
inline const QString kDirUrl = QStringLiteral("URL");
inline const QString kDirStartTls = QStringLiteral("StartTLS");
inline const QString kDirCaFile = QStringLiteral("CACertificateFile");
inline const QString kDirBindDn = QStringLiteral("BindDN");
inline const QString kDirBindPassword = QStringLiteral("BindPassword");
inline const QString kDirBaseDn = QStringLiteral("BaseDN");
inline const QString kDirUserFilter = QStringLiteral("UserFilter");
inline const QString kDirPageSize = QStringLiteral("PageSize");
inline const QString kDirTimeout = QStringLiteral("TimeoutSeconds");
inline const QString kDirUniqueIdAttribute = QStringLiteral("UniqueIdAttribute");
inline const QString kDirDepartmentSource = QStringLiteral("DepartmentSource");
inline const QString kDirDepartmentAttribute = QStringLiteral("DepartmentAttribute");
inline const QString kDirRankAttribute = QStringLiteral("RankAttribute");
inline const QString kDirLeaverRule = QStringLiteral("LeaverRule");
inline const QString kDirLeaverFilter = QStringLiteral("LeaverFilter");
inline const QString kDirLeaverThreshold = QStringLiteral("LeaverThresholdPercent");
inline const QString kDirPasswordLength = QStringLiteral("PasswordLength");
inline const QString kDirPasswordAlphabet = QStringLiteral("PasswordAlphabet");
// "<field>Attribute" for the member fields that an attribute may feed, e.g. "LoginIdAttribute".
inline const QString kDirFieldAttribute = QStringLiteral("%1Attribute");

} // namespace sable::Keys
