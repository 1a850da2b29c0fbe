#pragma once

#include <QAbstractTableModel>

namespace sable {

class DirectorySyncPreview;
class OrgChart;

// The entries of a sync preview, one row each: fate, login ID, name, the places it adds (+) and
// takes away (-), the reasons of a refusal and the entry's DN.
class DirectoryEntriesModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        FateColumn,
        IdColumn,
        NameColumn,
        DepartmentColumn,
        ReasonColumn,
        DnColumn,
        ColumnCount
    };

    using QAbstractTableModel::QAbstractTableModel;

    // Shows `preview` over `chart` (both must outlive the showing); nullptr shows nothing.
    void show(const DirectorySyncPreview* preview, const OrgChart* chart);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QString departments(int row) const;

    const DirectorySyncPreview* m_preview = nullptr;
    const OrgChart* m_chart = nullptr;
};

// The leavers of a sync preview: login ID, name, the departments they leave, why, and the DN.
class DirectoryLeaversModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        IdColumn,
        NameColumn,
        DepartmentColumn,
        ReasonColumn,
        DnColumn,
        ColumnCount
    };

    using QAbstractTableModel::QAbstractTableModel;

    void show(const DirectorySyncPreview* preview, const OrgChart* chart);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    const DirectorySyncPreview* m_preview = nullptr;
    const OrgChart* m_chart = nullptr;
};

} // namespace sable
