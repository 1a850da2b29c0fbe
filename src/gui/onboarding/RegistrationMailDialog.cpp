#include "onboarding/RegistrationMailDialog.h"

#include "Messages.h"
#include "onboarding/MailServerDialog.h"
#include "onboarding/MailServerSettings.h"
#include "platform/LocalAddress.h"

#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace sable {
namespace {

QLabel* promptFor(const QString& text, QWidget* buddy)
{
    auto* label = new QLabel(text);
    label->setBuddy(buddy);
    return label;
}

} // namespace

RegistrationMailDialog::RegistrationMailDialog(StartupConfig config, StartupSettings settings, QWidget* parent)
    : QDialog(parent)
    , m_config(std::move(config))
    , m_settings(std::move(settings))
    , m_recipients(new RecipientModel(this))
{
    setWindowTitle(Msg::kRegistrationMailTitle);
    setModal(false);
    buildLayout();
    setSending(false);
}

RegistrationMailDialog::~RegistrationMailDialog()
{
    if (m_sender) {
        m_sender->disconnect(this);
        m_sender->stop();
        m_sender->wait();
    }
}

void RegistrationMailDialog::buildLayout()
{
    m_senderName = new QLineEdit(Msg::kMailDefaultSenderName);
    m_senderName->setObjectName(QStringLiteral("senderName"));
    m_subject = new QLineEdit(Msg::kMailDefaultSubject);
    m_subject->setObjectName(QStringLiteral("subject"));
    m_memo = new QPlainTextEdit(Msg::kMailDefaultMemo);
    m_memo->setObjectName(QStringLiteral("memo"));
    m_memo->setFixedHeight(90);
    // The address the template's __SERVER_NAME__ becomes: the machine's, as the clients reach it,
    // unless the administrator knows better (a name, or the address behind a router).
    m_serverAddress = new QLineEdit(LocalAddress::GetLocalAddress());
    m_serverAddress->setObjectName(QStringLiteral("serverAddress"));

    m_grid = new QTableView;
    m_grid->setObjectName(QStringLiteral("recipients"));
    m_grid->setTabKeyNavigation(false); // Tab moves on to the next control
    m_grid->setModel(m_recipients);
    m_grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_grid->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grid->setWordWrap(false);
    m_grid->verticalHeader()->hide();
    m_grid->verticalHeader()->setDefaultSectionSize(20);
    for (int column = 0; column < RecipientModel::ColumnCount; ++column)
        m_grid->setColumnWidth(column, RecipientModel::columnWidth(RecipientModel::Column(column)));
    auto* hint = new QLabel(Msg::kMailRecipientHint);
    hint->setWordWrap(true);

    m_mailServerButton = new QPushButton(Msg::kMailServerButton);
    m_sendButton = new QPushButton(Msg::kMailSendButton);
    m_resetButton = new QPushButton(Msg::kMailResetButton);
    m_stopButton = new QPushButton(Msg::kMailStopButton);
    auto* cancelButton = new QPushButton(Msg::kMailCancelButton);
    m_sendButton->setDefault(true);
    connect(m_mailServerButton, &QPushButton::clicked, this, &RegistrationMailDialog::editMailServer);
    connect(m_sendButton, &QPushButton::clicked, this, &RegistrationMailDialog::sendMail);
    connect(m_resetButton, &QPushButton::clicked, this, &RegistrationMailDialog::resetRecipients);
    connect(m_stopButton, &QPushButton::clicked, this, &RegistrationMailDialog::stopSending);
    connect(cancelButton, &QPushButton::clicked, this, &RegistrationMailDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_mailServerButton);
    buttons->addStretch();
    for (QPushButton* button : {m_sendButton, m_resetButton, m_stopButton, cancelButton})
        buttons->addWidget(button);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(promptFor(Msg::kMailSenderNamePrompt, m_senderName));
    layout->addWidget(m_senderName);
    layout->addWidget(promptFor(Msg::kMailSubjectPrompt, m_subject));
    layout->addWidget(m_subject);
    layout->addWidget(promptFor(Msg::kMailMemoPrompt, m_memo));
    layout->addWidget(m_memo);
    layout->addWidget(promptFor(Msg::kMailServerAddressPrompt, m_serverAddress));
    layout->addWidget(m_serverAddress);
    layout->addWidget(m_grid, 1);
    layout->addWidget(hint);
    layout->addLayout(buttons);
    resize(420, 560);
}

