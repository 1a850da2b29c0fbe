#include "document/CSableManagerDoc.h"

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
    m_history.clear();
    m_stored = ChartFingerprint::of(m_chart);
    setModified(false);
    Q_EMIT rankListChanged();
    Q_EMIT fileBoxChanged();
    Q_EMIT contentsReplaced();
}

void CSableManagerDoc::markSaved()
{
    m_deletedMembers.clear();
    m_deletedGroups.clear();
    setModified(false);
    m_history.markClean();
    m_stored = ChartFingerprint::of(m_chart);
    Q_EMIT saved();
}

ChartFingerprint::Summary CSableManagerDoc::unsavedChanges() const
{
    return m_stored.changesTo(ChartFingerprint::of(m_chart));
}

} // namespace sable
