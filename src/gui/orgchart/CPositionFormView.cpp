#include "orgchart/CPositionFormView.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/RankEdits.h"
#include "orgchart/COrganizeTemplateView.h"
#include "orgchart/RankModels.h"
#include "widgets/BalloonTip.h"
#include "widgets/CutTextDelegate.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"
#include "widgets/ItemViewKeys.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

namespace sable {
namespace {

// The rank column's drop-down list of the rank names and "직급없음".
class RankChoiceDelegate final : public CutTextDelegate
{
public:
    explicit RankChoiceDelegate(MembershipRankModel* model, QObject* parent)
        : CutTextDelegate(parent)
        , m_model(model)
    { }
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        auto* combo = new QComboBox(parent);
        combo->addItems(m_model->rankOptions());
        return combo;
    }
    void setEditorData(QWidget* editor, const QModelIndex& index) const override
    {
        static_cast<QComboBox*>(editor)->setCurrentText(index.data(Qt::EditRole).toString());
    }
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override
    {
        model->setData(index, static_cast<QComboBox*>(editor)->currentText());
    }

private:
    MembershipRankModel* m_model;
};

QWidget* titled(const QString& title, QWidget* content, QWidget* parent, QWidget* beside = nullptr)
{
    auto* box = new QWidget(parent);
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    bar->addWidget(makeHeading(title, box));
    if (beside) {
        bar->addStretch(1);
        bar->addWidget(beside, 2);
    }
    layout->addLayout(bar);
    layout->addWidget(content);
    return box;
}

} // namespace

CPositionFormView::CPositionFormView(CSableManagerDoc& doc, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_rankModel(new RankTreeModel(doc, this))
    , m_membershipModel(new MembershipRankModel(doc, this))
    , m_tree(new QTreeView(this))
    , m_grid(new QTableView(this))
    , m_search(new QLineEdit(this))
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("Ranks")); // its sizes are kept between runs
    splitter->addWidget(titled(Msg::kRankTreeRoot, m_tree, splitter));
    splitter->addWidget(titled(Msg::kRankGridTitle, m_grid, splitter, m_search));
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 2);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(makePageTitle(Msg::kRankEditorTitle, this));
    auto* body = new QVBoxLayout;
    body->setContentsMargins(4, 4, 4, 4);
    body->addWidget(splitter);
    layout->addLayout(body, 1);

    m_tree->setModel(m_rankModel);
    m_tree->setHeaderHidden(true);
    m_tree->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->expandAll();
    m_grid->setObjectName(QStringLiteral("RankMembers")); // its columns are kept between runs
    m_search->setPlaceholderText(Msg::kRankGridSearchPlaceholder);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(Icons::search(), QLineEdit::LeadingPosition);
    connect(m_search, &QLineEdit::textChanged, m_membershipModel, &MembershipRankModel::setSearchText);
    m_grid->setModel(m_membershipModel);
    m_grid->setItemDelegate(new CutTextDelegate(m_grid));
    m_grid->setWordWrap(false);
    m_grid->setItemDelegateForColumn(MembershipRankModel::ColRank, new RankChoiceDelegate(m_membershipModel, m_grid));
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setEditTriggers(
        QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    m_grid->setContextMenuPolicy(Qt::CustomContextMenu);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_grid->verticalHeader()->setDefaultSectionSize(20);
    m_grid->setColumnWidth(MembershipRankModel::ColLoginId, 100);
    m_grid->setColumnWidth(MembershipRankModel::ColRank, 90);
    m_grid->horizontalHeader()->setSectionResizeMode(MembershipRankModel::ColDepartment, QHeaderView::Stretch);

    m_grid->setTabKeyNavigation(false);
    ItemViewKeys::addDeleteKey(m_tree, [this] {
        if (selectedRank() >= 0)
            deleteRank();
    });
    ItemViewKeys::addContextMenuKey(m_tree);
    ItemViewKeys::addContextMenuKey(m_grid);

    connect(m_rankModel, &QAbstractItemModel::modelReset, m_tree, &QTreeView::expandAll);
    connect(m_membershipModel, &QAbstractItemModel::modelAboutToBeReset, this, &CPositionFormView::keepGridSelection);
    connect(m_membershipModel, &QAbstractItemModel::modelReset, this, &CPositionFormView::restoreGridSelection);
    connect(m_rankModel, &RankTreeModel::messageRequested, this,
        [this](const QString& text) { m_prompter.warn(this, text); });
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, &CPositionFormView::selectionChanged);
    connect(m_tree, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = m_tree->indexAt(pos);
        if (index.isValid())
            m_tree->setCurrentIndex(index);
        const bool onRank = m_rankModel->rankAt(index) >= 0;
        QMenu menu(this);
        menu.addAction(Msg::kMenuAddRank, this, &CPositionFormView::addRank);
        menu.addAction(Msg::kMenuDelete, this, &CPositionFormView::deleteRank)->setEnabled(onRank);
        menu.addAction(Msg::kMenuRenameRank, this, &CPositionFormView::renameRank)->setEnabled(onRank);
        menu.exec(m_tree->viewport()->mapToGlobal(pos));
    });
    connect(m_grid, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        if (!m_grid->indexAt(pos).isValid())
            return;
        QMenu menu(this);
        QMenu* ranks = menu.addMenu(Msg::kMenuRankSubmenu);
        for (int k = 0; k <= m_doc.ranks().count() && RankEdits::kNoRankCommand + k <= RankEdits::kLastRankCommand;
             ++k) {
            ranks->addAction(k == 0 ? Msg::kNoRank : m_doc.ranks().at(k - 1).RankName, this,
                [this, k] { setRanksOfSelectedRows(RankEdits::kNoRankCommand + k); });
        }
        menu.exec(m_grid->viewport()->mapToGlobal(pos));
    });
}

