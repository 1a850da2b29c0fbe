#pragma once

#include "directory/DirectoryLinks.h"
#include "document/EditHistory.h"
#include "filebox/FileBoxLists.h"
#include "orgchart/ChartFingerprint.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"

#include <QList>
#include <QObject>

#include <memory>

namespace sable {

// Everything a load brings and a save writes: the chart, the ranks, the file-box lists and which
// users the directory sync keeps.
struct ChartContents
{
    std::unique_ptr<OrgChart> chart = std::make_unique<OrgChart>();
    RankList ranks;
    FileBoxLists fileBox;
    DirectoryLinks directoryLinks;
};

// The document the console and sablectl share: the chart, the rank list, the file-box lists, the
// identifiers deleted since the last save, and whether anything was edited since.
class CSableManagerDoc : public QObject
{
    Q_OBJECT

public:
    explicit CSableManagerDoc(QObject* parent = nullptr);
    ~CSableManagerDoc() override;

    OrgChart& chart() { return m_chart; }
    const OrgChart& chart() const { return m_chart; }
    RankList& ranks() { return m_ranks; }
    const RankList& ranks() const { return m_ranks; }
    FileBoxLists& fileBox() { return m_fileBox; }
    const FileBoxLists& fileBox() const { return m_fileBox; }
    // The users the directory sync keeps, and the entries they come from.
    DirectoryLinks& directoryLinks() { return m_directoryLinks; }
    const DirectoryLinks& directoryLinks() const { return m_directoryLinks; }

    // Members and departments deleted since the last save, whose data the save's cascade removes.
    QList<int>& deletedMembers() { return m_deletedMembers; }
    const QList<int>& deletedMembers() const { return m_deletedMembers; }
    QList<int>& deletedGroups() { return m_deletedGroups; }
    const QList<int>& deletedGroups() const { return m_deletedGroups; }

    // The edits since the load, for undo and redo.
    EditHistory& history() { return m_history; }
    const EditHistory& history() const { return m_history; }

    bool isModified() const { return m_bModified; }
    void setModified(bool modified);

    // Takes over freshly loaded contents; the deletion lists empty and nothing counts as edited.
    void adopt(ChartContents contents);

    // Tells the views that the rank list or the file-box lists changed.
    void announceRankListChanged() { Q_EMIT rankListChanged(); }
    void announceFileBoxChanged() { Q_EMIT fileBoxChanged(); }

    // After a successful save: the database now holds what the document holds.
    void markSaved();

    // How the chart in memory differs from the chart as it was loaded or last saved.
    ChartFingerprint::Summary unsavedChanges() const;

Q_SIGNALS:
    void modifiedChanged(bool modified);
    void rankListChanged();
    void fileBoxChanged();
    void contentsReplaced();
    void saved();

private:
    OrgChart m_chart;
    RankList m_ranks;
    FileBoxLists m_fileBox;
    DirectoryLinks m_directoryLinks;
    QList<int> m_deletedMembers;
    QList<int> m_deletedGroups;
    bool m_bModified = false;
    EditHistory m_history {*this};
    ChartFingerprint m_stored;
};

} // namespace sable
