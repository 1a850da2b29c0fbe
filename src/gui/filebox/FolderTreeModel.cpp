#include "filebox/FolderTreeModel.h"

#include "filebox/FileBoxHome.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"

#include <QDir>
#include <QFileSystemModel>
#include <QFont>
#include <QMimeData>

namespace sable {
namespace { } // namespace

FolderTreeModel::FolderTreeModel(QObject* parent)
    : QSortFilterProxyModel(parent)
    , m_fileSystem(new QFileSystemModel(this))
{
    m_fileSystem->setFilter(QDir::Dirs | QDir::NoDotAndDotDot);
    m_fileSystem->setOption(QFileSystemModel::DontUseCustomDirectoryIcons);
    setSourceModel(m_fileSystem);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setSortLocaleAware(true);
    sort(0);
}

void FolderTreeModel::setHome(const QString& home)
{
    const QString cleaned = QDir::cleanPath(QDir::fromNativeSeparators(home));
    if (cleaned == m_home)
        return;
    m_home = cleaned;
    m_fileSystem->setRootPath(m_home);
    invalidateFilter();
}

QModelIndex FolderTreeModel::homeIndex() const
{
    return m_home.isEmpty() ? QModelIndex() : mapFromSource(m_fileSystem->index(m_home));
}

QModelIndex FolderTreeModel::rootIndex() const
{
    return homeIndex().parent();
}

QString FolderTreeModel::folderPath(const QModelIndex& index) const
{
    if (!index.isValid() || m_home.isEmpty())
        return {};
    return FileBoxHome::relativeFolderPath(m_home, m_fileSystem->filePath(mapToSource(index)));
}

QModelIndex FolderTreeModel::indexOfFolder(const QString& folderPath) const
{
    if (m_home.isEmpty() || folderPath.isEmpty())
        return {};
    return mapFromSource(m_fileSystem->index(FileBoxHome::absoluteFolderPath(m_home, folderPath)));
}

void FolderTreeModel::setMarkedFolders(QSet<QString> folderPaths)
{
    if (folderPaths == m_marked)
        return;
    m_marked = std::move(folderPaths);
    // Bold comes from data(); the views only need to paint again.
    Q_EMIT layoutAboutToBeChanged();
    Q_EMIT layoutChanged();
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return index == homeIndex() ? QStringLiteral("\\") : QSortFilterProxyModel::data(index, role);
    case Qt::DecorationRole:
        return Icons::folder();
    case Qt::ToolTipRole:
        return folderPath(index);
    case Qt::FontRole: {
        if (!m_marked.contains(folderPath(index)))
            return {};
        return boldFont();
    }
    default:
        return QSortFilterProxyModel::data(index, role);
    }
}

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled;
}

QStringList FolderTreeModel::mimeTypes() const
{
    return {QLatin1String(kFolderMimeType)};
}

QMimeData* FolderTreeModel::mimeData(const QModelIndexList& indexes) const
{
    QStringList paths;
    for (const QModelIndex& index : indexes) {
        const QString path = index.column() == 0 ? folderPath(index) : QString();
        if (!path.isEmpty() && !paths.contains(path))
            paths << path;
    }
    if (paths.isEmpty())
        return nullptr;
    auto* mime = new QMimeData;
    mime->setData(QLatin1String(kFolderMimeType), folderPayload(paths));
    return mime;
}

Qt::DropActions FolderTreeModel::supportedDragActions() const
{
    return Qt::CopyAction;
}

QByteArray FolderTreeModel::folderPayload(const QStringList& folderPaths)
{
    return folderPaths.join(u'\n').toUtf8();
}

QStringList FolderTreeModel::foldersOfPayload(const QByteArray& payload)
{
    QStringList paths = QString::fromUtf8(payload).split(u'\n', Qt::SkipEmptyParts);
    paths.removeIf([](const QString& path) { return !path.startsWith(u'\\'); });
    return paths;
}

bool FolderTreeModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (m_home.isEmpty())
        return false;
    // Only the home folder, what lies below it, and the folders above it that lead there.
    const QString path = QDir::cleanPath(m_fileSystem->filePath(m_fileSystem->index(sourceRow, 0, sourceParent)));
    return FileBoxHome::isWithin(path, m_home) || FileBoxHome::isWithin(m_home, path);
}

bool FolderTreeModel::filterAcceptsColumn(int sourceColumn, const QModelIndex&) const
{
    return sourceColumn == 0;
}

} // namespace sable
