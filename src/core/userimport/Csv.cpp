#include "userimport/Csv.h"

namespace sable::Csv {
namespace {

// Walks the text once, field by field; the state is where the walk is.
class Parser
{
public:
    Parser(QStringView text, QChar delimiter)
        : m_text(text)
        , m_delimiter(delimiter)
    { }

    std::optional<std::vector<CsvRecord>> run(CsvError* error)
    {
        while (m_at < m_text.size()) {
            if (!readRecord(error))
                return std::nullopt;
        }
        return std::move(m_records);
    }

private:
    bool atLineEnd() const { return m_text[m_at] == u'\n' || m_text[m_at] == u'\r'; }

    void skipLineEnd()
    {
        if (m_text[m_at] == u'\r' && m_at + 1 < m_text.size() && m_text[m_at + 1] == u'\n')
            ++m_at;
        ++m_at;
        ++m_line;
    }

    bool readRecord(CsvError* error)
    {
        CsvRecord record;
        record.line = m_line;
        for (;;) {
            QString field;
            if (m_at < m_text.size() && m_text[m_at] == u'"') {
                if (!readQuoted(field, record.line, error))
                    return false;
            } else {
                const qsizetype start = m_at;
                while (m_at < m_text.size() && m_text[m_at] != m_delimiter && !atLineEnd())
                    ++m_at;
                field = m_text.sliced(start, m_at - start).toString();
            }
            record.fields << field;
            if (m_at < m_text.size() && m_text[m_at] == m_delimiter) {
                ++m_at;
                continue;
            }
            break;
        }
        if (m_at < m_text.size())
            skipLineEnd();
        if (record.fields.size() > 1 || !record.fields.first().isEmpty())
            m_records.push_back(std::move(record));
        return true;
    }

    bool readQuoted(QString& field, int firstLine, CsvError* error)
    {
        ++m_at;
        const int openedOn = m_line;
        for (;;) {
            const qsizetype quote = m_text.indexOf(u'"', m_at);
            if (quote < 0) {
                *error = {openedOn, CsvError::Problem::UnclosedQuote};
                return false;
            }
            const QStringView piece = m_text.sliced(m_at, quote - m_at);
            m_line += static_cast<int>(piece.count(u'\n')) + lineBreaksByCrOnly(piece);
            field += piece;
            m_at = quote + 1;
            if (m_at < m_text.size() && m_text[m_at] == u'"') {
                field += u'"';
                ++m_at;
                continue;
            }
            break;
        }
        if (m_at < m_text.size() && m_text[m_at] != m_delimiter && !atLineEnd()) {
            *error = {firstLine, CsvError::Problem::TextAfterQuote};
            return false;
        }
        return true;
    }

    // Old Mac files end lines with CR alone; those count as line breaks too.
    static int lineBreaksByCrOnly(QStringView piece)
    {
        int count = 0;
        for (qsizetype i = 0; i < piece.size(); ++i) {
            if (piece[i] == u'\r' && (i + 1 >= piece.size() || piece[i + 1] != u'\n'))
                ++count;
        }
        return count;
    }

    QStringView m_text;
    QChar m_delimiter;
    qsizetype m_at = 0;
    int m_line = 1;
    std::vector<CsvRecord> m_records;
};

bool needsQuotes(const QString& field, QChar delimiter)
{
    if (field.isEmpty())
        return false;
    if (field.front().isSpace() || field.back().isSpace())
        return true;
    for (const QChar ch : field) {
        if (ch == delimiter || ch == u'"' || ch == u'\n' || ch == u'\r')
            return true;
    }
    return false;
}

} // namespace

QChar detectDelimiter(QStringView text)
{
    qsizetype end = text.indexOf(u'\n');
    const QStringView first = end < 0 ? text : text.first(end);
    return first.count(u'\t') > first.count(u',') ? QChar(u'\t') : QChar(u',');
}

std::optional<std::vector<CsvRecord>> parse(QStringView text, QChar delimiter, CsvError* error)
{
    return Parser(text, delimiter).run(error);
}

QString line(const QStringList& fields, QChar delimiter)
{
    QString out;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out += delimiter;
        const QString& field = fields[i];
        if (needsQuotes(field, delimiter))
            out += u'"' + QString(field).replace(u'"', QLatin1String("\"\"")) + u'"';
        else
            out += field;
    }
    return out;
}

} // namespace sable::Csv
