#include "platform/RegFileBackend.h"

#include "platform/AtomicFile.h"
#include "platform/CodePage949.h"
#include "platform/SectionedText.h"

#include <QList>
#include <QStringList>

#include <cctype>

namespace sable {
namespace {

const QByteArray kEol("\r\n");
const QByteArray kHeader("Windows Registry Editor Version 5.00");

class RegSyntax final : public SectionedSyntax
{
public:
    std::optional<QString> sectionName(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        if (!text.startsWith('[') || !text.endsWith(']') || text.startsWith("[-"))
            return std::nullopt;
        return QString::fromUtf8(text.sliced(1, text.size() - 2));
    }

    std::optional<QString> entryName(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        if (text.startsWith("@="))
            return QString();
        QString name;
        if (parseQuoted(text, &name) < 0)
            return std::nullopt;
        return name;
    }

    // Only hexadecimal data goes on in the next line (`"Path"=hex(2):43,00,\`, then lines of bytes);
    // any other value ends with its line, also one that a hand edit left ending in a backslash.
    bool continues(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        if (!text.endsWith('\\'))
            return false;
        QString name;
        const qsizetype end = text.startsWith("@=") ? 1 : parseQuoted(text, &name);
        if (end < 0)
            return isHexBytes(text);
        const QByteArrayView rest = text.sliced(end).trimmed();
        return rest.startsWith('=') && rest.sliced(1).trimmed().startsWith("hex");
    }

    bool blankLineBeforeNewSection() const override { return true; }
    bool isIgnorable(QByteArrayView line) const override
    {
        const QByteArrayView text = line.trimmed();
        return text.isEmpty() || text.startsWith(';') || text == kHeader || text == "REGEDIT4";
    }

    static bool isHexBytes(QByteArrayView text)
    {
        for (const char c : text) {
            if (!std::isxdigit(static_cast<unsigned char>(c)) && c != ',' && c != ' ' && c != '\t' && c != '\\')
                return false;
        }
        return true;
    }

