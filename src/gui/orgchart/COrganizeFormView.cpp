#include "orgchart/COrganizeFormView.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartMoves.h"
#include "document/RankEdits.h"
#include "onboarding/RecipientSelection.h"
#include "orgchart/DepartmentPickerDialog.h"
#include "orgchart/MemberItemDelegate.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeModel.h"
#include "orgchart/OrgTreeView.h"
#include "widgets/BalloonTip.h"
#include "widgets/CutTextDelegate.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"
#include "widgets/ItemViewKeys.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSplitter>
#include <QTimer>

#include <set>

namespace sable {
namespace {

constexpr int kRowHeight = 20;
// Long enough to take a burst of keys as one search, short enough to feel immediate.
constexpr int kSearchDelayMs = 40;
// Starting widths of the member list's columns; the solar-calendar column is kept out of sight.
constexpr int kColumnWidths[MemberColumnCount] = {96, 80, 80, 52, 64, 170, 110, 110, 200, 110, 90, 200, 0, 64};
constexpr int kDepartmentsWidth = 160;

QString countText(int number)
{
    return QLocale(QLocale::Korean, QLocale::SouthKorea).toString(number);
}

} // namespace

COrganizeFormView::COrganizeFormView(CSableManagerDoc& doc, QWidget* parent)
    : QWidget(parent)
    , m_doc(doc)
    , m_edits(doc)
    , m_treeModel(new OrgTreeModel(doc, this))
    , m_memberModel(new MemberListModel(doc, this))
    , m_tree(new OrgTreeView(doc, this))
    , m_list(new MemberTableView(doc, this))
    , m_search(new QLineEdit(this))
    , m_count(new QLabel(this))
    , m_noDepartment(new QCheckBox(Msg::kOnlyWithoutDepartment, this))
    , m_searchDelay(new QTimer(this))
    , m_pickDepartment(
          [this](const OrgNode* moving) { return DepartmentPickerDialog::pick(m_doc.chart(), moving, this); })
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setObjectName(QStringLiteral("Chart")); // its sizes are kept between runs
    auto* left = new QWidget(splitter);
    auto* leftLayout = new QVBoxLayout(left);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->addWidget(makeHeading(Msg::kTreeTitle, left));
    leftLayout->addWidget(m_tree);
    auto* right = new QWidget(splitter);
    auto* rightLayout = new QVBoxLayout(right);
    rightLayout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new QHBoxLayout;
    bar->addWidget(makeHeading(Msg::kMemberListTitle, right));
    bar->addStretch(1);
    bar->addWidget(m_search, 2);
    bar->addWidget(m_count);
    bar->addWidget(m_noDepartment);
    rightLayout->addLayout(bar);
    rightLayout->addWidget(m_list);
    splitter->addWidget(left);
    splitter->addWidget(right);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 3);
    splitter->setSizes({190, 470});
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(splitter);

    setUpTree();
    setUpMemberList();
    updateCount();
}

COrganizeFormView::~COrganizeFormView() = default;

void COrganizeFormView::setUpTree()
{
    m_tree->setModel(m_treeModel);
    m_tree->setItemDelegate(new CutTextDelegate(m_tree));
    m_tree->setHeaderHidden(true);
    m_tree->setEditTriggers(QAbstractItemView::EditKeyPressed);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_treeModel, &QAbstractItemModel::modelReset, this, [this] {
        for (int row = 0; row < m_treeModel->rowCount(); ++row)
            m_tree->setExpanded(m_treeModel->index(row, 0), true);
    });
    connect(m_treeModel, &OrgTreeModel::dropApplied, this, &COrganizeFormView::applyOutcome);
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, &COrganizeFormView::selectionChanged);
    connect(m_tree, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = m_tree->indexAt(pos);
        if (index.isValid() && !m_tree->selectionModel()->isSelected(index))
            m_tree->setCurrentIndex(index);
        else if (index.isValid())
            m_tree->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
        QMenu menu(this);
        buildTreeMenu(menu, m_treeModel->nodeAt(index));
        menu.exec(m_tree->viewport()->mapToGlobal(pos));
    });
    m_tree->expandToDepth(0);
}

