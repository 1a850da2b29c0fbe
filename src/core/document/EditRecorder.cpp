#include "document/EditRecorder.h"

#include "document/CSableManagerDoc.h"

#include <algorithm>

namespace sable {
namespace {

// --- The tree ---------------------------------------------------------------------------------------

class InsertNode final : public DocChange
{
public:
    InsertNode(OrgNode* parent, int index, std::unique_ptr<OrgNode> node)
        : m_parent(parent)
        , m_index(index)
        , m_node(std::move(node))
    { }
    OrgNode* node() const { return m_inserted; }
    void redo(CSableManagerDoc& doc) override
    {
        m_inserted = doc.chart().insertNode(m_parent, m_index, std::move(m_node));
    }
    void undo(CSableManagerDoc& doc) override { m_node = doc.chart().takeNode(m_parent->child(m_index)); }

private:
    OrgNode* m_parent;
    int m_index;
    std::unique_ptr<OrgNode> m_node;
    OrgNode* m_inserted = nullptr;
};

class RemoveNode final : public DocChange
{
public:
    explicit RemoveNode(OrgNode* node)
        : m_parent(node->parent())
        , m_index(node->row())
    { }
    void redo(CSableManagerDoc& doc) override { m_node = doc.chart().takeNode(m_parent->child(m_index)); }
    void undo(CSableManagerDoc& doc) override { doc.chart().insertNode(m_parent, m_index, std::move(m_node)); }

private:
    OrgNode* m_parent;
    int m_index;
    std::unique_ptr<OrgNode> m_node;
};

class RemoveNodes final : public DocChange
{
public:
    explicit RemoveNodes(std::vector<OrgNode*> nodes)
        : m_nodes(std::move(nodes))
    { }
    void redo(CSableManagerDoc& doc) override { m_taken = doc.chart().takeNodes(m_nodes); }
    void undo(CSableManagerDoc& doc) override { doc.chart().insertNodes(std::move(m_taken)); }

private:
    std::vector<OrgNode*> m_nodes;
    std::vector<DetachedNode> m_taken;
};

class InsertNodes final : public DocChange
{
public:
    explicit InsertNodes(std::vector<DetachedNode> nodes)
        : m_detached(std::move(nodes))
    {
        for (const DetachedNode& place : m_detached)
            m_nodes.push_back(place.node.get());
    }
    const std::vector<OrgNode*>& nodes() const { return m_nodes; }
    void redo(CSableManagerDoc& doc) override { doc.chart().insertNodes(std::move(m_detached)); }
    void undo(CSableManagerDoc& doc) override { m_detached = doc.chart().takeNodes(m_nodes); }

private:
    std::vector<DetachedNode> m_detached;
    std::vector<OrgNode*> m_nodes;
};

class ReparentNode final : public DocChange
{
public:
    ReparentNode(OrgNode* node, OrgNode* newParent, int index)
        : m_node(node)
        , m_oldParent(node->parent())
        , m_from(node->row())
        , m_newParent(newParent)
        , m_to(std::clamp(index, 0, newParent->childCount()))
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().reparentNode(m_node, m_newParent, m_to); }
    void undo(CSableManagerDoc& doc) override { doc.chart().reparentNode(m_node, m_oldParent, m_from); }

private:
    OrgNode* m_node;
    OrgNode* m_oldParent;
    int m_from;
    OrgNode* m_newParent;
    int m_to;
};

// Nodes from anywhere to the end of one parent's children, in the order the tree showed them, at
// once, so that the tree is never seen half-moved; undone the same way back to the places they had.
class RelocateNodes final : public DocChange
{
public:
    RelocateNodes(std::vector<OrgNode*> nodes, OrgNode* parent)
        : m_nodes(std::move(nodes))
        , m_parent(parent)
    { }
    void redo(CSableManagerDoc& doc) override
    {
        const std::vector<OrgNode*> ordered = doc.chart().inTreeOrder(m_nodes);
        int at = m_parent->childCount();
        for (const OrgNode* node : ordered)
            at -= node->parent() == m_parent ? 1 : 0;
        std::vector<NodeMove> moves;
        moves.reserve(ordered.size());
        for (OrgNode* node : ordered)
            moves.push_back({node, m_parent, at++});
        m_back = doc.chart().moveNodes(std::move(moves));
    }
    void undo(CSableManagerDoc& doc) override { doc.chart().moveNodes(m_back); }

private:
    std::vector<OrgNode*> m_nodes;
    OrgNode* m_parent;
    std::vector<NodeMove> m_back;
};

class MoveNode final : public DocChange
{
public:
    MoveNode(OrgNode* node, int to)
        : m_parent(node->parent())
        , m_from(node->row())
        , m_to(to)
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().moveNode(m_parent->child(m_from), m_to); }
    void undo(CSableManagerDoc& doc) override { doc.chart().moveNode(m_parent->child(m_to), m_from); }

private:
    OrgNode* m_parent;
    int m_from;
    int m_to;
};

