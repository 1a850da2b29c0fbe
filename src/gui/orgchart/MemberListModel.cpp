#include "orgchart/MemberListModel.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "orgchart/OrgTreeModel.h"
#include "widgets/Icons.h"

#include <QBrush>
#include <QMimeData>
#include <QPalette>

#include <set>

namespace sable {
namespace {

// Beyond this many ranges of rows a change of the rows shown is announced as a reset: a view
// follows each range in time proportional to the whole list.
constexpr size_t kMaxViewRanges = 8;
// Beyond this many placements changed at once the departments column is redrawn whole.
constexpr size_t kMaxSeparateCells = 64;

std::vector<int> rowsFrom(int first, int last)
{
    std::vector<int> rows;
    for (int row = first; row <= last; ++row)
        rows.push_back(row);
    return rows;
}

} // namespace

MemberListModel::MemberListModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent)
    , m_doc(doc)
    , m_chart(doc.chart())
    , m_paths(doc.chart())
    , m_rows(doc.chart(), m_paths)
{
    m_chart.addListener(this);
    // Once the edit is done: an edit may change a row several times, and it is looked at once.
    m_refilter.setSingleShot(true);
    m_refilter.setInterval(0);
    connect(&m_refilter, &QTimer::timeout, this, &MemberListModel::reapplyFilter);
}

MemberListModel::~MemberListModel()
{
    m_chart.removeListener(this);
}

int MemberListModel::memberRow(int row) const
{
    if (row == entryRow())
        return m_chart.memberCount();
    return row >= 0 && row < m_rows.count() ? m_rows.memberRow(row) : -1;
}

int MemberListModel::rowOfMember(int memberRow) const
{
    if (memberRow == m_chart.memberCount())
        return entryRow();
    return m_rows.shownRow(memberRow);
}

int MemberListModel::memberCount() const
{
    return m_chart.memberCount();
}

int MemberListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_rows.count() + 1;
}

int MemberListModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : MemberColumnCount + 1;
}

QVariant MemberListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (isEntryRow(index.row()))
        return role == MemberIdRole ? QVariant(-1) : QVariant();
    const MemberRecord& member = m_chart.member(m_rows.memberRow(index.row()));
    const int column = index.column();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return column == kDepartmentsColumn ? m_paths.departmentsOf(member.K_MemberID)
                                            : MemberColumns::text(member, column);
    case Qt::DecorationRole:
        if (column != ColMemberID)
            return {};
        return Icons::member(member.Gender == 0)
            .pixmap(16, 16, m_chart.hasPlacement(member.K_MemberID) ? QIcon::Normal : QIcon::Disabled);
    case Qt::ForegroundRole:
        return m_chart.hasPlacement(member.K_MemberID)
            ? QVariant()
            : QVariant(QBrush(QPalette().color(QPalette::Disabled, QPalette::Text)));
    case MemberIdRole:
        return member.K_MemberID;
    case FadedRole:
        return !m_chart.hasPlacement(member.K_MemberID);
    case SearchTextRole:
        return QStringList {member.MemberID, member.MemberName, member.Email, member.HP, member.OfficePhone,
            member.HomePhone, m_paths.departmentsOf(member.K_MemberID)}
            .join(u'\n');
    default:
        return {};
    }
}

QVariant MemberListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal)
        return section == kDepartmentsColumn ? Msg::kDepartmentsColumn : MemberColumns::header(section);
    // A member keeps its number in the list, however the rows are sorted or searched.
    return section < m_rows.count() ? QVariant(m_rows.memberRow(section) + 1) : QVariant(QStringLiteral("*"));
}

bool MemberListModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    ChartEdits edits(m_doc);
    const QString text = value.toString();
    EditOutcome outcome;
    if (isEntryRow(index.row())) {
        if (index.column() == ColMemberID) {
            m_bAddingByEntry = true;
            outcome = edits.addUserByEntry(text.trimmed(), m_bBalloonHelp);
            m_bAddingByEntry = false;
        }
    } else if (index.column() != kDepartmentsColumn) {
        outcome = edits.editCell(memberRow(index.row()), index.column(), text);
    }
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
    flags |= Qt::ItemIsDragEnabled;
    return index.column() == kDepartmentsColumn ? flags : flags | Qt::ItemIsEditable;
}

