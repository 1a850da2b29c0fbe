#pragma once

#include <QPersistentModelIndex>
#include <QSet>
#include <QSortFilterProxyModel>

class QFileSystemModel;

namespace sable {

// The folders below the file box's home folder, as a tree with the home folder as its one top
// item, shown as "\". Folders that hold permissions are shown in bold. Folders can be dragged
// (as their stored paths) onto a permission list.
class FolderTreeModel final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    static constexpr char kFolderMimeType[] = "application/x-sable-folders";

    explicit FolderTreeModel(QObject* parent = nullptr);

    void setHome(const QString& home);
    const QString& home() const { return m_home; }
    QFileSystemModel* fileSystem() const { return m_fileSystem; }

    // The "\" item, and its parent for QAbstractItemView::setRootIndex.
    QModelIndex homeIndex() const;
    QModelIndex rootIndex() const;
    // The path of a folder as the file box stores it; empty for no folder.
    QString folderPath(const QModelIndex& index) const;
    // The folder's item, once its parent folder has been read.
    QModelIndex indexOfFolder(const QString& folderPath) const;

    // The stored paths of the folders to show in bold.
    void setMarkedFolders(QSet<QString> folderPaths);

    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    Qt::DropActions supportedDragActions() const override;

    static QByteArray folderPayload(const QStringList& folderPaths);
    static QStringList foldersOfPayload(const QByteArray& payload);

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;
    bool filterAcceptsColumn(int sourceColumn, const QModelIndex& sourceParent) const override;

private:
    QFileSystemModel* m_fileSystem;
    QString m_home; // cleaned, with '/' separators
    QSet<QString> m_marked;
};

} // namespace sable