class ReorderChildren final : public DocChange
{
public:
    ReorderChildren(OrgNode* parent, std::vector<int> order)
        : m_parent(parent)
        , m_order(std::move(order))
        , m_inverse(m_order.size())
    {
        for (size_t i = 0; i < m_order.size(); ++i)
            m_inverse[static_cast<size_t>(m_order[i])] = static_cast<int>(i);
    }
    void redo(CSableManagerDoc& doc) override { doc.chart().reorderChildren(m_parent, m_order); }
    void undo(CSableManagerDoc& doc) override { doc.chart().reorderChildren(m_parent, m_inverse); }

private:
    OrgNode* m_parent;
    std::vector<int> m_order;
    std::vector<int> m_inverse;
};

class RenameGroup final : public DocChange
{
public:
    RenameGroup(OrgNode* group, QString name)
        : m_group(group)
        , m_old(group->name())
        , m_new(std::move(name))
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().renameGroup(m_group, m_new); }
    void undo(CSableManagerDoc& doc) override { doc.chart().renameGroup(m_group, m_old); }

private:
    OrgNode* m_group;
    QString m_old;
    QString m_new;
};

class SetRank final : public DocChange
{
public:
    SetRank(OrgNode* placement, int rankId)
        : m_placement(placement)
        , m_old(placement->rankId())
        , m_new(rankId)
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().setRank(m_placement, m_new); }
    void undo(CSableManagerDoc& doc) override { doc.chart().setRank(m_placement, m_old); }

private:
    OrgNode* m_placement;
    int m_old;
    int m_new;
};

// --- The member list ----------------------------------------------------------------------------------

class InsertMember final : public DocChange
{
public:
    InsertMember(int row, MemberRecord member)
        : m_row(row)
        , m_member(std::move(member))
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().insertMember(m_row, m_member); }
    void undo(CSableManagerDoc& doc) override { doc.chart().takeMember(m_row); }

private:
    int m_row;
    MemberRecord m_member;
};

class InsertMembers final : public DocChange
{
public:
    InsertMembers(int row, std::vector<MemberRecord> members)
        : m_members(std::move(members))
    {
        m_rows.resize(m_members.size());
        for (size_t i = 0; i < m_rows.size(); ++i)
            m_rows[i] = row + static_cast<int>(i);
    }
    void redo(CSableManagerDoc& doc) override { doc.chart().insertMembers(m_rows, std::move(m_members)); }
    void undo(CSableManagerDoc& doc) override { m_members = doc.chart().takeMembers(m_rows); }

private:
    std::vector<int> m_rows;
    std::vector<MemberRecord> m_members;
};

class RemoveMembers final : public DocChange
{
public:
    explicit RemoveMembers(std::vector<int> rows)
        : m_rows(std::move(rows))
    { }
    void redo(CSableManagerDoc& doc) override { m_members = doc.chart().takeMembers(m_rows); }
    void undo(CSableManagerDoc& doc) override { doc.chart().insertMembers(m_rows, std::move(m_members)); }

private:
    std::vector<int> m_rows;
    std::vector<MemberRecord> m_members;
};

class SetMember final : public DocChange
{
public:
    SetMember(int row, MemberRecord before, MemberRecord after)
        : m_row(row)
        , m_before(std::move(before))
        , m_after(std::move(after))
    { }
    void redo(CSableManagerDoc& doc) override { doc.chart().setMember(m_row, m_after); }
    void undo(CSableManagerDoc& doc) override { doc.chart().setMember(m_row, m_before); }

private:
    int m_row;
    MemberRecord m_before;
    MemberRecord m_after;
};

