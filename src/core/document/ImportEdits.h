#pragma once

#include <optional>

namespace sable {

class CSableManagerDoc;
class EditRecorder;
class ImportPreview;

// What an import did.
struct ImportResult
{
    int added = 0;
    int updated = 0;
    int departments = 0; // created
    int ranks = 0; // added to the rank list
    int removed = 0; // places in departments taken away from users who stay
    int leavers = 0; // users taken out of every department
};

namespace ImportEdits {

// Makes what the preview shows as one step that can be undone, and sets the modified flag: the
// missing ranks at the end of the rank list, the missing departments each as the last child of its
// parent (as "새 부서" would be added), the new users at the end of the member list, the updated
// users' new values and every new place in a department as its last child. Nothing reaches the
// database before the chart is saved. nullopt, and nothing changed, when the preview has nothing to
// apply or the document changed since the preview was made.
std::optional<ImportResult> apply(CSableManagerDoc& doc, const ImportPreview& preview);

// What apply() does, recorded into an edit under way, for a step that changes more than the
// import (the directory sync also records which users it keeps). Places that rows and leavers give
// up are taken away before new ones are made. The preview must be current.
ImportResult record(EditRecorder& edit, const ImportPreview& preview);

} // namespace ImportEdits
} // namespace sable
