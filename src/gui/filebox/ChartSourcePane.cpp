#include "filebox/ChartSourcePane.h"

#include "Messages.h"
#include "filebox/GranteeSourceModels.h"
#include "orgchart/MemberFilterModel.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/OrgTreeModel.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"

#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QTableView>
#include <QTreeView>
#include <QVBoxLayout>

namespace sable {
namespace {

constexpr int kRowHeight = 20;

QWidget* titled(const QString& title, QWidget* content, QWidget* extra, QWidget* parent)
{
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    bar->addWidget(makeHeading(title, box));
    if (extra)
        bar->addWidget(extra, 1);
    layout->addLayout(bar);
    layout->addWidget(content);
    return box;
}

void makeDragSource(QAbstractItemView* view)
{
    view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    view->setDragEnabled(true);
    view->setDragDropMode(QAbstractItemView::DragOnly);
    view->setDefaultDropAction(Qt::CopyAction);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setContextMenuPolicy(Qt::CustomContextMenu);
}

} // namespace

ChartSourcePane::ChartSourcePane(CSableManagerDoc& doc, QWidget* parent)
    : QWidget(parent)
    , m_treeModel(new GranteeTreeModel(new OrgTreeModel(doc, this), this))
    , m_filter(new MemberFilterModel(this))
    , m_memberModel(new GranteeMemberModel(this))
    , m_tree(new QTreeView(this))
    , m_list(new QTableView(this))
    , m_search(new QLineEdit(this))
{
    m_filter->setSourceModel(new MemberListModel(doc, this));
    m_memberModel->setSourceModel(m_filter);

    m_tree->setObjectName(QStringLiteral("chartTree"));
    m_tree->setModel(m_treeModel);
    m_tree->setHeaderHidden(true);
    makeDragSource(m_tree);
    m_list->setObjectName(QStringLiteral("memberList"));
    m_list->setTabKeyNavigation(false); // Tab moves on to the next control
    m_list->setModel(m_memberModel);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    makeDragSource(m_list);
    m_list->verticalHeader()->hide();
    m_list->verticalHeader()->setDefaultSectionSize(kRowHeight);
    m_list->horizontalHeader()->setStretchLastSection(true);
    m_list->setColumnWidth(0, 80);
    m_search->setPlaceholderText(Msg::kSearchPlaceholder);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(Icons::search(), QLineEdit::LeadingPosition);

    auto* splitter = new QSplitter(Qt::Vertical, this);
    splitter->setObjectName(QStringLiteral("ChartSource")); // its sizes are kept between runs
    splitter->addWidget(titled(Msg::kTreeTitle, m_tree, nullptr, splitter));
    splitter->addWidget(titled(Msg::kMemberListTitle, m_list, m_search, splitter));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);

    connect(m_search, &QLineEdit::textChanged, m_filter, &MemberFilterModel::setSearchText);
    connect(m_treeModel, &QAbstractItemModel::modelReset, this, [this] { m_tree->expandToDepth(0); });
    for (QAbstractItemView* view : {static_cast<QAbstractItemView*>(m_tree), static_cast<QAbstractItemView*>(m_list)}) {
        connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this, [this, view](const QModelIndex& i) {
            if (i.isValid())
                choose(view);
        });
        connect(view, &QAbstractItemView::clicked, this, [this, view] { choose(view); });
        connect(view, &QWidget::customContextMenuRequested, this, [this, view](const QPoint& pos) {
            const QModelIndex index = view->indexAt(pos);
            if (!index.isValid())
                return;
            if (!view->selectionModel()->isSelected(index))
                view->setCurrentIndex(index);
            choose(view);
            Q_EMIT menuRequested(view->viewport()->mapToGlobal(pos));
        });
    }
    m_tree->expandToDepth(0);
}

void ChartSourcePane::choose(QAbstractItemView* view)
{
    m_chosenFrom = view;
    Q_EMIT currentGranteeChanged();
}

std::optional<Grantee> ChartSourcePane::currentGrantee() const
{
    if (m_chosenFrom == m_tree)
        return m_treeModel->granteeAt(m_tree->currentIndex());
    if (m_chosenFrom == m_list)
        return m_memberModel->granteeAt(m_list->currentIndex());
    return std::nullopt;
}

std::vector<Grantee> ChartSourcePane::selectedGrantees() const
{
    std::vector<Grantee> grantees;
    if (!m_chosenFrom)
        return grantees;
    for (const QModelIndex& index : m_chosenFrom->selectionModel()->selectedIndexes()) {
        const auto grantee = m_chosenFrom == m_tree ? m_treeModel->granteeAt(index) : m_memberModel->granteeAt(index);
        if (grantee && std::find(grantees.begin(), grantees.end(), *grantee) == grantees.end())
            grantees.push_back(*grantee);
    }
    return grantees;
}

} // namespace sable
