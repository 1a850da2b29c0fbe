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
};

// Reads, and where missing settles, the registry settings of start-up.
class StartupConfig
{
public:
    StartupConfig(Registry registry, AppPaths paths);

    const AppPaths& paths() const { return m_paths; }
    const Registry& registry() const { return m_registry; }

    // All settings, as the application and the frame read them when the console starts. Writes the
    // default connection string and database type when no connection string can be read.
    StartupSettings read() const;

    quint32 readServerType() const;
    bool readBalloonHelp() const;
    bool writeBalloonHelp(bool on) const;
    QString readVersionTag() const;
    // The stored connection string; the default one (and its "Type") is written first when none
    // can be read, including one too long for its 250-byte buffer.
    QString settleConnectionString(bool* wroteDefault = nullptr) const;
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
