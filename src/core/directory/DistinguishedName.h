#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace sable {

// One attribute of a relative distinguished name: "ou=영업부" is type "ou", value "영업부".
struct DnAttribute
{
    QString type;
    QString value;
};

// A DN in the string form of LDAP ("uid=kim,ou=영업부,dc=example,dc=org"), parsed: the RDNs from
// the entry up to the root, each with its attributes (several only in a multi-valued RDN joined
// by '+'). Escapes are undone: "\," "\+" and the other specials, "\2C" hex pairs (bytes of UTF-8,
// so Hangul may arrive either way), quoted values of the older form, and "#..." hex values are
// kept as written.
class DistinguishedName
{
public:
    // nullopt when the text is not a DN.
    static std::optional<DistinguishedName> parse(const QString& text);

    const QList<QList<DnAttribute>>& rdns() const { return m_rdns; }
    bool isEmpty() const { return m_rdns.isEmpty(); }

    // Whether this DN is `base` or lies below it; types and values compare as directories compare
    // names, without regard to case.
    bool isWithin(const DistinguishedName& base) const;

    // The values of the "ou" RDNs of this DN below `base`, from the top down; RDNs of other types
    // (an entry's own "cn" or "uid", containers such as "cn=Users") are left out.
    QStringList organisationalUnitsBelow(const DistinguishedName& base) const;

    // The value of the first RDN (the entry's own name): "영업부" for "ou=영업부,dc=example".
    QString leafValue() const;

private:
    static QString key(const QList<DnAttribute>& rdn);

    QList<QList<DnAttribute>> m_rdns;
};

} // namespace sable
