#include "onboarding/RegistrationMailSender.h"

#include "onboarding/MailTransport.h"

namespace sable {

RegistrationMailSender::RegistrationMailSender(
    MailServerSettings settings, RegistrationMail mail, QList<RegistrationMailRow> rows, QObject* parent)
    : QThread(parent)
    , m_settings(std::move(settings))
    , m_mail(std::move(mail))
    , m_rows(std::move(rows))
{ }

RegistrationMailSender::~RegistrationMailSender()
{
    stop();
    wait();
}

void RegistrationMailSender::stop()
{
    m_bStop = true;
}

QString RegistrationMailSender::bodyFor(const RegistrationMail& mail, const Recipient& recipient)
{
    TemplateValues values = mail.common;
    values.userId = recipient.id;
    values.userPassword = recipient.password;
    return MailTemplate::expand(mail.templateText, values);
}

void RegistrationMailSender::run()
{
    MailTransport transport(m_settings);
    transport.setStopFlag(&m_bStop);
    for (const RegistrationMailRow& row : std::as_const(m_rows)) {
        if (m_bStop)
            return;
        Q_EMIT rowStarted(row.row);
        const MailMessage message {m_mail.senderName, m_settings.senderAddress, row.recipient.name, row.recipient.email,
            m_mail.subject, bodyFor(m_mail, row.recipient)};
        const MailTransport::Result result = transport.send(message);
        switch (result.outcome) {
        case MailTransport::Outcome::Sent:
        case MailTransport::Outcome::Refused:
            Q_EMIT rowFinished(row.row, result.outcome == MailTransport::Outcome::Sent);
            break;
        case MailTransport::Outcome::Stopped:
            return;
        case MailTransport::Outcome::TransportFailed:
            Q_EMIT transportFailed(row.row, MailTransport::describe(result));
            return;
        }
    }
    Q_EMIT allRowsDone();
}

} // namespace sable
