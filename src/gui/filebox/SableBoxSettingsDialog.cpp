#include "filebox/SableBoxSettingsDialog.h"

#include "Messages.h"
#include "widgets/BalloonTip.h"
#include "widgets/Heading.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QEvent>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace sable {
namespace {

// A port as typed: digits only, so that what is stored shows as it is, in range or not, and the
// check on OK says what is wrong instead of the field quietly changing it.
QLineEdit* portField(const char* name, QWidget* parent)
{
    auto* field = new QLineEdit(parent);
    field->setObjectName(QLatin1String(name));
    field->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,10}")), field));
    field->setMaximumWidth(90);
    return field;
}

// The typed port; 0 (no port) for an empty field or one beyond a 32-bit number.
quint32 portOf(const QLineEdit* field)
{
    bool ok = false;
    const quint32 port = field->text().toUInt(&ok);
    return ok ? port : 0;
}

} // namespace

SableBoxSettingsDialog::SableBoxSettingsDialog(FileBoxServerSettings settings, QWidget* parent)
    : QDialog(parent)
    , m_settings(std::move(settings))
{
    setWindowTitle(Msg::kFileBoxSettingsTitle);
    QLabel* heading = makeHeading(Msg::kFileBoxSettingsHeading, this);
    auto* intro = new QLabel(Msg::kFileBoxSettingsIntro, this);

    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(Msg::kOk, QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(Msg::kCancel, QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(intro);
    layout->addWidget(createHomeGroup());
    layout->addWidget(createPassiveGroup());
    layout->addWidget(buttons);

    const FileBoxServerValues values = m_settings.open();
    m_home->setText(values.homeDirectory);
    m_firstPort->setText(QString::number(values.firstPort));
    m_lastPort->setText(QString::number(values.lastPort));
    m_address->setText(values.passiveAddress);
}

QWidget* SableBoxSettingsDialog::createHomeGroup()
{
    auto* group = new QGroupBox(Msg::kFileBoxHomeGroup, this);
    m_home = new QLineEdit(group);
    m_home->setObjectName(QStringLiteral("homeDirectory"));
    m_home->setMinimumWidth(280);
    m_browse = new QPushButton(Msg::kFileBoxBrowse, group);
    m_browse->setObjectName(QStringLiteral("browse"));
    m_browse->installEventFilter(this);
    connect(m_browse, &QPushButton::clicked, this, &SableBoxSettingsDialog::browse);
    auto* row = new QHBoxLayout(group);
    row->addWidget(m_home, 1);
    row->addWidget(m_browse);
    return group;
}

QWidget* SableBoxSettingsDialog::createPassiveGroup()
{
    auto* group = new QGroupBox(Msg::kFileBoxPassiveGroup, this);
    m_firstPort = portField("firstPort", group);
    m_lastPort = portField("lastPort", group);
    m_address = new QLineEdit(group);
    m_address->setObjectName(QStringLiteral("passiveAddress"));
    auto* ports = new QHBoxLayout;
    ports->addWidget(new QLabel(Msg::kFileBoxPorts, group));
    ports->addWidget(m_firstPort);
    ports->addWidget(new QLabel(Msg::kFileBoxPortsTo, group));
    ports->addWidget(m_lastPort);
    ports->addStretch(1);
    auto* address = new QHBoxLayout;
    address->addWidget(new QLabel(Msg::kFileBoxAddress, group));
    address->addWidget(m_address, 1);
    auto* column = new QVBoxLayout(group);
    column->addLayout(ports);
    column->addLayout(address);
    return group;
}

FileBoxServerValues SableBoxSettingsDialog::values() const
{
    return {m_home->text(), portOf(m_firstPort), portOf(m_lastPort), m_address->text()};
}

void SableBoxSettingsDialog::chooseHomeFolder(const QString& path)
{
    if (!path.isEmpty())
        m_home->setText(QDir::toNativeSeparators(path));
}

void SableBoxSettingsDialog::accept()
{
    switch (m_settings.confirm(values())) {
    case FileBoxServerSettings::Confirm::PortOutOfRange:
        m_prompter.warn(this,
            Msg::kFileBoxPortOutOfRange.arg(FileBoxServerSettings::kLowestPort)
                .arg(FileBoxServerSettings::kHighestPort));
        (FileBoxServerSettings::isPortInRange(portOf(m_firstPort)) ? m_lastPort : m_firstPort)->setFocus();
        return;
    case FileBoxServerSettings::Confirm::BadPortRange:
        m_prompter.warn(this, Msg::kFileBoxBadPorts);
        return;
    case FileBoxServerSettings::Confirm::Saved:
        break;
    }
    QDialog::accept();
}

void SableBoxSettingsDialog::browse()
{
    chooseHomeFolder(QFileDialog::getExistingDirectory(this, Msg::kFileBoxBrowseTitle, m_home->text()));
}

bool SableBoxSettingsDialog::eventFilter(QObject* watched, QEvent* event)
{
    // The button explains itself in a balloon while the pointer is over it.
    if (watched == m_browse && m_bBalloonHelp) {
        if (event->type() == QEvent::Enter)
            BalloonTip::show(
                m_browse, m_browse->mapToGlobal(m_browse->rect().center()), Balloon::tip(Msg::kFileBoxBrowseTip));
        else if (event->type() == QEvent::Leave && BalloonTip::current()
            && BalloonTip::current()->balloon().text == Msg::kFileBoxBrowseTip)
            BalloonTip::hideCurrent();
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace sable
