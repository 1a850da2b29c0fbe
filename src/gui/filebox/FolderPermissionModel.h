#pragma once

#include "document/FileBoxEdits.h"

#include <QAbstractTableModel>

namespace sable {

class CSableManagerDoc;

// The permissions on one folder (by its stored path): the departments first, then the users, each
// with its level, which is edited in place. Departments and users dropped on the list get "읽기"
// unless they already hold a permission there.
class FolderPermissionModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        ColGrantee,
        ColKind,
        ColLevel,
        ColumnCount,
    };

    explicit FolderPermissionModel(CSableManagerDoc& doc, QObject* parent = nullptr);

    // The folder whose permissions are listed; empty for none (nothing is listed or dropped).
    void setFolder(const QString& folderPath);
    const QString& folder() const { return m_folder; }
    Grantee granteeAt(int row) const { return m_rows[static_cast<size_t>(row)].grantee; }
    int rowOf(const Grantee& grantee) const;
    std::vector<PermissionKey> keysOfRows(const std::vector<int>& rows) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    QStringList mimeTypes() const override;
    Qt::DropActions supportedDropActions() const override;
    bool canDropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) const override;
    bool dropMimeData(
        const QMimeData* data, Qt::DropAction action, int row, int column, const QModelIndex& parent) override;

Q_SIGNALS:
    // A drop named these grantees (whether or not they were new to the folder).
    void granteesDropped(const std::vector<sable::Grantee>& grantees);

private:
    struct Row
    {
        Grantee grantee;
        int level = NoAccess;
    };
    std::vector<Row> currentRows(int* folderId) const;
    void refresh();
    QString granteeName(const Grantee& grantee) const;

    CSableManagerDoc& m_doc;
    QString m_folder;
    int m_folderId = -1; // -1 while the folder is not in the folder list
    std::vector<Row> m_rows;
};

} // namespace sable
