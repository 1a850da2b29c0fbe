#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

namespace sable::AtomicFile {
namespace {

constexpr int kLockTimeoutMs = 10000;
// A writer killed between creating the lock file and writing its process number into it leaves a
// lock that only its age shows to be stale, and Qt's default age (30 s) is longer than a writer
// waits: the next save would fail. A writer holds the lock for milliseconds, and a live holder's
// lock is never taken away for its age alone: it holds the file's native lock, which the removal
// of a stale lock needs.
constexpr int kStaleLockMs = 3000;

} // namespace

Contents read(const QString& path)
{
    QFile file(path);
    if (!file.exists())
        return {ReadStatus::Missing, {}};
    if (!file.open(QIODevice::ReadOnly))
        return {ReadStatus::Unreadable, {}};
    return {ReadStatus::Ok, file.readAll()};
}

bool update(const QString& path, const std::function<std::optional<QByteArray>(const Contents&)>& change)
{
    const QFileInfo info(path);
    if (!QDir().mkpath(info.absolutePath()))
        return false;
    QLockFile lock(path + QStringLiteral(".lock"));
    lock.setStaleLockTime(kStaleLockMs);
    if (!lock.tryLock(kLockTimeoutMs))
        return false;
    const Contents current = read(path);
    if (current.status == ReadStatus::Unreadable)
        return false;
    const std::optional<QByteArray> next = change(current);
    if (!next)
        return true;
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    if (out.write(*next) != next->size()) {
        out.cancelWriting();
        return false;
    }
    return out.commit();
}

} // namespace sable::AtomicFile
