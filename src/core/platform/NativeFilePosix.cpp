#include "platform/NativeFile.h"

#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace sable::NativeFile {
namespace {

constexpr mode_t kOwnerOnlyFile = S_IRUSR | S_IWUSR;
constexpr mode_t kOwnerOnlyFolder = S_IRWXU;

int retryOnSignal(const auto& call)
{
    int result = 0;
    do
        result = call();
    while (result < 0 && errno == EINTR);
    return result;
}

} // namespace

ExclusiveLock::ExclusiveLock(const QString& lockPath, const QString& modeOf)
{
    struct stat guarded = {};
    const mode_t mode = ::stat(QFile::encodeName(modeOf).constData(), &guarded) == 0
        ? (guarded.st_mode & (S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH))
        : kOwnerOnlyFile;
    // Read-only is enough for flock, and lets a lock file that another account created be used
    // by everyone who may read it.
    const QByteArray path = QFile::encodeName(lockPath);
    const int fd = retryOnSignal([&] { return ::open(path.constData(), O_RDONLY | O_CREAT | O_CLOEXEC, mode); });
    if (fd < 0)
        return;
    m_handle = fd;
    // flock rather than fcntl: its lock belongs to this open file, so two threads of one process
    // exclude each other as two processes do, and closing another descriptor of the file keeps it.
    m_bHeld = retryOnSignal([fd] { return ::flock(fd, LOCK_EX); }) == 0;
}

ExclusiveLock::~ExclusiveLock()
{
    if (m_handle >= 0)
        ::close(static_cast<int>(m_handle));
}

bool createFor(QFile& file, const QString& modeOf)
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
        return false;
    struct stat existing = {};
    if (::stat(QFile::encodeName(modeOf).constData(), &existing) != 0)
        return true;
    return ::fchmod(file.handle(), existing.st_mode & 07777) == 0;
}

bool flushToDisk(QFile& file)
{
    return file.flush() && ::fsync(file.handle()) == 0;
}

bool renameOver(const QString& from, const QString& to)
{
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

void flushFolder(const QString& folder)
{
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

bool makeFolder(const QString& path)
{
    return ::mkdir(QFile::encodeName(path).constData(), kOwnerOnlyFolder) == 0 || errno == EEXIST;
}

} // namespace sable::NativeFile
