#include "orgchart/MemberListModel.h"

#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "orgchart/OrgTreeModel.h"
#include "widgets/Icons.h"

#include <QBrush>
#include <QMimeData>
#include <QPalette>

#include <set>

namespace sable {

MemberListModel::MemberListModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent)
    , m_doc(doc)
    , m_chart(doc.chart())
{
    m_chart.addListener(this);
}

MemberListModel::~MemberListModel()
{
    m_chart.removeListener(this);
}

int MemberListModel::entryRow() const
{
    return m_chart.memberCount();
}

int MemberListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_chart.memberCount() + 1;
}

int MemberListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : MemberColumnCount;
}

QVariant MemberListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int row = index.row();
    if (isEntryRow(row))
        return role == MemberIdRole ? QVariant(-1) : QVariant();
    const MemberRecord& member = m_chart.member(row);
    const bool faded = !m_chart.hasPlacement(member.K_MemberID);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return MemberColumns::text(member, index.column());
    case Qt::DecorationRole:
        if (index.column() != ColMemberID)
            return {};
        return Icons::member(member.Gender == 0).pixmap(16, 16, faded ? QIcon::Disabled : QIcon::Normal);
    case Qt::ForegroundRole:
        return faded ? QVariant(QBrush(QPalette().color(QPalette::Disabled, QPalette::Text))) : QVariant();
    case MemberIdRole:
        return member.K_MemberID;
    case FadedRole:
        return faded;
    case SearchTextRole: {
        QStringList texts {
            member.MemberID, member.MemberName, member.Email, member.HP, member.OfficePhone, member.HomePhone};
        for (const OrgNode* placement : m_chart.placementsOf(member.K_MemberID))
            texts << m_chart.departmentPath(placement);
        return texts.join(u'\n');
    }
    default:
        return {};
    }
}

QVariant MemberListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return MemberColumns::header(section);
    return section < m_chart.memberCount() ? QVariant(section + 1) : QVariant(QStringLiteral("*"));
}

bool MemberListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    ChartEdits edits(m_doc);
    const QString text = value.toString();
    const EditOutcome outcome = isEntryRow(index.row())
        ? (index.column() == ColMemberID ? edits.addUserByEntry(text.trimmed(), m_bBalloonHelp) : EditOutcome())
        : edits.editCell(index.row(), index.column(), text);
    if (outcome.balloon)
        Q_EMIT balloonRequested(*outcome.balloon);
    return outcome.bChanged;
}

Qt::ItemFlags MemberListModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (isEntryRow(index.row()))
        return index.column() == ColMemberID ? flags | Qt::ItemIsEditable : flags;
    return flags | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
}

QStringList MemberListModel::mimeTypes() const
{
    return {memberDragMimeType()};
}

QMimeData* MemberListModel::mimeData(const QModelIndexList& indexes) const
{
    std::set<int> rows;
    for (const QModelIndex& index : indexes) {
        if (!isEntryRow(index.row()))
            rows.insert(index.row());
    }
    if (rows.empty())
        return nullptr;
    auto* mime = new QMimeData;
    mime->setData(memberDragMimeType(), ChartEdits(m_doc).dragPayload(std::vector<int>(rows.begin(), rows.end())));
    return mime;
}

Qt::DropActions MemberListModel::supportedDragActions() const
{
    return Qt::CopyAction | Qt::MoveAction;
}

// --- Following the chart --------------------------------------------------------------------------

void MemberListModel::chartAboutToReset()
{
    beginResetModel();
}

void MemberListModel::chartReset()
{
    endResetModel();
}

void MemberListModel::membersAboutToBeInserted(int first, int last)
{
    beginInsertRows({}, first, last);
}

void MemberListModel::membersInserted(int, int)
{
    endInsertRows();
}

void MemberListModel::membersAboutToBeRemoved(int first, int last)
{
    beginRemoveRows({}, first, last);
}

void MemberListModel::membersRemoved(int, int)
{
    endRemoveRows();
}

void MemberListModel::memberListAboutToReset()
{
    beginResetModel();
}

void MemberListModel::memberListReset()
{
    endResetModel();
}

void MemberListModel::memberChanged(int row)
{
    Q_EMIT dataChanged(index(row, 0), index(row, MemberColumnCount - 1));
    Q_EMIT headerDataChanged(Qt::Vertical, row, row);
}

} // namespace sable
