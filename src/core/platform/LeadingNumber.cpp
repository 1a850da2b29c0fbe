#include "platform/LeadingNumber.h"

#include <limits>

namespace sable::LeadingNumber {
namespace {

int digitValue(QChar ch)
{
    const char16_t c = ch.toLower().unicode();
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'z')
        return c - u'a' + 10;
    return -1;
}

// The blanks and the sign before the digits: where the digits begin, and whether the sign was minus.
qsizetype skipBlanksAndSign(QStringView text, bool* negative)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    *negative = false;
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+'))
        *negative = text[i++] == u'-';
    return i;
}

int baseAt(QStringView text, qsizetype* i)
{
    if (*i + 1 >= text.size() || text[*i] != u'0')
        return 10;
    const QChar marker = text[*i + 1].toLower();
    const int base = marker == u'x' ? 16 : marker == u'o' ? 8 : marker == u'b' ? 2 : 10;
    if (base != 10)
        *i += 2;
    return base;
}

} // namespace

int decimal(QStringView text)
{
    bool negative = false;
    qsizetype i = skipBlanksAndSign(text, &negative);
    constexpr qint64 kLimit = std::numeric_limits<int>::max();
    qint64 value = 0;
    for (; i < text.size() && digitValue(text[i]) >= 0 && digitValue(text[i]) < 10 && value <= kLimit; ++i)
        value = value * 10 + digitValue(text[i]);
    value = qMin(value, kLimit);
    return static_cast<int>(negative ? -value : value);
}

int profileValue(QStringView text)
{
    bool negative = false;
    qsizetype i = skipBlanksAndSign(text, &negative);
    const int base = baseAt(text, &i);
    quint32 value = 0;
    for (; i < text.size(); ++i) {
        const int digit = digitValue(text[i]);
        if (digit < 0 || digit >= base)
            break;
        value = value * static_cast<quint32>(base) + static_cast<quint32>(digit);
    }
    return static_cast<int>(negative ? 0u - value : value);
}

} // namespace sable::LeadingNumber
