#pragma once

#include <QString>
#include <QStringList>

namespace sable {

// Where the server is installed and the files of it that the console uses. Derived once at start.
struct AppPaths
{
    QString programFolder;
    QString defaultDatabasePath;
    QString settingsFilePath;

    static AppPaths forFolder(const QString& folder);

    // The server's folder: the value of "--home DIR" (or "--home=DIR") in `arguments`, else the
    // SABLE_HOME variable, else `executableFolder`.
    static QString resolveHome(const QStringList& arguments, const QString& executableFolder);

    // `arguments` without "--home DIR" / "--home=DIR".
    static QStringList withoutHomeOption(const QStringList& arguments);
};

} // namespace sable
