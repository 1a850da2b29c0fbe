#include "userimport/FileText.h"

#include "platform/CodePage949.h"

#include <QList>
#include <QStringDecoder>

namespace sable::FileText {
namespace {

const QByteArray kUtf8Bom("\xEF\xBB\xBF");
constexpr qsizetype kUtf8Majority = 4;

bool hasUtf16Bom(const QByteArray& bytes)
{
    return bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
}

// The length of the well-formed UTF-8 sequence at `i` (1 for ASCII), or 0 when the byte there starts none.
int sequenceAt(const unsigned char* data, qsizetype size, qsizetype i)
{
    const unsigned char lead = data[i];
    int length = 0;
    unsigned minimum = 0;
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2, minimum = 0x80;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3, minimum = 0x800;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4, minimum = 0x10000;
    else
        return 0;
    if (i + length > size)
        return 0;
    unsigned codePoint = lead & (0x7F >> length);
    for (int k = 1; k < length; ++k) {
        if ((data[i + k] & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (data[i + k] & 0x3F);
    }
    const bool surrogate = codePoint >= 0xD800 && codePoint < 0xE000;
    return codePoint < minimum || codePoint > 0x10FFFF || surrogate ? 0 : length;
}

// How the bytes read as UTF-8: the first byte that starts no well-formed sequence, how many such
// bytes there are and how many well-formed sequences of more than one byte.
struct Utf8Census
{
    qsizetype firstBad = -1;
    qsizetype bad = 0;
    qsizetype multiByte = 0;
};

Utf8Census utf8Census(const QByteArray& bytes, bool stopAtFirstBad)
{
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.constData());
    const qsizetype size = bytes.size();
    Utf8Census census;
    for (qsizetype i = 0; i < size;) {
        const int length = sequenceAt(data, size, i);
        if (length == 0) {
            if (census.firstBad < 0)
                census.firstBad = i;
            ++census.bad;
            if (stopAtFirstBad)
                break;
            ++i;
            continue;
        }
        census.multiByte += length > 1 ? 1 : 0;
        i += length;
    }
    return census;
}

int lineAt(const QByteArray& bytes, qsizetype offset)
{
    return static_cast<int>(QByteArrayView(bytes).first(offset).count('\n')) + 1;
}

// The code page converts the whole text or nothing; the bad line is found only after a failure.
int firstUndecodableCp949Line(const QByteArray& bytes)
{
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        if (!CodePage949::decode(lines[i]))
            return static_cast<int>(i) + 1;
    }
    return 1;
}

std::optional<QString> decodeUtf16(const QByteArray& bytes, int* badLine)
{
    QStringDecoder decoder(QStringConverter::Utf16);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        const qsizetype bad = text.indexOf(QChar::ReplacementCharacter);
        *badLine = static_cast<int>(QStringView(text).first(std::max<qsizetype>(bad, 0)).count(u'\n')) + 1;
        return std::nullopt;
    }
    if (text.startsWith(QChar::ByteOrderMark))
        text.remove(0, 1);
    return text;
}

} // namespace

FileEncoding detect(const QByteArray& bytes)
{
    if (bytes.startsWith(kUtf8Bom))
        return FileEncoding::Utf8;
    if (hasUtf16Bom(bytes))
        return FileEncoding::Utf16;
    // Text of the code page holds few well-formed UTF-8 sequences among many bytes that start none;
    // a UTF-8 file damaged in a place or two is the other way round, and is reported as UTF-8 at
    // the line of its first bad byte instead of as code-page text that fails somewhere else.
    const Utf8Census census = utf8Census(bytes, false);
    if (census.bad == 0 || census.multiByte >= kUtf8Majority * census.bad)
        return FileEncoding::Utf8;
    if (CodePage949::decode(bytes))
        return FileEncoding::Cp949;
    // Bad in both: the encoding that reads further is the file's, and its error names the line
    // that is damaged (the other one fails at the first line with any Korean in it).
    return lineAt(bytes, census.firstBad) > firstUndecodableCp949Line(bytes) ? FileEncoding::Utf8 : FileEncoding::Cp949;
}

std::optional<QString> decode(const QByteArray& bytes, FileEncoding encoding, int* badLine)
{
    *badLine = 0;
    switch (encoding) {
    case FileEncoding::Utf8: {
        const QByteArray body = bytes.startsWith(kUtf8Bom) ? bytes.mid(kUtf8Bom.size()) : bytes;
        const qsizetype bad = utf8Census(body, true).firstBad;
        if (bad >= 0) {
            *badLine = lineAt(body, bad);
            return std::nullopt;
        }
        return QString::fromUtf8(body);
    }
    case FileEncoding::Cp949: {
        auto text = CodePage949::decode(bytes);
        if (!text)
            *badLine = firstUndecodableCp949Line(bytes);
        return text;
    }
    case FileEncoding::Utf16:
        return decodeUtf16(bytes, badLine);
    }
    return std::nullopt;
}

QString encodingName(FileEncoding encoding)
{
    switch (encoding) {
    case FileEncoding::Utf8:
        return QStringLiteral("UTF-8");
    case FileEncoding::Cp949:
        return QStringLiteral("CP949");
    case FileEncoding::Utf16:
        return QStringLiteral("UTF-16");
    }
    return {};
}

} // namespace sable::FileText
