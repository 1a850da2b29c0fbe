#include "directory/DirectoryLinks.h"

namespace sable {

const DirectoryLink* DirectoryLinks::find(int memberId) const
{
    const auto at = m_byMember.constFind(memberId);
    return at == m_byMember.cend() ? nullptr : &*at;
}

std::optional<DirectoryLink> DirectoryLinks::set(int memberId, std::optional<DirectoryLink> link)
{
    std::optional<DirectoryLink> before;
    if (const auto at = m_byMember.constFind(memberId); at != m_byMember.cend()) {
        before = *at;
        if (m_byEntry.value(at->entryId, -1) == memberId)
            m_byEntry.remove(at->entryId);
        m_byMember.erase(at);
    }
    if (link) {
        m_byEntry.insert(link->entryId, memberId);
        m_byMember.insert(memberId, std::move(*link));
    }
    m_revision = Revision::next();
    return before;
}

void DirectoryLinks::clear()
{
    m_byMember.clear();
    m_byEntry.clear();
    m_revision = Revision::next();
}

} // namespace sable