// A save empties the deletion lists; undoing an edit from before it takes out only what is still there.
// A merge or a restore: everything at once. The old state stays here, so that views and the edits
// before it find their nodes again when it is undone.
class ReplaceAll final : public DocChange
{
public:
    explicit ReplaceAll(DocumentState state)
        : m_state(std::move(state))
    { }
    void redo(CSableManagerDoc& doc) override { doc.exchange(m_state); }
    void undo(CSableManagerDoc& doc) override { doc.exchange(m_state); }

private:
    DocumentState m_state;
};

class AppendDeleted final : public DocChange
{
public:
    AppendDeleted(QList<int>& list, QList<int> ids)
        : m_list(list)
        , m_ids(std::move(ids))
    { }
    void redo(CSableManagerDoc&) override { m_list.append(m_ids); }
    void undo(CSableManagerDoc&) override
    {
        for (auto id = m_ids.crbegin(); id != m_ids.crend(); ++id) {
            const qsizetype at = m_list.lastIndexOf(*id);
            if (at >= 0)
                m_list.removeAt(at);
        }
    }

private:
    QList<int>& m_list;
    QList<int> m_ids;
};

// --- Ranks ----------------------------------------------------------------------------------------------

class InsertRank final : public DocChange
{
public:
    InsertRank(int index, RankRecord rank)
        : m_index(index)
        , m_rank(std::move(rank))
    { }
    void redo(CSableManagerDoc& doc) override
    {
        doc.ranks().insert(m_index, m_rank);
        doc.announceRankListChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        doc.ranks().take(m_index);
        doc.announceRankListChanged();
    }

private:
    int m_index;
    RankRecord m_rank;
};

class RemoveRank final : public DocChange
{
public:
    explicit RemoveRank(int index)
        : m_index(index)
    { }
    void redo(CSableManagerDoc& doc) override
    {
        m_rank = doc.ranks().take(m_index);
        doc.announceRankListChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        doc.ranks().insert(m_index, m_rank);
        doc.announceRankListChanged();
    }

private:
    int m_index;
    RankRecord m_rank;
};

class MoveRank final : public DocChange
{
public:
    MoveRank(int from, int to)
        : m_from(from)
        , m_to(to)
    { }
    void redo(CSableManagerDoc& doc) override
    {
        doc.ranks().move(m_from, m_to);
        doc.announceRankListChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        doc.ranks().move(m_to, m_from);
        doc.announceRankListChanged();
    }

private:
    int m_from;
    int m_to;
};

class RenameRank final : public DocChange
{
public:
    RenameRank(int index, QString before, QString after)
        : m_index(index)
        , m_before(std::move(before))
        , m_after(std::move(after))
    { }
    void redo(CSableManagerDoc& doc) override
    {
        doc.ranks().rename(m_index, m_after);
        doc.announceRankListChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        doc.ranks().rename(m_index, m_before);
        doc.announceRankListChanged();
    }

private:
    int m_index;
    QString m_before;
    QString m_after;
};

// --- File-box lists -------------------------------------------------------------------------------------

class RemoveAuthorities final : public DocChange
{
public:
    RemoveAuthorities(std::vector<AuthorityRecord>& list, std::vector<int> indexes)
        : m_list(list)
        , m_indexes(std::move(indexes))
    { }
    // One pass each way: a deletion of many users takes many permissions out of a long list.
    void redo(CSableManagerDoc& doc) override
    {
        m_removed.clear();
        std::vector<AuthorityRecord> kept;
        kept.reserve(m_list.size() - m_indexes.size());
        auto next = m_indexes.begin();
        for (int i = 0; i < static_cast<int>(m_list.size()); ++i) {
            const bool remove = next != m_indexes.end() && *next == i;
            (remove ? m_removed : kept).push_back(m_list[static_cast<size_t>(i)]);
            next += remove ? 1 : 0;
        }
        m_list = std::move(kept);
        doc.announceFileBoxChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        std::vector<AuthorityRecord> merged;
        merged.reserve(m_list.size() + m_removed.size());
        auto kept = m_list.begin();
        size_t next = 0;
        for (int i = 0; i < static_cast<int>(m_list.size() + m_removed.size()); ++i) {
            const bool restored = next < m_indexes.size() && m_indexes[next] == i;
            merged.push_back(restored ? m_removed[next++] : *kept++);
        }
        m_list = std::move(merged);
        doc.announceFileBoxChanged();
    }

private:
    std::vector<AuthorityRecord>& m_list;
    std::vector<int> m_indexes;
    std::vector<AuthorityRecord> m_removed;
};

