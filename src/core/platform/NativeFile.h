#pragma once

#include <QString>

#include <cstdint>

class QFile;

namespace sable::NativeFile {

// An exclusive lock on a lock file, held by this object. The operating system keeps the lock
// (flock on POSIX systems, LockFileEx on Windows): it ends with the object or with the process,
// however the process ends, so a killed writer never leaves a lock behind. The lock file itself is
// created when missing and never removed: removing it would let a waiting writer lock a file that
// the next writer no longer sees.
class ExclusiveLock
{
public:
    // Waits as long as another process or thread holds the lock. A new lock file takes the read and
    // write rights of `modeOf` (the file it guards) where that exists, else its owner's only, so
    // that whoever may write the guarded file may also lock it.
    ExclusiveLock(const QString& lockPath, const QString& modeOf);
    ~ExclusiveLock();
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;

    // False when the lock file could not be opened or locked.
    bool isHeld() const { return m_bHeld; }

private:
    std::intptr_t m_handle = -1;
    bool m_bHeld = false;
};

// Creates `file` (which must not exist) for writing. On POSIX systems it is readable by its owner
// only, or takes the mode of `modeOf` when that file exists, so that a replacement keeps the mode
// of what it replaces. On Windows the file takes the rights of its folder, as the server's own
// files do there.
bool createFor(QFile& file, const QString& modeOf);

// Pushes what was written to `file` through to the disk.
bool flushToDisk(QFile& file);

// Renames `from` over `to` in one step: a reader sees either file whole, never neither.
bool renameOver(const QString& from, const QString& to);

// Pushes a rename in `folder` through to the disk (nothing to do on Windows).
void flushFolder(const QString& folder);

// Creates one folder: on POSIX systems readable by its owner only.
bool makeFolder(const QString& path);

} // namespace sable::NativeFile