    // Parses "text" at the start of `text` (with \\ and \" escapes) into `out`; returns the index
    // just after the closing quote, or -1.
    static qsizetype parseQuoted(QByteArrayView text, QString* out)
    {
        if (!text.startsWith('"'))
            return -1;
        QByteArray bytes;
        for (qsizetype i = 1; i < text.size(); ++i) {
            const char c = text[i];
            if (c == '"') {
                *out = QString::fromUtf8(bytes);
                return i + 1;
            }
            if (c == '\\' && i + 1 < text.size())
                bytes += text[++i];
            else
                bytes += c;
        }
        return -1;
    }
};

const RegSyntax& regSyntax()
{
    static const RegSyntax syntax;
    return syntax;
}

QByteArray quoted(const QByteArray& text)
{
    QByteArray out = "\"";
    for (const char c : text) {
        if (c == '\\' || c == '"')
            out += '\\';
        out += c;
    }
    return out + '"';
}

QString rootName(RegRoot root)
{
    return root == RegRoot::LocalMachine ? QStringLiteral("HKEY_LOCAL_MACHINE") : QStringLiteral("HKEY_CURRENT_USER");
}

QString sectionOf(RegRoot root, const std::string& path)
{
    QString key = QString::fromStdString(path);
    while (key.endsWith(u'\\'))
        key.chop(1);
    return rootName(root) + u'\\' + key;
}

SectionedText load(const QString& file)
{
    SectionedText text(regSyntax(), kEol);
    text.parse(AtomicFile::read(file).bytes);
    return text;
}

// The data after "name"= on an entry's (joined) text.
QByteArrayView dataOf(const QByteArray& entry)
{
    const QByteArrayView text = QByteArrayView(entry).trimmed();
    if (text.startsWith("@="))
        return text.sliced(2).trimmed();
    QString ignored;
    const qsizetype end = RegSyntax::parseQuoted(text, &ignored);
    const QByteArrayView rest = text.sliced(end).trimmed();
    return rest.startsWith('=') ? rest.sliced(1).trimmed() : QByteArrayView();
}

// hex(1): UTF-16LE bytes; regedit uses it for strings that cannot stand between quotes.
std::optional<QString> parseHexString(QByteArrayView data)
{
    QByteArray bytes;
    for (const QByteArray& part : data.toByteArray().replace('\\', ' ').split(',')) {
        bool ok = false;
        const uint byte = part.trimmed().toUInt(&ok, 16);
        if (!ok || byte > 0xFF)
            return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    QString text = QString::fromUtf16(reinterpret_cast<const char16_t*>(bytes.constData()), bytes.size() / 2);
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

// The text of a string value: "quoted" or hex(1):...; nullopt for any other data.
std::optional<QString> stringData(QByteArrayView data)
{
    if (data.startsWith("hex(1):"))
        return parseHexString(data.sliced(7));
    QString text;
    const qsizetype end = RegSyntax::parseQuoted(data, &text);
    return end == data.size() ? std::optional<QString>(text) : std::nullopt;
}

std::optional<std::uint32_t> dwordData(QByteArrayView data)
{
    if (!data.startsWith("dword:") || data.size() > 6 + 8)
        return std::nullopt;
    bool ok = false;
    const uint value = data.sliced(6).toUInt(&ok, 16);
    return ok ? std::optional<std::uint32_t>(value) : std::nullopt;
}

// Data of another type that regedit writes as bytes: hex:..., hex(2):..., and so on.
bool isHexData(QByteArrayView data)
{
    const qsizetype colon = data.indexOf(':');
    if (!data.startsWith("hex") || colon < 0)
        return false;
    for (const QByteArray& part : data.sliced(colon + 1).toByteArray().replace('\\', ' ').split(',')) {
        bool ok = part.trimmed().isEmpty();
        if (!ok)
            part.trimmed().toUInt(&ok, 16);
        if (!ok)
            return false;
    }
    return true;
}

QByteArray hexString(const QString& value)
{
    QStringList parts;
    const QString withZero = value + QChar(0);
    for (const QChar ch : withZero)
        parts << QString::asprintf("%02x,%02x", ch.unicode() & 0xFF, ch.unicode() >> 8);
    return "hex(1):" + parts.join(u',').toUtf8();
}

QByteArray dataText(const RegValue& value)
{
    if (const auto* number = std::get_if<std::uint32_t>(&value.data))
        return "dword:" + QByteArray::number(*number, 16).rightJustified(8, '0');
    const QString text = QString::fromStdString(std::get<std::string>(value.data));
    const bool plain = !text.contains(u'\n') && !text.contains(u'\r') && !text.contains(QChar(0));
    return plain ? quoted(text.toUtf8()) : hexString(text);
}

} // namespace

RegFileBackend::RegFileBackend(QString localMachineFile, QString currentUserFile)
    : m_localMachineFile(std::move(localMachineFile))
    , m_currentUserFile(std::move(currentUserFile))
{ }

QString RegFileBackend::fileOf(RegRoot root) const
{
    return root == RegRoot::LocalMachine ? m_localMachineFile : m_currentUserFile;
}

bool RegFileBackend::keyExists(RegRoot root, const std::string& path)
{
    return load(fileOf(root)).hasSectionUnder(sectionOf(root, path), u'\\');
}

bool RegFileBackend::createKey(RegRoot root, const std::string& path)
{
    const QString section = sectionOf(root, path);
    return AtomicFile::update(fileOf(root), [&](const AtomicFile::Contents& current) -> std::optional<QByteArray> {
        SectionedText text(regSyntax(), kEol);
        text.parse(current.bytes);
        if (text.hasSectionUnder(section, u'\\'))
            return std::nullopt;
        if (text.isEmpty())
            text.prependLine(kHeader);
        text.addSection('[' + section.toUtf8() + ']');
        return text.serialize();
    });
}

std::optional<std::string> RegFileBackend::readString(
    RegRoot root, const std::string& path, const std::string& name, std::size_t bufferBytes)
{
    const auto entry = valueText(root, path, name);
    const std::optional<QString> value = entry ? stringData(dataOf(*entry)) : std::nullopt;
    if (!value || static_cast<std::size_t>(CodePage949::byteLength(*value)) + 1 > bufferBytes)
        return std::nullopt;
    return value->toStdString();
}

std::optional<std::uint32_t> RegFileBackend::readDword(RegRoot root, const std::string& path, const std::string& name)
{
    const auto entry = valueText(root, path, name);
    return entry ? dwordData(dataOf(*entry)) : std::nullopt;
}

ValuePresence RegFileBackend::valuePresence(RegRoot root, const std::string& path, const std::string& name)
{
    const AtomicFile::Contents contents = AtomicFile::read(fileOf(root));
    if (contents.status == AtomicFile::ReadStatus::TooLarge)
        return ValuePresence::FileTooLarge;
    if (contents.status != AtomicFile::ReadStatus::Ok && contents.status != AtomicFile::ReadStatus::Missing)
        return ValuePresence::Damaged; // there, but not to be read: it may hold the value
    SectionedText text(regSyntax(), kEol);
    text.parse(contents.bytes);
    const QString section = sectionOf(root, path);
    if (const auto entry = text.entryText(section, QString::fromStdString(name))) {
        const QByteArrayView data = dataOf(*entry);
        const bool wellFormed = stringData(data) || dwordData(data) || isHexData(data);
        return wellFormed ? ValuePresence::Present : ValuePresence::Damaged;
    }
    if (!text.endsWithLineEnd())
        return ValuePresence::Damaged;
    for (const SectionedText::StrayLine& stray : text.strayLines()) {
        const QString line = QString::fromUtf8(stray.text.trimmed());
        const bool inKey = stray.section.compare(section, Qt::CaseInsensitive) == 0;
        // "[HKEY_LOCAL_MACHINE\SOFTWARE\Halvex\Serv" or the whole name without its "]".
        const bool namesKey = line.startsWith(u'[') && line.size() > 1
            && (section.startsWith(line.mid(1), Qt::CaseInsensitive)
                || line.mid(1).startsWith(section, Qt::CaseInsensitive));
        if (inKey || namesKey)
            return ValuePresence::Damaged;
    }
    return ValuePresence::Absent;
}

bool RegFileBackend::writeString(
    RegRoot root, const std::string& path, const std::string& name, const std::string& value)
{
    return writeValues(root, path, {{name, value}});
}

bool RegFileBackend::writeDword(RegRoot root, const std::string& path, const std::string& name, std::uint32_t value)
{
    return writeValues(root, path, {{name, value}});
}

std::optional<QByteArray> RegFileBackend::valueText(
    RegRoot root, const std::string& path, const std::string& name) const
{
    return load(fileOf(root)).entryText(sectionOf(root, path), QString::fromStdString(name));
}

bool RegFileBackend::writeValues(RegRoot root, const std::string& path, const std::vector<RegValue>& values)
{
    const QString section = sectionOf(root, path);
    bool keyFound = true;
    const bool written
        = AtomicFile::update(fileOf(root), [&](const AtomicFile::Contents& current) -> std::optional<QByteArray> {
              SectionedText text(regSyntax(), kEol);
              text.parse(current.bytes);
              keyFound = text.hasSectionUnder(section, u'\\');
              if (!keyFound)
                  return std::nullopt;
              for (const RegValue& value : values) {
                  const QString name = QString::fromStdString(value.name);
                  const QByteArray entryName = name.isEmpty() ? QByteArray("@") : quoted(name.toUtf8());
                  text.setEntry(section, '[' + section.toUtf8() + ']', name, entryName + '=' + dataText(value));
              }
              return text.serialize();
          });
    return written && keyFound;
}

} // namespace sable
