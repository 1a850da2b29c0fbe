#include "onboarding/MimeMessage.h"

#include <QUuid>

namespace sable::MimeMessage {
namespace {

// UTF-8 bytes per encoded word: 42 bytes make 56 base64 characters, 68 with "=?UTF-8?B?" and "?=",
// so that even "Subject: " and one word stay within a line of 78.
constexpr qsizetype kWordBytes = 42;
constexpr qsizetype kHeaderLineChars = 78;
constexpr qsizetype kBodyLineChars = 76;

QString withoutLineBreaks(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String(" "));
    text.replace(u'\r', u' ');
    text.replace(u'\n', u' ');
    return text;
}

bool isPlainAscii(const QString& text)
{
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() > 0x7E)
            return false;
    }
    return !text.contains(QLatin1String("=?"));
}

QByteArray encodedWords(const QString& text)
{
    QByteArray out;
    QByteArray word;
    const auto flush = [&out, &word] {
        if (word.isEmpty())
            return;
        if (!out.isEmpty())
            out += ' ';
        out += "=?UTF-8?B?" + word.toBase64() + "?=";
        word.clear();
    };
    for (qsizetype at = 0; at < text.size();) {
        // A surrogate pair is one character and stays in one word.
        const qsizetype width = text[at].isHighSurrogate() && at + 1 < text.size() ? 2 : 1;
        const QByteArray character = text.mid(at, width).toUtf8();
        if (word.size() + character.size() > kWordBytes)
            flush();
        word += character;
        at += width;
    }
    flush();
    return out;
}

QByteArray quoted(const QString& text)
{
    QByteArray out = text.toLatin1();
    out.replace('\\', "\\\\");
    out.replace('"', "\\\"");
    return '"' + out + '"';
}

QByteArray bodyLines(const QByteArray& body)
{
    const QByteArray encoded = body.toBase64();
    QByteArray out;
    out.reserve(encoded.size() + encoded.size() / kBodyLineChars * 2 + 2);
    for (qsizetype at = 0; at < encoded.size(); at += kBodyLineChars)
        out += encoded.mid(at, kBodyLineChars) + "\r\n";
    return out;
}

// "Name: value", folded at spaces into lines of at most 78 characters where the words allow it.
// Unfolding gives the value back unchanged.
QByteArray header(const QByteArray& name, const QByteArray& value)
{
    QByteArray out = name + ':';
    qsizetype lineLength = out.size();
    bool bFirst = true;
    for (const QByteArray& word : value.split(' ')) {
        if (!bFirst && !word.isEmpty() && lineLength + 1 + word.size() > kHeaderLineChars) {
            out += "\r\n ";
            lineLength = 1;
        } else {
            out += ' ';
            ++lineLength;
        }
        out += word;
        lineLength += word.size();
        bFirst = false;
    }
    return out + "\r\n";
}

} // namespace

QByteArray compose(const MailMessage& message, const QDateTime& date, const QByteArray& messageId)
{
    QByteArray out;
    out += header("Date", date.toString(Qt::RFC2822Date).toLatin1());
    out += header("From", mailbox(message.senderName, message.senderAddress));
    out += header("To", mailbox(message.recipientName, message.recipientAddress));
    out += header("Subject", headerText(message.subject));
    out += header("Message-ID", messageId);
    out += "MIME-Version: 1.0\r\n";
    out += "Content-Type: text/html; charset=UTF-8\r\n";
    out += "Content-Transfer-Encoding: base64\r\n";
    out += "\r\n";
    out += bodyLines(message.htmlBody.toUtf8());
    return out;
}

QByteArray newMessageId(const QString& senderAddress)
{
    const QByteArray address = addressText(senderAddress);
    const qsizetype at = address.lastIndexOf('@');
    const QByteArray domain = at >= 0 && at + 1 < address.size() ? address.mid(at + 1) : QByteArray("sable.localhost");
    return '<' + QUuid::createUuid().toByteArray(QUuid::WithoutBraces) + '@' + domain + '>';
}

QByteArray headerText(const QString& text)
{
    const QString line = withoutLineBreaks(text);
    return isPlainAscii(line) ? line.toLatin1() : encodedWords(line);
}

QByteArray mailbox(const QString& name, const QString& address)
{
    const QString display = withoutLineBreaks(name).trimmed();
    const QByteArray angle = '<' + addressText(address) + '>';
    if (display.isEmpty())
        return angle;
    return (isPlainAscii(display) ? quoted(display) : encodedWords(display)) + ' ' + angle;
}

QByteArray addressText(const QString& address)
{
    QString text = withoutLineBreaks(address);
    text.remove(u'<');
    text.remove(u'>');
    return text.trimmed().toUtf8();
}

} // namespace sable::MimeMessage
