#pragma once

#include "document/FileBoxEdits.h"

#include <QIdentityProxyModel>
#include <QSortFilterProxyModel>

#include <optional>

namespace sable {

class OrgNode;
class OrgTreeModel;

// The chart's department tree as the file-box views show it: read-only, and every department and
// member node can be dragged onto a permission list as a grantee.
class GranteeTreeModel final : public QIdentityProxyModel
{
    Q_OBJECT

public:
    explicit GranteeTreeModel(OrgTreeModel* tree, QObject* parent = nullptr);

    OrgNode* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOf(const OrgNode* node) const;
    // A department node is the department, a member node the user.
    std::optional<Grantee> granteeAt(const QModelIndex& index) const;

    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(const QMimeData*, Qt::DropAction, int, int, const QModelIndex&) const override;

private:
    OrgTreeModel* m_tree;
};

// The chart's member list as the file-box views show it: the members (not the entry row) with their
// ID and name, read-only, each draggable as a user grantee. The source is the member list or a
// filter of it.
class GranteeMemberModel final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit GranteeMemberModel(QObject* parent = nullptr);

    std::optional<Grantee> granteeAt(const QModelIndex& index) const;

    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool filterAcceptsColumn(int sourceColumn, const QModelIndex& sourceParent) const override;
};

// The MIME data of dragged grantees; nullptr when there are none.
QMimeData* granteeMimeData(const std::vector<Grantee>& grantees);

} // namespace sable
