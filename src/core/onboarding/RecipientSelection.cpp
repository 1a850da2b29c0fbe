#include "onboarding/RecipientSelection.h"

#include "orgchart/OrgNode.h"

#include <QSet>

#include <vector>

namespace sable::RecipientSelection {

QList<int> membersBelow(const OrgNode* node)
{
    QList<int> ids;
    QSet<int> seen;
    std::vector<const OrgNode*> pending;
    if (node)
        pending.push_back(node);
    while (!pending.empty()) {
        const OrgNode* current = pending.back();
        pending.pop_back();
        if (current->isMember()) {
            if (!seen.contains(current->memberId())) {
                seen.insert(current->memberId());
                ids << current->memberId();
            }
            continue;
        }
        // Last child first onto the stack, so that the first comes off first.
        for (int i = current->childCount() - 1; i >= 0; --i)
            pending.push_back(current->child(i));
    }
    return ids;
}

} // namespace sable::RecipientSelection
