#include "document/CSableManagerDoc.h"

#include "document/ChartTables.h"

namespace sable {

CSableManagerDoc::CSableManagerDoc(QObject* parent)
    : QObject(parent)
{ }

CSableManagerDoc::~CSableManagerDoc() = default;

void CSableManagerDoc::setModified(bool modified)
{
    if (m_bModified == modified)
        return;
    m_bModified = modified;
    Q_EMIT modifiedChanged(modified);
}

void CSableManagerDoc::adopt(ChartContents contents)
{
    m_chart.swapContents(*contents.chart);
    m_ranks = std::move(contents.ranks);
    m_fileBox = std::move(contents.fileBox);
    m_directoryLinks = std::move(contents.directoryLinks);
    m_deletedMembers.clear();
    m_deletedGroups.clear();
    m_pendingUserData.clear();
    m_history.clear();
    m_base = std::move(contents.stored);
    setModified(false);
    Q_EMIT rankListChanged();
    Q_EMIT fileBoxChanged();
    Q_EMIT contentsReplaced();
}

void CSableManagerDoc::exchange(DocumentState& state)
{
    m_chart.swapContents(*state.contents.chart);
    std::swap(m_ranks, state.contents.ranks);
    std::swap(m_fileBox, state.contents.fileBox);
    std::swap(m_directoryLinks, state.contents.directoryLinks);
    std::swap(m_base, state.base);
    std::swap(m_deletedMembers, state.deletedMembers);
    std::swap(m_deletedGroups, state.deletedGroups);
    std::swap(m_pendingUserData, state.pendingUserData);
    Q_EMIT rankListChanged();
    Q_EMIT fileBoxChanged();
    Q_EMIT contentsReplaced();
}

void CSableManagerDoc::markSaved(ChartFingerprint written)
{
    m_pendingUserData.clear();
    m_deletedMembers.clear();
    m_deletedGroups.clear();
    setModified(false);
    m_history.markClean();
    m_base = std::move(written);
    Q_EMIT saved();
}

ChartTables CSableManagerDoc::tables() const
{
    return ChartTables::of(m_chart, m_ranks, m_fileBox, m_directoryLinks);
}

ChartFingerprint::Summary CSableManagerDoc::unsavedChanges() const
{
    return m_base.changesTo(ChartFingerprint::of(tables()));
}

} // namespace sable
