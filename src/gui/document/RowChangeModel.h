#pragma once

#include "document/ChartDiff.h"

#include <QAbstractTableModel>

#include <vector>

namespace sable {

// The rows one side of a merge changed, as a list: what kind of row, which one, what happened to it
// and which fields changed.
class RowChangeModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        ColTable,
        ColName,
        ColAction,
        ColFields,
        ColumnCount
    };

    RowChangeModel(const std::vector<RowChange>& changes, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const std::vector<RowChange>& m_changes;
};

} // namespace sable
