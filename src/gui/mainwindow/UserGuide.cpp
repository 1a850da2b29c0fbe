#include "mainwindow/UserGuide.h"

#include "mainwindow/CommandIds.h"

#include <QDir>
#include <QFileInfo>

namespace sable::UserGuide {

QString pageOfView(int view)
{
    switch (view) {
    case Cmd::kChartEditor:
        return QStringLiteral("chart-editor.html");
    case Cmd::kRankEditor:
        return QStringLiteral("rank-editor.html");
    case Cmd::kFolderPermissions:
        return QStringLiteral("folder-permissions.html");
    case Cmd::kUserPermissions:
        return QStringLiteral("user-permissions.html");
    case Cmd::kJournal:
        return QStringLiteral("journal.html");
    case Cmd::kFileBoxSettings:
        return QStringLiteral("sablebox-settings.html");
    default:
        break;
    }
    return QStringLiteral("start-page.html");
}

QString folder(const QString& homeFolder, const QString& executableFolder)
{
    const QString inHome = QDir(homeFolder).filePath(QStringLiteral("QuickGuide"));
    const QString installed
        = QDir::cleanPath(QDir(executableFolder).filePath(QStringLiteral("../share/sable-manager/QuickGuide")));
    for (const QString& candidate : {inHome, installed}) {
        if (QFileInfo::exists(QDir(candidate).filePath(kIndexPage)))
            return candidate;
    }
    return inHome;
}

} // namespace sable::UserGuide
