#include "mainwindow/ServiceManagerDialog.h"

#include "Messages.h"
#include "widgets/Heading.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>
#include <QUrl>
#include <QVBoxLayout>

#include <memory>

namespace sable {

ServiceManagerDialog::ServiceManagerDialog(Registry registry, QWidget* parent)
    : QDialog(parent)
    , m_registry(std::move(registry))
    , m_stored(ServiceManagerSettings::read(m_registry))
{
    setWindowTitle(Msg::kServiceManagerTitle);
    buildLayout();
    kindChosen();
}

ServiceManagerDialog::~ServiceManagerDialog()
{
    if (m_probe) {
        m_probe->disconnect(this);
        m_probe->wait();
    }
}

void ServiceManagerDialog::buildLayout()
{
    using Kind = ServiceManagerSettings::Kind;
    m_none = new QRadioButton(Msg::kServiceManagerNone);
    m_none->setObjectName(QStringLiteral("none"));
    m_supervisor = new QRadioButton(Msg::kServiceManagerSupervisor);
    m_supervisor->setObjectName(QStringLiteral("supervisord"));
    m_scm = new QRadioButton(Msg::kServiceManagerScm);
    m_scm->setObjectName(QStringLiteral("scm"));
    const Kind stored = m_stored.problem.isEmpty() ? m_stored.kind : Kind::None;
    (stored == Kind::Supervisord ? m_supervisor : stored == Kind::Scm ? m_scm : m_none)->setChecked(true);
    for (QRadioButton* choice : {m_none, m_supervisor, m_scm})
        connect(choice, &QRadioButton::toggled, this, &ServiceManagerDialog::kindChosen);

    m_url = new QLineEdit(m_stored.supervisorUrl);
    m_url->setObjectName(QStringLiteral("url"));
    m_user = new QLineEdit(m_stored.supervisorUser);
    m_user->setObjectName(QStringLiteral("user"));
    m_password = new QLineEdit(m_stored.supervisorPassword);
    m_password->setObjectName(QStringLiteral("password"));
    m_password->setEchoMode(QLineEdit::Password);
    auto* form = new QFormLayout;
    form->addRow(Msg::kServiceManagerUrl, m_url);
    form->addRow(Msg::kServiceManagerUser, m_user);
    form->addRow(Msg::kServiceManagerPassword, m_password);

    m_testButton = new QPushButton(Msg::kServiceManagerTest);
    m_testButton->setObjectName(QStringLiteral("test"));
    connect(m_testButton, &QPushButton::clicked, this, &ServiceManagerDialog::testConnection);
    m_answer = new QPlainTextEdit;
    m_answer->setObjectName(QStringLiteral("answer"));
    m_answer->setReadOnly(true);
    m_answer->setMinimumHeight(110);
    if (!m_stored.problem.isEmpty())
        m_answer->setPlainText(m_stored.problem);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &ServiceManagerDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ServiceManagerDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(makeHeading(Msg::kServiceManagerTitle, this));
    auto* intro = new QLabel(Msg::kServiceManagerIntro);
    intro->setWordWrap(true);
    layout->addWidget(intro);
    layout->addWidget(m_none);
    layout->addWidget(m_supervisor);
    auto* supervisorFields = new QVBoxLayout;
    supervisorFields->setContentsMargins(24, 0, 0, 0);
    supervisorFields->addLayout(form);
    layout->addLayout(supervisorFields);
    layout->addWidget(m_scm);
    layout->addWidget(m_testButton, 0, Qt::AlignLeft);
    layout->addWidget(m_answer);
    layout->addWidget(buttons);
    resize(460, 440);
}

void ServiceManagerDialog::kindChosen()
{
    const bool bSupervisor = m_supervisor->isChecked();
    for (QWidget* field : std::initializer_list<QWidget*> {m_url, m_user, m_password})
        field->setEnabled(bSupervisor);
    m_testButton->setEnabled(!m_none->isChecked() && !m_probe);
}

ServiceManagerSettings ServiceManagerDialog::settings() const
{
    ServiceManagerSettings settings;
    settings.kind = m_supervisor->isChecked() ? ServiceManagerSettings::Kind::Supervisord
        : m_scm->isChecked()                  ? ServiceManagerSettings::Kind::Scm
                                              : ServiceManagerSettings::Kind::None;
    settings.supervisorUrl = m_url->text().trimmed();
    settings.supervisorUser = m_user->text().trimmed();
    settings.supervisorPassword = m_password->text();
    return settings;
}

void ServiceManagerDialog::accept()
{
    const ServiceManagerSettings chosen = settings();
    const QUrl url(chosen.supervisorUrl, QUrl::StrictMode);
    if (chosen.kind == ServiceManagerSettings::Kind::Supervisord
        && (!url.isValid() || url.scheme() != QLatin1String("http") || url.host().isEmpty())) {
        QMessageBox::warning(this, windowTitle(), Msg::kServiceManagerBadUrl);
        m_url->setFocus();
        return;
    }
    if (!chosen.write(m_registry)) {
        QMessageBox::warning(this, windowTitle(), Msg::kServiceManagerSaveFailed);
        return;
    }
    QDialog::accept();
}

void ServiceManagerDialog::testConnection()
{
    if (m_probe)
        return;
    m_testButton->setEnabled(false);
    m_answer->setPlainText(Msg::kServiceManagerTesting);
    auto result = std::make_shared<ServiceManagerSettings::Probe>();
    m_probe = QThread::create([chosen = settings(), result] { *result = chosen.probe(); });
    m_probe->setParent(this);
    connect(m_probe, &QThread::finished, this, [this, result] {
        const QString answer = (result->bReached ? Msg::kServiceManagerTestPassed : Msg::kServiceManagerTestFailed)
            + u'\n' + result->answer;
        m_answer->setPlainText(answer);
        m_probe->deleteLater();
        m_probe = nullptr;
        kindChosen();
        Q_EMIT testFinished(result->bReached, answer);
    });
    m_probe->start();
}

} // namespace sable
