#pragma once

#include "document/ChartFingerprint.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <vector>

namespace sable {

struct ChartTables;
struct MemberRecord;

// What people call the rows of the chart's tables: departments and ranks by name, users by name and
// login ID, folders by path, memberships and permissions by what they join. The names are gathered
// when the first is asked for (a save that changes few rows of a large chart names only those), so
// the tables must outlive the names and keep their rows where they are.
class ChartNames
{
public:
    ChartNames() = default;
    explicit ChartNames(const ChartTables& tables);
    // Names from `first`, and from `second` for what `first` does not hold.
    ChartNames(const ChartTables& first, const ChartTables& second);

    QString group(int groupId) const;
    QString member(int memberId) const; // "김정훈 (jhkim)"
    QString loginId(int memberId) const;
    QString rank(int rankId) const;
    QString folder(int folderId) const;
    // The name of the row `key` of `table`.
    QString row(ChartTable table, ChartFingerprint::Key key) const;

    // What identifies the row `key` in `table`: its number ("12"), or the two numbers of a row that
    // joins two ("345/12": user and department of a membership, folder and grantee of a permission).
    static QString key(ChartTable table, ChartFingerprint::Key key);
    // The name of a field of `table`'s rows as the console shows it.
    static QString field(ChartTable table, int field);
    // "부서", "사용자", ...
    static QString table(ChartTable table);

private:
    void gather() const;
    void add(const ChartTables& tables) const;

    const ChartTables* m_first = nullptr;
    const ChartTables* m_second = nullptr;
    mutable bool m_bGathered = false;
    mutable QHash<int, QString> m_groups;
    // Users are named when asked: formatting every name of a large chart costs more than the few asked.
    mutable QHash<int, const MemberRecord*> m_members;
    mutable QHash<int, QString> m_ranks;
    mutable QHash<int, QString> m_folders;
};

// One row that differs between two states of the tables.
struct RowChange
{
    enum class Kind
    {
        Added,
        Changed,
        Removed,
    };

    ChartTable table = ChartTable::Groups;
    Kind kind = Kind::Changed;
    ChartFingerprint::Key key = 0;
    QString name;
    QString loginId; // the user a member, membership or user permission row is about
    QString department; // the department a department, membership or department permission row is about
    QStringList fields; // for a change: the fields that changed
};

namespace ChartDiff {

// Every row added, changed or removed from `before` to `after`, table by table, ordered by key.
// Places alone (the order of departments, members and ranks) do not count as a change of a row.
std::vector<RowChange> between(const ChartFingerprint& before, const ChartTables& after, const ChartNames& names);
// The same, for a caller that has the fingerprint of `after` already.
std::vector<RowChange> between(const ChartFingerprint& before, const ChartFingerprint& after, const ChartNames& names);

// The counts of a summary as the save question shows them beside it.
QString summaryText(const ChartFingerprint::Summary& summary);
// The counts of a summary a line a table ("부서: 추가 1, 변경 0, 삭제 2"), tables without changes left out.
QStringList summaryLines(const ChartFingerprint::Summary& summary);

} // namespace ChartDiff
} // namespace sable
