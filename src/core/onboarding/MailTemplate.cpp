#include "onboarding/MailTemplate.h"

#include <QFile>

#ifdef Q_OS_WIN
#include "platform/CodePage949.h"
#endif

namespace sable::MailTemplate {
namespace {

#ifdef Q_OS_WIN

// Bytes of `bytes` up to the last whole character of the Korean code page, where a byte from 0x81
// on opens a two-byte character.
qsizetype wholeCharacterPrefix(const QByteArray& bytes)
{
    qsizetype at = 0;
    while (at < bytes.size()) {
        const qsizetype width = static_cast<quint8>(bytes[at]) >= 0x81 ? 2 : 1;
        if (at + width > bytes.size())
            break;
        at += width;
    }
    return at;
}

#else

// Bytes of `bytes` up to the last whole UTF-8 sequence.
qsizetype wholeCharacterPrefix(const QByteArray& bytes)
{
    qsizetype lead = bytes.size();
    for (int back = 0; back < 4 && lead > 0; ++back) {
        --lead;
        if ((static_cast<quint8>(bytes[lead]) & 0xC0) != 0x80)
            break;
    }
    if (lead == bytes.size())
        return lead;
    const auto first = static_cast<quint8>(bytes[lead]);
    const qsizetype width = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
    return lead + width <= bytes.size() ? bytes.size() : lead;
}

#endif

} // namespace

QString fileName()
{
    return QStringLiteral("Template.html");
}

std::optional<QString> read(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return decode(file.read(kMaxBytes));
}

QString decode(const QByteArray& bytes)
{
    const QByteArray whole = bytes.left(wholeCharacterPrefix(bytes));
#ifdef Q_OS_WIN
    return CodePage949::decode(whole).value_or(QString::fromLocal8Bit(whole));
#else
    return QString::fromUtf8(whole);
#endif
}

QString expand(QString text, const TemplateValues& values)
{
    text.replace(QLatin1String("__SERVER_NAME__"), values.serverName);
    text.replace(QLatin1String("__USER_ID__"), values.userId);
    text.replace(QLatin1String("__USER_PASSWORD__"), values.userPassword);
    text.replace(QLatin1String("__ADDITIONAL_MEMO__"), values.additionalMemo);
    text.replace(QLatin1String("__MAJOR_VERSION__"), values.majorVersion);
    text.replace(QLatin1String("__OFFICE__"), values.office);
    return text;
}

} // namespace sable::MailTemplate
