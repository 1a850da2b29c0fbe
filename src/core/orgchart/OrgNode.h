#pragma once

#include <QString>

#include <memory>
#include <vector>

namespace sable {

class OrgChart;

// A node of the department tree: a department (one per group record) or a member placed in a
// department (one per relation record). A department's children are its sub-departments and its
// member placements, in the order the chart shows and saves them.
class OrgNode
{
public:
    enum class Kind : quint8
    {
        Group,
        Member,
    };

    Kind kind() const { return m_kind; }
    bool isGroup() const { return m_kind == Kind::Group; }
    bool isMember() const { return m_kind == Kind::Member; }

    // The department above, or the chart's invisible root for a top-level department.
    OrgNode* parent() const { return m_parent; }
    int childCount() const { return static_cast<int>(m_children.size()); }
    OrgNode* child(int index) const { return m_children[static_cast<size_t>(index)].get(); }
    // 0-based place among the parent's children (kept current, so it costs nothing to ask).
    int row() const { return m_row; }

    // Departments: K_GroupID and the name. Member placements: K_MemberID and K_RankID.
    int groupId() const { return m_id; }
    const QString& name() const { return m_name; }
    int memberId() const { return m_id; }
    int rankId() const { return m_rankId; }

    static std::unique_ptr<OrgNode> makeGroup(int groupId, QString name);
    static std::unique_ptr<OrgNode> makeMember(int memberId, int rankId);

private:
    friend class OrgChart;
    explicit OrgNode(Kind kind)
        : m_kind(kind)
    { }

    Kind m_kind;
    int m_row = 0;
    int m_id = 0;
    int m_rankId = -1;
    OrgNode* m_parent = nullptr;
    QString m_name;
    std::vector<std::unique_ptr<OrgNode>> m_children;
};

} // namespace sable
