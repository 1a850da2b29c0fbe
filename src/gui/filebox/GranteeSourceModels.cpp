#include "filebox/GranteeSourceModels.h"

#include "orgchart/MemberListModel.h"
#include "orgchart/MemberRecord.h"
#include "orgchart/OrgNode.h"
#include "orgchart/OrgTreeModel.h"

#include <QMimeData>

#include <algorithm>

namespace sable {

QMimeData* granteeMimeData(const std::vector<Grantee>& grantees)
{
    if (grantees.empty())
        return nullptr;
    auto* mime = new QMimeData;
    mime->setData(QLatin1String(FileBoxEdits::kGranteeMimeType), FileBoxEdits::granteePayload(grantees));
    return mime;
}

namespace {

// The grantees of the dragged rows, each once, in the order of the rows.
template <typename Model>
QMimeData* granteesOf(const Model& model, const QModelIndexList& indexes)
{
    std::vector<Grantee> grantees;
    for (const QModelIndex& index : indexes) {
        const auto grantee = model.granteeAt(index);
        if (grantee && std::find(grantees.begin(), grantees.end(), *grantee) == grantees.end())
            grantees.push_back(*grantee);
    }
    return granteeMimeData(grantees);
}

} // namespace

// --- The department tree ----------------------------------------------------------------------------

GranteeTreeModel::GranteeTreeModel(OrgTreeModel* tree, QObject* parent)
    : QIdentityProxyModel(parent)
    , m_tree(tree)
{
    setSourceModel(tree);
}

OrgNode* GranteeTreeModel::nodeAt(const QModelIndex& index) const
{
    return m_tree->nodeAt(mapToSource(index));
}

QModelIndex GranteeTreeModel::indexOf(const OrgNode* node) const
{
    return mapFromSource(m_tree->indexOf(node));
}

std::optional<Grantee> GranteeTreeModel::granteeAt(const QModelIndex& index) const
{
    const OrgNode* node = nodeAt(index);
    if (!node)
        return std::nullopt;
    return node->isGroup() ? Grantee::department(node->groupId()) : Grantee::user(node->memberId());
}

bool GranteeTreeModel::setData(const QModelIndex&, const QVariant&, int)
{
    return false;
}

Qt::ItemFlags GranteeTreeModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QIdentityProxyModel::flags(index) & ~(Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
    return index.isValid() ? flags | Qt::ItemIsDragEnabled : flags;
}

QStringList GranteeTreeModel::mimeTypes() const
{
    return {QLatin1String(FileBoxEdits::kGranteeMimeType)};
}

QMimeData* GranteeTreeModel::mimeData(const QModelIndexList& indexes) const
{
    return granteesOf(*this, indexes);
}

Qt::DropActions GranteeTreeModel::supportedDragActions() const
{
    return Qt::CopyAction;
}

Qt::DropActions GranteeTreeModel::supportedDropActions() const
{
    return Qt::IgnoreAction;
}

bool GranteeTreeModel::canDropMimeData(const QMimeData*, Qt::DropAction, int, int, const QModelIndex&) const
{
    return false;
}

// --- The member list --------------------------------------------------------------------------------

GranteeMemberModel::GranteeMemberModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{ }

std::optional<Grantee> GranteeMemberModel::granteeAt(const QModelIndex& index) const
{
    const int id = index.isValid() ? index.data(MemberListModel::MemberIdRole).toInt() : -1;
    return id >= 0 ? std::optional(Grantee::user(id)) : std::nullopt;
}

bool GranteeMemberModel::setData(const QModelIndex&, const QVariant&, int)
{
    return false;
}

Qt::ItemFlags GranteeMemberModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

QStringList GranteeMemberModel::mimeTypes() const
{
    return {QLatin1String(FileBoxEdits::kGranteeMimeType)};
}

QMimeData* GranteeMemberModel::mimeData(const QModelIndexList& indexes) const
{
    return granteesOf(*this, indexes);
}

Qt::DropActions GranteeMemberModel::supportedDragActions() const
{
    return Qt::CopyAction;
}

bool GranteeMemberModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    return index.data(MemberListModel::MemberIdRole).toInt() >= 0;
}

bool GranteeMemberModel::filterAcceptsColumn(int sourceColumn, const QModelIndex&) const
{
    return sourceColumn == ColMemberID || sourceColumn == ColMemberName;
}

} // namespace sable
