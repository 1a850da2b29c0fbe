#include "db/ConnectionString.h"

#include "Messages.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUrl>

namespace sable {
namespace {

// Reads one value starting at `i`: {braced} (with }} for a brace), "quoted" / 'quoted' (with the
// quote doubled), or plain text up to the next ';'. Quotes and braces are not part of the value.
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
        while (i < text.size() && text[i] != u';')
            ++i;
        return value;
    }
    const qsizetype end = text.indexOf(u';', i);
    const QString value = text.mid(i, end < 0 ? -1 : end - i).trimmed();
    i = end < 0 ? text.size() : end;
    return value;
}

// Where the value that starts at `i` ends: after its closing quote or brace, else at the last
// non-blank before the next ';' or line end (an error message may quote a string without its ';').
qsizetype valueEnd(const QString& text, qsizetype i)
{
    const QChar open = i < text.size() ? text[i] : QChar();
    if (open == u'{' || open == u'"' || open == u'\'') {
        const QChar close = open == u'{' ? u'}' : open;
        for (++i; i < text.size(); ++i) {
            if (text[i] != close)
                continue;
            if (i + 1 < text.size() && text[i + 1] == close)
                ++i;
            else
                return i + 1;
        }
        return i;
    }
    qsizetype end = i;
    while (end < text.size() && text[end] != u';' && text[end] != u'\r' && text[end] != u'\n')
        ++end;
    // Blanks before the ';' stay, so that masking a masked text changes nothing.
    while (end > i && text[end - 1].isSpace())
        --end;
    return end;
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

QString absoluteFrom(const QString& baseFolder, const QString& path)
{
    if (QFileInfo(path).isAbsolute() || baseFolder.isEmpty())
        return QFileInfo(path).absoluteFilePath();
    return QFileInfo(QDir(baseFolder), path).absoluteFilePath();
}

DbTarget sqlite(const ConnectionString& cs, const QString& baseFolder)
{
    const QString file = cs.value(QStringLiteral("data source"));
    if (file.trimmed().isEmpty()) {
        DbTarget missing;
        missing.problem = Msg::kDataSourceMissing;
        return missing;
    }
    DbTarget target;
    target.driver = QStringLiteral("QSQLITE");
    // As a URI in read-write mode, so that opening a missing file fails instead of creating an
    // empty database in its place, unless the string asks for creation with FailIfMissing=False.
    const bool create
        = cs.value(QStringLiteral("failifmissing")).compare(QLatin1String("false"), Qt::CaseInsensitive) == 0;
    target.databaseName = QUrl::fromLocalFile(absoluteFrom(baseFolder, file)).toString(QUrl::FullyEncoded)
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

DbTarget resolveConnectionString(const QString& text, const QString& sqlServerOdbcDriver, const QString& baseFolder)
{
    const ConnectionString cs = ConnectionString::parse(text);
    if (cs.has(QStringLiteral("dsn")) || cs.has(QStringLiteral("driver")))
        return odbc(text);
    const QString provider = cs.value(QStringLiteral("provider")).toLower();
    if (provider == QLatin1String("sqloledb") || provider.startsWith(QLatin1String("sqlncli"))
        || provider.startsWith(QLatin1String("msoledbsql")))
        return sqlServer(cs, sqlServerOdbcDriver);
    if (provider.startsWith(QLatin1String("microsoft.jet.oledb"))
        || provider.startsWith(QLatin1String("microsoft.ace.oledb")))
        return odbc(QStringLiteral("DRIVER={Microsoft Access Driver (*.mdb)};DBQ=%1;")
                        .arg(odbcValue(cs.value(QStringLiteral("data source")))));
    if (provider == QLatin1String("sqlite"))
        return sqlite(cs, baseFolder);
    if (provider == QLatin1String("postgresql"))
        return postgres(cs);
    DbTarget unknown;
    unknown.problem = text.trimmed().isEmpty() ? Msg::kConnectionStringEmpty
                                               : Msg::kConnectionStringUnsupported.arg(maskPasswords(text));
    return unknown;
}

QString ConnectionString::quote(const QString& value)
{
    const bool plain = !value.contains(u';') && value.trimmed() == value && !value.startsWith(u'{')
        && !value.startsWith(u'"') && !value.startsWith(u'\'');
    if (plain)
        return value;
    if (!value.contains(u'"'))
        return u'"' + value + u'"';
    if (!value.contains(u'\''))
        return u'\'' + value + u'\'';
    return u'"' + QString(value).replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QString maskPasswords(const QString& text)
{
    static const QRegularExpression key(
        QStringLiteral("(?<![\\w])(password|pwd)\\s*=\\s*"), QRegularExpression::CaseInsensitiveOption);
    QString masked;
    qsizetype done = 0;
    for (QRegularExpressionMatchIterator it = key.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (match.capturedStart() < done)
            continue; // inside the value masked before
        const qsizetype end = valueEnd(text, match.capturedEnd());
        masked += QStringView(text).sliced(done, match.capturedEnd() - done) + QStringLiteral("****");
        done = end;
    }
    return masked + QStringView(text).sliced(done);
}

QString sqliteConnectionString(const QString& path)
{
    return QStringLiteral("Provider=SQLite;Data Source=%1").arg(ConnectionString::quote(path));
}

QString embeddedDatabaseFile(const QString& text, const QString& baseFolder)
{
    const ConnectionString cs = ConnectionString::parse(text);
    const QString file = cs.value(QStringLiteral("data source"));
    if (cs.value(QStringLiteral("provider")).compare(QLatin1String("sqlite"), Qt::CaseInsensitive) != 0
        || file.trimmed().isEmpty())
        return {};
    return QDir::cleanPath(absoluteFrom(baseFolder, file));
}

} // namespace sable
