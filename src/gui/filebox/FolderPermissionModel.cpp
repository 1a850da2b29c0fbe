#include "filebox/FolderPermissionModel.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "filebox/LevelDelegate.h"
#include "widgets/Icons.h"

#include <QMimeData>

namespace sable {

FolderPermissionModel::FolderPermissionModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent)
    , m_doc(doc)
{
    // Names change with the chart and levels with the lists; undo and redo change either.
    connect(&doc, &CSableManagerDoc::fileBoxChanged, this, &FolderPermissionModel::refresh);
    connect(&doc, &CSableManagerDoc::contentsReplaced, this, &FolderPermissionModel::refresh);
    connect(&doc.history(), &EditHistory::changed, this, &FolderPermissionModel::refresh);
}

void FolderPermissionModel::setFolder(const QString& folderPath)
{
    beginResetModel();
    m_folder = folderPath;
    m_rows = currentRows(&m_folderId);
    endResetModel();
}

std::vector<FolderPermissionModel::Row> FolderPermissionModel::currentRows(int* folderId) const
{
    const FolderRecord* folder = m_folder.isEmpty() ? nullptr : m_doc.fileBox().findFolderByPath(m_folder);
    *folderId = folder ? folder->K_FolderID : -1;
    std::vector<Row> rows;
    if (!folder)
        return rows;
    for (const AuthorityRecord& record : m_doc.fileBox().groupAuthorities) {
        if (record.K_FolderID == *folderId)
            rows.push_back({Grantee::department(record.grantee), record.level});
    }
    for (const AuthorityRecord& record : m_doc.fileBox().userAuthorities) {
        if (record.K_FolderID == *folderId)
            rows.push_back({Grantee::user(record.grantee), record.level});
    }
    return rows;
}

void FolderPermissionModel::refresh()
{
    std::vector<Row> rows = currentRows(&m_folderId);
    const bool bSameRows = rows.size() == m_rows.size()
        && std::equal(rows.begin(), rows.end(), m_rows.begin(),
            [](const Row& a, const Row& b) { return a.grantee == b.grantee; });
    if (!bSameRows) {
        beginResetModel();
        m_rows = std::move(rows);
        endResetModel();
        return;
    }
    // The same permissions: keep the selection and the current cell.
    m_rows = std::move(rows);
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, ColumnCount - 1));
}

int FolderPermissionModel::rowOf(const Grantee& grantee) const
{
    for (size_t row = 0; row < m_rows.size(); ++row) {
        if (m_rows[row].grantee == grantee)
            return static_cast<int>(row);
    }
    return -1;
}

std::vector<PermissionKey> FolderPermissionModel::keysOfRows(const std::vector<int>& rows) const
{
    std::vector<PermissionKey> keys;
    for (const int row : rows) {
        if (row >= 0 && row < rowCount())
            keys.push_back({m_folderId, granteeAt(row)});
    }
    return keys;
}

QString FolderPermissionModel::granteeName(const Grantee& grantee) const
{
    const OrgChart& chart = m_doc.chart();
    if (grantee.isDepartment()) {
        const OrgNode* group = chart.findGroup(grantee.id);
        return group ? group->name() : Msg::kUnknownGrantee.arg(grantee.id);
    }
    const MemberRecord* member = chart.findMember(grantee.id);
    return member ? Msg::kGranteeUserName.arg(member->MemberName, member->MemberID)
                  : Msg::kUnknownGrantee.arg(grantee.id);
}

int FolderPermissionModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int FolderPermissionModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FolderPermissionModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Row& row = m_rows[static_cast<size_t>(index.row())];
    switch (index.column()) {
    case ColGrantee:
        if (role == Qt::DisplayRole)
            return granteeName(row.grantee);
        if (role == Qt::DecorationRole) {
            if (row.grantee.isDepartment())
                return Icons::department();
            const MemberRecord* member = m_doc.chart().findMember(row.grantee.id);
            return Icons::member(!member || member->Gender == 0);
        }
        return {};
    case ColKind:
        return role == Qt::DisplayRole ? (row.grantee.isDepartment() ? Msg::kGranteeDepartment : Msg::kGranteeUser)
                                       : QVariant();
    case ColLevel:
        return levelCellData(row.level, role);
    default:
        return {};
    }
}

QVariant FolderPermissionModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    const QString headers[ColumnCount] = {Msg::kGranteeColumn, Msg::kGranteeKindColumn, Msg::kLevelColumn};
    return section >= 0 && section < ColumnCount ? headers[section] : QString();
}

bool FolderPermissionModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const auto level = levelOfValue(value);
    if (role != Qt::EditRole || !index.isValid() || index.column() != ColLevel || !level)
        return false;
    return FileBoxEdits(m_doc).setLevel({m_folderId, granteeAt(index.row())}, *level);
}

Qt::ItemFlags FolderPermissionModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return m_folder.isEmpty() ? Qt::NoItemFlags : Qt::ItemIsDropEnabled;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDropEnabled | Qt::ItemNeverHasChildren;
    return index.column() == ColLevel ? flags | Qt::ItemIsEditable : flags;
}

QStringList FolderPermissionModel::mimeTypes() const
{
    return {QLatin1String(FileBoxEdits::kGranteeMimeType)};
}

Qt::DropActions FolderPermissionModel::supportedDropActions() const
{
    return Qt::CopyAction;
}

bool FolderPermissionModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int, const QModelIndex&) const
{
    return !m_folder.isEmpty() && data && data->hasFormat(QLatin1String(FileBoxEdits::kGranteeMimeType));
}

bool FolderPermissionModel::dropMimeData(
    const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    FileBoxEdits edits(m_doc);
    const auto grantees = edits.granteesOfPayload(data->data(QLatin1String(FileBoxEdits::kGranteeMimeType)));
    if (!grantees)
        return false;
    edits.grant({m_folder}, *grantees, Read);
    Q_EMIT granteesDropped(*grantees);
    // Nothing is to be taken away at the drag's source.
    return false;
}

} // namespace sable
