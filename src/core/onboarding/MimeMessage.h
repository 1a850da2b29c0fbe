#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>

namespace sable {

// One mail as the console hands it to the transport: an HTML body from one sender to one recipient.
struct MailMessage
{
    QString senderName;
    QString senderAddress;
    QString recipientName;
    QString recipientAddress;
    QString subject;
    QString htmlBody;
};

// The Internet message format of a MailMessage: headers in ASCII (names and subject as UTF-8
// encoded words where they need it), the body as UTF-8 HTML in base64, which keeps every byte of the
// template as it is and every line short whatever the template's own line lengths.
namespace MimeMessage {

QByteArray compose(const MailMessage& message, const QDateTime& date, const QByteArray& messageId);

// A new Message-ID in the sender's domain: "<unique@domain>".
QByteArray newMessageId(const QString& senderAddress);

// Header text: as it stands when it is printable ASCII, else encoded words of at most 75
// characters, separated by spaces where the header may be folded. Line breaks in `text` become
// spaces, so no value can add a header of its own.
QByteArray headerText(const QString& text);

// "Name <address>", the name quoted or encoded as it needs; the bare address without a name.
QByteArray mailbox(const QString& name, const QString& address);

// An address as it may stand in a header or an SMTP command: without line breaks, angle brackets
// or surrounding spaces.
QByteArray addressText(const QString& address);

} // namespace MimeMessage
} // namespace sable
