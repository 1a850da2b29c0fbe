#include "onboarding/MailServerDialog.h"

#include "Messages.h"
#include "onboarding/MailTransport.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QThread>
#include <QVBoxLayout>

#include <memory>

namespace sable {

MailServerDialog::MailServerDialog(Registry registry, QWidget* parent)
    : QDialog(parent)
    , m_registry(std::move(registry))
    , m_stored(MailServerSettings::read(m_registry))
{
    setWindowTitle(Msg::kMailServerTitle);
    buildLayout();
}

MailServerDialog::~MailServerDialog()
{
    if (m_probe) {
        m_probe->disconnect(this);
        m_probe->wait();
    }
}

void MailServerDialog::buildLayout()
{
    m_host = new QLineEdit(m_stored.host);
    m_host->setObjectName(QStringLiteral("host"));
    m_host->setMaxLength(200);
    m_port = new QSpinBox;
    m_port->setObjectName(QStringLiteral("port"));
    m_port->setRange(1, 65535);
    m_port->setValue(m_stored.port);
    m_security = new QComboBox;
    m_security->setObjectName(QStringLiteral("security"));
    m_security->addItems({Msg::kMailSecurityNone, Msg::kMailSecurityStartTls, Msg::kMailSecurityTls});
    m_security->setCurrentIndex(static_cast<int>(m_stored.security));
    m_shownSecurity = m_stored.security;
    connect(m_security, &QComboBox::currentIndexChanged, this, &MailServerDialog::securityChosen);
    m_user = new QLineEdit(m_stored.user);
    m_user->setObjectName(QStringLiteral("user"));
    m_user->setMaxLength(100);
    m_password = new QLineEdit;
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setMaxLength(100);
    if (!m_stored.password.isEmpty())
        m_password->setPlaceholderText(Msg::kMailServerPasswordKept);
    m_sender = new QLineEdit(m_stored.senderAddress);
    m_sender->setObjectName(QStringLiteral("sender"));
    m_sender->setMaxLength(200);

    m_testButton = new QPushButton(Msg::kMailServerTestButton);
    connect(m_testButton, &QPushButton::clicked, this, &MailServerDialog::testConnection);
    m_answer = new QPlainTextEdit;
    m_answer->setObjectName(QStringLiteral("answer"));
    m_answer->setReadOnly(true);
    m_answer->setMinimumHeight(140);

    auto* form = new QFormLayout;
    form->addRow(Msg::kMailServerHost, m_host);
    form->addRow(Msg::kMailServerPort, m_port);
    form->addRow(Msg::kMailServerSecurity, m_security);
    form->addRow(Msg::kMailServerUser, m_user);
    form->addRow(Msg::kMailServerPassword, m_password);
    form->addRow(Msg::kMailServerSender, m_sender);
    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    box->button(QDialogButtonBox::Ok)->setText(Msg::kMailServerOkButton);
    box->button(QDialogButtonBox::Cancel)->setText(Msg::kMailServerCancelButton);
    connect(box, &QDialogButtonBox::accepted, this, &MailServerDialog::accept);
    connect(box, &QDialogButtonBox::rejected, this, &MailServerDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_testButton, 0, Qt::AlignLeft);
    layout->addWidget(m_answer);
    layout->addWidget(box);
    resize(440, 420);
}

void MailServerDialog::securityChosen(int index)
{
    // A port left at the usual one of the old security follows to the usual one of the new.
    const auto chosen = static_cast<MailSecurity>(index);
    if (m_port->value() == MailServerSettings::defaultPort(m_shownSecurity))
        m_port->setValue(MailServerSettings::defaultPort(chosen));
    m_shownSecurity = chosen;
}

MailServerSettings MailServerDialog::settings() const
{
    MailServerSettings settings;
    settings.host = m_host->text().trimmed();
    settings.port = static_cast<quint16>(m_port->value());
    settings.security = static_cast<MailSecurity>(m_security->currentIndex());
    settings.user = m_user->text().trimmed();
    if (!settings.user.isEmpty())
        settings.password = m_password->text().isEmpty() ? m_stored.password : m_password->text();
    settings.senderAddress = m_sender->text().trimmed();
    return settings;
}

void MailServerDialog::accept()
{
    if (!settings().write(m_registry)) {
        QMessageBox::warning(this, windowTitle(), Msg::kMailServerSaveFailed);
        return;
    }
    QDialog::accept();
}

void MailServerDialog::testConnection()
{
    if (m_probe)
        return;
    m_testButton->setEnabled(false);
    m_answer->setPlainText(Msg::kMailServerTesting);
    auto result = std::make_shared<MailTransport::Result>();
    m_probe = QThread::create([server = settings(), result] { *result = MailTransport(server).probe(); });
    m_probe->setParent(this);
    connect(m_probe, &QThread::finished, this, [this, result] {
        const bool bPassed = result->outcome == MailTransport::Outcome::Sent;
        const QString answer = (bPassed ? Msg::kMailServerTestPassed : Msg::kMailServerTestFailed) + u'\n'
            + MailTransport::describe(*result);
        m_answer->setPlainText(answer);
        m_testButton->setEnabled(true);
        m_probe->deleteLater();
        m_probe = nullptr;
        Q_EMIT testFinished(bPassed, answer);
    });
    m_probe->start();
}

} // namespace sable
