#include "platform/ProcessLauncher.h"

#include <QDir>
#include <QProcess>

namespace sable::ProcessLauncher {

bool launchDetached(const QString& program, const QStringList& arguments, const QString& workingFolder)
{
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(workingFolder);
    process.setStandardInputFile(QProcess::nullDevice());
    return process.startDetached();
}

QString programPath(const QString& folder, const QString& name)
{
#ifdef Q_OS_WIN
    return QDir(folder).filePath(name + QStringLiteral(".exe"));
#else
    return QDir(folder).filePath(name);
#endif
}

} // namespace sable::ProcessLauncher
