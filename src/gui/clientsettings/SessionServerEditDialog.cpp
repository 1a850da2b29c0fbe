#include "clientsettings/SessionServerEditDialog.h"

#include "Messages.h"
#include "clientsettings/SessionServerList.h"
#include "widgets/Ipv4AddressEdit.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace sable {

SessionServerEditDialog::SessionServerEditDialog(QWidget* parent)
    : QDialog(parent)
{
    setWindowTitle(Msg::kFileServerEditTitle);
    m_address = new Ipv4AddressEdit(this);
    m_enabled = new QCheckBox(Msg::kFileServerUse, this);
    auto* note = new QLabel(Msg::kFileServerNote, this);
    note->setWordWrap(true);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new QLabel(Msg::kFileServerAddressColumn, this));
    layout->addWidget(m_address);
    layout->addWidget(m_enabled);
    layout->addWidget(note);
    layout->addWidget(buttons);
}

void SessionServerEditDialog::setEntry(const QString& address, bool bEnabled)
{
    if (address.isEmpty())
        m_address->clear();
    else
        m_address->setAddress(SessionServerList::normalisedAddress(address));
    m_enabled->setChecked(bEnabled);
}

QString SessionServerEditDialog::address() const
{
    return m_address->address();
}

bool SessionServerEditDialog::isServerEnabled() const
{
    return m_enabled->isChecked();
}

} // namespace sable
