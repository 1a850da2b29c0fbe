#pragma once

#include <QString>

#include <vector>

namespace sable {

// A shared folder of the file box; its path is relative to the file box's home folder and begins
// with a backslash ("\" for the home folder itself).
struct FolderRecord
{
    int K_FolderID = 0;
    QString FolderPath;

    bool operator==(const FolderRecord&) const = default;
};

// What a department or a member may do in a folder.
enum AuthorityLevel
{
    NoAccess = 0,
    Read = 1,
    ReadWrite = 2,
};

// One permission: the folder, the grantee (K_GroupID or K_MemberID, by the list it is in) and the level.
struct AuthorityRecord
{
    int K_FolderID = 0;
    int grantee = 0;
    int level = NoAccess;

    bool operator==(const AuthorityRecord&) const = default;
};

// The folders of the file box and the permissions of departments and members on them. Within a
// list a (folder, grantee) pair occurs at most once.
class FileBoxLists
{
public:
    std::vector<FolderRecord> folders;
    std::vector<AuthorityRecord> groupAuthorities;
    std::vector<AuthorityRecord> userAuthorities;

    // Appends a folder with the smallest free positive identifier; returns it, or -1 when none is left.
    int addFolder(const QString& path);
    int smallestFreeFolderId() const;
    const FolderRecord* findFolder(int folderId) const;
    // The first folder stored under `path` (letter case counts only where the file system's does).
    const FolderRecord* findFolderByPath(const QString& path) const;

    // Replaces the level of an existing pair (1) or appends a new permission (0).
    static int setAuthority(std::vector<AuthorityRecord>& list, int folderId, int grantee, int level);

    // "W" gives read and write, "R" read, anything else no access; case does not matter.
    static int levelFromText(const QString& text);
    static QString levelToText(int level);
    // "권한 없음", "읽기", "읽기/쓰기".
    static QString levelName(int level);

    void clear();
    bool operator==(const FileBoxLists&) const = default;
};

} // namespace sable
