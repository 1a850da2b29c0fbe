#include "orgchart/RankModels.h"

#include "Messages.h"
#include "document/CSableManagerDoc.h"
#include "document/RankEdits.h"
#include "widgets/Heading.h"
#include "widgets/Icons.h"

#include <QFont>

namespace sable {
namespace {

constexpr quintptr kRootId = 0;

} // namespace

// --- RankTreeModel --------------------------------------------------------------------------------

RankTreeModel::RankTreeModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractItemModel(parent)
    , m_doc(doc)
{
    // Queued: a rename announces the change from inside setData(), while the view still edits.
    connect(
        &doc, &CSableManagerDoc::rankListChanged, this,
        [this] {
            beginResetModel();
            endResetModel();
        },
        Qt::QueuedConnection);
}

int RankTreeModel::rankAt(const QModelIndex& index) const
{
    return index.isValid() && index.internalId() != kRootId ? index.row() : -1;
}

QModelIndex RankTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    if (column != 0)
        return {};
    if (!parent.isValid())
        return row == 0 ? createIndex(0, 0, kRootId) : QModelIndex();
    if (parent.internalId() != kRootId || row < 0 || row >= m_doc.ranks().count())
        return {};
    return createIndex(row, 0, quintptr(row) + 1);
}

QModelIndex RankTreeModel::parent(const QModelIndex& child) const
{
    return child.isValid() && child.internalId() != kRootId ? rootIndex() : QModelIndex();
}

int RankTreeModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return 1;
    return parent.internalId() == kRootId ? m_doc.ranks().count() : 0;
}

int RankTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

QVariant RankTreeModel::data(const QModelIndex& index, int role) const
{
    const int rank = rankAt(index);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return rank < 0 ? Msg::kRankTreeRoot : m_doc.ranks().at(rank).RankName;
    case Qt::DecorationRole:
        return rank < 0 ? Icons::navigation("ranks") : Icons::rank();
    case Qt::FontRole: {
        if (rank >= 0)
            return {};
        return boldFont();
    }
    default:
        return {};
    }
}

bool RankTreeModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    const int rank = rankAt(index);
    if (role != Qt::EditRole || rank < 0)
        return false;
    const EditOutcome outcome = RankEdits(m_doc).renameRank(rank, value.toString().trimmed());
    if (!outcome.message.isEmpty())
        Q_EMIT messageRequested(outcome.message);
    return outcome.bChanged;
}

Qt::ItemFlags RankTreeModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return rankAt(index) < 0 ? flags : flags | Qt::ItemIsEditable | Qt::ItemNeverHasChildren;
}

// --- MembershipRankModel ------------------------------------------------------------------------------

MembershipRankModel::MembershipRankModel(CSableManagerDoc& doc, QObject* parent)
    : QAbstractTableModel(parent)
    , m_doc(doc)
    , m_paths(doc.chart())
{
    m_rebuild.setSingleShot(true);
    m_rebuild.setInterval(0);
    connect(&m_rebuild, &QTimer::timeout, this, &MembershipRankModel::rebuild);
    connect(&doc, &CSableManagerDoc::rankListChanged, &m_rebuild, qOverload<>(&QTimer::start));
    doc.chart().addListener(this);
    rebuild();
}

MembershipRankModel::~MembershipRankModel()
{
    m_doc.chart().removeListener(this);
}

OrgNode* MembershipRankModel::placementAt(int row) const
{
    return row >= 0 && row < static_cast<int>(m_rows.size()) ? m_rows[static_cast<size_t>(row)] : nullptr;
}

QStringList MembershipRankModel::rankOptions() const
{
    QStringList options;
    for (const RankRecord& rank : m_doc.ranks().ranks())
        options << rank.RankName;
    return options << Msg::kNoRank;
}

void MembershipRankModel::rebuild()
{
    m_rebuild.stop();
    // Ranks that name no rank of the list become no rank, as the list shows them.
    RankEdits(m_doc).clearUnknownRanks();
    beginResetModel();
    m_rows.clear();
    m_rowOf.clear();
    m_rows.reserve(static_cast<size_t>(m_doc.chart().placementCount()));
    // Hangul, digits and signs have no case: looking for them exactly finds the same, faster.
    const Qt::CaseSensitivity cs
        = m_search.toLower() == m_search && m_search.toUpper() == m_search ? Qt::CaseSensitive : Qt::CaseInsensitive;
    m_doc.chart().forEachPlacement([this, cs](OrgNode* placement) {
        if (!m_search.isEmpty() && !matches(placement, cs))
            return;
        m_rowOf.insert(placement, static_cast<int>(m_rows.size()));
        m_rows.push_back(placement);
    });
    endResetModel();
}

void MembershipRankModel::setSearchText(const QString& text)
{
    if (text.trimmed() == m_search)
        return;
    m_search = text.trimmed();
    rebuild();
}

bool MembershipRankModel::matches(const OrgNode* placement, Qt::CaseSensitivity cs) const
{
    const MemberRecord* member = m_doc.chart().findMember(placement->memberId());
    return (member && (member->MemberID.contains(m_search, cs) || member->MemberName.contains(m_search, cs)))
        || m_paths.pathOf(placement).contains(m_search, cs)
        || m_doc.ranks().nameOf(placement->rankId()).contains(m_search, cs);
}

int MembershipRankModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int MembershipRankModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant MembershipRankModel::data(const QModelIndex& index, int role) const
{
    const OrgNode* placement = placementAt(index.row());
    if (!placement || (role != Qt::DisplayRole && role != Qt::EditRole))
        return {};
    const OrgChart& chart = m_doc.chart();
    switch (index.column()) {
    case ColLoginId: {
        const MemberRecord* member = chart.findMember(placement->memberId());
        return member ? member->MemberID : QString();
    }
    case ColDepartment:
        return m_paths.pathOf(placement);
    case ColRank:
        return m_doc.ranks().nameOf(placement->rankId());
    default:
        return {};
    }
}

QVariant MembershipRankModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case ColLoginId:
        return MemberColumns::header(ColMemberID);
    case ColDepartment:
        return Msg::kRankGridDepartment;
    case ColRank:
        return Msg::kRankTreeRoot;
    default:
        return {};
    }
}

bool MembershipRankModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    OrgNode* placement = placementAt(index.row());
    if (!placement || role != Qt::EditRole || index.column() != ColRank)
        return false;
    const int option = rankOptions().indexOf(value.toString());
    return option >= 0 && RankEdits(m_doc).setMembershipRank(placement, option).bChanged;
}

Qt::ItemFlags MembershipRankModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return index.column() == ColRank ? flags | Qt::ItemIsEditable : flags;
}

void MembershipRankModel::nodeChanged(const OrgNode* node)
{
    // A rank or a department's name changed: what the search finds may have changed with it.
    if (!m_search.isEmpty())
        m_rebuild.start();
    if (node->isGroup() && !m_rows.empty()) {
        Q_EMIT dataChanged(index(0, ColDepartment), index(static_cast<int>(m_rows.size()) - 1, ColDepartment));
        return;
    }
    const int row = m_rowOf.value(node, -1);
    if (row >= 0)
        Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

void MembershipRankModel::membersChanged(const std::vector<int>&)
{
    memberChanged(0);
}

void MembershipRankModel::memberChanged(int)
{
    if (!m_search.isEmpty())
        m_rebuild.start();
    // A login ID changed somewhere; the rows show it on their next paint.
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0, ColLoginId), index(static_cast<int>(m_rows.size()) - 1, ColLoginId));
}

} // namespace sable
