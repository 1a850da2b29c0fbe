#include "directory/DistinguishedName.h"

#include <algorithm>

namespace sable {
namespace {

bool isHex(QChar ch)
{
    return (ch >= u'0' && ch <= u'9') || (ch >= u'a' && ch <= u'f') || (ch >= u'A' && ch <= u'F');
}

// Reads a DN left to right; every method moves m_at past what it read.
class DnReader
{
public:
    explicit DnReader(const QString& text)
        : m_text(text)
    { }

    std::optional<QList<QList<DnAttribute>>> read()
    {
        QList<QList<DnAttribute>> rdns;
        skipSpaces();
        if (atEnd())
            return rdns;
        for (;;) {
            QList<DnAttribute> rdn;
            for (;;) {
                const std::optional<DnAttribute> attribute = readAttribute();
                if (!attribute)
                    return std::nullopt;
                rdn << *attribute;
                if (atEnd() || m_text[m_at] != u'+')
                    break;
                ++m_at;
            }
            rdns << rdn;
            if (atEnd())
                return rdns;
            if (m_text[m_at] != u',' && m_text[m_at] != u';')
                return std::nullopt;
            ++m_at;
        }
    }

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    void skipSpaces()
    {
        while (!atEnd() && m_text[m_at] == u' ')
            ++m_at;
    }

    std::optional<DnAttribute> readAttribute()
    {
        skipSpaces();
        const qsizetype equals = m_text.indexOf(u'=', m_at);
        if (equals < 0)
            return std::nullopt;
        DnAttribute attribute;
        attribute.type = m_text.mid(m_at, equals - m_at).trimmed();
        if (attribute.type.isEmpty() || attribute.type.contains(u',') || attribute.type.contains(u'+'))
            return std::nullopt;
        m_at = equals + 1;
        skipSpaces();
        const std::optional<QString> value = atEnd() ? QString() : readValue();
        if (!value)
            return std::nullopt;
        attribute.value = *value;
        skipSpaces();
        return attribute;
    }

    std::optional<QString> readValue()
    {
        if (m_text[m_at] == u'"')
            return readQuoted();
        if (m_text[m_at] == u'#') {
            const qsizetype start = m_at++;
            while (!atEnd() && isHex(m_text[m_at]))
                ++m_at;
            return m_text.mid(start, m_at - start);
        }
        // Hex escapes are bytes of UTF-8: consecutive ones make one character together.
        QString value;
        QByteArray bytes;
        qsizetype trailingSpaces = 0; // unescaped spaces at the end are not part of the value
        const auto flush = [&] {
            value += QString::fromUtf8(bytes);
            bytes.clear();
        };
        while (!atEnd()) {
            const QChar ch = m_text[m_at];
            if (ch == u',' || ch == u';' || ch == u'+')
                break;
            trailingSpaces = ch == u' ' ? trailingSpaces + 1 : 0;
            if (ch != u'\\') {
                flush();
                value += ch;
                ++m_at;
                continue;
            }
            if (m_at + 1 >= m_text.size())
                return std::nullopt;
            const QChar next = m_text[m_at + 1];
            if (!isHex(next)) {
                flush();
                value += next;
                m_at += 2;
                continue;
            }
            if (m_at + 2 >= m_text.size() || !isHex(m_text[m_at + 2]))
                return std::nullopt;
            bytes += static_cast<char>(QStringView(m_text).mid(m_at + 1, 2).toInt(nullptr, 16));
            m_at += 3;
        }
        flush();
        value.chop(trailingSpaces);
        return value;
    }

    std::optional<QString> readQuoted()
    {
        QString value;
        for (++m_at; !atEnd(); ++m_at) {
            const QChar ch = m_text[m_at];
            if (ch == u'"') {
                ++m_at;
                return value;
            }
            value += ch == u'\\' && m_at + 1 < m_text.size() ? m_text[++m_at] : ch;
        }
        return std::nullopt;
    }

    const QString& m_text;
    qsizetype m_at = 0;
};

} // namespace

std::optional<DistinguishedName> DistinguishedName::parse(const QString& text)
{
    std::optional<QList<QList<DnAttribute>>> rdns = DnReader(text).read();
    if (!rdns)
        return std::nullopt;
    DistinguishedName dn;
    dn.m_rdns = std::move(*rdns);
    return dn;
}

QString DistinguishedName::key(const QList<DnAttribute>& rdn)
{
    QStringList parts;
    for (const DnAttribute& attribute : rdn)
        parts << attribute.type.toCaseFolded() + u'=' + attribute.value.simplified().toCaseFolded();
    parts.sort();
    return parts.join(u'+');
}

bool DistinguishedName::isWithin(const DistinguishedName& base) const
{
    const qsizetype extra = m_rdns.size() - base.m_rdns.size();
    if (extra < 0)
        return false;
    for (qsizetype i = 0; i < base.m_rdns.size(); ++i) {
        if (key(m_rdns[extra + i]) != key(base.m_rdns[i]))
            return false;
    }
    return true;
}

QStringList DistinguishedName::organisationalUnitsBelow(const DistinguishedName& base) const
{
    QStringList units;
    const qsizetype below = m_rdns.size() - base.m_rdns.size();
    for (qsizetype i = below - 1; i >= 0; --i) {
        for (const DnAttribute& attribute : m_rdns[i]) {
            if (attribute.type.compare(QLatin1String("ou"), Qt::CaseInsensitive) == 0) {
                units << attribute.value;
                break;
            }
        }
    }
    return units;
}

QString DistinguishedName::leafValue() const
{
    return m_rdns.isEmpty() || m_rdns.first().isEmpty() ? QString() : m_rdns.first().first().value;
}

} // namespace sable
