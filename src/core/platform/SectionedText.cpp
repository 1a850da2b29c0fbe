#include "platform/SectionedText.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace sable {
namespace {

const QByteArray kUtf8Bom("\xEF\xBB\xBF");
const QByteArray kUtf16LeBom("\xFF\xFE");

bool sameName(const std::optional<QString>& found, const QString& wanted)
{
    return found && found->compare(wanted, Qt::CaseInsensitive) == 0;
}

} // namespace

SectionedText::SectionedText(const SectionedSyntax& syntax, QByteArray defaultEol)
    : m_syntax(syntax)
    , m_defaultEol(std::move(defaultEol))
{ }

void SectionedText::parse(const QByteArray& fileBytes)
{
    m_lines.clear();
    QByteArray text = fileBytes;
    m_encoding = Encoding::Utf8;
    if (text.startsWith(kUtf16LeBom)) {
        m_encoding = Encoding::Utf16LeWithBom;
        QStringDecoder toUtf16(QStringDecoder::Utf16LE);
        text = QString(toUtf16(QByteArrayView(text).sliced(2))).toUtf8();
    } else if (text.startsWith(kUtf8Bom)) {
        m_encoding = Encoding::Utf8WithBom;
        text = text.sliced(3);
    }
    qsizetype start = 0;
    bool eolKnown = false;
    while (start < text.size()) {
        const qsizetype newline = text.indexOf('\n', start);
        if (newline < 0) {
            m_lines.push_back({text.sliced(start), {}});
            break;
        }
        const bool crlf = newline > start && text[newline - 1] == '\r';
        const qsizetype end = crlf ? newline - 1 : newline;
        m_lines.push_back({text.sliced(start, end - start), crlf ? QByteArray("\r\n") : QByteArray("\n")});
        if (!eolKnown) {
            m_defaultEol = m_lines.back().eol;
            eolKnown = true;
        }
        start = newline + 1;
    }
}

QByteArray SectionedText::serialize() const
{
    QByteArray out;
    for (const Line& line : m_lines)
        out += line.text + line.eol;
    switch (m_encoding) {
    case Encoding::Utf8:
        return out;
    case Encoding::Utf8WithBom:
        return kUtf8Bom + out;
    case Encoding::Utf16LeWithBom: {
        QStringEncoder toUtf16(QStringEncoder::Utf16LE);
        return kUtf16LeBom + QByteArray(toUtf16(QString::fromUtf8(out)));
    }
    }
    return out;
}

bool SectionedText::hasSection(const QString& section) const
{
    return sectionRange(section).first >= 0;
}

bool SectionedText::hasSectionUnder(const QString& prefix, QChar separator) const
{
    const QString below = prefix + separator;
    for (const Line& line : m_lines) {
        const auto name = m_syntax.sectionName(line.text);
        if (name && (name->compare(prefix, Qt::CaseInsensitive) == 0 || name->startsWith(below, Qt::CaseInsensitive)))
            return true;
    }
    return false;
}

std::vector<SectionedText::StrayLine> SectionedText::strayLines() const
{
    std::vector<StrayLine> strays;
    QString section;
    const int count = static_cast<int>(m_lines.size());
    for (int i = 0; i < count; ++i) {
        const QByteArray& text = m_lines[static_cast<size_t>(i)].text;
        if (const auto name = m_syntax.sectionName(text))
            section = *name;
        else if (m_syntax.entryName(text))
            i = entryEnd(i, count - 1);
        else if (!m_syntax.isIgnorable(text))
            strays.push_back({section, text});
    }
    return strays;
}

std::optional<QByteArray> SectionedText::entryText(const QString& section, const QString& name) const
{
    const Range entry = entryRange(sectionRange(section), name);
    if (entry.first < 0)
        return std::nullopt;
    QByteArray joined;
    for (int i = entry.first; i <= entry.last; ++i)
        joined += m_lines[static_cast<size_t>(i)].text;
    return joined;
}

void SectionedText::setEntry(
    const QString& section, const QByteArray& sectionHeader, const QString& name, const QByteArray& line)
{
    Range range = sectionRange(section);
    if (range.first < 0) {
        addSection(sectionHeader);
        range = sectionRange(section);
    }
    const Range entry = entryRange(range, name);
    if (entry.first >= 0) {
        m_lines.erase(m_lines.begin() + entry.first + 1, m_lines.begin() + entry.last + 1);
        m_lines[static_cast<size_t>(entry.first)].text = line;
        return;
    }
    int after = range.first;
    for (int i = range.first + 1; i <= range.last; ++i) {
        if (m_syntax.entryName(m_lines[static_cast<size_t>(i)].text)) {
            i = entryEnd(i, range.last);
            after = i;
        }
    }
    // An entry whose last line asks to go on (a file cut inside a continued value) would take the new
    // line in as its own: a blank line ends it first, and leaves its text as it was.
    if (m_syntax.continues(m_lines[static_cast<size_t>(after)].text))
        insertLines(after + 1, {QByteArray(), line});
    else
        insertLines(after + 1, {line});
}

void SectionedText::addSection(const QByteArray& sectionHeader)
{
    std::vector<QByteArray> texts;
    if (m_syntax.blankLineBeforeNewSection() && !m_lines.empty() && !m_lines.back().text.trimmed().isEmpty())
        texts.push_back({});
    texts.push_back(sectionHeader);
    insertLines(static_cast<int>(m_lines.size()), texts);
}

void SectionedText::prependLine(const QByteArray& line)
{
    insertLines(0, {line});
}

SectionedText::Range SectionedText::sectionRange(const QString& section) const
{
    const int count = static_cast<int>(m_lines.size());
    for (int i = 0; i < count; ++i) {
        if (!sameName(m_syntax.sectionName(m_lines[static_cast<size_t>(i)].text), section))
            continue;
        int last = i;
        while (last + 1 < count && !m_syntax.sectionName(m_lines[static_cast<size_t>(last + 1)].text))
            ++last;
        return {i, last};
    }
    return {};
}

SectionedText::Range SectionedText::entryRange(const Range& section, const QString& name) const
{
    if (section.first < 0)
        return {};
    for (int i = section.first + 1; i <= section.last; ++i) {
        const auto found = m_syntax.entryName(m_lines[static_cast<size_t>(i)].text);
        if (!found)
            continue;
        const int end = entryEnd(i, section.last);
        if (sameName(found, name))
            return {i, end};
        i = end;
    }
    return {};
}

int SectionedText::entryEnd(int first, int limit) const
{
    int last = first;
    while (last < limit && m_syntax.continues(m_lines[static_cast<size_t>(last)].text))
        ++last;
    return last;
}

void SectionedText::insertLines(int at, const std::vector<QByteArray>& texts)
{
    // A last line without a line end gets one, so that what follows starts on a line of its own.
    if (at > 0 && m_lines[static_cast<size_t>(at - 1)].eol.isEmpty())
        m_lines[static_cast<size_t>(at - 1)].eol = m_defaultEol;
    std::vector<Line> fresh;
    for (const QByteArray& text : texts)
        fresh.push_back({text, m_defaultEol});
    m_lines.insert(m_lines.begin() + at, fresh.begin(), fresh.end());
}

} // namespace sable
