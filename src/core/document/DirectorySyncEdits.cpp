#include "document/DirectorySyncEdits.h"

#include "Messages.h"
#include "directory/DirectorySyncPreview.h"
#include "document/CSableManagerDoc.h"
#include "document/EditRecorder.h"

namespace sable::DirectorySyncEdits {

QString thresholdProblem(const DirectorySyncPreview& preview)
{
    return preview.exceedsThreshold()
        ? Msg::kDirTooManyLeavers.arg(preview.managedCount()).arg(preview.leaverCount()).arg(preview.thresholdPercent())
        : QString();
}

std::optional<ImportResult> apply(
    CSableManagerDoc& doc, const DirectorySyncPreview& preview, bool bForce, QString* refusal)
{
    if (!preview.isCurrent(doc.chart(), doc.ranks(), doc.directoryLinks())) {
        *refusal = Msg::kDirPreviewStale;
        return std::nullopt;
    }
    if (!preview.hasChanges()) {
        *refusal = Msg::kDirNothingToApply;
        return std::nullopt;
    }
    if (const QString problem = thresholdProblem(preview); !problem.isEmpty() && !bForce) {
        *refusal = problem;
        return std::nullopt;
    }
    const ImportPreview& rows = preview.preview();
    EditRecorder edit(doc,
        Msg::kStepDirectorySync.arg(rows.count(ImportRow::Fate::New))
            .arg(rows.count(ImportRow::Fate::Update))
            .arg(preview.leaverCount()));
    const ImportResult result = ImportEdits::record(edit, rows);
    edit.changeDirectoryLinks(preview.linkChanges());
    edit.setModified(true);
    return result;
}

} // namespace sable::DirectorySyncEdits
