#include "clientsettings/AddSiteDialog.h"

#include "Messages.h"
#include "clientsettings/HomePageSiteList.h"
#include "widgets/PlainMessageBox.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace sable {

AddSiteDialog::AddSiteDialog(QString forbidden, QWidget* parent)
    : QDialog(parent)
    , m_forbidden(std::move(forbidden))
{
    setWindowTitle(Msg::kAddSiteTitle);
    m_name = new QLineEdit(this);
    m_address = new QLineEdit(this);
    m_address->setMinimumWidth(280);
    auto* form = new QFormLayout;
    form->addRow(Msg::kAddSiteName, m_name);
    form->addRow(Msg::kAddSiteAddress, m_address);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &AddSiteDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(new QLabel(Msg::kAddSiteNote, this));
    layout->addWidget(buttons);
}

void AddSiteDialog::setSite(const QString& name, const QString& address)
{
    m_name->setText(name);
    m_address->setText(address);
}

QString AddSiteDialog::name() const
{
    return m_name->text();
}

QString AddSiteDialog::address() const
{
    return m_address->text();
}

void AddSiteDialog::accept()
{
    switch (HomePageSiteList::checkEntry(name(), address(), m_forbidden)) {
    case HomePageSiteList::EntryCheck::ForbiddenCharacter:
        showPlainMessage(this, Msg::kAddSiteForbidden.arg(m_forbidden));
        return;
    case HomePageSiteList::EntryCheck::BothEmpty:
        showPlainMessage(this, Msg::kAddSiteEmpty);
        return;
    case HomePageSiteList::EntryCheck::Accepted:
        QDialog::accept();
        return;
    }
}

} // namespace sable