bool RegistrationMailDialog::AddRecipient(
    const QString& name, const QString& email, const QString& id, const QString& password)
{
    return m_recipients->AddRecipient(name, email, id, password);
}

QString RegistrationMailDialog::templatePath() const
{
    return QDir(m_config.paths().programFolder).filePath(MailTemplate::fileName());
}

void RegistrationMailDialog::sendMail()
{
    if (m_sender)
        return;
    const std::optional<QString> templateText = MailTemplate::read(templatePath());
    if (!templateText) {
        showNotice(QMessageBox::Warning, Msg::kTemplateOpenFailed);
        return;
    }
    MailServerSettings server = MailServerSettings::read(m_config.registry());
    if (!server.isComplete()) {
        showNotice(QMessageBox::Warning, Msg::kMailServerNotSet);
        return;
    }
    const QString serverAddress = m_serverAddress->text().trimmed();
    if (serverAddress.isEmpty()) {
        showNotice(QMessageBox::Warning, Msg::kMailServerAddressEmpty);
        m_serverAddress->setFocus();
        return;
    }
    RegistrationMail mail {m_senderName->text(), m_subject->text(), *templateText,
        {serverAddress, {}, {}, memoText(), m_settings.versionTag, TemplateValues::officeFlag(m_settings.serverType)}};
    QList<RegistrationMailRow> rows;
    for (int row = 0; row < m_recipients->rowCount(); ++row)
        rows.append({row, m_recipients->recipient(row)});
    m_recipients->clearResults();

    m_sender = new RegistrationMailSender(std::move(server), std::move(mail), std::move(rows), this);
    connect(m_sender, &RegistrationMailSender::rowStarted, this, &RegistrationMailDialog::showRow);
    connect(m_sender, &RegistrationMailSender::rowFinished, this, [this](int row, bool bSent) {
        m_recipients->setResult(row, bSent ? RecipientModel::Result::Sent : RecipientModel::Result::Failed);
    });
    connect(m_sender, &RegistrationMailSender::transportFailed, this,
        [this](int, const QString& detail) { showNotice(QMessageBox::Critical, Msg::kMailTransportError, detail); });
    connect(m_sender, &RegistrationMailSender::allRowsDone, this,
        [this] { showNotice(QMessageBox::Information, Msg::kMailSendingDone); });
    connect(m_sender, &QThread::finished, this, [this] {
        m_sender->deleteLater();
        m_sender = nullptr;
        setSending(false);
    });
    setSending(true);
    m_sender->start();
}

void RegistrationMailDialog::resetRecipients()
{
    if (!m_sender)
        m_recipients->clear();
}

void RegistrationMailDialog::stopSending()
{
    if (m_sender)
        m_sender->stop();
}

void RegistrationMailDialog::editMailServer()
{
    MailServerDialog dialog(m_config.registry(), this);
    dialog.exec();
}

void RegistrationMailDialog::reject()
{
    stopSending();
    QDialog::reject();
}

void RegistrationMailDialog::setSending(bool bSending)
{
    m_sendButton->setEnabled(!bSending);
    m_resetButton->setEnabled(!bSending);
    m_mailServerButton->setEnabled(!bSending);
    m_stopButton->setEnabled(bSending);
}

void RegistrationMailDialog::showRow(int row)
{
    m_grid->selectRow(row);
    m_grid->scrollTo(m_recipients->index(row, 0));
}

void RegistrationMailDialog::showNotice(QMessageBox::Icon icon, const QString& text, const QString& detail)
{
    // Window-modal and not waited for, so the dialog's own work (and the window's) goes on.
    auto* box = new QMessageBox(icon, windowTitle(), text, QMessageBox::Ok, this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    if (!detail.isEmpty())
        box->setDetailedText(detail);
    box->open();
    Q_EMIT noticeShown(text);
}

QString RegistrationMailDialog::memoText() const
{
    // The edit control of the server's own console hands its lines over with CR LF.
    QString text = m_memo->toPlainText();
    text.replace(u'\n', QLatin1String("\r\n"));
    return text;
}

} // namespace sable
