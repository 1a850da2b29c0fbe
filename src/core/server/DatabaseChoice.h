#pragma once

#include <QString>

namespace sable {

class StartupConfig;

// The database the server uses, as the settings program lets the administrator choose it: the
// embedded database file, a SQL Server, or a PostgreSQL server. It is stored where start-up looks
// for it: HKLM SOFTWARE\Halvex\Services\DataBase "ConnectionString" and "Type", and the [DBInfo]
// keys of Serverinfo.ini, whose "DBAddr" is set for a SQL Server only (it takes precedence).
struct DatabaseChoice
{
    enum class Kind
    {
        EmbeddedFile,
        SqlServer,
        PostgreSql,
    };

    static constexpr int kDefaultPostgreSqlPort = 5432;

    Kind kind = Kind::EmbeddedFile;
    QString filePath; // the embedded database file
    QString server; // SQL Server address, or the PostgreSQL host (or socket folder)
    int port = kDefaultPostgreSqlPort; // PostgreSQL only
    QString databaseName;
    QString user;
    QString password;

    // The choice that the server's settings make now; the default database file when they name
    // nothing this program offers.
    static DatabaseChoice current(const StartupConfig& config);

    QString connectionString() const;
    // The "Type" value: "SQLITE" (or "MDB" for an Access file), "MSSQL" or "PGSQL".
    QString typeName() const;
    // Why the choice cannot be stored, empty when it can: a missing value, or a connection string
    // too long for the 250-byte buffer start-up reads it with.
    QString problem() const;

    // Writes the connection string, its type and the [DBInfo] keys; false when a write failed.
    bool write(const StartupConfig& config) const;
};

} // namespace sable
