#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace sable::AtomicFile {

enum class ReadStatus
{
    Ok,
    Missing,
    Unreadable,
    TooLarge,
};

// The settings files are a few kilobytes; one larger than this is no settings file (a file copied
// over it, a runaway writer) and is neither read into memory nor replaced.
constexpr qint64 kMaxBytes = qint64(64) * 1024 * 1024;

struct Contents
{
    ReadStatus status = ReadStatus::Missing;
    QByteArray bytes;
};

Contents read(const QString& path);

// Reads the file, lets `change` compute its new contents and replaces it through a temporary file
// and a rename, all under an advisory lock that every program of the server takes for that file
// (`path` + ".lock", left in place). A writer waits for the one before it; the lock dies with its
// holder, so a killed writer blocks nobody. `change` returns nullopt to leave the file as it is. A
// file that exists but cannot be read is never replaced: a settings file must not be truncated
// because a read failed. Readers need no lock: they see the old file or the new one, whole.
bool update(const QString& path, const std::function<std::optional<QByteArray>(const Contents&)>& change);

} // namespace sable::AtomicFile
