#pragma once

#include <QStringList>

namespace sable {

class CSableManagerDoc;
class ChartMerge;

// The results of a merge or a restore made the document's contents in one step that can be undone.
namespace MergeEdits {

// The merged tables, with the decisions made on the conflicts; what the database holds now becomes
// what the next save compares with. Rows left out because they relied on removed ones go to
// `dropped`.
void applyMerge(CSableManagerDoc& doc, const ChartMerge& merge, QStringList* dropped);

// Replaces the contents with what the database holds now, dropping this console's changes; the
// history starts afresh.
void reload(CSableManagerDoc& doc, const ChartMerge& merge);

} // namespace MergeEdits
} // namespace sable
