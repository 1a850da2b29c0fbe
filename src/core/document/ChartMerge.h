#pragma once

#include "document/ChartDiff.h"
#include "document/ChartTables.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace sable {

// A row on which this console and the database disagree in a way the merge cannot settle alone.
struct MergeConflict
{
    enum class Kind
    {
        BothChanged, // the same fields changed on both sides, to different values
        ChangedHereRemovedThere, // changed here, removed in the database
        RemovedHereChangedThere, // removed here, changed in the database
        UsedHereRemovedThere, // removed in the database, while rows added or moved here rely on it
        RemovedHereUsedThere, // removed here, while rows added or moved in the database rely on it
        OrderChangedBoth, // both sides put the same list in another order
    };

    ChartTable table = ChartTable::Groups;
    ChartFingerprint::Key key = 0;
    Kind kind = Kind::BothChanged;
    QString name; // the row ("영업부", "김정훈 (jhkim)", ...)
    QStringList fields; // the fields in question (both changed)
    QString mine; // what this console has
    QString theirs; // what the database has
    bool bKeepMine = true; // the decision; this console's side unless the administrator says otherwise
};

// A new row of this console's whose number another writer took meanwhile: it gets the next free one.
struct Renumbering
{
    ChartTable table = ChartTable::Groups;
    QString name;
    int from = 0;
    int to = 0;
};

// The three-way merge of the tables: `base` as this console read them, `mine` as it would write
// them now, `theirs` as the database holds them now. Row by row and by key, a row only one side
// changed takes that side's values, field by field (so a password changed by a user of the
// messenger and a telephone number changed here both stay). Rows changed on both sides in the same
// field, and rows one side removed while the other changed or relied on them, are conflicts for the
// administrator; each starts decided for this console's side. The order of departments, members
// and ranks follows the side that changed it. New identifiers of this console that the database
// holds by now are renumbered above the greatest of both.
class ChartMerge
{
public:
    ChartMerge(ChartFingerprint base, ChartTables mine, std::shared_ptr<const ChartTables> theirs);
    ~ChartMerge();
    ChartMerge(const ChartMerge&) = delete;
    ChartMerge& operator=(const ChartMerge&) = delete;

    // What changed in the database since this console read it, and what this console changed.
    const std::vector<RowChange>& theirChanges() const { return m_theirChanges; }
    const std::vector<RowChange>& myChanges() const { return m_myChanges; }
    const std::vector<Renumbering>& renumbered() const { return m_renumbered; }

    std::vector<MergeConflict>& conflicts() { return m_conflicts; }
    const std::vector<MergeConflict>& conflicts() const { return m_conflicts; }
    void decideAll(bool bKeepMine);

    // The merged tables, with the decisions made on the conflicts. Rows that still rely on a row the
    // decisions removed are left out, and named in `dropped`.
    ChartTables result(QStringList* dropped = nullptr) const;
    // The numbers of the merged ones, for what the document deletes at the next save.
    QList<int> stillDeleted(const QList<int>& deleted, ChartTable table, const ChartTables& merged) const;

    const ChartTables& theirs() const { return *m_theirs; }

private:
    class Engine;
    struct Sides;
    void renumberMine();

    ChartFingerprint m_base;
    ChartTables m_mine;
    std::shared_ptr<const ChartTables> m_theirs;
    std::unique_ptr<const ChartNames> m_names;
    std::unique_ptr<const Sides> m_sides;
    // The pass that found the conflicts, all decided for this console's side: the result under
    // those decisions, the most common ones, is this pass's.
    std::unique_ptr<Engine> m_firstPass;
    QStringList m_firstPassDropped;
    std::vector<RowChange> m_theirChanges;
    std::vector<RowChange> m_myChanges;
    std::vector<Renumbering> m_renumbered;
    std::vector<MergeConflict> m_conflicts;
};

} // namespace sable
