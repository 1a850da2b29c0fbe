#include "document/MergeConflictModel.h"

#include "Messages.h"

namespace sable {
namespace {

QString kindText(MergeConflict::Kind kind)
{
    switch (kind) {
    case MergeConflict::Kind::BothChanged:
        return Msg::kConflictBothChanged;
    case MergeConflict::Kind::ChangedHereRemovedThere:
        return Msg::kConflictRemovedThere;
    case MergeConflict::Kind::RemovedHereChangedThere:
        return Msg::kConflictRemovedHere;
    case MergeConflict::Kind::UsedHereRemovedThere:
        return Msg::kConflictUsedHere;
    case MergeConflict::Kind::RemovedHereUsedThere:
        return Msg::kConflictUsedThere;
    case MergeConflict::Kind::OrderChangedBoth:
        break;
    }
    return Msg::kConflictOrder;
}

} // namespace

MergeConflictModel::MergeConflictModel(ChartMerge& merge, QObject* parent)
    : QAbstractTableModel(parent)
    , m_merge(merge)
{ }

int MergeConflictModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_merge.conflicts().size());
}

int MergeConflictModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MergeConflictModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const MergeConflict& conflict = m_merge.conflicts()[static_cast<size_t>(index.row())];
    if (index.column() == ColKeepMine) {
        if (role == Qt::CheckStateRole)
            return conflict.bKeepMine ? Qt::Checked : Qt::Unchecked;
        if (role == Qt::DisplayRole)
            return conflict.bKeepMine ? Msg::kConflictKeepMine : Msg::kConflictKeepTheirs;
        return {};
    }
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    switch (index.column()) {
    case ColTable:
        return ChartNames::table(conflict.table);
    case ColName:
        return conflict.name;
    case ColFields:
        return conflict.fields.isEmpty() ? kindText(conflict.kind) : conflict.fields.join(QStringLiteral(", "));
    case ColMine:
        return conflict.mine;
    case ColTheirs:
        return conflict.theirs;
    default:
        return {};
    }
}

bool MergeConflictModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || index.column() != ColKeepMine || role != Qt::CheckStateRole)
        return false;
    m_merge.conflicts()[static_cast<size_t>(index.row())].bKeepMine = value.toInt() == Qt::Checked;
    Q_EMIT dataChanged(index, index, {Qt::CheckStateRole, Qt::DisplayRole});
    return true;
}

Qt::ItemFlags MergeConflictModel::flags(const QModelIndex& index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.column() == ColKeepMine)
        flags |= Qt::ItemIsUserCheckable;
    return flags;
}

QVariant MergeConflictModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QString headers[ColumnCount] = {Msg::kChangeTableColumn, Msg::kChangeNameColumn, Msg::kChangeFieldsColumn,
        Msg::kConflictMineColumn, Msg::kConflictTheirsColumn, Msg::kConflictKeepColumn};
    return section >= 0 && section < ColumnCount ? headers[section] : QString();
}

void MergeConflictModel::decideAll(bool bKeepMine)
{
    m_merge.decideAll(bKeepMine);
    if (rowCount() > 0)
        Q_EMIT dataChanged(index(0, ColKeepMine), index(rowCount() - 1, ColKeepMine));
}

} // namespace sable
