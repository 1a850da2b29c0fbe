#include "document/SaveConflictDialog.h"

#include "Messages.h"
#include "document/ChartMerge.h"
#include "document/MergeConflictModel.h"
#include "document/RowChangeModel.h"
#include "widgets/Heading.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace sable {
namespace {

QTableView* listOf(QAbstractItemModel* model, QWidget* parent)
{
    auto* view = new QTableView(parent);
    view->setModel(model);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setTabKeyNavigation(false);
    view->verticalHeader()->hide();
    view->horizontalHeader()->setStretchLastSection(true);
    view->resizeColumnsToContents();
    return view;
}

} // namespace

SaveConflictDialog::SaveConflictDialog(ChartMerge& merge, QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(Msg::kConflictTitle);
    auto* intro = new QLabel(Msg::kConflictIntro, this);
    intro->setWordWrap(true);

    auto* tabs = new QTabWidget(this);
    if (!merge.conflicts().empty())
        tabs->addTab(conflictsPane(merge), Msg::kConflictTab.arg(merge.conflicts().size()));
    tabs->addTab(listOf(new RowChangeModel(merge.theirChanges(), this), tabs),
        Msg::kConflictTheirTab.arg(merge.theirChanges().size()));
    tabs->addTab(
        listOf(new RowChangeModel(merge.myChanges(), this), tabs), Msg::kConflictMineTab.arg(merge.myChanges().size()));

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* mergeButton = buttons->addButton(Msg::kConflictMerge, QDialogButtonBox::AcceptRole);
    QPushButton* reload = buttons->addButton(Msg::kConflictReload, QDialogButtonBox::DestructiveRole);
    buttons->addButton(Msg::kCancel, QDialogButtonBox::RejectRole);
    mergeButton->setDefault(true);
    connect(mergeButton, &QPushButton::clicked, this, [this] {
        m_choice = Choice::Merge;
        accept();
    });
    connect(reload, &QPushButton::clicked, this, [this] {
        m_choice = Choice::Reload;
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeHeading(Msg::kConflictHeading, this));
    layout->addWidget(intro);
    layout->addWidget(tabs, 1);
    layout->addWidget(buttons);
    resize(820, 480);
}

QWidget* SaveConflictDialog::conflictsPane(ChartMerge& merge)
{
    auto* pane = new QWidget(this);
    m_conflicts = new MergeConflictModel(merge, this);
    QTableView* view = listOf(m_conflicts, pane);
    auto* allMine = new QPushButton(Msg::kConflictAllMine, pane);
    auto* allTheirs = new QPushButton(Msg::kConflictAllTheirs, pane);
    connect(allMine, &QPushButton::clicked, this, [this] { m_conflicts->decideAll(true); });
    connect(allTheirs, &QPushButton::clicked, this, [this] { m_conflicts->decideAll(false); });
    auto* bar = new QHBoxLayout;
    bar->addWidget(new QLabel(Msg::kConflictDecide, pane), 1);
    bar->addWidget(allMine);
    bar->addWidget(allTheirs);
    auto* layout = new QVBoxLayout(pane);
    layout->addLayout(bar);
    layout->addWidget(view, 1);
    return pane;
}

} // namespace sable
