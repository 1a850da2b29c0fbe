#pragma once

#include <QMap>
#include <QString>

namespace sable {

// The pieces of an ADO-style "key=value;" connection string. Keys are kept in lower case; a value
// written in quotes ("..." or '...', the quote doubled inside) or braces ({...}, with }} for a brace)
// is kept without them.
class ConnectionString
{
public:
    static ConnectionString parse(const QString& text);

    // `value` as it must be written after "key=" to be read back unchanged by parse(): as it stands
    // when it can be, else in double quotes, or single quotes when it holds double ones.
    static QString quote(const QString& value);

    QString value(const QString& key) const { return m_values.value(key.toLower()); }
    bool has(const QString& key) const { return m_values.contains(key.toLower()); }
    const QString& text() const { return m_text; }

private:
    QString m_text;
    QMap<QString, QString> m_values;
};

// How Qt reaches the database that a connection string names.
struct DbTarget
{
    QString driver; // "QODBC", "QSQLITE" or "QPSQL"; empty when the string names nothing we can open
    QString databaseName;
    QString host;
    int port = -1;
    QString user;
    QString password;
    QString connectOptions;
    QString problem; // why `driver` is empty
};

// Maps a connection string to a Qt driver: DSN= and DRIVER= strings go to ODBC as they stand,
// Provider=sqloledb to ODBC with the SQL Server driver named `sqlServerOdbcDriver`, the Jet and ACE
// providers to the Access ODBC driver, Provider=SQLite to the embedded engine and
// Provider=PostgreSQL to the PostgreSQL client. A relative database file is taken from `baseFolder`
// (the server's folder), never from the current folder.
DbTarget resolveConnectionString(
    const QString& text, const QString& sqlServerOdbcDriver, const QString& baseFolder = QString());

// `text` with the value of every password of a connection string in it ("Password=", "PWD=", in any
// letter case, also inside an error message) shown as "****", so that what is printed or shown
// never gives a password away.
QString maskPasswords(const QString& text);

// "Provider=SQLite;Data Source=..." for the embedded database file.
QString sqliteConnectionString(const QString& path);

// The file of an embedded-database string ("Provider=SQLite"), a relative path taken from
// `baseFolder`; empty when the string names no such file.
QString embeddedDatabaseFile(const QString& text, const QString& baseFolder);

} // namespace sable
