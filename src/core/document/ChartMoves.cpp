#include "document/ChartMoves.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/EditRecorder.h"

#include <QDataStream>
#include <QIODevice>
#include <QSet>
#include <QUuid>

#include <algorithm>

namespace sable {
namespace {

constexpr quint32 kPayloadMagic = 0x53424e31; // "SBN1"
constexpr quint32 kMaxDepth = 1024;
constexpr int kNamesInLabel = 2;

// Told apart from every other console, so that a drag between two of them does nothing.
const QByteArray& consoleToken()
{
    static const QByteArray token = QUuid::createUuid().toRfc4122();
    return token;
}

// The places from the top of the tree down to `node`.
std::vector<quint32> pathOf(const OrgNode* node)
{
    std::vector<quint32> rows;
    for (; node && node->parent(); node = node->parent())
        rows.push_back(static_cast<quint32>(node->row()));
    std::reverse(rows.begin(), rows.end());
    return rows;
}

} // namespace

ChartMoves::ChartMoves(CSableManagerDoc& doc)
    : m_doc(doc)
{ }

bool ChartMoves::isDepartment(const OrgNode* node) const
{
    return node && node->isGroup() && node != m_doc.chart().invisibleRoot();
}

// --- Where a drop lands --------------------------------------------------------------------------

ChartMoves::DropPlace ChartMoves::departmentDropPlace(const OrgChart& chart, OrgNode* target, double fraction)
{
    if (!target || target == chart.invisibleRoot())
        return {};
    const bool bUpper = fraction < 1.0 / 3;
    const bool bLower = fraction > 2.0 / 3;
    if ((!bUpper && !bLower) || chart.isTopLevel(target))
        return {target->isGroup() ? target : target->parent(), -1, false};
    return {target->parent(), target->row() + (bLower ? 1 : 0), true};
}

OrgNode* ChartMoves::memberDropDepartment(OrgNode* target)
{
    if (!target)
        return nullptr;
    return target->isGroup() ? target : target->parent();
}

// --- Moves ------------------------------------------------------------------------------------------

EditOutcome ChartMoves::moveDepartment(OrgNode* department, OrgNode* parent, int index)
{
    OrgChart& chart = m_doc.chart();
    parent = memberDropDepartment(parent);
    if (!isDepartment(department) || !isDepartment(parent) || !chart.isAttached(department))
        return {};
    if (OrgChart::isWithin(parent, department))
        return EditOutcome::refused(Balloon::error(Msg::kMoveIntoItself).atNode(department));
    if (department == chart.rootGroup())
        return {};
    EditRecorder edit(m_doc, Msg::kStepMoveDepartment.arg(department->name()));
    if (parent == department->parent()) {
        // Among its own siblings: the place counts the department itself, which leaves its old one.
        const int from = department->row();
        const int last = parent->childCount() - 1;
        const int to = index < 0 ? last : std::clamp(index > from ? index - 1 : index, 0, last);
        if (to == from)
            return {};
        edit.moveNode(department, to);
    } else {
        edit.reparentNode(department, parent, index < 0 ? parent->childCount() : index);
    }
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node = department;
    return outcome;
}

EditOutcome ChartMoves::moveMemberNodes(const std::vector<OrgNode*>& placements, OrgNode* department, bool bCopy)
{
    OrgChart& chart = m_doc.chart();
    department = memberDropDepartment(department);
    if (!isDepartment(department))
        return {};
    std::vector<OrgNode*> nodes;
    for (OrgNode* node : placements) {
        if (node && node->isMember() && chart.isAttached(node)
            && std::find(nodes.begin(), nodes.end(), node) == nodes.end())
            nodes.push_back(node);
    }
    if (bCopy) {
        std::vector<int> ids;
        for (const OrgNode* node : nodes)
            ids.push_back(node->memberId());
        return ChartEdits(m_doc).addMembersToDepartment(ids, department);
    }
    // Members that have a node in the department once the move is done.
    QSet<int> there;
    for (const OrgNode* node : nodes) {
        if (node->parent() == department)
            there.insert(node->memberId());
    }
    std::vector<OrgNode*> moving;
    std::vector<OrgNode*> merging;
    for (OrgNode* node : nodes) {
        if (node->parent() == department)
            continue;
        const bool bMerges = chart.placementIn(department, node->memberId()) || there.contains(node->memberId());
        (bMerges ? merging : moving).push_back(node);
        there.insert(node->memberId());
    }
    if (moving.empty() && merging.empty())
        return {};
    EditRecorder edit(m_doc, Msg::kStepMoveMembers.arg(department->name()));
    edit.removeNodes(merging);
    edit.relocateNodes(moving, department);
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node = department;
    return outcome;
}

EditOutcome ChartMoves::moveUsers(const std::vector<int>& rows, OrgNode* department, const ChooseMembership& choose)
{
    OrgChart& chart = m_doc.chart();
    department = memberDropDepartment(department);
    if (!isDepartment(department))
        return {};
    // Every question first: nothing moves until every user's membership is known.
    std::vector<OrgNode*> moving;
    std::vector<OrgNode*> merging;
    std::vector<std::unique_ptr<OrgNode>> placing;
    QSet<int> seen;
    seen.reserve(static_cast<qsizetype>(rows.size()));
    for (const int row : rows) {
        if (row < 0 || row >= chart.memberCount())
            continue;
        const MemberRecord& member = chart.member(row);
        if (seen.contains(member.K_MemberID))
            continue;
        seen.insert(member.K_MemberID);
        const std::vector<OrgNode*>& places = chart.placementsOf(member.K_MemberID);
        if (places.empty()) {
            placing.push_back(OrgNode::makeMember(member.K_MemberID, -1));
            continue;
        }
        OrgNode* from
            = places.size() == 1 ? places.front() : (choose ? choose(member, chart.inTreeOrder(places)) : nullptr);
        if (!from)
            return {};
        if (from->parent() == department)
            continue;
        (chart.placementIn(department, member.K_MemberID) ? merging : moving).push_back(from);
    }
    if (moving.empty() && merging.empty() && placing.empty())
        return {};
    EditRecorder edit(m_doc, Msg::kStepMoveMembers.arg(department->name()));
    edit.removeNodes(merging);
    edit.relocateNodes(moving, department);
    edit.appendNodes(department, std::move(placing));
    edit.setModified(true);
    EditOutcome outcome = EditOutcome::changed();
    outcome.node = department;
    return outcome;
}

// --- Dragging tree nodes --------------------------------------------------------------------------------

QByteArray ChartMoves::nodePayload(const std::vector<OrgNode*>& nodes) const
{
    QByteArray payload;
    QDataStream out(&payload, QIODevice::WriteOnly);
    out << kPayloadMagic << consoleToken() << m_doc.chart().revision() << static_cast<quint32>(nodes.size());
    for (const OrgNode* node : nodes) {
        const std::vector<quint32> path = pathOf(node);
        out << static_cast<quint32>(path.size());
        for (const quint32 row : path)
            out << row;
    }
    return payload;
}

std::optional<std::vector<OrgNode*>> ChartMoves::nodesOfPayload(const QByteArray& payload) const
{
    const OrgChart& chart = m_doc.chart();
    QDataStream in(payload);
    quint32 magic = 0;
    QByteArray token;
    quint64 revision = 0;
    quint32 count = 0;
    in >> magic >> token >> revision >> count;
    if (in.status() != QDataStream::Ok || magic != kPayloadMagic || token != consoleToken()
        || revision != chart.revision() || count == 0
        || count > static_cast<quint32>(chart.groupCount() + chart.placementCount()))
        return std::nullopt;
    std::vector<OrgNode*> nodes;
    for (quint32 i = 0; i < count; ++i) {
        quint32 depth = 0;
        in >> depth;
        if (in.status() != QDataStream::Ok || depth == 0 || depth > kMaxDepth)
            return std::nullopt;
        OrgNode* node = chart.invisibleRoot();
        for (quint32 step = 0; step < depth; ++step) {
            quint32 row = 0;
            in >> row;
            if (in.status() != QDataStream::Ok || row >= static_cast<quint32>(node->childCount()))
                return std::nullopt;
            node = node->child(static_cast<int>(row));
        }
        if (std::find(nodes.begin(), nodes.end(), node) != nodes.end())
            return std::nullopt;
        nodes.push_back(node);
    }
    const bool bOneDepartment = nodes.size() == 1 && nodes.front()->isGroup();
    const bool bMembers = std::all_of(nodes.begin(), nodes.end(), [](const OrgNode* n) { return n->isMember(); });
    if (!in.atEnd() || !(bOneDepartment || bMembers))
        return std::nullopt;
    return nodes;
}

EditOutcome ChartMoves::dropNodes(const QByteArray& payload, OrgNode* parent, int index, bool bCopy)
{
    const auto nodes = nodesOfPayload(payload);
    if (!nodes)
        return {};
    if (nodes->front()->isGroup())
        return moveDepartment(nodes->front(), parent, index);
    return moveMemberNodes(*nodes, parent, bCopy);
}

QString ChartMoves::dragLabel(const std::vector<int>& memberIds) const
{
    QStringList names;
    for (const int id : memberIds) {
        if (names.size() == kNamesInLabel) {
            names << QStringLiteral("…");
            break;
        }
        if (const MemberRecord* member = m_doc.chart().findMember(id))
            names << (member->MemberName.isEmpty() ? member->MemberID : member->MemberName);
    }
    return Msg::kDragUsers.arg(memberIds.size()).arg(names.join(QStringLiteral(", ")));
}

QString ChartMoves::dragLabel(const std::vector<OrgNode*>& nodes) const
{
    if (nodes.size() == 1 && nodes.front()->isGroup())
        return Msg::kDragDepartment.arg(nodes.front()->name());
    std::vector<int> ids;
    for (const OrgNode* node : nodes)
        ids.push_back(node->memberId());
    return dragLabel(ids);
}

} // namespace sable