void MemberListModel::sort(int column, Qt::SortOrder order)
{
    Q_EMIT layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<int> members;
    members.reserve(static_cast<size_t>(before.size()));
    for (const QModelIndex& index : before)
        members.push_back(memberRow(index.row()));
    m_rows.sortBy(column, order);
    QModelIndexList after;
    after.reserve(before.size());
    for (qsizetype i = 0; i < before.size(); ++i) {
        const int row = rowOfMember(members[static_cast<size_t>(i)]);
        after << (row >= 0 ? index(row, before[i].column()) : QModelIndex());
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, QAbstractItemModel::VerticalSortHint);
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
            rows.insert(memberRow(index.row()));
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

// --- The search --------------------------------------------------------------------------------------

void MemberListModel::setSearchText(const QString& text)
{
    MemberListRows::Filter filter = m_rows.filter();
    filter.text = text.trimmed();
    setFilter(std::move(filter));
}

void MemberListModel::setOnlyWithoutDepartment(bool on)
{
    MemberListRows::Filter filter = m_rows.filter();
    filter.bOnlyWithoutDepartment = on;
    setFilter(std::move(filter));
}

void MemberListModel::setFilter(MemberListRows::Filter filter)
{
    if (filter == m_rows.filter())
        return;
    std::vector<int> target = m_rows.rowsFor(filter, m_changedIds.isEmpty() && !m_bAllChanged);
    m_changedIds.clear();
    m_bAllChanged = false;
    m_refilter.stop();
    m_rows.setFilter(std::move(filter));
    showTarget(target);
}

void MemberListModel::reapplyFilter()
{
    m_refilter.stop();
    const QSet<int> ids = std::exchange(m_changedIds, {});
    if (std::exchange(m_bAllChanged, false) && m_rows.filter().isActive()) {
        showTarget(m_rows.rowsFor(m_rows.filter()));
        return;
    }
    if (!m_rows.filter().isActive() || ids.isEmpty())
        return;
    std::vector<int> rows;
    for (const int id : ids) {
        const int row = m_chart.rowOf(id);
        if (row >= 0)
            rows.push_back(row);
    }
    showTarget(m_rows.rowsAfterChanges(rows));
}

void MemberListModel::showTarget(const std::vector<int>& target)
{
    const MemberListRows::Diff diff = m_rows.diff(target);
    if (diff.rangeCount() == 0)
        return;
    if (diff.rangeCount() <= kMaxViewRanges) {
        for (const auto& [first, last] : diff.removed) {
            beginRemoveRows({}, first, last);
            m_rows.eraseShown(first, last);
            endRemoveRows();
        }
        for (const auto& [first, last] : diff.inserted) {
            beginInsertRows({}, first, last);
            m_rows.insertShown(first, std::vector<int>(target.begin() + first, target.begin() + last + 1));
            endInsertRows();
        }
    } else {
        beginResetModel();
        m_rows.setShown(target);
        endResetModel();
    }
    Q_EMIT shownRowsChanged();
}

void MemberListModel::markChanged(const std::vector<int>& memberIds)
{
    if (!m_rows.filter().isActive() || memberIds.empty() || m_bAllChanged)
        return;
    if (static_cast<int>(memberIds.size() + m_changedIds.size()) > m_chart.memberCount() / 4) {
        m_bAllChanged = true;
        m_changedIds.clear();
    } else {
        for (const int id : memberIds)
            m_changedIds.insert(id);
    }
    m_refilter.start();
}

void MemberListModel::departmentsShownChanged()
{
    if (m_rows.count() > 0)
        Q_EMIT dataChanged(index(0, kDepartmentsColumn), index(m_rows.count() - 1, kDepartmentsColumn));
}

// --- Following the chart --------------------------------------------------------------------------

void MemberListModel::chartAboutToReset()
{
    beginResetModel();
}

void MemberListModel::chartReset()
{
    m_changedIds.clear();
    m_bAllChanged = false;
    m_rows.reset();
    endResetModel();
    Q_EMIT shownRowsChanged();
}

void MemberListModel::memberListAboutToReset()
{
    beginResetModel();
}

void MemberListModel::memberListReset()
{
    m_rows.reset();
    endResetModel();
    Q_EMIT shownRowsChanged();
}

void MemberListModel::membersInserted(int first, int last)
{
    membersInsertedAt(rowsFrom(first, last));
}

void MemberListModel::membersInsertedAt(const std::vector<int>& rows)
{
    m_rows.membersInserted(rows);
    if (m_bAddingByEntry) {
        for (const int row : rows)
            m_rows.pin(m_chart.member(row).K_MemberID);
    }
    showTarget(m_rows.rowsAfterChanges(rows));
    Q_EMIT shownRowsChanged();
}

void MemberListModel::membersAboutToBeRemoved(int first, int last)
{
    removeShown(rowsFrom(first, last));
}

void MemberListModel::membersAboutToBeRemovedAt(const std::vector<int>& rows)
{
    removeShown(rows);
}

void MemberListModel::removeShown(const std::vector<int>& memberRows)
{
    const std::vector<int> shown = m_rows.shownRowsOf(memberRows);
    std::vector<std::pair<int, int>> ranges;
    for (const int row : shown) {
        if (!ranges.empty() && ranges.back().second + 1 == row)
            ranges.back().second = row;
        else
            ranges.emplace_back(row, row);
    }
    if (ranges.size() <= kMaxViewRanges) {
        for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
            beginRemoveRows({}, range->first, range->second);
            m_rows.eraseShown(range->first, range->second);
            endRemoveRows();
        }
        return;
    }
    beginResetModel();
    m_bResetting = true;
    std::vector<int> kept;
    kept.reserve(static_cast<size_t>(m_rows.count()) - shown.size());
    auto next = shown.begin();
    for (int row = 0; row < m_rows.count(); ++row) {
        if (next != shown.end() && *next == row)
            ++next;
        else
            kept.push_back(m_rows.memberRow(row));
    }
    m_rows.setShown(std::move(kept));
}

