#pragma once

#include "filebox/FileBoxLists.h"

#include <QByteArray>
#include <QStringList>

#include <optional>
#include <vector>

namespace sable {

class CSableManagerDoc;

// Who a permission is given to: a department (K_GroupID) or a user (K_MemberID).
struct Grantee
{
    enum class Kind
    {
        Department,
        User,
    };

    Kind kind = Kind::Department;
    int id = 0;

    static Grantee department(int groupId) { return {Kind::Department, groupId}; }
    static Grantee user(int memberId) { return {Kind::User, memberId}; }
    bool isDepartment() const { return kind == Kind::Department; }
    bool operator==(const Grantee&) const = default;
};

// One permission of a grantee on a folder of the folder list.
struct PermissionKey
{
    int folderId = 0;
    Grantee grantee;

    bool operator==(const PermissionKey&) const = default;
};

// A permission a user holds through a department they sit in.
struct InheritedPermission
{
    int folderId = 0;
    int groupId = 0;
    int level = NoAccess;

    bool operator==(const InheritedPermission&) const = default;
};

// The editing commands of the file-box permissions. Each changes the document's lists in memory
// only, as one step that can be undone, and sets the modified flag. A folder that gets its first
// permission joins the folder list with the smallest free identifier in the same step.
class FileBoxEdits
{
public:
    // The MIME type under which dragged departments and users travel to a permission list.
    static constexpr char kGranteeMimeType[] = "application/x-sable-grantees";

    explicit FileBoxEdits(CSableManagerDoc& doc);

    // The level of a department or a user on the folder stored as `folderPath`: replaced when the
    // pair exists, else a new permission. False when nothing changed (the same level, or no folder
    // identifier left).
    bool setGroupLevel(const QString& folderPath, int groupId, int level);
    bool setMemberLevel(const QString& folderPath, int memberId, int level);
    bool setLevel(const QString& folderPath, const Grantee& grantee, int level);
    // The same for a folder of the folder list, named by its identifier, or for an existing permission.
    bool setLevel(const PermissionKey& key, int level);

    // Gives `level` to every grantee on every folder where it holds no permission yet, as one step;
    // existing permissions keep their level. Returns how many permissions were added.
    int grant(const QStringList& folderPaths, const std::vector<Grantee>& grantees, int level);

    // Removes the permissions, as one step; returns how many were found and removed.
    int removePermissions(const std::vector<PermissionKey>& keys);
    bool removePermission(const PermissionKey& key) { return removePermissions({key}) == 1; }

    // The level of the pair, or nullopt when it holds no permission.
    std::optional<int> levelOf(const PermissionKey& key) const;

    // The permissions a user receives through each department they sit in directly, in the order of
    // the department permission list; one entry per department, so that a folder reached through two
    // departments shows both.
    std::vector<InheritedPermission> inheritedPermissions(int memberId) const;

    static QByteArray granteePayload(const std::vector<Grantee>& grantees);
    // The grantees a payload names, or nullopt when it is malformed or names one not in the chart.
    std::optional<std::vector<Grantee>> granteesOfPayload(const QByteArray& payload) const;

private:
    bool setLevelOn(int folderId, const QString& pathOfNewFolder, const Grantee& grantee, int level);
    std::vector<AuthorityRecord>& listOf(Grantee::Kind kind) const;

    CSableManagerDoc& m_doc;
};

} // namespace sable
