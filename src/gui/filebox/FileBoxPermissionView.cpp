#include "filebox/FileBoxPermissionView.h"

#include "Messages.h"
#include "filebox/FileBoxLists.h"
#include "filebox/LevelDelegate.h"
#include "orgchart/COrganizeTemplateView.h"
#include "widgets/ItemViewKeys.h"

#include <QDesktopServices>
#include <QHeaderView>
#include <QMenu>
#include <QTableView>
#include <QUrl>
#include <QVBoxLayout>

#include <set>

namespace sable {
namespace {

constexpr int kRowHeight = 22;

} // namespace

FileBoxPermissionView::FileBoxPermissionView(CSableManagerDoc& doc, HomeSource home, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_home(std::move(home))
{ }

void FileBoxPermissionView::setContent(const QString& title, QWidget* content)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(makePageTitle(title, this));
    auto* body = new QVBoxLayout;
    body->setContentsMargins(4, 4, 4, 4);
    body->addWidget(content);
    layout->addLayout(body, 1);
}

QTableView* FileBoxPermissionView::createPermissionList(QAbstractItemModel* model, int levelColumn, QWidget* parent)
{
    m_list = new QTableView(parent);
    m_list->setObjectName(QStringLiteral("permissionList"));
    m_levelColumn = levelColumn;
    m_list->setModel(model);
    m_list->setItemDelegateForColumn(levelColumn, new LevelDelegate(m_list));
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setEditTriggers(
        QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked | QAbstractItemView::EditKeyPressed);
    m_list->setAcceptDrops(true);
    m_list->setDragDropMode(QAbstractItemView::DropOnly);
    m_list->setDefaultDropAction(Qt::CopyAction);
    m_list->setDropIndicatorShown(true);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->verticalHeader()->hide();
    m_list->verticalHeader()->setDefaultSectionSize(kRowHeight);
    m_list->horizontalHeader()->setStretchLastSection(true);
    m_list->setTabKeyNavigation(false);
    ItemViewKeys::addDeleteKey(m_list, [this] { deleteSelectedPermissions(); });
    ItemViewKeys::addContextMenuKey(m_list);
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this,
        &FileBoxPermissionView::selectionChanged);
    connect(m_list, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = m_list->indexAt(pos);
        if (!index.isValid())
            return;
        if (!m_list->selectionModel()->isRowSelected(index.row(), {}))
            m_list->selectRow(index.row());
        m_list->setCurrentIndex(index.siblingAtColumn(m_levelColumn));
        QMenu menu(this);
        buildListMenu(menu);
        menu.exec(m_list->viewport()->mapToGlobal(pos));
    });
    return m_list;
}

std::vector<int> FileBoxPermissionView::selectedRows() const
{
    std::set<int> rows;
    for (const QModelIndex& index : m_list->selectionModel()->selectedIndexes())
        rows.insert(index.row());
    return {rows.begin(), rows.end()};
}

void FileBoxPermissionView::buildListMenu(QMenu& menu)
{
    const QModelIndex level = m_list->currentIndex().siblingAtColumn(m_levelColumn);
    const bool bEditable = level.flags() & Qt::ItemIsEditable;
    for (const int choice : {NoAccess, Read, ReadWrite}) {
        QAction* action = menu.addAction(
            FileBoxLists::levelName(choice), this, [this, level, choice] { m_list->model()->setData(level, choice); });
        action->setCheckable(true);
        action->setChecked(level.data(Qt::EditRole).toInt() == choice);
        action->setEnabled(bEditable);
    }
    menu.addSeparator();
    menu.addAction(Msg::kMenuDeletePermission, this, [this] { deleteSelectedPermissions(); })->setEnabled(bEditable);
}

void FileBoxPermissionView::editFolders()
{
    const QString home = m_home();
    if (!QDesktopServices::openUrl(QUrl::fromLocalFile(home)))
        m_prompter.warn(this, Msg::kOpenFolderFailed.arg(home));
}

void FileBoxPermissionView::showEvent(QShowEvent* event)
{
    refreshHome();
    QWidget::showEvent(event);
}

} // namespace sable
