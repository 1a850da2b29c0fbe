#include "platform/AtomicFile.h"

#include "platform/NativeFile.h"
#include "platform/PrivateFiles.h"

#include <QFile>
#include <QFileInfo>

namespace sable::AtomicFile {
namespace {

// Under the lock only one writer works on a file, so the temporary file can have a fixed name: the
// next writer clears what a killed one left instead of leaving files to pile up.
bool replace(const QString& link, const QByteArray& bytes)
{
    // A settings file that is a symbolic link (to a shared copy) stays one: its target is replaced.
    const QFileInfo info(link);
    const QString path = info.isSymLink() && !info.canonicalFilePath().isEmpty() ? info.canonicalFilePath() : link;
    const QString temporary = path + QStringLiteral(".tmp");
    QFile::remove(temporary);
    QFile out(temporary);
    const bool written
        = NativeFile::createFor(out, path) && out.write(bytes) == bytes.size() && NativeFile::flushToDisk(out);
    out.close();
    if (!written || !NativeFile::renameOver(temporary, path)) {
        QFile::remove(temporary);
        return false;
    }
    NativeFile::flushFolder(QFileInfo(path).absolutePath());
    return true;
}

} // namespace

Contents read(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {ReadStatus::Missing, {}};
    if (!file.open(QIODevice::ReadOnly))
        return {ReadStatus::Unreadable, {}};
    const qint64 size = file.size();
    if (size > kMaxBytes)
        return {ReadStatus::TooLarge, {}};
    // What the size said and no more, should the file grow meanwhile.
    QByteArray bytes(size, Qt::Uninitialized);
    const qint64 got = file.read(bytes.data(), size);
    if (got < 0)
        return {ReadStatus::Unreadable, {}};
    bytes.truncate(got);
    return {ReadStatus::Ok, std::move(bytes)};
}

bool update(const QString& path, const std::function<std::optional<QByteArray>(const Contents&)>& change)
{
    if (!PrivateFiles::makePath(QFileInfo(path).absolutePath()))
        return false;
    const NativeFile::ExclusiveLock lock(path + QStringLiteral(".lock"), path);
    if (!lock.isHeld())
        return false;
    const Contents current = read(path);
    if (current.status != ReadStatus::Ok && current.status != ReadStatus::Missing)
        return false;
    const std::optional<QByteArray> next = change(current);
    return !next || replace(path, *next);
}

} // namespace sable::AtomicFile
