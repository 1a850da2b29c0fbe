#pragma once

#include "orgchart/Revision.h"

#include <QHash>
#include <QString>

#include <optional>

namespace sable {

// The directory entry a user is kept from: its unique ID, which stays when the entry is renamed or
// moved, and its DN as last seen.
struct DirectoryLink
{
    QString entryId;
    QString dn;

    bool operator==(const DirectoryLink&) const = default;
};

// A change of one user's link: the new link, or nullopt for none.
struct DirectoryLinkChange
{
    int memberId = 0;
    std::optional<DirectoryLink> link;
};

// Which users the directory sync keeps, by K_MemberID. A user without a link was made by hand (or
// by an import) and is never taken for a leaver.
class DirectoryLinks
{
public:
    const DirectoryLink* find(int memberId) const;
    // The member kept from that entry, or -1.
    int memberOf(const QString& entryId) const { return m_byEntry.value(entryId, -1); }
    int count() const { return static_cast<int>(m_byMember.size()); }
    const QHash<int, DirectoryLink>& all() const { return m_byMember; }

    // Links the member to an entry, or with nullopt unlinks it; returns the link it had.
    std::optional<DirectoryLink> set(int memberId, std::optional<DirectoryLink> link);
    void clear();

    // Changes with every change; no two lists share one (see OrgChart::revision).
    quint64 revision() const { return m_revision; }

private:
    QHash<int, DirectoryLink> m_byMember;
    QHash<QString, int> m_byEntry;
    quint64 m_revision = Revision::next();
};

} // namespace sable