void COrganizeFormView::setUpMemberList()
{
    m_list->setModel(m_memberModel);
    m_list->setObjectName(QStringLiteral("MemberList")); // its columns are kept between runs
    m_list->setItemDelegate(new MemberItemDelegate(m_list));
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->setDragEnabled(true);
    m_list->setDragDropMode(QAbstractItemView::DragOnly);
    m_list->setEditTriggers(
        QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    m_list->setContextMenuPolicy(Qt::CustomContextMenu);
    m_list->setWordWrap(false);
    m_list->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_list->verticalHeader()->setDefaultSectionSize(kRowHeight);
    QHeaderView* header = m_list->horizontalHeader();
    header->setMinimumSectionSize(0);
    for (int column = 0; column < MemberColumnCount; ++column)
        m_list->setColumnWidth(column, kColumnWidths[column]);
    // Wide enough for a whole date as the cell shows it, in the list's own font.
    m_list->setColumnWidth(ColBirthDay,
        std::max(
            kColumnWidths[ColBirthDay], m_list->fontMetrics().horizontalAdvance(QStringLiteral("0000-00-00")) + 24));
    m_list->setColumnWidth(MemberListModel::kDepartmentsColumn, kDepartmentsWidth);
    m_list->setColumnHidden(ColSolar, true);
    // The departments beside the name, where the eye looks for them.
    header->moveSection(MemberListModel::kDepartmentsColumn, ColMemberName + 1);
    header->setSectionsClickable(true);
    header->setSortIndicatorShown(true);
    header->setSortIndicator(-1, Qt::AscendingOrder);

    // The keyboard's way through the page: the tree, the search box and its switch, the list; Tab
    // leaves the list instead of walking its cells, and Delete and Shift+F10 work as on the menus.
    m_list->setTabKeyNavigation(false);
    setTabOrder(m_tree, m_search);
    setTabOrder(m_search, m_noDepartment);
    setTabOrder(m_noDepartment, m_list);
    ItemViewKeys::addDeleteKey(m_tree, [this] {
        if (selectedNode() && selectedNode() != m_doc.chart().rootGroup())
            deleteSelectedNode();
    });
    ItemViewKeys::addDeleteKey(m_list, [this] { deleteUsers(); });
    ItemViewKeys::addContextMenuKey(m_tree);
    ItemViewKeys::addContextMenuKey(m_list);

    m_search->setPlaceholderText(Msg::kSearchPlaceholder);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(Icons::search(), QLineEdit::LeadingPosition);
    m_searchDelay->setSingleShot(true);
    m_searchDelay->setInterval(kSearchDelayMs);

    connect(header, &QHeaderView::sectionClicked, this, &COrganizeFormView::sortByColumn);
    connect(m_searchDelay, &QTimer::timeout, this, [this] { m_memberModel->setSearchText(m_search->text()); });
    connect(m_search, &QLineEdit::textChanged, m_searchDelay, qOverload<>(&QTimer::start));
    connect(m_noDepartment, &QCheckBox::toggled, m_memberModel, &MemberListModel::setOnlyWithoutDepartment);
    connect(m_memberModel, &MemberListModel::balloonRequested, this, &COrganizeFormView::showBalloon);
    connect(m_memberModel, &MemberListModel::shownRowsChanged, this, &COrganizeFormView::updateCount);
    connect(m_memberModel, &QAbstractItemModel::modelAboutToBeReset, this, &COrganizeFormView::keepSelection);
    connect(m_memberModel, &QAbstractItemModel::modelReset, this, &COrganizeFormView::restoreSelection);
    connect(
        m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, &COrganizeFormView::selectionChanged);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &COrganizeFormView::onCurrentRowChanged);
    connect(m_list, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        const QModelIndex index = m_list->indexAt(pos);
        if (!index.isValid() || m_memberModel->isEntryRow(index.row()))
            return;
        QMenu menu(this);
        buildMemberMenu(menu);
        menu.exec(m_list->viewport()->mapToGlobal(pos));
    });
}

void COrganizeFormView::setBalloonHelp(bool on)
{
    m_bBalloonHelp = on;
    m_memberModel->setBalloonHelp(on);
}

OrgNode* COrganizeFormView::selectedNode() const
{
    return m_treeModel->nodeAt(m_tree->currentIndex());
}

std::vector<int> COrganizeFormView::selectedMemberRows() const
{
    std::set<int> rows;
    for (const QModelIndex& index : m_list->selectionModel()->selectedRows()) {
        if (!m_memberModel->isEntryRow(index.row()))
            rows.insert(m_memberModel->memberRow(index.row()));
    }
    return {rows.begin(), rows.end()};
}

