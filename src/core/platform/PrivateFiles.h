#pragma once

#include <QString>

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

} // namespace sable::PrivateFiles
