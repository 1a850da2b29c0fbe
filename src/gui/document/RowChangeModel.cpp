#include "document/RowChangeModel.h"

#include "Messages.h"
#include "document/ChangeJournal.h"

namespace sable {

RowChangeModel::RowChangeModel(const std::vector<RowChange>& changes, QObject* parent)
    : QAbstractTableModel(parent)
    , m_changes(changes)
{ }

int RowChangeModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_changes.size());
}

int RowChangeModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant RowChangeModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const RowChange& change = m_changes[static_cast<size_t>(index.row())];
    switch (index.column()) {
    case ColTable:
        return ChartNames::table(change.table);
    case ColName:
        return change.name;
    case ColAction:
        return ChangeJournal::actionText(change.kind);
    case ColFields:
        return change.fields.join(QStringLiteral(", "));
    default:
        return {};
    }
}

QVariant RowChangeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString headers[ColumnCount]
        = {Msg::kChangeTableColumn, Msg::kChangeNameColumn, Msg::kChangeActionColumn, Msg::kChangeFieldsColumn};
    return section >= 0 && section < ColumnCount ? headers[section] : QString();
}

} // namespace sable
