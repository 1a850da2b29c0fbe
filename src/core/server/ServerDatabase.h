#pragma once

#include "db/DbConnection.h"

namespace sable {

class StartupConfig;

// Opens the server's own database as every short-lived connection of the console does: the SQL
// Server named by [DBInfo] "DBAddr" in Serverinfo.ini when that is set, else the registry's
// connection string, else the default database in the program folder.
namespace ServerDatabase {

struct ServerAddress
{
    QString address;
    QString databaseName;
    QString user;
    QString password;
};

// The [DBInfo] values; `address` is empty when the server's database is not a database server.
ServerAddress readServerAddress(const StartupConfig& config);

// An empty connection on failure. A failed open of the registry's or the default string is also
// passed to `report` (the SQL Server path leaves reporting to the caller).
DbConnection connect(const StartupConfig& config, const DbConnection::FailureReporter& report);

// A description of the database in use for status lines: driver and file or server.
QString describe(const StartupConfig& config);

} // namespace ServerDatabase
} // namespace sable
