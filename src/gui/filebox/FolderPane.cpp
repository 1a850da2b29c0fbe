#include "filebox/FolderPane.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "filebox/FileBoxHome.h"
#include "filebox/FolderTreeModel.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"

#include <QDir>
#include <QFileSystemModel>
#include <QLabel>
#include <QListWidget>
#include <QSet>
#include <QTreeView>
#include <QVBoxLayout>

namespace sable {
namespace { } // namespace

FolderPane::FolderPane(CSableManagerDoc& doc, MissingFolders missing, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_model(new FolderTreeModel(this))
    , m_tree(new QTreeView(this))
    , m_missingTitle(makeHeading(Msg::kMissingFoldersTitle, this))
    , m_missing(new QListWidget(this))
    , m_bShowMissing(missing == MissingFolders::Shown)
{
    m_tree->setObjectName(QStringLiteral("folderTree"));
    m_tree->setModel(m_model);
    m_tree->setHeaderHidden(true);
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setDragEnabled(true);
    m_tree->setDragDropMode(QAbstractItemView::DragOnly);
    m_tree->setDefaultDropAction(Qt::CopyAction);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_missing->setObjectName(QStringLiteral("missingFolders"));
    m_missing->setMaximumHeight(90);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(makeHeading(Msg::kFolderTreeTitle, this));
    layout->addWidget(m_tree, 1);
    layout->addWidget(m_missingTitle);
    layout->addWidget(m_missing);
    m_missingTitle->hide();
    m_missing->hide();

    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& current) {
        if (current.isValid()) {
            m_missing->clearSelection();
            setCurrent(m_model->folderPath(current));
        }
    });
    connect(m_missing, &QListWidget::currentItemChanged, this, [this](QListWidgetItem* item) {
        if (item) {
            m_tree->clearSelection();
            setCurrent(item->data(Qt::UserRole).toString());
        }
    });
    // The home folder opens as soon as the file system has read it.
    connect(m_model->fileSystem(), &QFileSystemModel::directoryLoaded, this, [this](const QString& path) {
        if (QDir::cleanPath(path) == m_model->home())
            m_tree->expand(m_model->homeIndex());
    });
    connect(&doc, &CSableManagerDoc::fileBoxChanged, this, &FolderPane::refresh);
    connect(&doc, &CSableManagerDoc::contentsReplaced, this, &FolderPane::refresh);
}

void FolderPane::setHome(const QString& home)
{
    const QString before = m_model->home();
    m_home = home;
    m_model->setHome(home);
    if (m_model->home() != before) {
        m_tree->setRootIndex(m_model->rootIndex());
        m_tree->expand(m_model->homeIndex());
        setCurrent({});
    }
    refresh();
}

void FolderPane::setCurrent(const QString& folderPath)
{
    if (folderPath == m_current)
        return;
    m_current = folderPath;
    Q_EMIT currentFolderChanged(folderPath);
}

QStringList FolderPane::selectedFolders() const
{
    QStringList paths;
    for (const QModelIndex& index : m_tree->selectionModel()->selectedRows())
        paths << m_model->folderPath(index);
    paths.removeAll(QString());
    return paths;
}

bool FolderPane::selectFolder(const QString& folderPath)
{
    for (int row = 0; row < m_missing->count(); ++row) {
        if (m_missing->item(row)->data(Qt::UserRole).toString() == folderPath) {
            m_missing->setCurrentRow(row);
            return true;
        }
    }
    const QModelIndex index = m_model->indexOfFolder(folderPath);
    if (!index.isValid())
        return false;
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index);
    return true;
}

void FolderPane::refresh()
{
    QSet<QString> marked;
    const FileBoxLists& lists = m_doc.fileBox();
    for (const auto* list : {&lists.groupAuthorities, &lists.userAuthorities}) {
        for (const AuthorityRecord& record : *list) {
            if (const FolderRecord* folder = lists.findFolder(record.K_FolderID))
                marked.insert(folder->FolderPath);
        }
    }
    m_model->setMarkedFolders(std::move(marked));
    refreshMissing();
}

void FolderPane::refreshMissing()
{
    const QString current
        = m_missing->currentItem() ? m_missing->currentItem()->data(Qt::UserRole).toString() : QString();
    const QSignalBlocker blocker(m_missing);
    m_missing->clear();
    if (m_bShowMissing && !m_home.isEmpty()) {
        for (const FolderRecord& folder : m_doc.fileBox().folders) {
            if (FileBoxHome::folderExists(m_home, folder.FolderPath))
                continue;
            auto* item = new QListWidgetItem(Icons::folder(true), folder.FolderPath, m_missing);
            item->setData(Qt::UserRole, folder.FolderPath);
            item->setToolTip(Msg::kMissingFolderTip);
            item->setForeground(palette().color(QPalette::Disabled, QPalette::Text));
            if (folder.FolderPath == current)
                m_missing->setCurrentItem(item);
        }
    }
    m_missingTitle->setVisible(m_missing->count() > 0);
    m_missing->setVisible(m_missing->count() > 0);
}

} // namespace sable
