#include "document/ChartEdits.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/EditRecorder.h"
#include "document/RankEdits.h"
#include "platform/CodePage949.h"

#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <limits>

namespace sable {
namespace {

// The sort key of a child: members before departments, members by rank order with no rank last.
std::pair<int, int> sortKey(const OrgNode* node, const RankList& ranks)
{
    if (node->isGroup())
        return {1, 0};
    const int position = ranks.positionOf(node->rankId());
    return {0, position < 0 ? std::numeric_limits<int>::max() : position};
}

void collectGroups(OrgNode* node, QList<int>& ids)
{
    if (node->isGroup())
        ids << node->groupId();
    for (int i = 0; i < node->childCount(); ++i)
        collectGroups(node->child(i), ids);
}

std::vector<int> authorityIndexes(const std::vector<AuthorityRecord>& list, const QSet<int>& grantees)
{
    std::vector<int> indexes;
    for (int i = 0; i < static_cast<int>(list.size()); ++i) {
        if (grantees.contains(list[static_cast<size_t>(i)].grantee))
            indexes.push_back(i);
    }
    return indexes;
}

} // namespace

ChartEdits::ChartEdits(CSableManagerDoc& doc)
    : m_doc(doc)
{ }

EditOutcome ChartEdits::addDepartment(OrgNode* selected)
{
    OrgChart& chart = m_doc.chart();
    OrgNode* parent = selected && selected->isMember() ? selected->parent() : selected;
    if (!parent)
        parent = chart.rootGroup() ? chart.rootGroup() : chart.invisibleRoot();
    EditRecorder edit(m_doc, Msg::kStepAddDepartment);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node
        = edit.insertNode(parent, parent->childCount(), OrgNode::makeGroup(chart.nextGroupId(), Msg::kNewDepartment));
    edit.setModified(true);
    return outcome;
}

EditOutcome ChartEdits::renameDepartment(OrgNode* department, const QString& name)
{
    if (!department || !department->isGroup() || name.isEmpty() || name == department->name())
        return {};
    EditRecorder edit(m_doc, Msg::kStepRenameDepartment.arg(name));
    edit.renameGroup(department, name);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node = department;
    return outcome;
}

EditOutcome ChartEdits::deleteNode(OrgNode* node, const AskYesNo& ask)
{
    OrgChart& chart = m_doc.chart();
    if (!node || node == chart.rootGroup())
        return {};
    if (node->isMember()) {
        EditRecorder edit(m_doc, Msg::kStepRemovePlacement.arg(chart.displayName(node)));
        edit.removeNode(node);
        edit.setModified(true);
        return EditOutcome::changed();
    }
    if (!ask(Msg::kDeleteDepartmentQuestion))
        return {};
    QList<int> groupIds;
    collectGroups(node, groupIds);
    const QSet<int> grantees(groupIds.begin(), groupIds.end());
    EditRecorder edit(m_doc, Msg::kStepDeleteDepartment.arg(node->name()));
    edit.removeAuthorities(
        m_doc.fileBox().groupAuthorities, authorityIndexes(m_doc.fileBox().groupAuthorities, grantees));
    edit.removeNode(node);
    edit.appendDeleted(m_doc.deletedGroups(), groupIds);
    edit.setModified(true);
    return EditOutcome::changed();
}

EditOutcome ChartEdits::move(OrgNode* node, Move how)
{
    if (!node)
        return {};
    const int last = node->parent()->childCount() - 1;
    const int at = node->row();
    int to = at;
    switch (how) {
    case Move::ToTop:
        to = 0;
        break;
    case Move::Up:
        to = std::max(0, at - 1);
        break;
    case Move::Down:
        to = std::min(last, at + 1);
        break;
    case Move::ToBottom:
        to = last;
        break;
    }
    EditRecorder edit(m_doc, Msg::kStepMove.arg(m_doc.chart().displayName(node)));
    // Flagged before the move is tried: also a move at either end counts as an edit.
    edit.setModified(true);
    edit.moveNode(node, to);
    EditOutcome outcome;
    outcome.bChanged = edit.hasChanges();
    outcome.node = node;
    return outcome;
}

EditOutcome ChartEdits::sortByRank(OrgNode* node)
{
    if (!node)
        return {};
    EditRecorder edit(m_doc, Msg::kStepSortByRank.arg(m_doc.chart().displayName(node)));
    std::vector<OrgNode*> pending {node};
    while (!pending.empty()) {
        OrgNode* parent = pending.back();
        pending.pop_back();
        std::vector<int> order(static_cast<size_t>(parent->childCount()));
        for (int i = 0; i < parent->childCount(); ++i)
            order[static_cast<size_t>(i)] = i;
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            return sortKey(parent->child(a), m_doc.ranks()) < sortKey(parent->child(b), m_doc.ranks());
        });
        if (!std::is_sorted(order.begin(), order.end()))
            edit.reorderChildren(parent, order);
        for (int i = 0; i < parent->childCount(); ++i) {
            if (parent->child(i)->isGroup())
                pending.push_back(parent->child(i));
        }
    }
    EditOutcome outcome;
    outcome.bChanged = edit.hasChanges();
    outcome.node = node;
    return outcome;
}

