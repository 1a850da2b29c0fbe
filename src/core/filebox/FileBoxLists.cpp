#include "filebox/FileBoxLists.h"

#include "Messages.h"
#include "filebox/FileBoxHome.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace sable {

int FileBoxLists::addFolder(const QString& path)
{
    const int id = smallestFreeFolderId();
    if (id > 0)
        folders.push_back({id, path});
    return id;
}

int FileBoxLists::smallestFreeFolderId() const
{
    std::unordered_set<int> used;
    for (const FolderRecord& folder : folders)
        used.insert(folder.K_FolderID);
    for (int id = 1; id < std::numeric_limits<int>::max(); ++id) {
        if (!used.contains(id))
            return id;
    }
    return -1;
}

const FolderRecord* FileBoxLists::findFolder(int folderId) const
{
    const auto it = std::find_if(folders.begin(), folders.end(),
        [folderId](const FolderRecord& folder) { return folder.K_FolderID == folderId; });
    return it == folders.end() ? nullptr : &*it;
}

const FolderRecord* FileBoxLists::findFolderByPath(const QString& path) const
{
    const auto it = std::find_if(folders.begin(), folders.end(),
        [&path](const FolderRecord& folder) { return folder.FolderPath.compare(path, FileBoxHome::kPathCase) == 0; });
    return it == folders.end() ? nullptr : &*it;
}

int FileBoxLists::setAuthority(std::vector<AuthorityRecord>& list, int folderId, int grantee, int level)
{
    for (AuthorityRecord& record : list) {
        if (record.K_FolderID == folderId && record.grantee == grantee) {
            record.level = level;
            return 1;
        }
    }
    list.push_back({folderId, grantee, level});
    return 0;
}

int FileBoxLists::levelFromText(const QString& text)
{
    if (text.compare(QLatin1String("W"), Qt::CaseInsensitive) == 0)
        return ReadWrite;
    if (text.compare(QLatin1String("R"), Qt::CaseInsensitive) == 0)
        return Read;
    return NoAccess;
}

QString FileBoxLists::levelToText(int level)
{
    return level == ReadWrite ? QStringLiteral("W") : level == Read ? QStringLiteral("R") : QStringLiteral("X");
}

QString FileBoxLists::levelName(int level)
{
    return level == ReadWrite ? Msg::kLevelReadWrite : level == Read ? Msg::kLevelRead : Msg::kLevelNone;
}

void FileBoxLists::clear()
{
    folders.clear();
    groupAuthorities.clear();
    userAuthorities.clear();
}

} // namespace sable