int CPositionFormView::selectedRank() const
{
    return m_rankModel->rankAt(m_tree->currentIndex());
}

void CPositionFormView::selectRank(int rank)
{
    // After the list is rebuilt, which happens once the change has been announced.
    QTimer::singleShot(0, this, [this, rank] {
        if (rank >= 0 && rank < m_doc.ranks().count())
            m_tree->setCurrentIndex(m_rankModel->rankIndex(rank));
        Q_EMIT selectionChanged();
    });
}

void CPositionFormView::addRank()
{
    const EditOutcome outcome = RankEdits(m_doc).addRank();
    QTimer::singleShot(0, this, [this, rank = outcome.rankIndex] {
        const QModelIndex index = m_rankModel->rankIndex(rank);
        m_tree->setCurrentIndex(index);
        m_tree->edit(index);
    });
}

void CPositionFormView::renameRank()
{
    if (selectedRank() >= 0)
        m_tree->edit(m_tree->currentIndex());
}

void CPositionFormView::deleteRank()
{
    RankEdits(m_doc).deleteRank(
        selectedRank(), [this](const QString& question) { return m_prompter.confirmDestroy(this, question); });
    showHints();
}

void CPositionFormView::moveSelectedRank(bool up)
{
    RankEdits edits(m_doc);
    const EditOutcome outcome = up ? edits.moveRankUp(selectedRank()) : edits.moveRankDown(selectedRank());
    selectRank(outcome.rankIndex);
}

void CPositionFormView::setRanksOfSelectedRows(int command)
{
    std::vector<OrgNode*> placements;
    for (const QModelIndex& index : m_grid->selectionModel()->selectedRows())
        placements.push_back(m_membershipModel->placementAt(index.row()));
    RankEdits(m_doc).setMembershipRanks(placements, command);
}

void CPositionFormView::keepGridSelection()
{
    m_keptPlacements.clear();
    for (const QModelIndex& index : m_grid->selectionModel()->selectedRows())
        m_keptPlacements.push_back(m_membershipModel->placementAt(index.row()));
}

void CPositionFormView::restoreGridSelection()
{
    QItemSelection selection;
    for (const OrgNode* placement : m_keptPlacements) {
        const int row = m_membershipModel->rowOf(placement);
        if (row >= 0)
            selection.select(m_membershipModel->index(row, 0), m_membershipModel->index(row, 0));
    }
    m_grid->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    m_keptPlacements.clear();
}

void CPositionFormView::showHints()
{
    if (const auto hint = RankEdits(m_doc).emptyListHint(); hint && m_bBalloonHelp)
        showBalloon(*hint);
}

void CPositionFormView::showBalloon(const Balloon& balloon)
{
    const QRect root = m_tree->visualRect(m_rankModel->rootIndex());
    BalloonTip::show(this, m_tree->viewport()->mapToGlobal(QPoint(root.left() + 24, root.bottom())), balloon);
}

} // namespace sable