EditOutcome ChartEdits::setRank(OrgNode* placement, int command)
{
    const int k = command - RankEdits::kNoRankCommand;
    if (!placement || !placement->isMember() || k < 0 || k > m_doc.ranks().count())
        return {};
    const int rankId = k == 0 ? -1 : m_doc.ranks().at(k - 1).K_RankID;
    EditRecorder edit(m_doc, Msg::kStepSetRank.arg(m_doc.chart().displayName(placement)));
    edit.setRank(placement, rankId);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node = placement;
    return outcome;
}

EditOutcome ChartEdits::addUserByEntry(const QString& loginId, bool bBalloonHelp)
{
    OrgChart& chart = m_doc.chart();
    const int entryRow = chart.memberCount();
    if (loginId.isEmpty())
        return {};
    const int limit = MemberColumns::byteLimit(ColMemberID);
    if (CodePage949::byteLength(loginId) > limit)
        return EditOutcome::refused(Balloon::error(Msg::kTooLong.arg(limit)).atCell(entryRow, ColMemberID));
    if (isLoginIdTaken(loginId, -1))
        return EditOutcome::refused(Balloon::error(Msg::kDuplicateId).atCell(entryRow, ColMemberID));

    MemberRecord member;
    member.K_MemberID = chart.nextMemberId();
    member.MemberID = loginId;
    member.Gender = 0;
    member.bPublic = true;
    member.bSolar = true;
    member.bAdmin = true;
    EditRecorder edit(m_doc, Msg::kStepAddUser.arg(loginId));
    edit.insertMember(entryRow, member);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.row = entryRow;
    if (chart.memberCount() == 1 && bBalloonHelp)
        outcome.balloon = Balloon::tip(Msg::kFirstMemberTip).atCell(entryRow, ColMemberID);
    return outcome;
}

EditOutcome ChartEdits::editCell(int row, int column, const QString& text)
{
    OrgChart& chart = m_doc.chart();
    if (row < 0 || row >= chart.memberCount() || column < 0 || column >= MemberColumnCount)
        return {};
    const int limit = MemberColumns::byteLimit(column);
    if (limit > 0 && CodePage949::byteLength(text) > limit)
        return EditOutcome::refused(Balloon::error(Msg::kTooLong.arg(limit)).atCell(row, column));
    if (MemberColumns::isChoice(column) && text != MemberColumns::choiceText(column, true)
        && text != MemberColumns::choiceText(column, false))
        return {};
    QString stored = text;
    // A birthday is kept in the form the list shows; what the cell shows already is taken as it is.
    if (column == ColBirthDay && text != chart.member(row).BirthDay && !text.trimmed().isEmpty()) {
        const std::optional<QString> date = MemberColumns::birthdayText(text);
        if (!date)
            return EditOutcome::refused(Balloon::error(Msg::kBadBirthday).atCell(row, column));
        stored = *date;
    } else if (column == ColBirthDay && text.trimmed().isEmpty()) {
        stored.clear();
    }
    MemberRecord member = chart.member(row);
    MemberColumns::setText(member, column, stored);
    if (member == chart.member(row))
        return {};
    if (column == ColMemberID && isLoginIdTaken(text, row))
        return EditOutcome::refused(Balloon::error(Msg::kDuplicateId).atCell(row, ColMemberID));
    EditRecorder edit(m_doc, Msg::kStepEditUser.arg(member.MemberID));
    edit.setMember(row, member);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.row = row;
    return outcome;
}

