#pragma once

#include "userimport/ImportPreview.h"

#include <QStringList>
#include <QVariant>

namespace sable {

// How a preview of users to take in reads on screen, the same in the import wizard and in the
// directory sync, which reuses the import's preview.
namespace ImportPreviewTexts {

QString fateText(ImportRow::Fate fate);
// The colour of the fate and the reasons; none for a row that stays as it is.
QVariant fateColour(ImportRow::Fate fate);
// Why the row is refused, one text a reason.
QStringList reasons(const ImportRow& row);
// A list of names for a label: a handful, and how many more there are.
QString shortList(const QStringList& names);

} // namespace ImportPreviewTexts
} // namespace sable
