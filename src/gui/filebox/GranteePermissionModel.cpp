#include "filebox/GranteePermissionModel.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "filebox/FileBoxHome.h"
#include "filebox/FolderTreeModel.h"
#include "filebox/LevelDelegate.h"
#include "widgets/Icons.h"

#include <QBrush>
#include <QFont>
#include <QMimeData>
#include <QPalette>

namespace sable {

GranteePermissionModel::GranteePermissionModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent)
    , m_doc(doc)
{
    connect(&doc, &CSableManagerDoc::fileBoxChanged, this, &GranteePermissionModel::refresh);
    connect(&doc, &CSableManagerDoc::contentsReplaced, this, &GranteePermissionModel::refresh);
    connect(&doc.history(), &EditHistory::changed, this, &GranteePermissionModel::refresh);
}

void GranteePermissionModel::setGrantee(std::optional<Grantee> grantee)
{
    beginResetModel();
    m_grantee = grantee;
    m_rows = currentRows();
    endResetModel();
}

void GranteePermissionModel::setHome(const QString& home)
{
    m_home = home;
    refresh();
}

std::vector<GranteePermissionModel::Row> GranteePermissionModel::currentRows() const
{
    std::vector<Row> rows;
    if (!m_grantee)
        return rows;
    const FileBoxLists& lists = m_doc.fileBox();
    const auto rowFor = [this, &lists](int folderId, int level, int fromGroup) {
        const FolderRecord* folder = lists.findFolder(folderId);
        const QString path = folder ? folder->FolderPath : Msg::kUnknownGrantee.arg(folderId);
        const bool bMissing = !folder || (!m_home.isEmpty() && !FileBoxHome::folderExists(m_home, path));
        return Row {folderId, path, level, fromGroup, bMissing};
    };
    const auto& own = m_grantee->isDepartment() ? lists.groupAuthorities : lists.userAuthorities;
    for (const AuthorityRecord& record : own) {
        if (record.grantee == m_grantee->id)
            rows.push_back(rowFor(record.K_FolderID, record.level, -1));
    }
    if (!m_grantee->isDepartment()) {
        for (const InheritedPermission& inherited : FileBoxEdits(m_doc).inheritedPermissions(m_grantee->id))
            rows.push_back(rowFor(inherited.folderId, inherited.level, inherited.groupId));
    }
    return rows;
}

void GranteePermissionModel::refresh()
{
    // A grantee deleted from the chart has nothing left to show.
    if (m_grantee
        && (m_grantee->isDepartment() ? !m_doc.chart().findGroup(m_grantee->id)
                                      : !m_doc.chart().findMember(m_grantee->id))) {
        setGrantee(std::nullopt);
        return;
    }
    std::vector<Row> rows = currentRows();
    const auto sameFolder
        = [](const Row& a, const Row& b) { return a.folderId == b.folderId && a.fromGroup == b.fromGroup; };
    if (rows.size() != m_rows.size() || !std::equal(rows.begin(), rows.end(), m_rows.begin(), sameFolder)) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return;
    }
    m_rows = std::move(rows);
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

std::vector<PermissionKey> GranteePermissionModel::keysOfRows(const std::vector<int>& rows) const
{
    std::vector<PermissionKey> keys;
    for (const int row : rows) {
        if (m_grantee && row >= 0 && row < rowCount() && !isInherited(row))
            keys.push_back({m_rows[static_cast<size_t>(row)].folderId, *m_grantee});
    }
    return keys;
}

QString GranteePermissionModel::groupName(int groupId) const
{
    const OrgNode* group = m_doc.chart().findGroup(groupId);
    return group ? group->name() : Msg::kUnknownGrantee.arg(groupId);
}

int GranteePermissionModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int GranteePermissionModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant GranteePermissionModel::folderData(const Row& row, int role) const
{
    switch (role) {
    case Qt::DisplayRole:
        return row.path;
    case Qt::DecorationRole:
        return Icons::folder(row.bMissing);
    default:
        return {};
    }
}

QVariant GranteePermissionModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = m_rows[static_cast<size_t>(index.row())];
    const bool bInherited = row.fromGroup >= 0;
    switch (role) {
    case InheritedRole:
        return bInherited;
    case MissingRole:
        return row.bMissing;
    case Qt::ForegroundRole:
        return row.bMissing || bInherited ? QVariant(QBrush(QPalette().color(QPalette::Disabled, QPalette::Text)))
                                          : QVariant();
    case Qt::FontRole: {
        if (!bInherited)
            return {};
        QFont italic;
        italic.setItalic(true);
        return italic;
    }
    case Qt::ToolTipRole:
        return row.bMissing ? Msg::kMissingFolderTip
            : bInherited    ? Msg::kInheritedTip.arg(groupName(row.fromGroup))
                            : QString();
    default:
        break;
    }
    switch (index.column()) {
    case ColFolder:
        return folderData(row, role);
    case ColLevel:
        return levelCellData(row.level, role);
    case ColSource:
        if (role != Qt::DisplayRole)
            return {};
        return bInherited ? Msg::kSourceInherited.arg(groupName(row.fromGroup)) : Msg::kSourceOwn;
    default:
        return {};
    }
}

QVariant GranteePermissionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    const QString headers[ColumnCount] = {Msg::kFolderColumn, Msg::kLevelColumn, Msg::kSourceColumn};
    return section >= 0 && section < ColumnCount ? headers[section] : QString();
}

bool GranteePermissionModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const auto level = levelOfValue(value);
    if (role != Qt::EditRole || !index.isValid() || index.column() != ColLevel || !level || !m_grantee
        || isInherited(index.row()))
        return false;
    return FileBoxEdits(m_doc).setLevel({m_rows[static_cast<size_t>(index.row())].folderId, *m_grantee}, *level);
}

Qt::ItemFlags GranteePermissionModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_grantee ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    return index.column() == ColLevel && !isInherited(index.row()) ? flags | Qt::ItemIsEditable : flags;
}

QStringList GranteePermissionModel::mimeTypes() const
{
    return {QLatin1String(FolderTreeModel::kFolderMimeType)};
}

Qt::DropActions GranteePermissionModel::supportedDropActions() const
{
    return Qt::CopyAction;
}

bool GranteePermissionModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return m_grantee && data && data->hasFormat(QLatin1String(FolderTreeModel::kFolderMimeType));
}

bool GranteePermissionModel::dropMimeData(
    const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const QStringList folders
        = FolderTreeModel::foldersOfPayload(data->data(QLatin1String(FolderTreeModel::kFolderMimeType)));
    FileBoxEdits(m_doc).grant(folders, {*m_grantee}, Read);
    // Nothing is to be taken away at the drag's source.
    return false;
}

} // namespace sable