QModelIndex COrganizeFormView::memberIndex(int row, int column) const
{
    const int shown = m_memberModel->rowOfMember(row);
    return shown >= 0 ? m_memberModel->index(shown, column) : QModelIndex();
}

bool COrganizeFormView::ask(const QString& question)
{
    // The editor's questions all precede a deletion.
    return m_prompter.confirmDestroy(this, question);
}

void COrganizeFormView::updateCount()
{
    const int total = m_memberModel->memberCount();
    m_count->setText(m_memberModel->isFiltering()
            ? Msg::kMatchCount.arg(countText(m_memberModel->shownCount()), countText(total))
            : Msg::kMemberCount.arg(countText(total)));
}

// --- Keeping the selection when the list is rebuilt ---------------------------------------------------

void COrganizeFormView::keepSelection()
{
    const OrgChart& chart = m_doc.chart();
    const auto idOf = [&](int row) {
        const int memberRow = m_memberModel->memberRow(row);
        return memberRow >= 0 && memberRow < chart.memberCount() ? chart.member(memberRow).K_MemberID : -1;
    };
    m_keptIds.clear();
    for (const QModelIndex& index : m_list->selectionModel()->selectedRows())
        m_keptIds.push_back(idOf(index.row()));
    const QModelIndex current = m_list->currentIndex();
    m_keptCurrentId = current.isValid() ? idOf(current.row()) : -2;
    m_keptColumn = current.isValid() ? current.column() : 0;
    m_keptScroll = m_list->verticalScrollBar()->value();
}

void COrganizeFormView::restoreSelection()
{
    const OrgChart& chart = m_doc.chart();
    const auto rowOf
        = [&](int id) { return id < 0 ? m_memberModel->entryRow() : m_memberModel->rowOfMember(chart.rowOf(id)); };
    std::vector<int> rows;
    for (const int id : m_keptIds) {
        const int row = rowOf(id);
        if (row >= 0)
            rows.push_back(row);
    }
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    for (size_t i = 0; i < rows.size();) {
        size_t end = i + 1;
        while (end < rows.size() && rows[end] <= rows[end - 1] + 1)
            ++end;
        selection.select(m_memberModel->index(rows[i], 0), m_memberModel->index(rows[end - 1], 0));
        i = end;
    }
    m_bRevertingRow = true;
    m_list->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (m_keptCurrentId != -2) {
        const int row = rowOf(m_keptCurrentId);
        if (row >= 0)
            m_list->selectionModel()->setCurrentIndex(
                m_memberModel->index(row, m_keptColumn), QItemSelectionModel::NoUpdate);
    }
    m_bRevertingRow = false;
    m_list->verticalScrollBar()->setValue(m_keptScroll);
    m_keptIds.clear();
}

// --- Commands -------------------------------------------------------------------------------------

void COrganizeFormView::addDepartment()
{
    applyOutcome(m_edits.addDepartment(selectedNode()));
    m_tree->edit(m_tree->currentIndex());
}

void COrganizeFormView::renameDepartment()
{
    const OrgNode* node = selectedNode();
    if (node && node->isGroup())
        m_tree->edit(m_tree->currentIndex());
}

void COrganizeFormView::deleteSelectedNode()
{
    applyOutcome(m_edits.deleteNode(selectedNode(), [this](const QString& question) { return ask(question); }));
}

void COrganizeFormView::addUser()
{
    const QModelIndex entry = m_memberModel->index(m_memberModel->entryRow(), ColMemberID);
    m_list->scrollToBottom();
    m_list->setCurrentIndex(entry);
    m_list->edit(entry);
}

void COrganizeFormView::deleteUsers()
{
    applyOutcome(m_edits.deleteUsers(selectedMemberRows(), [this](const QString& question) { return ask(question); }));
}

void COrganizeFormView::focusSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void COrganizeFormView::moveSelectedNode(ChartEdits::Move how)
{
    applyOutcome(m_edits.move(selectedNode(), how));
}

bool COrganizeFormView::canMoveToDepartment() const
{
    const OrgNode* node = selectedNode();
    return (node && node != m_doc.chart().rootGroup()) || m_list->selectionModel()->hasSelection();
}

void COrganizeFormView::moveToDepartment()
{
    const OrgNode* node = selectedNode();
    const bool bTreeMovable = node && node != m_doc.chart().rootGroup();
    if (!selectedMemberRows().empty() && (m_list->hasFocus() || !bTreeMovable))
        moveSelectedUsers();
    else
        moveTreeSelection();
}