bool ChartEdits::isLoginIdTaken(const QString& loginId, int exceptRow) const
{
    // One user per login ID: the server looks users up without regard to case.
    const auto& members = m_doc.chart().members();
    for (size_t row = 0; row < members.size(); ++row) {
        if (static_cast<int>(row) != exceptRow && members[row].MemberID.compare(loginId, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

std::optional<Balloon> ChartEdits::checkLeaveRow(int row) const
{
    const OrgChart& chart = m_doc.chart();
    if (row < 0 || row >= chart.memberCount() || !chart.member(row).Passwd.isEmpty())
        return std::nullopt;
    return Balloon::error(Msg::kEnterPassword).atCell(row, ColPasswd);
}

EditOutcome ChartEdits::deleteUsers(std::vector<int> rows, const AskYesNo& ask)
{
    OrgChart& chart = m_doc.chart();
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    std::erase_if(rows, [&chart](int row) { return row < 0 || row >= chart.memberCount(); });
    if (rows.empty() || !ask(Msg::kDeleteUsersQuestion))
        return {};
    QList<int> ids;
    for (const int row : rows)
        ids << chart.member(row).K_MemberID;
    const QSet<int> removed(ids.begin(), ids.end());

    EditRecorder edit(m_doc, Msg::kStepDeleteUsers.arg(rows.size()));
    std::vector<OrgNode*> placements;
    for (const int id : ids) {
        const std::vector<OrgNode*>& nodes = chart.placementsOf(id);
        placements.insert(placements.end(), nodes.begin(), nodes.end());
    }
    edit.removeNodes(placements);
    edit.removeMembers(rows);
    edit.removeAuthorities(m_doc.fileBox().userAuthorities, authorityIndexes(m_doc.fileBox().userAuthorities, removed));
    edit.appendDeleted(m_doc.deletedMembers(), ids);
    edit.setModified(true);
    return EditOutcome::changed();
}

QString ChartEdits::addToDepartmentLabel(const OrgNode* selected)
{
    if (!selected || !selected->isGroup())
        return {};
    return Msg::kAddToDepartment.arg(selected->name());
}

EditOutcome ChartEdits::addToDepartment(const std::vector<int>& rows, OrgNode* department)
{
    std::vector<int> ids;
    for (const int row : rows) {
        if (row >= 0 && row < m_doc.chart().memberCount())
            ids.push_back(m_doc.chart().member(row).K_MemberID);
    }
    return addMembersToDepartment(ids, department);
}

EditOutcome ChartEdits::addMembersToDepartment(const std::vector<int>& memberIds, OrgNode* department)
{
    if (!department || !department->isGroup() || memberIds.empty())
        return {};
    OrgChart& chart = m_doc.chart();
    EditRecorder edit(m_doc, Msg::kStepAddToDepartment.arg(department->name()));
    std::vector<std::unique_ptr<OrgNode>> added;
    QSet<int> seen;
    for (const int id : memberIds) {
        if (chart.placementIn(department, id) || seen.contains(id))
            continue;
        seen.insert(id);
        // The rank given is the number of ranks, taken as a rank identifier as it stands: the newest
        // rank while ranks are numbered from 1 and none was deleted, otherwise possibly no rank.
        added.push_back(OrgNode::makeMember(id, m_doc.ranks().count()));
    }
    edit.appendNodes(department, std::move(added));
    edit.setModified(true);
    EditOutcome outcome;
    outcome.bChanged = edit.hasChanges();
    outcome.node = department;
    return outcome;
}

QByteArray ChartEdits::dragPayload(const std::vector<int>& rows) const
{
    const OrgChart& chart = m_doc.chart();
    QByteArray payload(4, '\0');
    quint32 count = 0;
    for (const int row : rows) {
        if (row < 0 || row >= chart.memberCount())
            continue;
        const MemberRecord& member = chart.member(row);
        char fields[8];
        qToLittleEndian<qint32>(member.K_MemberID, fields);
        qToLittleEndian<qint32>(member.Gender == 0 ? 1 : 0, fields + 4);
        payload.append(fields, sizeof fields);
        ++count;
    }
    qToLittleEndian<quint32>(count, payload.data());
    return payload;
}

std::optional<std::vector<int>> ChartEdits::membersOfPayload(const QByteArray& payload) const
{
    if (payload.size() < 4)
        return std::nullopt;
    const quint32 count = qFromLittleEndian<quint32>(payload.constData());
    if (count == 0 || static_cast<qint64>(count) * 8 + 4 != payload.size())
        return std::nullopt;
    std::vector<int> ids;
    for (quint32 i = 0; i < count; ++i) {
        const int id = qFromLittleEndian<qint32>(payload.constData() + 4 + 8 * i);
        if (!m_doc.chart().findMember(id))
            return std::nullopt;
        ids.push_back(id);
    }
    return ids;
}

EditOutcome ChartEdits::dropOnDepartment(const QByteArray& payload, OrgNode* department)
{
    const auto ids = membersOfPayload(payload);
    if (!ids)
        return {};
    return addMembersToDepartment(*ids, department);
}

std::optional<Balloon> ChartEdits::emptyTreeHint() const
{
    const OrgNode* root = m_doc.chart().rootGroup();
    if (!root || root->childCount() > 0 || m_doc.chart().invisibleRoot()->childCount() > 1)
        return std::nullopt;
    return Balloon::tip(Msg::kEmptyTreeTip).atNode(root);
}

} // namespace sable
