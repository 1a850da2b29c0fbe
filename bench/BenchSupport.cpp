#include "BenchSupport.h"

#include "db/DbConnection.h"
#include "db/DbSchema.h"

#include <QFile>

#include <sys/resource.h>

namespace sable::bench {

double peakMemoryMiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
        }
    }
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

ChartSize scaledChartSize(const QStringList& arguments)
{
    const qsizetype at = arguments.indexOf(QStringLiteral("--scale"));
    const double scale = at > 0 && at + 1 < arguments.size() ? arguments[at + 1].toDouble() : 1.0;
    ChartSize size;
    for (int* value : {&size.members, &size.departments, &size.memberships, &size.folders, &size.groupAuthorities,
             &size.userAuthorities})
        *value = std::max(1, static_cast<int>(*value * scale));
    return size;
}

std::function<DbConnection()> connector(const QString& connectionString)
{
    return [connectionString] {
        DbConnection db;
        return db.open(connectionString) ? std::move(db) : DbConnection();
    };
}

bool createTables(const QString& connectionString)
{
    DbConnection db;
    bool ok = false;
    return db.open(connectionString + QStringLiteral(";FailIfMissing=False"))
        && (DbSchema::createMissingTables(db, &ok), ok);
}

void resetPeakMemory()
{
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    if (clear.open(QIODevice::WriteOnly))
        clear.write("5");
}

} // namespace sable::bench
