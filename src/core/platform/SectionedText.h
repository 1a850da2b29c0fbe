#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>
#include <vector>

namespace sable {

// What a line means in a sectioned settings file; the INI and the registry-export formats differ
// only in this.
class SectionedSyntax
{
public:
    virtual ~SectionedSyntax() = default;
    // The name of the section that `line` opens, or nullopt when it opens none.
    virtual std::optional<QString> sectionName(QByteArrayView line) const = 0;
    // The name of the entry that `line` starts, or nullopt (comments, blanks, broken lines).
    virtual std::optional<QString> entryName(QByteArrayView line) const = 0;
    // Whether an entry that ends with this line goes on in the next one.
    virtual bool continues(QByteArrayView) const { return false; }
    // Whether a new section is set off from the one before by a blank line.
    virtual bool blankLineBeforeNewSection() const { return false; }
    // Whether a line that is neither a section nor an entry is meant so (blanks, comments).
    virtual bool isIgnorable(QByteArrayView line) const { return line.trimmed().isEmpty(); }
};

// A settings file held as its lines, so that a change rewrites only the lines it is about and every
// other line, comment, blank line, line ending and unparsable line stays byte for byte. Names of
// sections and entries match without regard to case; the first of several equal ones counts.
class SectionedText
{
public:
    enum class Encoding
    {
        Utf8,
        Utf8WithBom,
        Utf16LeWithBom,
    };

    SectionedText(const SectionedSyntax& syntax, QByteArray defaultEol);

    // Parses file contents (UTF-8, with or without BOM, or UTF-16LE with BOM as regedit writes).
    void parse(const QByteArray& fileBytes);
    QByteArray serialize() const;

    bool isEmpty() const { return m_lines.empty(); }
    // False when the last line has no line end: the file was cut while it was written or copied.
    bool endsWithLineEnd() const { return m_lines.empty() || !m_lines.back().eol.isEmpty(); }

    // A line that opens no section, starts or continues no entry and is not ignorable, with the
    // name of the section it stands in (empty before the first).
    struct StrayLine
    {
        QString section;
        QByteArray text;
    };
    std::vector<StrayLine> strayLines() const;
    bool hasSection(const QString& section) const;
    // True when a section is `prefix` itself or lies below it (`prefix` + separator + ...).
    bool hasSectionUnder(const QString& prefix, QChar separator) const;

    // The entry's text, its lines joined with their line ends removed.
    std::optional<QByteArray> entryText(const QString& section, const QString& name) const;

    // Replaces the entry's lines with `line`, or adds it after the section's last entry; a missing
    // section is appended at the end with `sectionHeader` as its first line.
    void setEntry(const QString& section, const QByteArray& sectionHeader, const QString& name, const QByteArray& line);
    void addSection(const QByteArray& sectionHeader);
    void prependLine(const QByteArray& line);

private:
    struct Line
    {
        QByteArray text;
        QByteArray eol;
    };
    struct Range
    {
        int first = -1;
        int last = -1;
    };

    Range sectionRange(const QString& section) const; // header line .. last line before the next header
    Range entryRange(const Range& section, const QString& name) const;
    int entryEnd(int first, int limit) const;
    void insertLines(int at, const std::vector<QByteArray>& texts);

    const SectionedSyntax& m_syntax;
    QByteArray m_defaultEol;
    Encoding m_encoding = Encoding::Utf8;
    std::vector<Line> m_lines;
};

} // namespace sable
