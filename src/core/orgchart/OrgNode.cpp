#include "orgchart/OrgNode.h"

namespace sable {

std::unique_ptr<OrgNode> OrgNode::makeGroup(int groupId, QString name)
{
    std::unique_ptr<OrgNode> node(new OrgNode(Kind::Group));
    node->m_id = groupId;
    node->m_name = std::move(name);
    return node;
}

std::unique_ptr<OrgNode> OrgNode::makeMember(int memberId, int rankId)
{
    std::unique_ptr<OrgNode> node(new OrgNode(Kind::Member));
    node->m_id = memberId;
    node->m_rankId = rankId;
    return node;
}

} // namespace sable
