#include "document/JsonSliceReader.h"

#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>

namespace sable {
namespace {

constexpr qint64 kChunk = 256 * 1024;

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

// Parses `text` wrapped in brackets, so that any value, not only an object or an array, is a
// document. The error's offset counts from the start of `text`.
QJsonValue parseValue(const QByteArray& text, QJsonParseError* error)
{
    const QJsonDocument document = QJsonDocument::fromJson('[' + text + ']', error);
    error->offset = std::max(0, error->offset - 1);
    return document.array().isEmpty() ? QJsonValue() : document.array().first();
}

} // namespace

JsonSliceReader::JsonSliceReader(QIODevice& in)
    : m_in(in)
{ }

bool JsonSliceReader::fill()
{
    if (m_bEof)
        return false;
    const qsizetype size = m_buffer.size();
    m_buffer.resize(size + kChunk);
    const qint64 got = m_in.read(m_buffer.data() + size, kChunk);
    m_buffer.resize(size + std::max<qint64>(got, 0));
    if (got <= 0) {
        m_bEof = true;
        if (got < 0)
            fail(QStringLiteral("cannot read: %1").arg(m_in.errorString()));
    }
    return got > 0;
}

void JsonSliceReader::dropRead()
{
    // What was read before the current token is not needed again: the buffer holds one element.
    if (m_pos > kChunk) {
        m_buffer.remove(0, m_pos);
        m_dropped += m_pos;
        m_pos = 0;
    }
}

char JsonSliceReader::peek()
{
    while (m_pos >= m_buffer.size()) {
        if (!fill())
            return 0;
    }
    return m_buffer.at(m_pos);
}

bool JsonSliceReader::fail(const QString& problem, qint64 at)
{
    if (m_error.isEmpty())
        m_error = QStringLiteral("not JSON at offset %1: %2").arg(at < 0 ? offset() : at).arg(problem);
    return false;
}

bool JsonSliceReader::skipBlanks()
{
    while (isBlank(peek()))
        ++m_pos;
    return !failed();
}

bool JsonSliceReader::expect(char c)
{
    skipBlanks();
    if (peek() != c)
        return fail(peek() == 0 ? QStringLiteral("unexpected end") : QStringLiteral("expected '%1'").arg(c));
    ++m_pos;
    return true;
}

bool JsonSliceReader::scanString()
{
    ++m_pos; // the opening quote
    for (char c = peek(); c != 0; c = peek()) {
        ++m_pos;
        if (c == '"')
            return true;
        if (c == '\\') {
            if (peek() == 0)
                break;
            ++m_pos;
        }
    }
    return fail(QStringLiteral("unterminated string"));
}

bool JsonSliceReader::scanNested()
{
    // Only the extent is found here: QJsonDocument checks what is inside.
    int depth = 0;
    for (char c = peek(); c != 0; c = peek()) {
        if (c == '"') {
            if (!scanString())
                return false;
            continue;
        }
        ++m_pos;
        if (c == '{' || c == '[')
            ++depth;
        else if ((c == '}' || c == ']') && --depth == 0)
            return true;
    }
    return fail(QStringLiteral("unexpected end"));
}

bool JsonSliceReader::scanScalar()
{
    const qsizetype start = m_pos;
    for (char c = peek(); c != 0 && c != ',' && c != ']' && c != '}' && !isBlank(c); c = peek())
        ++m_pos;
    return m_pos > start || fail(QStringLiteral("expected a value"));
}

bool JsonSliceReader::scanValue()
{
    skipBlanks();
    switch (peek()) {
    case '"':
        return scanString();
    case '{':
    case '[':
        return scanNested();
    case 0:
        return fail(QStringLiteral("unexpected end"));
    default:
        return scanScalar();
    }
}

bool JsonSliceReader::nextOrClose(char close, bool* more)
{
    skipBlanks();
    const char c = peek();
    if (c == ',' || c == close) {
        ++m_pos;
        *more = c == ',';
        return true;
    }
    return fail(c == 0 ? QStringLiteral("unexpected end") : QStringLiteral("expected ',' or '%1'").arg(close));
}

bool JsonSliceReader::beginObject()
{
    return expect('{');
}

bool JsonSliceReader::nextKey(QString* key)
{
    if (m_bObjectDone || failed())
        return false;
    dropRead();
    skipBlanks();
    if (m_bFirstKey && peek() == '}') {
        ++m_pos;
        m_bObjectDone = true;
        return false;
    }
    if (!m_bFirstKey) {
        bool more = false;
        if (!nextOrClose('}', &more) || !more) {
            m_bObjectDone = true;
            return false;
        }
        skipBlanks();
    }
    m_bFirstKey = false;
    const qint64 at = offset();
    if (peek() != '"')
        return fail(QStringLiteral("expected a key"));
    const qsizetype start = m_pos;
    if (!scanString())
        return false;
    QJsonParseError parse;
    *key = parseValue(slice(start), &parse).toString();
    if (parse.error != QJsonParseError::NoError)
        return fail(parse.errorString(), at + parse.offset);
    return expect(':');
}

bool JsonSliceReader::beginArray()
{
    skipBlanks();
    if (peek() != '[')
        return false;
    ++m_pos;
    m_bFirstElement = true;
    return true;
}

bool JsonSliceReader::nextElement(QByteArray* text, qint64* at)
{
    if (failed())
        return false;
    dropRead();
    skipBlanks();
    if (m_bFirstElement && peek() == ']') {
        ++m_pos;
        return false;
    }
    if (!m_bFirstElement) {
        bool more = false;
        if (!nextOrClose(']', &more) || !more)
            return false;
        skipBlanks();
    }
    m_bFirstElement = false;
    *at = offset();
    const qsizetype start = m_pos;
    if (!scanValue())
        return false;
    *text = slice(start);
    return true;
}

bool JsonSliceReader::skipValue()
{
    skipBlanks();
    const qint64 at = offset();
    const qsizetype start = m_pos;
    if (!scanValue())
        return false;
    QJsonParseError parse;
    parseValue(slice(start), &parse);
    return parse.error == QJsonParseError::NoError || fail(parse.errorString(), at + parse.offset);
}

bool JsonSliceReader::atEnd()
{
    skipBlanks();
    return peek() == 0 ? !failed() : fail(QStringLiteral("garbage after the object"));
}

} // namespace sable
