#pragma once

#include <QString>

namespace sable {

class Registry;
struct AppPaths;

// The file box's home folder, the root of every shared folder path.
namespace FileBoxHome {

// Folder paths compare as the file system does: without regard to case on Windows only.
#ifdef Q_OS_WIN
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;
#endif

// <program folder>/SableBox.
QString defaultPath(const AppPaths& paths);

// The registry's "Home Directory" of the file-box server. When it is missing the default is
// created on disk and written to the registry.
QString homeDirectory(const Registry& registry, const AppPaths& paths);

// The folder path as the file box stores it: the part of `absolutePath` below `home`, beginning with
// a backslash ("\" for the home folder itself); empty when the folder is not below the home folder.
QString relativeFolderPath(const QString& home, const QString& absolutePath);

// Whether the cleaned path `path` is `folder` or lies below it (both with '/' separators).
bool isWithin(const QString& path, const QString& folder);

// The other way round: where the stored `folderPath` is on this machine (with '/' separators).
QString absoluteFolderPath(const QString& home, const QString& folderPath);

// Whether the folder a stored path names is on disk; folders are made and removed outside the console.
bool folderExists(const QString& home, const QString& folderPath);

} // namespace FileBoxHome
} // namespace sable
