#include "db/ConnectionString.h"

#include "Messages.h"

#include <QFileInfo>
#include <QUrl>

namespace sable {
namespace {

// Reads one value starting at `i`: {braced} (with }} for a brace), "quoted" / 'quoted' (with the
// quote doubled), or plain text up to the next ';'.
QString readValue(const QString& text, qsizetype& i)
{
    const QChar open = i < text.size() ? text[i] : QChar();
    const QChar close = open == u'{' ? u'}' : open;
    if (open == u'{' || open == u'"' || open == u'\'') {
        QString value;
        for (++i; i < text.size(); ++i) {
            if (text[i] != close) {
                value += text[i];
            } else if (i + 1 < text.size() && text[i + 1] == close) {
                value += close;
                ++i;
            } else {
                ++i;
                break;
            }
        }
        if (open == u'{')
            value = u'{' + value + u'}';
        while (i < text.size() && text[i] != u';')
            ++i;
        return value;
    }
    const qsizetype end = text.indexOf(u';', i);
    const QString value = text.mid(i, end < 0 ? -1 : end - i).trimmed();
    i = end < 0 ? text.size() : end;
    return value;
}

QString unbraced(const QString& value)
{
    return value.startsWith(u'{') && value.endsWith(u'}') ? value.mid(1, value.size() - 2) : value;
}

QString odbcValue(const QString& value)
{
    if (!value.contains(u';') && !value.contains(u'{') && !value.contains(u'}') && value.trimmed() == value)
        return value;
    return u'{' + QString(value).replace(u'}', QStringLiteral("}}")) + u'}';
}

DbTarget odbc(const QString& connection)
{
    DbTarget target;
    target.driver = QStringLiteral("QODBC");
    target.databaseName = connection;
    target.connectOptions = QStringLiteral("SQL_ATTR_LOGIN_TIMEOUT=15");
    return target;
}

DbTarget sqlite(const ConnectionString& cs)
{
    DbTarget target;
    target.driver = QStringLiteral("QSQLITE");
    // As a URI in read-write mode, so that opening a missing file fails instead of creating an
    // empty database in its place, unless the string asks for creation with FailIfMissing=False.
    const bool create
        = cs.value(QStringLiteral("failifmissing")).compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
    const QString absolute = QFileInfo(cs.value(QStringLiteral("data source"))).absoluteFilePath();
    target.databaseName = QUrl::fromLocalFile(absolute).toString(QUrl::FullyEncoded)
        + (create ? QStringLiteral("?mode=rwc") : QStringLiteral("?mode=rw"));
    target.connectOptions = QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=10000");
    return target;
}

DbTarget postgres(const ConnectionString& cs)
{
    DbTarget target;
    target.driver = QStringLiteral("QPSQL");
    target.host = cs.value(QStringLiteral("host"));
    target.port = cs.has(QStringLiteral("port")) ? cs.value(QStringLiteral("port")).toInt() : -1;
    target.databaseName = cs.value(QStringLiteral("database"));
    target.user = cs.has(QStringLiteral("user id")) ? cs.value(QStringLiteral("user id"))
                                                    : cs.value(QStringLiteral("username"));
    target.password = cs.value(QStringLiteral("password"));
    target.connectOptions = QStringLiteral("connect_timeout=15");
    return target;
}

DbTarget sqlServer(const ConnectionString& cs, const QString& driverName)
{
    return odbc(
        QStringLiteral("DRIVER={%1};SERVER=%2;DATABASE=%3;UID=%4;PWD=%5;")
            .arg(driverName, odbcValue(cs.value(QStringLiteral("data source"))),
                odbcValue(cs.value(QStringLiteral("initial catalog"))), odbcValue(cs.value(QStringLiteral("user id"))),
                odbcValue(cs.value(QStringLiteral("password")))));
}

} // namespace

ConnectionString ConnectionString::parse(const QString& text)
{
    ConnectionString cs;
    cs.m_text = text;
    qsizetype i = 0;
    while (i < text.size()) {
        const qsizetype equals = text.indexOf(u'=', i);
        const qsizetype semicolon = text.indexOf(u';', i);
        if (equals < 0 || (semicolon >= 0 && semicolon < equals)) {
            if (semicolon < 0)
                break;
            i = semicolon + 1;
            continue;
        }
        const QString key = text.mid(i, equals - i).trimmed().toLower();
        i = equals + 1;
        while (i < text.size() && text[i].isSpace())
            ++i;
        const QString value = readValue(text, i);
        if (!key.isEmpty() && !cs.m_values.contains(key))
            cs.m_values.insert(key, value);
        ++i;
    }
    return cs;
}

DbTarget resolveConnectionString(const QString& text, const QString& sqlServerOdbcDriver)
{
    const ConnectionString cs = ConnectionString::parse(text);
    if (cs.has(QStringLiteral("dsn")) || cs.has(QStringLiteral("driver")))
        return odbc(text);
    const QString provider = unbraced(cs.value(QStringLiteral("provider"))).toLower();
    if (provider == QLatin1String("sqloledb") || provider.startsWith(QLatin1String("sqlncli"))
        || provider.startsWith(QLatin1String("msoledbsql")))
        return sqlServer(cs, sqlServerOdbcDriver);
    if (provider.startsWith(QLatin1String("microsoft.jet.oledb"))
        || provider.startsWith(QLatin1String("microsoft.ace.oledb")))
        return odbc(QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=%1;")
                        .arg(odbcValue(cs.value(QStringLiteral("data source")))));
    if (provider == QLatin1String("sqlite"))
        return sqlite(cs);
    if (provider == QLatin1String("postgresql"))
        return postgres(cs);
    DbTarget unknown;
    unknown.problem
        = text.trimmed().isEmpty() ? Msg::kConnectionStringEmpty : Msg::kConnectionStringUnsupported.arg(text);
    return unknown;
}

QString sqliteConnectionString(const QString& path)
{
    const bool plain = !path.contains(u';') && !path.contains(u'"') && path.trimmed() == path;
    const QString value = plain ? path : u'"' + QString(path).replace(u'"', QStringLiteral("\"\"")) + u'"';
    return QStringLiteral("Provider=SQLite;Data Source=%1").arg(value);
}

} // namespace sable
