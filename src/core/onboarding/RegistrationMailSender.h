#pragma once

#include "onboarding/MailServerSettings.h"
#include "onboarding/MailTemplate.h"
#include "onboarding/RecipientModel.h"

#include <QList>
#include <QThread>

#include <atomic>

namespace sable {

// What every account notice of one sending shares.
struct RegistrationMail
{
    QString senderName;
    QString subject;
    QString templateText;
    TemplateValues common; // server name, memo, version and edition; the user's own values are per row
};

// One grid row to mail.
struct RegistrationMailRow
{
    int row = 0;
    Recipient recipient;
};

// Sends the account notices row after row on a thread of its own, so the window stays live. Each
// row reports when it starts and whether its message went; a refused message moves on to the next
// row, a failure of the mail transport itself ends the sending at that row.
class RegistrationMailSender final : public QThread
{
    Q_OBJECT

public:
    RegistrationMailSender(
        MailServerSettings settings, RegistrationMail mail, QList<RegistrationMailRow> rows, QObject* parent = nullptr);
    ~RegistrationMailSender() override;

    // Ends the sending: the message under way is abandoned and no further row starts.
    void stop();
    bool isStopRequested() const { return m_bStop.load(); }

    // The body of one row's message: the template with this recipient's markers replaced.
    static QString bodyFor(const RegistrationMail& mail, const Recipient& recipient);

Q_SIGNALS:
    void rowStarted(int row);
    void rowFinished(int row, bool bSent);
    void transportFailed(int row, const QString& detail);
    void allRowsDone();

protected:
    void run() override;

private:
    MailServerSettings m_settings;
    RegistrationMail m_mail;
    QList<RegistrationMailRow> m_rows;
    std::atomic_bool m_bStop {false};
};

} // namespace sable
