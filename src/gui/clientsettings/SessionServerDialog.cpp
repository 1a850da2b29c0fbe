#include "clientsettings/SessionServerDialog.h"

#include "Messages.h"
#include "clientsettings/SessionServerEditDialog.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace sable {
namespace {

enum Column
{
    AddressColumn,
    PortColumn,
    UsageColumn,
    ColumnCount,
};

constexpr int kAddressColumnWidth = 230;
constexpr int kUsageColumnWidth = 80;

QTreeWidgetItem* rowItem(const SessionServerEntry& entry)
{
    return new QTreeWidgetItem({entry.address, QString::number(SessionServerList::kPort),
        entry.bEnabled ? Msg::kFileServerEnabled : Msg::kFileServerDisabled});
}

} // namespace

SessionServerDialog::SessionServerDialog(const SessionServerList& list, QWidget* parent)
    : QDialog(parent)
    , m_list(list)
    , m_rows(list.open())
{
    setWindowTitle(Msg::kFileServerTitle);
    m_view = new QTreeWidget(this);
    m_view->setObjectName(QStringLiteral("servers"));
    m_view->setColumnCount(ColumnCount);
    m_view->setHeaderLabels({Msg::kFileServerAddressColumn, Msg::kFileServerPortColumn, Msg::kFileServerUsageColumn});
    m_view->setRootIsDecorated(false);
    m_view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_view->header()->setStretchLastSection(false);
    m_view->setColumnWidth(AddressColumn, kAddressColumnWidth);
    // Every server listens on the same port, so the column is there but not shown.
    m_view->setColumnWidth(PortColumn, 0);
    m_view->setColumnHidden(PortColumn, true);
    m_view->setColumnWidth(UsageColumn, kUsageColumnWidth);
    m_view->setMinimumWidth(kAddressColumnWidth + kUsageColumnWidth + 2 * m_view->frameWidth()
        + m_view->verticalScrollBar()->sizeHint().width());

    auto* add = new QPushButton(Msg::kFileServerAdd, this);
    m_remove = new QPushButton(Msg::kFileServerRemove, this);
    m_edit = new QPushButton(Msg::kFileServerEdit, this);
    add->setObjectName(QStringLiteral("add"));
    m_remove->setObjectName(QStringLiteral("remove"));
    m_edit->setObjectName(QStringLiteral("edit"));
    auto* side = new QVBoxLayout;
    side->addWidget(add);
    side->addWidget(m_remove);
    side->addWidget(m_edit);
    side->addStretch();
    auto* listRow = new QHBoxLayout;
    listRow->addWidget(m_view, 1);
    listRow->addLayout(side);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &SessionServerDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(listRow);
    layout->addWidget(buttons);

    connect(add, &QPushButton::clicked, this, &SessionServerDialog::addServer);
    connect(m_remove, &QPushButton::clicked, this, &SessionServerDialog::removeServers);
    connect(m_edit, &QPushButton::clicked, this, &SessionServerDialog::editServer);
    connect(m_view, &QTreeWidget::itemSelectionChanged, this, &SessionServerDialog::updateButtons);
    showRows();
}

void SessionServerDialog::addServer()
{
    SessionServerEditDialog dialog(this);
    dialog.setEntry(QString(), false);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_rows.append({dialog.address(), SessionServerList::kPort, dialog.isServerEnabled()});
    showRows();
}

void SessionServerDialog::editServer()
{
    const QList<qsizetype> selected = selectedRows();
    if (selected.size() != 1)
        return;
    SessionServerEntry& row = m_rows[selected.first()];
    SessionServerEditDialog dialog(this);
    dialog.setEntry(row.address, row.bEnabled);
    if (dialog.exec() != QDialog::Accepted)
        return;
    row = {dialog.address(), SessionServerList::kPort, dialog.isServerEnabled()};
    showRows(selected.first());
}

void SessionServerDialog::removeServers()
{
    QList<qsizetype> selected = selectedRows();
    std::sort(selected.begin(), selected.end(), std::greater<>());
    for (const qsizetype row : selected)
        m_rows.removeAt(row);
    showRows();
}

void SessionServerDialog::accept()
{
    if (m_list.save(m_rows))
        QDialog::accept();
}

QList<qsizetype> SessionServerDialog::selectedRows() const
{
    QList<qsizetype> rows;
    for (QTreeWidgetItem* item : m_view->selectedItems())
        rows << m_view->indexOfTopLevelItem(item);
    return rows;
}

void SessionServerDialog::showRows(qsizetype selected)
{
    m_view->clear();
    for (const SessionServerEntry& entry : m_rows)
        m_view->addTopLevelItem(rowItem(entry));
    if (QTreeWidgetItem* item = m_view->topLevelItem(static_cast<int>(selected)))
        item->setSelected(true);
    updateButtons();
}

void SessionServerDialog::updateButtons()
{
    const qsizetype selected = m_view->selectedItems().size();
    m_remove->setEnabled(selected >= 1);
    m_edit->setEnabled(selected == 1);
}

} // namespace sable
