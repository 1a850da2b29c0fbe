#include "orgchart/DepartmentPickerDialog.h"

#include "Messages.h"
#include "orgchart/OrgChart.h"
#include "widgets/Icons.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTreeView>
#include <QVBoxLayout>

namespace sable {
namespace {

constexpr int kNodeRole = Qt::UserRole + 1;

OrgNode* nodeOf(const QModelIndex& index)
{
    return static_cast<OrgNode*>(index.data(kNodeRole).value<void*>());
}

} // namespace

DepartmentPickerDialog::DepartmentPickerDialog(const OrgChart& chart, const OrgNode* moving, QWidget* parent)
    : QDialog(parent)
    , m_search(new QLineEdit(this))
    , m_tree(new QTreeView(this))
    , m_model(new QStandardItemModel(this))
    , m_filter(new QSortFilterProxyModel(this))
{
    setWindowTitle(Msg::kPickDepartmentTitle);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(Msg::kPickDepartmentPrompt, this));
    layout->addWidget(m_search);
    layout->addWidget(m_tree, 1);
    layout->addWidget(buttons);
    resize(360, 440);

    m_search->setPlaceholderText(Msg::kPickDepartmentSearch);
    m_search->setClearButtonEnabled(true);
    m_search->addAction(Icons::search(), QLineEdit::LeadingPosition);
    fill(chart, moving);
    m_filter->setSourceModel(m_model);
    m_filter->setRecursiveFilteringEnabled(true);
    m_filter->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_tree->setModel(m_filter);
    m_tree->setHeaderHidden(true);
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->expandToDepth(1);

    connect(m_search, &QLineEdit::textChanged, this, [this](const QString& text) {
        m_filter->setFilterFixedString(text.trimmed());
        if (text.trimmed().isEmpty()) {
            m_tree->collapseAll();
            m_tree->expandToDepth(1);
        } else {
            m_tree->expandAll();
        }
        updateOk();
    });
    connect(m_tree->selectionModel(), &QItemSelectionModel::currentChanged, this, &DepartmentPickerDialog::updateOk);
    connect(m_tree, &QTreeView::doubleClicked, this, [this] {
        if (selectedDepartment())
            accept();
    });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    m_search->setFocus();
    updateOk();
}

void DepartmentPickerDialog::fill(const OrgChart& chart, const OrgNode* moving)
{
    // Departments only, each under its parent's item; a department within the one moving is shown
    // greyed, since it cannot take it.
    std::vector<std::pair<const OrgNode*, QStandardItem*>> pending {
        {chart.invisibleRoot(), m_model->invisibleRootItem()}};
    while (!pending.empty()) {
        const auto [node, item] = pending.back();
        pending.pop_back();
        for (int i = node->childCount() - 1; i >= 0; --i) {
            const OrgNode* child = node->child(i);
            if (!child->isGroup())
                continue;
            auto* childItem = new QStandardItem(Icons::department(), child->name());
            childItem->setData(QVariant::fromValue(static_cast<void*>(const_cast<OrgNode*>(child))), kNodeRole);
            if (moving && OrgChart::isWithin(child, moving))
                childItem->setFlags(Qt::NoItemFlags);
            else
                childItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->insertRow(0, childItem);
            pending.emplace_back(child, childItem);
        }
    }
}

OrgNode* DepartmentPickerDialog::selectedDepartment() const
{
    const QModelIndex current = m_tree->currentIndex();
    if (!current.isValid() || !(current.flags() & Qt::ItemIsSelectable))
        return nullptr;
    return nodeOf(current);
}

void DepartmentPickerDialog::selectDepartment(const OrgNode* department)
{
    const QModelIndexList found = m_model->match(m_model->index(0, 0), kNodeRole,
        QVariant::fromValue(static_cast<void*>(const_cast<OrgNode*>(department))), 1,
        Qt::MatchExactly | Qt::MatchRecursive);
    if (found.isEmpty())
        return;
    const QModelIndex index = m_filter->mapFromSource(found.first());
    m_tree->setCurrentIndex(index);
    m_tree->scrollTo(index);
}

void DepartmentPickerDialog::updateOk()
{
    auto* buttons = findChild<QDialogButtonBox*>();
    if (buttons)
        buttons->button(QDialogButtonBox::Ok)->setEnabled(selectedDepartment() != nullptr);
}

OrgNode* DepartmentPickerDialog::pick(const OrgChart& chart, const OrgNode* moving, QWidget* parent)
{
    DepartmentPickerDialog dialog(chart, moving, parent);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedDepartment() : nullptr;
}

} // namespace sable
