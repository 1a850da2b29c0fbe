#include "platform/AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QSaveFile>

namespace sable::AtomicFile {
namespace {

constexpr int kLockTimeoutMs = 10000;

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
