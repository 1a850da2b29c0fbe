#pragma once

#include "orgchart/ChartStore.h"

#include <QSet>
#include <QStringList>

namespace sable {

class CSableManagerDoc;
class ChartMerge;
struct RestorePoint;

// The results of a merge or a restore made the document's contents in one step that can be undone.
namespace MergeEdits {

// The merged tables, with the decisions made on the conflicts; what the database holds now becomes
// what the next save compares with. Rows left out because they relied on removed ones go to
// `dropped`.
void applyMerge(CSableManagerDoc& doc, const ChartMerge& merge, QStringList* dropped);

// The point's chart in place of the document's, as one step: what the database held when the
// document read it stays what the next save compares with, every user and department the point
// does not have is deleted by that save, and the per-user rows of the users it brings back are put
// back with them. Unsaved edits are replaced too (the step undoes that).
void applyRestore(CSableManagerDoc& doc, const RestorePoint& point);

// Of `rows`, those of users who return (`returning`) and name nobody missing from `present`, each
// once: what a restore puts back without duplicating a row the database still holds.
UserData rowsToPutBack(const UserData& rows, const QSet<int>& returning, const QSet<int>& present);

// Replaces the contents with what the database holds now, dropping this console's changes; the
// history starts afresh.
void reload(CSableManagerDoc& doc, const ChartMerge& merge);

} // namespace MergeEdits
} // namespace sable
