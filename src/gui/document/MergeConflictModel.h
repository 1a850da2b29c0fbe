#pragma once

#include "document/ChartMerge.h"

#include <QAbstractTableModel>

namespace sable {

// The conflicts of a merge, each with its decision: the last column is checked while this console's
// side is kept, and clicking it (or Space on it) hands the row to the database's side.
class MergeConflictModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        ColTable,
        ColName,
        ColFields,
        ColMine,
        ColTheirs,
        ColKeepMine,
        ColumnCount
    };

    MergeConflictModel(ChartMerge& merge, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void decideAll(bool bKeepMine);

private:
    ChartMerge& m_merge;
};

} // namespace sable
