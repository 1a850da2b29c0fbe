#include "clientsettings/HomePageDialog.h"

#include "Messages.h"
#include "clientsettings/AddSiteDialog.h"
#include "widgets/PlainMessageBox.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace sable {
namespace {

constexpr int kNameColumnWidth = 120;
constexpr int kAddressColumnWidth = 175;

} // namespace

HomePageDialog::HomePageDialog(const HomePageSettings& settings, QWidget* parent)
    : QDialog(parent)
    , m_sites(settings.open())
{
    setWindowTitle(Msg::kHomePageTitle);
    auto* intro = new QLabel(Msg::kHomePageIntro, this);
    intro->setWordWrap(true);

    m_list = new QTreeWidget(this);
    m_list->setObjectName(QStringLiteral("sites"));
    m_list->setColumnCount(2);
    m_list->setHeaderLabels({Msg::kHomePageNameColumn, Msg::kHomePageAddressColumn});
    m_list->setRootIsDecorated(false);
    m_list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_list->header()->setStretchLastSection(false);
    m_list->setColumnWidth(0, kNameColumnWidth);
    m_list->setColumnWidth(1, kAddressColumnWidth);

    m_add = new QPushButton(Msg::kHomePageAdd, this);
    m_edit = new QPushButton(Msg::kHomePageEdit, this);
    m_remove = new QPushButton(Msg::kHomePageRemove, this);
    m_up = new QPushButton(Msg::kHomePageUp, this);
    m_down = new QPushButton(Msg::kHomePageDown, this);
    m_add->setObjectName(QStringLiteral("add"));
    m_edit->setObjectName(QStringLiteral("edit"));
    m_remove->setObjectName(QStringLiteral("remove"));
    m_up->setObjectName(QStringLiteral("up"));
    m_down->setObjectName(QStringLiteral("down"));
    auto* side = new QVBoxLayout;
    for (QPushButton* button : {m_add, m_edit, m_remove, m_up, m_down})
        side->addWidget(button);
    side->addStretch();
    auto* listRow = new QHBoxLayout;
    listRow->addWidget(m_list, 1);
    listRow->addLayout(side);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kHomePageOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kHomePageCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(intro);
    layout->addWidget(new QLabel(Msg::kHomePageHeading, this));
    layout->addLayout(listRow);
    layout->addWidget(new QLabel(Msg::kHomePageExample, this));
    layout->addWidget(buttons);

    connect(m_add, &QPushButton::clicked, this, &HomePageDialog::addSite);
    connect(m_edit, &QPushButton::clicked, this, &HomePageDialog::editSite);
    connect(m_remove, &QPushButton::clicked, this, &HomePageDialog::removeSites);
    connect(m_up, &QPushButton::clicked, this, [this] { moveSite(-1); });
    connect(m_down, &QPushButton::clicked, this, [this] { moveSite(+1); });
    connect(m_list, &QTreeWidget::itemSelectionChanged, this, &HomePageDialog::updateButtons);
    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &HomePageDialog::editSite);
    showSites({});
}

void HomePageDialog::addSite()
{
    if (!m_sites.canAdd()) {
        showPlainMessage(this, Msg::kHomePageListFull);
        return;
    }
    AddSiteDialog dialog(HomePageSiteList::kForbidden, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_sites.AddSiteRow(dialog.name(), dialog.address());
    showSites({m_sites.size() - 1});
}

void HomePageDialog::editSite()
{
    const QList<qsizetype> rows = selectedRows();
    if (rows.size() != 1)
        return;
    const HomePageSite site = m_sites.rows().at(rows.first());
    AddSiteDialog dialog(HomePageSiteList::kForbidden, this);
    dialog.setWindowTitle(Msg::kEditSiteTitle);
    dialog.setSite(site.name, site.address);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_sites.replaceRow(rows.first(), dialog.name(), dialog.address());
    showSites(rows);
}

void HomePageDialog::removeSites()
{
    m_sites.removeRows(selectedRows());
    showSites({});
}

void HomePageDialog::moveSite(int step)
{
    const QList<qsizetype> rows = selectedRows();
    if (rows.size() != 1)
        return;
    const qsizetype row = rows.first();
    if (step < 0 ? m_sites.moveUp(row) : m_sites.moveDown(row))
        showSites({row + step});
}

QList<qsizetype> HomePageDialog::selectedRows() const
{
    QList<qsizetype> rows;
    for (QTreeWidgetItem* item : m_list->selectedItems())
        rows << m_list->indexOfTopLevelItem(item);
    std::sort(rows.begin(), rows.end());
    return rows;
}

// The list is small (at most a few dozen rows), so every change simply shows it again.
void HomePageDialog::showSites(const QList<qsizetype>& selection)
{
    m_list->clear();
    for (const HomePageSite& site : m_sites.rows())
        m_list->addTopLevelItem(new QTreeWidgetItem({site.name, site.address}));
    for (const qsizetype row : selection) {
        if (QTreeWidgetItem* item = m_list->topLevelItem(static_cast<int>(row)))
            item->setSelected(true);
    }
    if (!selection.isEmpty())
        m_list->setCurrentItem(
            m_list->topLevelItem(static_cast<int>(selection.first())), 0, QItemSelectionModel::NoUpdate);
    updateButtons();
}

void HomePageDialog::updateButtons()
{
    const QList<qsizetype> rows = selectedRows();
    const bool bOne = rows.size() == 1;
    m_remove->setEnabled(!rows.isEmpty());
    m_edit->setEnabled(bOne);
    m_up->setEnabled(bOne && rows.first() > 0);
    m_down->setEnabled(bOne && rows.first() + 1 < m_sites.size());
}

} // namespace sable
