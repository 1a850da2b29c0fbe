#pragma once

#include <QString>

class QIODevice;
class QSaveFile;

// Settings, exports and logs hold passwords and the users' personal data: what the programs create
// is for its owner's eyes only (0600, folders 0700 on POSIX systems). Files and folders that exist
// keep their mode, so an installation that shares them with the server's own account stays as it is.
namespace sable::PrivateFiles {

// Creates `folder` and each missing folder above it; true when it exists afterwards.
bool makePath(const QString& folder);

// Creates `path` as an empty file when it does not exist (an embedded database's file before the
// engine fills it); true when it exists afterwards.
bool createEmpty(const QString& path);

// Opens `file` for writing; a file that does not exist yet will be created for its owner only.
bool open(QSaveFile& file);

// Writes the whole of `data`; false when the device takes less. A file that takes only part of it
// (a disk filling up) says why only when asked for the rest, so the rest is asked for.
bool writeAll(QIODevice& device, const char* data, qint64 size);

// Replaces the file by what was written to `file`, or leaves it as it was. The last buffered bytes
// are written and checked first: committing alone keeps a file cut short when they do not fit.
bool commit(QSaveFile& file);

} // namespace sable::PrivateFiles
