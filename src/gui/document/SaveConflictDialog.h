#pragma once

#include <QDialog>

namespace sable {

class ChartMerge;
class MergeConflictModel;

// What a save found: someone else saved since this console read the chart. It shows what changed
// there beside what changed here and the rows changed on both sides, each with its decision, and
// offers to merge (the default), to read the chart again dropping this console's changes, or to
// leave everything as it is.
class SaveConflictDialog final : public QDialog
{
    Q_OBJECT

public:
    enum class Choice
    {
        Merge,
        Reload,
        Cancel,
    };

    SaveConflictDialog(ChartMerge& merge, QWidget* parent = nullptr);

    Choice choice() const { return m_choice; }
    MergeConflictModel* conflictModel() const { return m_conflicts; }

private:
    QWidget* conflictsPane(ChartMerge& merge);

    Choice m_choice = Choice::Cancel;
    MergeConflictModel* m_conflicts = nullptr;
};

} // namespace sable
