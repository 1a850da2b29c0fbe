#pragma once

#include "directory/DirectoryLinks.h"
#include "document/ChartFingerprint.h"
#include "document/EditHistory.h"
#include "filebox/FileBoxLists.h"
#include "orgchart/ChartStore.h"
#include "orgchart/OrgChart.h"
#include "orgchart/RankList.h"

#include <QList>
#include <QObject>

#include <memory>

namespace sable {

struct ChartTables;

// Everything a load brings and a save writes: the chart, the ranks, the file-box lists and which
// users the directory sync keeps; with the fingerprint of the tables as the database held them when
// they were read (empty for contents that come from elsewhere, such as a file).
struct ChartContents
{
    std::unique_ptr<OrgChart> chart = std::make_unique<OrgChart>();
    RankList ranks;
    FileBoxLists fileBox;
    DirectoryLinks directoryLinks;
    ChartFingerprint stored;
};

// Everything a merge or a restore replaces in one step: the contents, the tables as the database
// held them, the deletion lists and the per-user rows that the next save puts back.
struct DocumentState
{
    ChartContents contents;
    ChartFingerprint base;
    QList<int> deletedMembers;
    QList<int> deletedGroups;
    UserData pendingUserData;
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

    // The rows a save of the document writes now.
    ChartTables tables() const;

    // Rows of the server's per-user tables that the next save puts back (a restored user's lists).
    const UserData& pendingUserData() const { return m_pendingUserData; }

    // Exchanges everything with `state`, announcing the new contents; an undoable step keeps the old.
    void exchange(DocumentState& state);

    // The edits since the load, for undo and redo.
    EditHistory& history() { return m_history; }
    const EditHistory& history() const { return m_history; }

    bool isModified() const { return m_bModified; }
    void setModified(bool modified);

    // Takes over freshly loaded contents; the deletion lists empty and nothing counts as edited.
    void adopt(ChartContents contents);

    // The tables as the database held them when this document last read or wrote them: what a save
    // compares the database with before it writes.
    const ChartFingerprint& base() const { return m_base; }
    void setBase(ChartFingerprint base) { m_base = std::move(base); }

    // Tells the views that the rank list or the file-box lists changed.
    void announceRankListChanged() { Q_EMIT rankListChanged(); }
    void announceFileBoxChanged() { Q_EMIT fileBoxChanged(); }

    // After a successful save: the database now holds `written`, what the document holds.
    void markSaved(ChartFingerprint written);

    // How the tables a save writes now differ from the tables as they were read or last written.
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
    ChartFingerprint m_base;
    UserData m_pendingUserData;
};

} // namespace sable