void COrganizeFormView::moveTreeSelection()
{
    OrgNode* node = selectedNode();
    if (!node || node == m_doc.chart().rootGroup())
        return;
    const std::vector<OrgNode*> nodes = m_tree->draggedNodes();
    OrgNode* target = m_pickDepartment(node->isGroup() ? node : nullptr);
    if (!target)
        return;
    ChartMoves moves(m_doc);
    applyOutcome(node->isGroup() ? moves.moveDepartment(node, target) : moves.moveMemberNodes(nodes, target, false));
}

void COrganizeFormView::moveSelectedUsers()
{
    const std::vector<int> rows = selectedMemberRows();
    if (rows.empty())
        return;
    OrgNode* target = m_pickDepartment(nullptr);
    if (!target)
        return;
    const auto choose = [this](const MemberRecord& member, const std::vector<OrgNode*>& placements) -> OrgNode* {
        QStringList paths;
        for (const OrgNode* placement : placements)
            paths << m_doc.chart().departmentPath(placement);
        const QString name = member.MemberName.isEmpty() ? member.MemberID : member.MemberName;
        const int chosen = m_prompter.choose ? m_prompter.choose(this, Msg::kChooseMembership.arg(name), paths) : -1;
        return chosen >= 0 && chosen < static_cast<int>(placements.size()) ? placements[static_cast<size_t>(chosen)]
                                                                           : nullptr;
    };
    applyOutcome(ChartMoves(m_doc).moveUsers(rows, target, choose));
}

