#pragma once

#include "document/FileBoxEdits.h"

#include <QAbstractTableModel>

#include <optional>

namespace sable {

class CSableManagerDoc;

// The folders on which one department or user holds a permission, with the level edited in place.
// For a user, below their own permissions, those they receive through each department they sit in:
// marked as inherited and not editable here. Folders missing on disk are shown greyed with a tip.
// Folders dropped on the list give the grantee "읽기" unless it already holds a permission there.
class GranteePermissionModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        ColFolder,
        ColLevel,
        ColSource,
        ColumnCount,
    };
    enum Role
    {
        InheritedRole = Qt::UserRole + 1, // true for a permission received through a department
        MissingRole, // true for a folder that is not on disk
    };

    explicit GranteePermissionModel(CSableManagerDoc& doc, QObject* parent = nullptr);

    void setGrantee(std::optional<Grantee> grantee);
    const std::optional<Grantee>& grantee() const { return m_grantee; }
    // The home folder, to tell folders on disk from missing ones.
    void setHome(const QString& home);

    bool isInherited(int row) const { return m_rows[static_cast<size_t>(row)].fromGroup >= 0; }
    // The grantee's own permissions among `rows`; inherited rows are left out.
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

private:
    struct Row
    {
        int folderId = 0;
        QString path;
        int level = NoAccess;
        int fromGroup = -1; // the department it comes through; -1 for the grantee's own
        bool bMissing = false;
        bool operator==(const Row&) const = default;
    };
    std::vector<Row> currentRows() const;
    void refresh();
    QVariant folderData(const Row& row, int role) const;
    QString groupName(int groupId) const;

    CSableManagerDoc& m_doc;
    std::optional<Grantee> m_grantee;
    QString m_home;
    std::vector<Row> m_rows;
};

} // namespace sable