class SetAuthority final : public DocChange
{
public:
    SetAuthority(std::vector<AuthorityRecord>& list, AuthorityRecord record)
        : m_list(list)
        , m_record(record)
    { }
    void redo(CSableManagerDoc& doc) override
    {
        const auto it = std::find_if(m_list.begin(), m_list.end(), [this](const AuthorityRecord& r) {
            return r.K_FolderID == m_record.K_FolderID && r.grantee == m_record.grantee;
        });
        m_bAppended = it == m_list.end();
        m_oldLevel = m_bAppended ? NoAccess : it->level;
        FileBoxLists::setAuthority(m_list, m_record.K_FolderID, m_record.grantee, m_record.level);
        doc.announceFileBoxChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        if (m_bAppended)
            m_list.pop_back();
        else
            FileBoxLists::setAuthority(m_list, m_record.K_FolderID, m_record.grantee, m_oldLevel);
        doc.announceFileBoxChanged();
    }

private:
    std::vector<AuthorityRecord>& m_list;
    AuthorityRecord m_record;
    bool m_bAppended = false;
    int m_oldLevel = NoAccess;
};

class AddFolder final : public DocChange
{
public:
    explicit AddFolder(FolderRecord folder)
        : m_folder(std::move(folder))
    { }
    void redo(CSableManagerDoc& doc) override
    {
        doc.fileBox().folders.push_back(m_folder);
        doc.announceFileBoxChanged();
    }
    void undo(CSableManagerDoc& doc) override
    {
        doc.fileBox().folders.pop_back();
        doc.announceFileBoxChanged();
    }

private:
    FolderRecord m_folder;
};

// --- Directory links -------------------------------------------------------------------------------------

class ChangeDirectoryLinks final : public DocChange
{
public:
    explicit ChangeDirectoryLinks(std::vector<DirectoryLinkChange> changes)
        : m_changes(std::move(changes))
    { }
    // Each way swaps the links in and keeps the ones they replace, so a step of many users stores
    // only what it changes.
    void redo(CSableManagerDoc& doc) override
    {
        for (DirectoryLinkChange& change : m_changes)
            change.link = doc.directoryLinks().set(change.memberId, std::move(change.link));
    }
    void undo(CSableManagerDoc& doc) override
    {
        for (auto change = m_changes.rbegin(); change != m_changes.rend(); ++change)
            change->link = doc.directoryLinks().set(change->memberId, std::move(change->link));
    }

private:
    std::vector<DirectoryLinkChange> m_changes;
};

} // namespace

EditRecorder::EditRecorder(CSableManagerDoc& doc, QString description)
    : m_doc(doc)
    , m_step(std::make_unique<EditStep>())
{
    m_step->description = std::move(description);
    m_step->bModifiedBefore = doc.isModified();
}

EditRecorder::~EditRecorder()
{
    commit();
}

void EditRecorder::apply(std::unique_ptr<DocChange> change)
{
    change->redo(m_doc);
    m_step->changes.push_back(std::move(change));
}

OrgNode* EditRecorder::insertNode(OrgNode* parent, int index, std::unique_ptr<OrgNode> node)
{
    auto change = std::make_unique<InsertNode>(parent, index, std::move(node));
    InsertNode* insert = change.get();
    apply(std::move(change));
    return insert->node();
}

void EditRecorder::removeNode(OrgNode* node)
{
    apply(std::make_unique<RemoveNode>(node));
}

void EditRecorder::removeNodes(const std::vector<OrgNode*>& nodes)
{
    if (!nodes.empty())
        apply(std::make_unique<RemoveNodes>(nodes));
}

