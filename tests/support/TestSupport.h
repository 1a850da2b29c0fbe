#pragma once

#include "platform/AppPaths.h"
#include "platform/Registry.h"
#include "server/StartupConfig.h"

#include <QTemporaryDir>

// A server folder of its own for one test: an empty home and an empty registry in a temporary
// folder, gone when the test ends.
class TempHome
{
public:
    TempHome();

    QString path(const QString& relative = {}) const;
    sable::AppPaths paths() const { return sable::AppPaths::forFolder(path(QStringLiteral("home"))); }
    sable::Registry registry() const;
    sable::StartupConfig config() const { return sable::StartupConfig(registry(), paths()); }
    QString registryFolder() const { return path(QStringLiteral("registry")); }

    void writeFile(const QString& relative, const QByteArray& bytes) const;
    QByteArray readFile(const QString& relative) const;

private:
    QTemporaryDir m_dir;
};

// The PostgreSQL server that the test fixture started, if any.
struct PgServer
{
    QString host; // socket folder
    int port = 0;
    QString bindir;

    // Reads the fixture's description; an empty server when the fixture did not run.
    static PgServer fromFixture();
    bool isAvailable() const { return port > 0; }

    // A fresh database owned by the role "sable", dropped first if it exists.
    bool createDatabase(const QString& name) const;
    QString connectionString(const QString& database, const QString& user = QStringLiteral("sable"),
        const QString& password = QStringLiteral("sable-secret")) const;
    QString odbcConnectionString(
        const QString& database, const QString& password = QStringLiteral("sable-secret")) const;
};

// A new, empty database of `kind` ("sqlite", "sqlite-odbc", "postgresql", "postgresql-odbc"), with
// the chart tables when `withTables`; returns its connection string, or an empty text on failure.
QString freshDatabase(const QString& kind, const TempHome& home, const PgServer& pg, bool withTables = true);

// Every row of every chart and file-box table, table by table in a fixed order, for comparing a
// database before and after.
QStringList tableDump(const QString& connectionString);

// Skips a test that needs a fixture that is not there, unless SABLE_REQUIRE_FIXTURES is set (as the
// project's test command sets it), where a missing fixture is a failure.
#define SABLE_REQUIRE_FIXTURE(available, what)                                                                         \
    do {                                                                                                               \
        if (!(available)) {                                                                                            \
            if (qEnvironmentVariableIsSet("SABLE_REQUIRE_FIXTURES"))                                                   \
                QFAIL(what " is not available");                                                                       \
            QSKIP(what " is not available");                                                                           \
        }                                                                                                              \
    } while (false)
