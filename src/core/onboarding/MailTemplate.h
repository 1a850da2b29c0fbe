#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace sable {

// What the markers of the account-notice template stand for, for one recipient.
struct TemplateValues
{
    QString serverName; // __SERVER_NAME__: the address the clients connect to
    QString userId; // __USER_ID__
    QString userPassword; // __USER_PASSWORD__
    QString additionalMemo; // __ADDITIONAL_MEMO__
    QString majorVersion; // __MAJOR_VERSION__: the version tag read at start-up
    QString office; // __OFFICE__: "1" for the office edition, else "0"

    static QString officeFlag(quint32 serverType)
    {
        return serverType == 1 ? QStringLiteral("1") : QStringLiteral("0");
    }
};

// The HTML template of the account notice ("Template.html" in the server's folder).
namespace MailTemplate {

inline constexpr qsizetype kMaxBytes = 4096;

QString fileName();

// The template's text: at most its first kMaxBytes bytes, ending before a character that those
// bytes would cut in half. nullopt when the file cannot be opened.
std::optional<QString> read(const QString& path);

// The text of the template's leading bytes (UTF-8 here; the ANSI code page on Windows, where the
// server's own tools write the file), without a trailing partial character.
QString decode(const QByteArray& bytes);

// `text` with every marker replaced, one marker after another in a fixed order, so a value that
// itself looks like a later marker is replaced again and one like an earlier marker is not.
QString expand(QString text, const TemplateValues& values);

} // namespace MailTemplate
} // namespace sable
