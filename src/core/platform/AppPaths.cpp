#include "platform/AppPaths.h"

#include <QDir>
#include <QFileInfo>

namespace sable {
namespace {

const QString kHomeOption = QStringLiteral("--home");

#ifdef Q_OS_WIN
const QString kDefaultDatabaseFile = QStringLiteral("SableDB.mdb");
#else
const QString kDefaultDatabaseFile = QStringLiteral("SableDB.db");
#endif

} // namespace

AppPaths AppPaths::forFolder(const QString& folder)
{
    QString home = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    AppPaths paths;
    paths.programFolder = QDir::toNativeSeparators(home);
    paths.defaultDatabasePath = QDir::toNativeSeparators(QDir(home).filePath(kDefaultDatabaseFile));
    paths.settingsFilePath = QDir::toNativeSeparators(QDir(home).filePath(QStringLiteral("Serverinfo.ini")));
    return paths;
}

// Set by the build on this one file; a build that names none (the Windows compile check among them)
// runs from the executable's folder.
#ifndef SABLE_DEFAULT_HOME
#define SABLE_DEFAULT_HOME ""
#endif

QString AppPaths::builtInHome()
{
    return QStringLiteral(SABLE_DEFAULT_HOME);
}

QString AppPaths::resolveHome(const QStringList& arguments, const QString& executableFolder)
{
    return resolveHome(arguments, executableFolder, builtInHome());
}

QString AppPaths::resolveHome(
    const QStringList& arguments, const QString& executableFolder, const QString& fallbackHome)
{
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == kHomeOption && i + 1 < arguments.size())
            return arguments[i + 1];
        if (arguments[i].startsWith(kHomeOption + u'='))
            return arguments[i].mid(kHomeOption.size() + 1);
    }
    if (const QString fromEnvironment = qEnvironmentVariable("SABLE_HOME"); !fromEnvironment.isEmpty())
        return fromEnvironment;
    return fallbackHome.isEmpty() ? executableFolder : fallbackHome;
}

QStringList AppPaths::withoutHomeOption(const QStringList& arguments)
{
    QStringList out;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == kHomeOption) {
            ++i;
            continue;
        }
        if (!arguments[i].startsWith(kHomeOption + u'='))
            out << arguments[i];
    }
    return out;
}

} // namespace sable
