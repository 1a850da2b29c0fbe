#pragma once

#include "orgchart/MemberRecord.h"
#include "userimport/ColumnMapping.h"
#include "userimport/ImportTable.h"
#include "userimport/ImportTargets.h"

#include <array>
#include <vector>

namespace sable {

class OrgChart;
class OrgNode;
class RankList;

enum class ImportMode
{
    AddOnly, // users whose ID exists are left as they are
    AddAndUpdate, // users whose ID exists take the file's values
};

// Why a row is refused: the field it is about (-1: the row as a whole) and the console's own text.
struct ImportRefusal
{
    int field = -1;
    QString text;

    // "이메일: 100자를 초과할 수 없습니다."
    QString describe() const;
};

// A department that a row places its user in, with the rank there.
struct ImportPlacement
{
    static constexpr int kRankNotGiven = -2; // the file has no rank column: new places get no rank,
                                             // existing ones keep theirs
    int department = -1; // index of a DepartmentTarget
    int rank = kRankNotGiven; // index of a RankTarget, -1 for no rank
};

struct ImportRow
{
    enum class Fate
    {
        New,
        Update,
        Unchanged,
        Refused,
    };

    int line = 0; // where the record begins in the file
    QString origin; // where the row comes from when it is not a line of a file (a directory entry's DN)
    Fate fate = Fate::Refused;
    int memberRow = -1; // the member list row of the user with this ID, -1 for none
    MemberRecord member; // the user as the import leaves it (a new one numbered already)
    std::vector<ImportPlacement> placements;
    std::vector<OrgNode*> removals; // departments the user leaves (only a source that keeps whole users)
    std::vector<ImportRefusal> refusals;

    bool isApplied() const { return fate == Fate::New || fate == Fate::Update; }
};

// A user the source no longer has: taken out of every department, kept as a user.
struct ImportLeaver
{
    enum class Why
    {
        Gone, // no longer in the source
        Disabled, // still there, marked as no longer active
    };
    int memberRow = -1;
    Why why = Why::Gone;
    QString origin; // where the user came from (the DN as last seen)
};

// What importing a file would do to the document, row by row, before anything changes: every row's
// fate and every refusal's reasons, the departments and ranks that would be created. Every user must
// meet the rules of the member list: an ID, a name and a password; texts within their column's
// limit in stored bytes; an ID at most once in the file and, when only adding, not yet in the list;
// an e-mail address with '@'; a choice column holding one of its two texts (or 1/0, Y/N, M/F ...).
// An empty text cell empties the field; an empty choice cell keeps it (a new user's default). A
// department cell adds places, never removes one: a user already in the department stays where it
// sits there, with the file's rank when it gives one.
class ImportPreview
{
public:
    static ImportPreview make(const OrgChart& chart, const RankList& ranks, const ImportTable& table,
        const ColumnMapping& mapping, ImportMode mode);
    // A new user before the source's values: as a user typed into the entry row starts.
    static MemberRecord newMember();

    ImportMode mode() const { return m_mode; }
    const std::vector<ImportRow>& rows() const { return m_rows; }
    int count(ImportRow::Fate fate) const { return m_counts[static_cast<size_t>(fate)]; }
    bool hasChanges() const
    {
        return count(ImportRow::Fate::New) + count(ImportRow::Fate::Update) > 0 || !m_leavers.empty();
    }
    // Users taken out of every department, and how many places in departments the rows take away.
    const std::vector<ImportLeaver>& leavers() const { return m_leavers; }
    int removalCount() const { return m_removals; }

    const DepartmentTargets& departments() const { return m_departments; }
    const RankTargets& ranks() const { return m_ranks; }
    // The paths of the departments and the names of the ranks the import creates, in that order.
    QStringList newDepartmentPaths() const;
    QStringList newRankNames() const;

    // Whether the chart and the ranks are still as they were when the preview was made (the preview
    // refers into them).
    bool isCurrent(const OrgChart& chart, const RankList& ranks) const;

    // A preview of another source than a file (the directory sync): begin(), the rows in order with
    // their places resolved through departmentTargets() and rankTargets(), the leavers, finish().
    static ImportPreview begin(const OrgChart& chart, const RankList& ranks, ImportMode mode);
    DepartmentTargets& departmentTargets() { return m_departments; }
    RankTargets& rankTargets() { return m_ranks; }
    void addRow(ImportRow row);
    void addLeaver(ImportLeaver leaver) { m_leavers.push_back(std::move(leaver)); }
    // New users, departments and ranks take the identifiers that adding them one by one would give.
    void finish(const OrgChart& chart, const RankList& ranks);

private:
    friend class PreviewBuilder;
    ImportPreview(const OrgChart& chart, const RankList& ranks, ImportMode mode);

    struct Fingerprint
    {
        const OrgChart* chart = nullptr;
        const RankList* ranks = nullptr;
        quint64 chartRevision = 0;
        quint64 rankRevision = 0;
        bool operator==(const Fingerprint&) const = default;
    };
    static Fingerprint fingerprintOf(const OrgChart& chart, const RankList& ranks);

    ImportMode m_mode;
    Fingerprint m_fingerprint;
    std::vector<ImportRow> m_rows;
    std::vector<ImportLeaver> m_leavers;
    std::array<int, 4> m_counts {};
    int m_removals = 0;
    DepartmentTargets m_departments;
    RankTargets m_ranks;
};

} // namespace sable
