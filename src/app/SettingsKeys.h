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
inline const QString kSqlServerOdbcDriver = QStringLiteral("SqlServerOdbcDriver");

inline const QString kDBInfo = QStringLiteral("DBInfo");
inline const QString kDBAddr = QStringLiteral("DBAddr");
inline const QString kDBName = QStringLiteral("DBName");
inline const QString kUID = QStringLiteral("UID");
inline const QString kPWD = QStringLiteral("PWD");
inline const QString kGroupInfo = QStringLiteral("GroupInfo");
inline const QString kSettingInfo = QStringLiteral("SettingInfo");
inline const QString kVersion = QStringLiteral("Version");

// Which service manager runs the server's services, under kSableManager: "scm", "supervisord" or
// "none", and where the supervisor listens.
inline const QString kServiceManager = QStringLiteral("ServiceManager");
inline const QString kSupervisorUrl = QStringLiteral("SupervisorURL");
inline const QString kSupervisorUser = QStringLiteral("SupervisorUser");
inline const QString kSupervisorPassword = QStringLiteral("SupervisorPassword");

} // namespace sable::Keys
