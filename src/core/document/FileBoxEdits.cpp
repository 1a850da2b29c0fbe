#include "document/FileBoxEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/EditRecorder.h"

#include <QSet>

#include <algorithm>

namespace sable {
namespace {

std::vector<Grantee> withoutRepeats(const std::vector<Grantee>& grantees)
{
    std::vector<Grantee> unique;
    for (const Grantee& grantee : grantees) {
        if (std::find(unique.begin(), unique.end(), grantee) == unique.end())
            unique.push_back(grantee);
    }
    return unique;
}

} // namespace

FileBoxEdits::FileBoxEdits(CSableManagerDoc& doc)
    : m_doc(doc)
{ }

std::vector<AuthorityRecord>& FileBoxEdits::listOf(Grantee::Kind kind) const
{
    FileBoxLists& lists = m_doc.fileBox();
    return kind == Grantee::Kind::Department ? lists.groupAuthorities : lists.userAuthorities;
}

std::optional<int> FileBoxEdits::levelOf(const PermissionKey& key) const
{
    for (const AuthorityRecord& record : listOf(key.grantee.kind)) {
        if (record.K_FolderID == key.folderId && record.grantee == key.grantee.id)
            return record.level;
    }
    return std::nullopt;
}

bool FileBoxEdits::setGroupLevel(const QString& folderPath, int groupId, int level)
{
    return setLevel(folderPath, Grantee::department(groupId), level);
}

bool FileBoxEdits::setMemberLevel(const QString& folderPath, int memberId, int level)
{
    return setLevel(folderPath, Grantee::user(memberId), level);
}

bool FileBoxEdits::setLevel(const QString& folderPath, const Grantee& grantee, int level)
{
    if (folderPath.isEmpty())
        return false;
    FileBoxLists& lists = m_doc.fileBox();
    if (const FolderRecord* folder = lists.findFolderByPath(folderPath))
        return setLevelOn(folder->K_FolderID, {}, grantee, level);
    const int folderId = lists.smallestFreeFolderId();
    return folderId > 0 && setLevelOn(folderId, folderPath, grantee, level);
}

bool FileBoxEdits::setLevel(const PermissionKey& key, int level)
{
    // A permission whose folder is not in the list can still be changed, but none is made for one.
    const bool bKnown = m_doc.fileBox().findFolder(key.folderId) || levelOf(key);
    return bKnown && setLevelOn(key.folderId, {}, key.grantee, level);
}

bool FileBoxEdits::setLevelOn(int folderId, const QString& pathOfNewFolder, const Grantee& grantee, int level)
{
    if (levelOf({folderId, grantee}) == level)
        return false;
    const FolderRecord* folder = m_doc.fileBox().findFolder(folderId);
    EditRecorder edit(m_doc, Msg::kStepSetPermission.arg(folder ? folder->FolderPath : pathOfNewFolder));
    if (!pathOfNewFolder.isEmpty())
        edit.addFolder({folderId, pathOfNewFolder});
    edit.setAuthority(listOf(grantee.kind), folderId, grantee.id, level);
    edit.setModified(true);
    return true;
}

int FileBoxEdits::grant(const QStringList& folderPaths, const std::vector<Grantee>& grantees, int level)
{
    const std::vector<Grantee> unique = withoutRepeats(grantees);
    FileBoxLists& lists = m_doc.fileBox();
    EditRecorder edit(m_doc, Msg::kStepAddPermission.arg(folderPaths.join(QStringLiteral(", "))));
    int added = 0;
    for (const QString& path : folderPaths) {
        const FolderRecord* folder = path.isEmpty() ? nullptr : lists.findFolderByPath(path);
        std::vector<Grantee> missing;
        for (const Grantee& grantee : unique) {
            if (!folder || !levelOf({folder->K_FolderID, grantee}))
                missing.push_back(grantee);
        }
        const int folderId = folder ? folder->K_FolderID : lists.smallestFreeFolderId();
        if (path.isEmpty() || missing.empty() || folderId < 0)
            continue;
        if (!folder)
            edit.addFolder({folderId, path});
        for (const Grantee& grantee : missing)
            edit.setAuthority(listOf(grantee.kind), folderId, grantee.id, level);
        added += static_cast<int>(missing.size());
    }
    if (added > 0)
        edit.setModified(true);
    return added;
}

int FileBoxEdits::removePermissions(const std::vector<PermissionKey>& keys)
{
    const auto indexesIn = [&keys](const std::vector<AuthorityRecord>& list, Grantee::Kind kind) {
        std::vector<int> indexes;
        for (int i = 0; i < static_cast<int>(list.size()); ++i) {
            const AuthorityRecord& record = list[static_cast<size_t>(i)];
            const PermissionKey key {record.K_FolderID, {kind, record.grantee}};
            if (std::find(keys.begin(), keys.end(), key) != keys.end())
                indexes.push_back(i);
        }
        return indexes;
    };
    FileBoxLists& lists = m_doc.fileBox();
    const std::vector<int> groups = indexesIn(lists.groupAuthorities, Grantee::Kind::Department);
    const std::vector<int> users = indexesIn(lists.userAuthorities, Grantee::Kind::User);
    const int removed = static_cast<int>(groups.size() + users.size());
    if (removed == 0)
        return 0;
    EditRecorder edit(m_doc, Msg::kStepDeletePermission.arg(removed));
    edit.removeAuthorities(lists.groupAuthorities, groups);
    edit.removeAuthorities(lists.userAuthorities, users);
    edit.setModified(true);
    return removed;
}

std::vector<InheritedPermission> FileBoxEdits::inheritedPermissions(int memberId) const
{
    QSet<int> departments;
    for (const OrgNode* placement : m_doc.chart().placementsOf(memberId)) {
        if (placement->parent() && placement->parent()->isGroup())
            departments.insert(placement->parent()->groupId());
    }
    std::vector<InheritedPermission> inherited;
    for (const AuthorityRecord& record : m_doc.fileBox().groupAuthorities) {
        if (departments.contains(record.grantee))
            inherited.push_back({record.K_FolderID, record.grantee, record.level});
    }
    return inherited;
}

QByteArray FileBoxEdits::granteePayload(const std::vector<Grantee>& grantees)
{
    QByteArrayList parts;
    for (const Grantee& grantee : grantees)
        parts << (grantee.isDepartment() ? "D" : "U") + QByteArray::number(grantee.id);
    return parts.join(',');
}

std::optional<std::vector<Grantee>> FileBoxEdits::granteesOfPayload(const QByteArray& payload) const
{
    std::vector<Grantee> grantees;
    for (const QByteArray& part : payload.split(',')) {
        bool bNumber = false;
        const int id = part.mid(1).toInt(&bNumber);
        if (!bNumber || !(part.startsWith('D') || part.startsWith('U')))
            return std::nullopt;
        const Grantee grantee = part.startsWith('D') ? Grantee::department(id) : Grantee::user(id);
        const bool bKnown
            = grantee.isDepartment() ? m_doc.chart().findGroup(id) != nullptr : m_doc.chart().findMember(id) != nullptr;
        if (!bKnown)
            return std::nullopt;
        grantees.push_back(grantee);
    }
    return grantees;
}

} // namespace sable
