#include "platform/PrivateFiles.h"

#include "platform/NativeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringList>

namespace sable::PrivateFiles {

bool makePath(const QString& folder)
{
    QStringList missing;
    for (QString path = QDir::cleanPath(QFileInfo(folder).absoluteFilePath()); !QFileInfo::exists(path);) {
        missing.prepend(path);
        const QString parent = QFileInfo(path).absolutePath();
        if (parent == path)
            break;
        path = parent;
    }
    for (const QString& path : missing) {
        if (!NativeFile::makeFolder(path))
            return false;
    }
    return QFileInfo(folder).isDir();
}

bool createEmpty(const QString& path)
{
    if (QFileInfo::exists(path))
        return true;
    QFile file(path);
    return NativeFile::createFor(file, path) || QFileInfo::exists(path);
}

bool open(QSaveFile& file)
{
    const bool existed = QFileInfo::exists(file.fileName());
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // The temporary file's mode becomes the file's at the commit.
    return existed || file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

bool writeAll(QIODevice& device, const char* data, qint64 size)
{
    while (size > 0) {
        const qint64 written = device.write(data, size);
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

bool commit(QSaveFile& file)
{
    return file.flush() && file.error() == QFileDevice::NoError && file.commit();
}

} // namespace sable::PrivateFiles
