#pragma once

#include "onboarding/MailServerSettings.h"
#include "onboarding/MimeMessage.h"

#include <QStringList>

#include <atomic>

namespace sable {

// Sends mail through the configured SMTP server (libcurl): one connection per message, TLS as the
// settings ask, a login when a user is set.
class MailTransport
{
public:
    enum class Outcome
    {
        Sent, // the server accepted the message
        Refused, // the server refused this message (its recipient or its content)
        TransportFailed, // no message can go: unreachable server, TLS, login, sender refused
        Stopped, // the stop flag was raised while the message was under way
    };

    struct Result
    {
        Outcome outcome = Outcome::TransportFailed;
        QString error; // what went wrong, empty when nothing did
        QStringList replies; // the server's reply lines, in order
    };

    explicit MailTransport(MailServerSettings settings);

    // Raised from another thread, it ends the message under way and refuses further ones.
    void setStopFlag(const std::atomic_bool* stop) { m_stop = stop; }

    Result send(const MailMessage& message) const;

    // Connects, secures and logs in as a send would, then asks the server for a NOOP: the settings
    // work when the outcome is Sent.
    Result probe() const;

    // The server's reply lines as one text for people; the greeting first.
    static QString describe(const Result& result);

private:
    MailServerSettings m_settings;
    const std::atomic_bool* m_stop = nullptr;
};

} // namespace sable
