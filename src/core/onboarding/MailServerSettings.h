#pragma once

#include "platform/Registry.h"

#include <QString>

namespace sable {

// How the connection to the mail server is secured.
enum class MailSecurity
{
    None = 0, // plain SMTP
    StartTls = 1, // plain SMTP upgraded by STARTTLS, refused when the server cannot
    Tls = 2, // TLS from the first byte (SMTPS)
};

// The mail server through which account notices are sent. Kept beside the console's other
// machine-wide settings (HKLM SOFTWARE\Halvex\SableManager); the password is stored as the database
// password in Serverinfo.ini is, protected by who may read the machine's settings.
struct MailServerSettings
{
    QString host;
    quint16 port = defaultPort(MailSecurity::None);
    MailSecurity security = MailSecurity::None;
    QString user; // empty: no login
    QString password;
    QString senderAddress;

    // A server and a sender address are the least a message needs.
    bool isComplete() const { return !host.trimmed().isEmpty() && !senderAddress.trimmed().isEmpty(); }

    static quint16 defaultPort(MailSecurity security);

    // The stored settings; what is missing keeps its default.
    static MailServerSettings read(const Registry& registry);
    bool write(const Registry& registry) const;

    friend bool operator==(const MailServerSettings&, const MailServerSettings&) = default;
};

} // namespace sable
