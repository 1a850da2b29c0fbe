#include "filebox/FileBoxHome.h"

#include "SettingsKeys.h"
#include "platform/AppPaths.h"
#include "platform/Registry.h"

#include <QDir>
#include <QFileInfo>

namespace sable::FileBoxHome {

QString defaultPath(const AppPaths& paths)
{
    return QDir::toNativeSeparators(QDir(paths.programFolder).filePath(QStringLiteral("SableBox")));
}

QString homeDirectory(const Registry& registry, const AppPaths& paths)
{
    const auto key = registry.createKey(RegRoot::LocalMachine, Keys::kSableBoxServer);
    if (key) {
        if (const auto stored = key->readString(Keys::kHomeDirectory, RegBuffer::kPath))
            return *stored;
    }
    const QString home = defaultPath(paths);
    QDir().mkpath(home);
    if (key)
        key->writeString(Keys::kHomeDirectory, home);
    return home;
}

QString relativeFolderPath(const QString& home, const QString& absolutePath)
{
    const QString root = QDir::cleanPath(QDir::fromNativeSeparators(home));
    const QString path = QDir::cleanPath(QDir::fromNativeSeparators(absolutePath));
    if (path.compare(root, kPathCase) == 0)
        return QStringLiteral("\\");
    if (!isWithin(path, root))
        return {};
    const QString prefix = root.endsWith(u'/') ? root : root + u'/';
    return u'\\' + path.mid(prefix.size()).replace(u'/', u'\\');
}

bool isWithin(const QString& path, const QString& folder)
{
    if (path.compare(folder, kPathCase) == 0)
        return true;
    const QString prefix = folder.endsWith(u'/') ? folder : folder + u'/';
    return path.startsWith(prefix, kPathCase);
}

QString absoluteFolderPath(const QString& home, const QString& folderPath)
{
    const QString root = QDir::cleanPath(QDir::fromNativeSeparators(home));
    QString below = folderPath;
    below.replace(u'\\', u'/');
    return QDir::cleanPath(root + u'/' + below);
}

bool folderExists(const QString& home, const QString& folderPath)
{
    return QFileInfo(absoluteFolderPath(home, folderPath)).isDir();
}

} // namespace sable::FileBoxHome
