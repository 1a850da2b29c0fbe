#pragma once

#include "document/ImportEdits.h"

#include <QString>

#include <optional>

namespace sable {

class CSableManagerDoc;
class DirectorySyncPreview;

namespace DirectorySyncEdits {

// Makes what the sync preview shows as one step that can be undone, and sets the modified flag:
// the import of the entries, the leavers taken out of every department, and the links of the users
// the directory keeps. Nothing reaches the database before the chart is saved. nullopt, with the
// reason in `refusal` and nothing changed, when the preview is no longer current, has nothing to
// do, or would take more leavers than its threshold allows and `bForce` is not set.
std::optional<ImportResult> apply(
    CSableManagerDoc& doc, const DirectorySyncPreview& preview, bool bForce, QString* refusal);

// The reason a preview may not be applied without force ("... 한도(10%)를 넘어 ..."), or empty.
QString thresholdProblem(const DirectorySyncPreview& preview);

} // namespace DirectorySyncEdits
} // namespace sable
