#include "directory/DirectoryPreviewModels.h"

#include "Messages.h"
#include "directory/DirectorySyncPreview.h"
#include "orgchart/OrgChart.h"
#include "userimport/ImportPreviewTexts.h"

namespace sable {
using namespace ImportPreviewTexts;

// --- Entries ---------------------------------------------------------------------------------------------

void DirectoryEntriesModel::show(const DirectorySyncPreview* preview, const OrgChart* chart)
{
    beginResetModel();
    m_preview = preview;
    m_chart = chart;
    endResetModel();
}

int DirectoryEntriesModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_preview ? 0 : static_cast<int>(m_preview->preview().rows().size());
}

int DirectoryEntriesModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString DirectoryEntriesModel::departments(int index) const
{
    const ImportPreview& preview = m_preview->preview();
    const ImportRow& row = preview.rows()[static_cast<size_t>(index)];
    QStringList out;
    for (const ImportPlacement& placement : row.placements) {
        const DepartmentTarget& target = preview.departments().at(placement.department);
        if (!target.node || !m_chart->placementIn(target.node, row.member.K_MemberID))
            out << u'+' + preview.departments().path(placement.department);
    }
    for (const OrgNode* department : row.removals)
        out << u'-' + m_chart->departmentPath(department);
    return out.join(QStringLiteral(", "));
}

QVariant DirectoryEntriesModel::data(const QModelIndex& index, int role) const
{
    if (!m_preview || !index.isValid())
        return {};
    const ImportRow& row = m_preview->preview().rows()[static_cast<size_t>(index.row())];
    if (role == Qt::ForegroundRole && (index.column() == FateColumn || index.column() == ReasonColumn))
        return fateColour(row.fate);
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    switch (index.column()) {
    case FateColumn:
        return fateText(row.fate);
    case IdColumn:
        return row.member.MemberID;
    case NameColumn:
        return row.member.MemberName;
    case DepartmentColumn:
        return departments(index.row());
    case ReasonColumn:
        return reasons(row).join(role == Qt::ToolTipRole ? QStringLiteral("\n") : QStringLiteral(" / "));
    case DnColumn:
        return row.origin;
    default:
        return {};
    }
}

QVariant DirectoryEntriesModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case FateColumn:
        return Msg::kImportFateColumn;
    case IdColumn:
        return MemberColumns::header(ColMemberID);
    case NameColumn:
        return MemberColumns::header(ColMemberName);
    case DepartmentColumn:
        return Msg::kImportDepartmentField;
    case ReasonColumn:
        return Msg::kImportReasonColumn;
    case DnColumn:
        return Msg::kDirDnColumn;
    default:
        return {};
    }
}

// --- Leavers ---------------------------------------------------------------------------------------------

void DirectoryLeaversModel::show(const DirectorySyncPreview* preview, const OrgChart* chart)
{
    beginResetModel();
    m_preview = preview;
    m_chart = chart;
    endResetModel();
}

int DirectoryLeaversModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !m_preview ? 0 : m_preview->leaverCount();
}

int DirectoryLeaversModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DirectoryLeaversModel::data(const QModelIndex& index, int role) const
{
    if (!m_preview || !index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const ImportLeaver& leaver = m_preview->preview().leavers()[static_cast<size_t>(index.row())];
    const MemberRecord& member = m_chart->member(leaver.memberRow);
    switch (index.column()) {
    case IdColumn:
        return member.MemberID;
    case NameColumn:
        return member.MemberName;
    case DepartmentColumn: {
        QStringList departments;
        for (const OrgNode* placement : m_chart->placementsOf(member.K_MemberID))
            departments << u'-' + m_chart->departmentPath(placement->parent());
        departments.sort();
        return departments.join(QStringLiteral(", "));
    }
    case ReasonColumn:
        return leaver.why == ImportLeaver::Why::Gone ? Msg::kDirLeaverGone : Msg::kDirLeaverDisabled;
    case DnColumn:
        return leaver.origin;
    default:
        return {};
    }
}

QVariant DirectoryLeaversModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case IdColumn:
        return MemberColumns::header(ColMemberID);
    case NameColumn:
        return MemberColumns::header(ColMemberName);
    case DepartmentColumn:
        return Msg::kImportDepartmentField;
    case ReasonColumn:
        return Msg::kImportReasonColumn;
    case DnColumn:
        return Msg::kDirDnColumn;
    default:
        return {};
    }
}

} // namespace sable
