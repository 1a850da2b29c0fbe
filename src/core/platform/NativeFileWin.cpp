#include "platform/NativeFile.h"

#include <QDir>
#include <QFile>

#include <io.h>
#include <windows.h>

namespace sable::NativeFile {
namespace {

std::wstring nativePath(const QString& path)
{
    return QDir::toNativeSeparators(path).toStdWString();
}

} // namespace

ExclusiveLock::ExclusiveLock(const QString& lockPath, const QString& modeOf)
{
    Q_UNUSED(modeOf); // a new file takes the rights of its folder
    // Every kind of sharing: a reader or another waiting writer may have the file open too.
    const HANDLE handle = CreateFileW(nativePath(lockPath).c_str(), GENERIC_READ | GENERIC_WRITE,
        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return;
    m_handle = reinterpret_cast<std::intptr_t>(handle);
    OVERLAPPED whole = {};
    m_bHeld = LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &whole) != 0;
}

ExclusiveLock::~ExclusiveLock()
{
    if (m_handle != -1)
        CloseHandle(reinterpret_cast<HANDLE>(m_handle)); // releases the lock with the handle
}

bool createFor(QFile& file, const QString& modeOf)
{
    Q_UNUSED(modeOf);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly);
}

bool flushToDisk(QFile& file)
{
    if (!file.flush())
        return false;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(file.handle()));
    return handle != INVALID_HANDLE_VALUE && FlushFileBuffers(handle) != 0;
}

bool renameOver(const QString& from, const QString& to)
{
    return MoveFileExW(
               nativePath(from).c_str(), nativePath(to).c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)
        != 0;
}

void flushFolder(const QString& folder)
{
    Q_UNUSED(folder); // MOVEFILE_WRITE_THROUGH has done it
}

bool makeFolder(const QString& path)
{
    return CreateDirectoryW(nativePath(path).c_str(), nullptr) != 0 || GetLastError() == ERROR_ALREADY_EXISTS;
}

} // namespace sable::NativeFile
