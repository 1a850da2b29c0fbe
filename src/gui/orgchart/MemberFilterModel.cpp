#include "orgchart/MemberFilterModel.h"

#include "orgchart/MemberListModel.h"

namespace sable {

MemberFilterModel::MemberFilterModel(QObject* parent)
    : QSortFilterProxyModel(parent)
{
    setDynamicSortFilter(false);
}

void MemberFilterModel::setSearchText(const QString& text)
{
    const QString trimmed = text.trimmed();
    if (trimmed == m_text)
        return;
    m_text = trimmed;
    invalidateRowsFilter();
}

void MemberFilterModel::setOnlyWithoutDepartment(bool on)
{
    if (on == m_bOnlyWithoutDepartment)
        return;
    m_bOnlyWithoutDepartment = on;
    invalidateRowsFilter();
}

bool MemberFilterModel::filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const
{
    if (!isFiltering())
        return true;
    if (sourceRow == sourceModel()->rowCount(sourceParent) - 1)
        return true; // the entry row
    const QModelIndex index = sourceModel()->index(sourceRow, 0, sourceParent);
    if (m_bOnlyWithoutDepartment && !index.data(MemberListModel::FadedRole).toBool())
        return false;
    return m_text.isEmpty()
        || index.data(MemberListModel::SearchTextRole).toString().contains(m_text, Qt::CaseInsensitive);
}

} // namespace sable