void COrganizeFormView::sortByColumn(int column)
{
    int sortColumn = column;
    Qt::SortOrder order = Qt::AscendingOrder;
    if (m_memberModel->sortColumn() == column) {
        if (m_memberModel->sortOrder() == Qt::AscendingOrder)
            order = Qt::DescendingOrder;
        else
            sortColumn = -1;
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    m_memberModel->sort(sortColumn, order);
    QApplication::restoreOverrideCursor();
    m_list->horizontalHeader()->setSortIndicator(sortColumn, order);
    if (m_list->currentIndex().isValid())
        m_list->scrollTo(m_list->currentIndex());
}

void COrganizeFormView::applyOutcome(const EditOutcome& outcome)
{
    if (outcome.balloon)
        showBalloon(*outcome.balloon);
    if (outcome.node) {
        const QModelIndex index = m_treeModel->indexOf(outcome.node);
        m_tree->setExpanded(index.parent(), true);
        m_tree->setCurrentIndex(index);
        m_tree->scrollTo(index);
    }
    if (outcome.row >= 0)
        m_list->setCurrentIndex(memberIndex(outcome.row, ColMemberID));
    Q_EMIT selectionChanged();
}

// --- Menus ----------------------------------------------------------------------------------------

void COrganizeFormView::buildTreeMenu(QMenu& menu, OrgNode* node)
{
    const bool bMovable = node && node != m_doc.chart().rootGroup();
    menu.addAction(Msg::kMenuAddDepartment, this, &COrganizeFormView::addDepartment);
    menu.addAction(Msg::kMenuDelete, this, &COrganizeFormView::deleteSelectedNode)->setEnabled(bMovable);
    menu.addAction(Msg::kMenuRename, this, &COrganizeFormView::renameDepartment)->setEnabled(node && node->isGroup());
    menu.addAction(Msg::kCmdMoveDepartment, this, &COrganizeFormView::moveTreeSelection)->setEnabled(bMovable);
    menu.addSeparator();
    const auto onNode = [this, node](auto&& edit) {
        return [this, node, edit] {
            if (node)
                applyOutcome(edit(node));
        };
    };
    menu.addAction(Msg::kMenuSortByRank, this, onNode([this](OrgNode* n) { return m_edits.sortByRank(n); }))
        ->setEnabled(node);
    const std::pair<QString, ChartEdits::Move> moves[]
        = {{Msg::kMenuMoveToTop, ChartEdits::Move::ToTop}, {Msg::kMenuMoveUp, ChartEdits::Move::Up},
            {Msg::kMenuMoveDown, ChartEdits::Move::Down}, {Msg::kMenuMoveToBottom, ChartEdits::Move::ToBottom}};
    for (const auto& [text, how] : moves) {
        const ChartEdits::Move direction = how; // a structured binding cannot be captured everywhere yet
        menu.addAction(text, this, onNode([this, direction](OrgNode* n) { return m_edits.move(n, direction); }))
            ->setEnabled(node);
    }
    if (node && node->isMember()) {
        menu.addSeparator();
        addRankSubmenu(menu, node);
    }
    menu.addSeparator();
    menu.addAction(Msg::kMenuRegistrationMail, this, [this] { requestRegistrationMail(true); })->setEnabled(node);
}

void COrganizeFormView::addRankSubmenu(QMenu& menu, OrgNode* placement)
{
    QMenu* ranks = menu.addMenu(Msg::kMenuRankSubmenu);
    const int current = m_doc.ranks().positionOf(placement->rankId());
    for (int k = 0; k <= m_doc.ranks().count() && RankEdits::kNoRankCommand + k <= RankEdits::kLastRankCommand; ++k) {
        QAction* action = ranks->addAction(k == 0 ? Msg::kNoRank : m_doc.ranks().at(k - 1).RankName);
        action->setCheckable(true);
        action->setChecked(current == k - 1);
        connect(action, &QAction::triggered, this,
            [this, placement, k] { applyOutcome(m_edits.setRank(placement, RankEdits::kNoRankCommand + k)); });
    }
}

void COrganizeFormView::buildMemberMenu(QMenu& menu)
{
    menu.addAction(Msg::kMenuAddMember, this, &COrganizeFormView::addUser);
    menu.addAction(Msg::kMenuDeleteMember, this, &COrganizeFormView::deleteUsers);
    OrgNode* department = selectedNode();
    const QString label = ChartEdits::addToDepartmentLabel(department);
    if (!label.isEmpty()) {
        menu.addAction(label, this, [this, department] {
            applyOutcome(m_edits.addToDepartment(selectedMemberRows(), department));
            m_tree->setExpanded(m_treeModel->indexOf(department), true);
        });
    }
    menu.addAction(Msg::kCmdMoveDepartment, this, &COrganizeFormView::moveSelectedUsers);
    menu.addSeparator();
    menu.addAction(Msg::kMenuRegistrationMail, this, [this] { requestRegistrationMail(false); });
}

void COrganizeFormView::requestRegistrationMail(bool fromTree)
{
    QList<int> ids;
    if (fromTree) {
        ids = RecipientSelection::membersBelow(selectedNode());
    } else {
        for (const int row : selectedMemberRows())
            ids << m_doc.chart().member(row).K_MemberID;
    }
    if (!ids.isEmpty())
        Q_EMIT registrationMailRequested(ids);
}

// --- Balloons and the rule of leaving a row -----------------------------------------------------------

void COrganizeFormView::showBalloon(const Balloon& balloon)
{
    if (balloon.icon == Balloon::Icon::Question && !m_bBalloonHelp)
        return;
    QPoint point = mapToGlobal(rect().center());
    if (balloon.target == Balloon::Target::MemberCell) {
        const QModelIndex index = memberIndex(balloon.row, balloon.column);
        if (index.isValid()) {
            m_list->scrollTo(index);
            const QRect cell = m_list->visualRect(index);
            point
                = m_list->viewport()->mapToGlobal(QPoint(cell.left() + std::min(cell.width() / 2, 24), cell.bottom()));
        }
    } else if (balloon.target == Balloon::Target::TreeNode) {
        const QModelIndex index = m_treeModel->indexOf(balloon.node);
        m_tree->scrollTo(index);
        const QRect item = m_tree->visualRect(index);
        point = m_tree->viewport()->mapToGlobal(QPoint(item.left() + 24, item.bottom()));
    }
    BalloonTip::show(this, point, balloon);
}

void COrganizeFormView::showHints()
{
    if (const auto hint = m_edits.emptyTreeHint(); hint && m_bBalloonHelp)
        showBalloon(*hint);
}

void COrganizeFormView::onCurrentRowChanged(const QModelIndex& current, const QModelIndex& previous)
{
    if (m_bRevertingRow || !previous.isValid() || current.row() == previous.row())
        return;
    const int row = m_memberModel->memberRow(previous.row());
    const auto refusal = m_edits.checkLeaveRow(row);
    if (!refusal)
        return;
    // Back to the password cell of the row just left, once the view is done moving.
    QTimer::singleShot(0, this, [this, row, refusal] {
        const QModelIndex password = memberIndex(row, ColPasswd);
        if (!password.isValid())
            return;
        m_bRevertingRow = true;
        m_list->setCurrentIndex(password);
        m_list->selectRow(password.row());
        m_bRevertingRow = false;
        showBalloon(*refusal);
    });
}

} // namespace sable
