#pragma once

#include <QList>

namespace sable {

class OrgNode;

namespace RecipientSelection {

// The members to mail for a node of the department tree: the member of a member node, or every
// member below a department in the order the chart shows them (a department's own members and
// sub-departments as they follow each other, each sub-department's members where it stands). A
// member placed twice comes once, at the first place. Order matters: the mail dialog keeps one row
// per address, so the first member of a shared address is the one mailed.
QList<int> membersBelow(const OrgNode* node);

} // namespace RecipientSelection
} // namespace sable
