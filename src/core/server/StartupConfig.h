#pragma once

#include "platform/AppPaths.h"
#include "platform/Registry.h"

#include <QString>

namespace sable {

// The settings the console reads once when it starts.
struct StartupSettings
{
    quint32 serverType = 0;
    bool bBalloonHelp = true;
    QString versionTag;
    QString connectionString;
    QString databaseType;
    bool bWroteDefaultConnection = false; // the connection string was missing and the default written
    // Set when a stored connection string cannot be used (too long for its buffer, or its text
    // damaged): it is left as it is and no database may be opened until the administrator sees to it.
    QString connectionProblem;
};

// The connection string as start-up settles it.
struct ConnectionSetting
{
    QString text; // empty when `problem` is set
    bool bWroteDefault = false;
    QString problem;
};

// Reads, and where missing settles, the registry settings of start-up.
class StartupConfig
{
public:
    StartupConfig(Registry registry, AppPaths paths);

    const AppPaths& paths() const { return m_paths; }
    const Registry& registry() const { return m_registry; }

    // All settings, as the application and the frame read them when the console starts. Writes the
    // default connection string and database type when no connection string is stored.
    StartupSettings read() const;

    quint32 readServerType() const;
    bool readBalloonHelp() const;
    bool writeBalloonHelp(bool on) const;
    QString readVersionTag() const;
    // The stored connection string. The default one (and its "Type") is written only when the value
    // is absent: one that exists but does not fit its 250-byte buffer, or whose text is damaged, is
    // left as it is and reported, since the server reads up to 1,024 bytes and would follow it.
    ConnectionSetting settleConnection() const;
    // settleConnection()'s text: empty when the stored value cannot be used.
    QString settleConnectionString(bool* wroteDefault = nullptr) const;
    // Why the stored connection string cannot be used, empty when it can or is absent. Writes nothing.
    QString connectionProblem() const;
    QString readDatabaseType() const;
    // The ODBC driver for SQL Server connection strings (our own setting; a sensible default).
    QString readSqlServerOdbcDriver() const;
    // How many restore points the server folder keeps ("RestorePointsKept"; 50 when not set).
    int restorePointsKept() const;

    static QString defaultDatabaseType();

private:
    Registry m_registry;
    AppPaths m_paths;
};

} // namespace sable
