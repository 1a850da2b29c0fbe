#include "userimport/ImportPreviewTexts.h"

#include "Messages.h"

#include <QColor>

namespace sable::ImportPreviewTexts {

using Fate = ImportRow::Fate;

QString fateText(Fate fate)
{
    switch (fate) {
    case Fate::New:
        return Msg::kImportFateNew;
    case Fate::Update:
        return Msg::kImportFateUpdate;
    case Fate::Unchanged:
        return Msg::kImportFateUnchanged;
    case Fate::Refused:
        break;
    }
    return Msg::kImportFateRefused;
}

QVariant fateColour(Fate fate)
{
    switch (fate) {
    case Fate::New:
        return QColor(0x1B, 0x7F, 0x37);
    case Fate::Update:
        return QColor(0x1F, 0x4E, 0xB4);
    case Fate::Refused:
        return QColor(0xC0, 0x1C, 0x1C);
    case Fate::Unchanged:
        break;
    }
    return {};
}

QStringList reasons(const ImportRow& row)
{
    QStringList out;
    for (const ImportRefusal& refusal : row.refusals)
        out << refusal.describe();
    return out;
}

QString shortList(const QStringList& names)
{
    constexpr qsizetype kShown = 5;
    const QString shown = names.first(std::min(kShown, names.size())).join(QStringLiteral(", "));
    return names.size() > kShown ? Msg::kImportAndMore.arg(shown).arg(names.size() - kShown) : shown;
}

} // namespace sable::ImportPreviewTexts
