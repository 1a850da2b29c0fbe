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
    // SABLE_HOME variable, else builtInHome(), else `executableFolder`.
    static QString resolveHome(const QStringList& arguments, const QString& executableFolder);
    // The same with `fallbackHome` in place of builtInHome().
    static QString resolveHome(
        const QStringList& arguments, const QString& executableFolder, const QString& fallbackHome);

    // The folder chosen at build time (SABLE_DEFAULT_HOME) for a console installed apart from the
    // server, such as /srv/sable for a system package; empty when the console is installed among
    // the server's programs and its own folder is the home.
    static QString builtInHome();

    // `arguments` without "--home DIR" / "--home=DIR".
    static QStringList withoutHomeOption(const QStringList& arguments);
};

} // namespace sable
