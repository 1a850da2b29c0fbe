// A connection string as the settings program, an installer or an administrator wrote it: mapping it
// to a database never fails on it, and any text, quoted as a value, reads back unchanged.
#include "FuzzSupport.h"
#include "db/ConnectionString.h"

using namespace sable;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    resolveConnectionString(text, QStringLiteral("ODBC Driver 17 for SQL Server"), QStringLiteral("/srv/sable"));
    embeddedDatabaseFile(text, QStringLiteral("/srv/sable"));

    const ConnectionString quoted = ConnectionString::parse(
        QStringLiteral("Provider=SQLite;Data Source=") + ConnectionString::quote(text) + QStringLiteral(";Mode=x"));
    fuzz::check(quoted.value(QStringLiteral("data source")) == text, "a quoted value reads back");
    fuzz::check(quoted.value(QStringLiteral("mode")) == QLatin1String("x"), "a quoted value ends where it should");
    return 0;
}
