#include "userimport/DepartmentPaths.h"

namespace sable::DepartmentPaths {
namespace {

constexpr QChar kEscape = u'\\';
constexpr QChar kListSeparator = u';';
constexpr QChar kPathSeparator = u'/';

// Splits at the unescaped `separator`; the pieces keep their escapes unless `unescape`.
QStringList splitAt(QStringView text, QChar separator, bool unescape)
{
    QStringList pieces(1);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch == kEscape && i + 1 < text.size()) {
            if (!unescape)
                pieces.back() += ch;
            pieces.back() += text[++i];
        } else if (ch == separator) {
            pieces.append(QString());
        } else {
            pieces.back() += ch;
        }
    }
    return pieces;
}

QString escaped(const QString& name, const QString& special)
{
    QString out;
    out.reserve(name.size());
    for (const QChar ch : name) {
        if (ch == kEscape || special.contains(ch))
            out += kEscape;
        out += ch;
    }
    return out;
}

} // namespace

QList<QStringList> split(const QString& cell)
{
    QList<QStringList> paths;
    for (const QString& piece : splitAt(cell, kListSeparator, false)) {
        QStringList names;
        for (const QString& name : splitAt(piece, kPathSeparator, true)) {
            const QString trimmed = name.trimmed();
            if (!trimmed.isEmpty())
                names << trimmed;
        }
        if (!names.isEmpty())
            paths << names;
    }
    return paths;
}

QString join(const QList<QStringList>& paths)
{
    QStringList pieces;
    for (const QStringList& names : paths)
        pieces << joinPath(names);
    return pieces.join(kListSeparator);
}

QString joinPath(const QStringList& names)
{
    QStringList escapedNames;
    for (const QString& name : names)
        escapedNames << escaped(name, QStringLiteral("/;"));
    return escapedNames.join(kPathSeparator);
}

QStringList splitRanks(const QString& cell)
{
    if (cell.trimmed().isEmpty())
        return {};
    QStringList names;
    for (const QString& name : splitAt(cell, kListSeparator, true))
        names << name.trimmed();
    return names;
}

QString joinRanks(const QStringList& names)
{
    QStringList pieces;
    for (const QString& name : names)
        pieces << escaped(name, QStringLiteral(";"));
    return pieces.join(kListSeparator);
}

} // namespace sable::DepartmentPaths