void MemberListModel::membersRemoved(int first, int last)
{
    membersRemovedAt(rowsFrom(first, last));
}

void MemberListModel::membersRemovedAt(const std::vector<int>& rows)
{
    m_rows.membersRemoved(rows);
    if (std::exchange(m_bResetting, false))
        endResetModel();
    Q_EMIT shownRowsChanged();
}

void MemberListModel::memberChanged(int row)
{
    const int shown = m_rows.shownRow(row);
    if (shown >= 0)
        Q_EMIT dataChanged(index(shown, 0), index(shown, MemberColumnCount));
    markChanged({m_chart.member(row).K_MemberID});
}

void MemberListModel::membersChanged(const std::vector<int>& rows)
{
    if (m_rows.count() > 0)
        Q_EMIT dataChanged(index(0, 0), index(m_rows.count() - 1, MemberColumnCount));
    std::vector<int> ids;
    ids.reserve(rows.size());
    for (const int row : rows)
        ids.push_back(m_chart.member(row).K_MemberID);
    markChanged(ids);
}

void MemberListModel::placementsChanged(const std::vector<const OrgNode*>& nodes)
{
    std::vector<int> ids;
    bool bDepartments = false;
    std::vector<const OrgNode*> pending(nodes.begin(), nodes.end());
    while (!pending.empty()) {
        const OrgNode* node = pending.back();
        pending.pop_back();
        if (node->isMember()) {
            ids.push_back(node->memberId());
            continue;
        }
        bDepartments = true;
        for (int i = 0; i < node->childCount(); ++i)
            pending.push_back(node->child(i));
    }
    if (bDepartments || ids.size() > kMaxSeparateCells) {
        departmentsShownChanged();
    } else {
        for (const int id : ids) {
            const int shown = m_rows.shownRow(m_chart.rowOf(id));
            if (shown >= 0)
                Q_EMIT dataChanged(index(shown, kDepartmentsColumn), index(shown, kDepartmentsColumn));
        }
    }
    markChanged(ids);
}

void MemberListModel::nodesInserted(const OrgNode* parent, int first, int last)
{
    std::vector<const OrgNode*> nodes;
    for (int i = first; i <= last; ++i)
        nodes.push_back(parent->child(i));
    placementsChanged(nodes);
}

void MemberListModel::nodesAboutToBeRemoved(const OrgNode* parent, int first, int last)
{
    nodesInserted(parent, first, last);
}

void MemberListModel::nodeReparented(const OrgNode*, int, const OrgNode* newParent, int to)
{
    placementsChanged({newParent->child(to)});
}

void MemberListModel::treeRestructured(const std::vector<const OrgNode*>& nodes)
{
    placementsChanged(nodes);
}

void MemberListModel::nodeChanged(const OrgNode* node)
{
    // A department renamed changes the paths below it; a member node changes only its rank.
    if (node->isGroup())
        placementsChanged({node});
}

} // namespace sable
