#pragma once

#include "directory/DirectoryLinks.h"
#include "document/EditHistory.h"
#include "filebox/FileBoxLists.h"
#include "orgchart/MemberRecord.h"
#include "orgchart/RankList.h"

#include <QList>

#include <memory>
#include <vector>

namespace sable {

class OrgNode;
struct DocumentState;

// Makes the changes of one edit and keeps them, so that the edit becomes one step of the history.
// Every change of the document during an edit goes through here; commit() files the step (nothing
// is filed when the edit changed neither the document nor its modified flag).
class EditRecorder
{
public:
    EditRecorder(CSableManagerDoc& doc, QString description);
    ~EditRecorder();
    EditRecorder(const EditRecorder&) = delete;
    EditRecorder& operator=(const EditRecorder&) = delete;

    CSableManagerDoc& doc() { return m_doc; }

    OrgNode* insertNode(OrgNode* parent, int index, std::unique_ptr<OrgNode> node);
    void removeNode(OrgNode* node);
    // Many nodes at once (none within another): one change however many there are.
    void removeNodes(const std::vector<OrgNode*>& nodes);
    // Appends the nodes to the children of `parent`, as one change; returns them.
    std::vector<OrgNode*> appendNodes(OrgNode* parent, std::vector<std::unique_ptr<OrgNode>> nodes);
    void moveNode(OrgNode* node, int to);
    // The node with its subtree under another parent, at place `index` there.
    void reparentNode(OrgNode* node, OrgNode* newParent, int index);
    // Moves the nodes (none within another) to the end of the children of `parent`, as one change.
    void relocateNodes(const std::vector<OrgNode*>& nodes, OrgNode* parent);
    void reorderChildren(OrgNode* parent, const std::vector<int>& order);
    void renameGroup(OrgNode* group, const QString& name);
    void setRank(OrgNode* placement, int rankId);

    void insertMember(int row, const MemberRecord& member);
    // Inserts `members` as consecutive rows from `row` (one change, however many members).
    void insertMembers(int row, std::vector<MemberRecord> members);
    void removeMembers(const std::vector<int>& rows);
    void setMember(int row, const MemberRecord& member);

    void appendDeleted(QList<int>& list, const QList<int>& ids);
    // Exchanges the whole document with `state` (its old state is kept for undo).
    void replaceAll(DocumentState state);

    void insertRank(int index, const RankRecord& rank);
    void removeRank(int index);
    void moveRank(int from, int to);
    void renameRank(int index, const QString& name);

    // Removes the permissions at the ascending `indexes` of `list`.
    void removeAuthorities(std::vector<AuthorityRecord>& list, const std::vector<int>& indexes);
    void setAuthority(std::vector<AuthorityRecord>& list, int folderId, int grantee, int level);
    void addFolder(const FolderRecord& folder);

    // Links and unlinks users and directory entries, in order (one change, however many).
    void changeDirectoryLinks(std::vector<DirectoryLinkChange> changes);

    void setModified(bool modified);
    bool hasChanges() const { return !m_step->changes.empty(); }
    void commit();

private:
    void apply(std::unique_ptr<DocChange> change);

    CSableManagerDoc& m_doc;
    std::unique_ptr<EditStep> m_step;
    bool m_bCommitted = false;
};

} // namespace sable
