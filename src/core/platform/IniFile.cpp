#include "platform/IniFile.h"

#include "platform/AtomicFile.h"
#include "platform/CodePage949.h"
#include "platform/LeadingNumber.h"
#include "platform/SectionedText.h"

#include <optional>

namespace sable {
namespace {

#ifdef Q_OS_WIN
const QByteArray kNativeEol("\r\n");
#else
const QByteArray kNativeEol("\n");
#endif

class IniSyntax final : public SectionedSyntax
{
public:
    std::optional<QString> sectionName(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        if (!text.startsWith('['))
            return std::nullopt;
        const qsizetype close = text.indexOf(']');
        if (close < 0)
            return std::nullopt;
        return QString::fromUtf8(text.sliced(1, close - 1).trimmed());
    }

    std::optional<QString> entryName(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        if (text.isEmpty() || text.startsWith(';') || text.startsWith('['))
            return std::nullopt;
        const qsizetype equals = text.indexOf('=');
        if (equals < 0)
            return std::nullopt;
        return QString::fromUtf8(text.first(equals).trimmed());
    }
};

const IniSyntax& iniSyntax()
{
    static const IniSyntax syntax;
    return syntax;
}

std::optional<QString> valueOf(const SectionedText& text, const QString& section, const QString& key)
{
    const std::optional<QByteArray> line = text.entryText(section, key);
    if (!line)
        return std::nullopt;
    QByteArrayView value = QByteArrayView(*line).sliced(line->indexOf('=') + 1).trimmed();
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        value = value.sliced(1, value.size() - 2);
    return QString::fromUtf8(value);
}

std::optional<QString> lookUp(const QString& path, const QString& section, const QString& key)
{
    const AtomicFile::Contents contents = AtomicFile::read(path);
    if (contents.status != AtomicFile::ReadStatus::Ok)
        return std::nullopt;
    SectionedText text(iniSyntax(), kNativeEol);
    text.parse(contents.bytes);
    return valueOf(text, section, key);
}

} // namespace

IniFile::IniFile(QString path)
    : m_path(std::move(path))
{ }

QString IniFile::readString(
    const QString& section, const QString& key, const QString& defaultValue, int bufferBytes) const
{
    const QString value = lookUp(m_path, section, key).value_or(defaultValue);
    return CodePage949::truncated(value, qMax(0, bufferBytes - 1));
}

int IniFile::readInt(const QString& section, const QString& key, int defaultValue) const
{
    const std::optional<QString> value = lookUp(m_path, section, key);
    if (!value || value->isEmpty())
        return defaultValue;
    return LeadingNumber::profileValue(*value);
}

bool IniFile::writeString(const QString& section, const QString& key, const QString& value) const
{
    return writeStrings(section, {{key, value}});
}

bool IniFile::writeDefault(const QString& section, const QString& key, const QString& value) const
{
    return AtomicFile::update(m_path, [&](const AtomicFile::Contents& current) -> std::optional<QByteArray> {
        SectionedText text(iniSyntax(), kNativeEol);
        text.parse(current.bytes);
        if (!text.entryText(section, key))
            text.setEntry(section, '[' + section.toUtf8() + ']', key, key.toUtf8() + '=' + value.toUtf8());
        return text.serialize();
    });
}

bool IniFile::updateString(const QString& section, const QString& key,
    const std::function<QString(const std::optional<QString>& current)>& next) const
{
    return AtomicFile::update(m_path, [&](const AtomicFile::Contents& current) -> std::optional<QByteArray> {
        SectionedText text(iniSyntax(), kNativeEol);
        text.parse(current.bytes);
        const QByteArray value = next(valueOf(text, section, key)).toUtf8();
        QByteArray keyText = key.toUtf8();
        if (const auto existing = text.entryText(section, key))
            keyText = existing->first(existing->indexOf('=')).trimmed();
        text.setEntry(section, '[' + section.toUtf8() + ']', key, keyText + '=' + value);
        return text.serialize();
    });
}

bool IniFile::writeStrings(const QString& section, const QList<std::pair<QString, QString>>& values) const
{
    return AtomicFile::update(m_path, [&](const AtomicFile::Contents& current) -> std::optional<QByteArray> {
        SectionedText text(iniSyntax(), kNativeEol);
        text.parse(current.bytes);
        const QByteArray header = '[' + section.toUtf8() + ']';
        for (const auto& [key, value] : values) {
            QByteArray keyText = key.toUtf8();
            // An existing key keeps the spelling it has in the file.
            if (const auto existing = text.entryText(section, key))
                keyText = existing->first(existing->indexOf('=')).trimmed();
            text.setEntry(section, header, key, keyText + '=' + value.toUtf8());
        }
        return text.serialize();
    });
}

} // namespace sable