std::vector<OrgNode*> EditRecorder::appendNodes(OrgNode* parent, std::vector<std::unique_ptr<OrgNode>> nodes)
{
    if (nodes.empty())
        return {};
    std::vector<DetachedNode> places;
    int at = parent->childCount();
    for (auto& node : nodes)
        places.push_back({parent, at++, std::move(node)});
    auto change = std::make_unique<InsertNodes>(std::move(places));
    std::vector<OrgNode*> inserted = change->nodes();
    apply(std::move(change));
    return inserted;
}

void EditRecorder::reparentNode(OrgNode* node, OrgNode* newParent, int index)
{
    apply(std::make_unique<ReparentNode>(node, newParent, index));
}

void EditRecorder::relocateNodes(const std::vector<OrgNode*>& nodes, OrgNode* parent)
{
    if (!nodes.empty())
        apply(std::make_unique<RelocateNodes>(nodes, parent));
}

void EditRecorder::moveNode(OrgNode* node, int to)
{
    if (node->row() != to)
        apply(std::make_unique<MoveNode>(node, to));
}

void EditRecorder::reorderChildren(OrgNode* parent, const std::vector<int>& order)
{
    apply(std::make_unique<ReorderChildren>(parent, order));
}

void EditRecorder::renameGroup(OrgNode* group, const QString& name)
{
    apply(std::make_unique<RenameGroup>(group, name));
}

void EditRecorder::setRank(OrgNode* placement, int rankId)
{
    if (placement->rankId() != rankId)
        apply(std::make_unique<SetRank>(placement, rankId));
}

void EditRecorder::insertMember(int row, const MemberRecord& member)
{
    apply(std::make_unique<InsertMember>(row, member));
}

void EditRecorder::insertMembers(int row, std::vector<MemberRecord> members)
{
    if (!members.empty())
        apply(std::make_unique<InsertMembers>(row, std::move(members)));
}

void EditRecorder::removeMembers(const std::vector<int>& rows)
{
    if (!rows.empty())
        apply(std::make_unique<RemoveMembers>(rows));
}

void EditRecorder::setMember(int row, const MemberRecord& member)
{
    apply(std::make_unique<SetMember>(row, m_doc.chart().member(row), member));
}

void EditRecorder::replaceAll(DocumentState state)
{
    apply(std::make_unique<ReplaceAll>(std::move(state)));
}

void EditRecorder::appendDeleted(QList<int>& list, const QList<int>& ids)
{
    if (!ids.isEmpty())
        apply(std::make_unique<AppendDeleted>(list, ids));
}

void EditRecorder::insertRank(int index, const RankRecord& rank)
{
    apply(std::make_unique<InsertRank>(index, rank));
}

void EditRecorder::removeRank(int index)
{
    apply(std::make_unique<RemoveRank>(index));
}

void EditRecorder::moveRank(int from, int to)
{
    if (from != to)
        apply(std::make_unique<MoveRank>(from, to));
}

void EditRecorder::renameRank(int index, const QString& name)
{
    apply(std::make_unique<RenameRank>(index, m_doc.ranks().at(index).RankName, name));
}

void EditRecorder::removeAuthorities(std::vector<AuthorityRecord>& list, const std::vector<int>& indexes)
{
    if (!indexes.empty())
        apply(std::make_unique<RemoveAuthorities>(list, indexes));
}

void EditRecorder::setAuthority(std::vector<AuthorityRecord>& list, int folderId, int grantee, int level)
{
    apply(std::make_unique<SetAuthority>(list, AuthorityRecord {folderId, grantee, level}));
}

void EditRecorder::addFolder(const FolderRecord& folder)
{
    apply(std::make_unique<AddFolder>(folder));
}

void EditRecorder::changeDirectoryLinks(std::vector<DirectoryLinkChange> changes)
{
    if (!changes.empty())
        apply(std::make_unique<ChangeDirectoryLinks>(std::move(changes)));
}

void EditRecorder::setModified(bool modified)
{
    m_doc.setModified(modified);
}

void EditRecorder::commit()
{
    if (m_bCommitted)
        return;
    m_bCommitted = true;
    m_step->bModifiedAfter = m_doc.isModified();
    if (hasChanges() || m_step->bModifiedAfter != m_step->bModifiedBefore)
        m_doc.history().push(std::move(m_step));
}

} // namespace sable
