#pragma once

#include "directory/DirectoryLinks.h"
#include "directory/DirectoryReader.h"
#include "userimport/ImportPreview.h"

#include <optional>
#include <vector>

namespace sable {

class OrgChart;
class RankList;

struct DirectorySyncOptions
{
    int leaverThresholdPercent = 10;
    int passwordLength = 10;
    QString passwordAlphabet;
};

// What a sync would do to the chart, as an import preview (every entry's fate with the reasons of a
// refusal, the departments and ranks it creates, the places it adds and takes away, the leavers),
// and which users it keeps from then on. Entries meet users by the link of an earlier sync, else by
// login ID without regard to case; an entry that meets nobody is a new user with a generated
// password. The directory decides the mapped fields, the departments and the ranks of the users it
// keeps; a user it does not keep is never touched. Leavers are users it kept whose entry is gone or
// disabled; they leave every department and stay as users.
class DirectorySyncPreview
{
public:
    static DirectorySyncPreview make(const OrgChart& chart, const RankList& ranks, const DirectoryLinks& links,
        const DirectorySnapshot& snapshot, const DirectorySyncOptions& options);

    const ImportPreview& preview() const { return m_preview; }
    const std::vector<DirectoryLinkChange>& linkChanges() const { return m_linkChanges; }

    int entryCount() const { return m_entries; }
    int disabledEntries() const { return m_disabledSkipped; } // disabled entries of no kept user: left out
    int managedCount() const { return m_managed; } // users kept before this sync
    int adoptedCount() const { return m_adopted; } // users made by hand that this sync starts keeping
    int leaverCount() const { return static_cast<int>(m_preview.leavers().size()); }
    int thresholdPercent() const { return m_thresholdPercent; }
    // More of the kept users would leave than the threshold allows.
    bool exceedsThreshold() const;
    double searchSeconds() const { return m_searchSeconds; }

    bool hasChanges() const { return m_preview.hasChanges() || !m_linkChanges.empty(); }
    // The K_MemberIDs the new users get.
    QList<int> newMemberIds() const;
    // Whether the chart, the ranks and the links are still as they were (the preview refers into them).
    bool isCurrent(const OrgChart& chart, const RankList& ranks, const DirectoryLinks& links) const;

private:
    friend class SyncBuilder;
    explicit DirectorySyncPreview(ImportPreview preview);

    ImportPreview m_preview;
    std::vector<DirectoryLinkChange> m_linkChanges;
    const DirectoryLinks* m_links = nullptr;
    quint64 m_linksRevision = 0;
    int m_entries = 0;
    int m_disabledSkipped = 0;
    int m_managed = 0;
    int m_adopted = 0;
    int m_thresholdPercent = 10;
    double m_searchSeconds = 0;
};

} // namespace sable
