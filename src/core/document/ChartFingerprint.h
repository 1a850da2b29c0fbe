#pragma once

#include <QHash>

#include <array>
#include <functional>
#include <vector>

namespace sable {

struct ChartTables;
struct GroupRow;
struct MemberRecord;
struct RelationRow;
struct RankRecord;
struct FolderRecord;
struct AuthorityRecord;
struct DirectoryLink;

// The tables a save writes, as the fingerprint and the merge name them.
enum class ChartTable
{
    Groups,
    Members,
    Relations,
    Ranks,
    Folders,
    GroupAuthorities,
    UserAuthorities,
    DirectoryLinks, // the console's own: which users the directory sync keeps
};
constexpr int kChartTableCount = 8;

// The fields of each table's rows, in the order the fingerprint keeps them.
namespace ChartFields {
enum Group
{
    GroupName,
    GroupParent,
    GroupPosition,
    GroupFieldCount
};
enum Relation
{
    RelationRank,
    RelationPosition,
    RelationFieldCount
};
enum Rank
{
    RankName,
    RankOrder,
    RankFieldCount
};
constexpr int kMemberFieldCount = 14; // the member list's columns, in their order (MemberColumn)
constexpr int kFolderFieldCount = 1;
enum Link
{
    LinkEntry,
    LinkDn,
    LinkFieldCount
};
constexpr int kAuthorityFieldCount = 1;

int count(ChartTable table);
} // namespace ChartFields

// The tables a save writes reduced to a few numbers per row: per key, one number per field (a
// number field's value itself, a text field's hash), so that what the database holds can be told
// apart from what was read from it, and a change can be told to the field. Memberships are keyed by
// member and department, permissions by folder and grantee.
class ChartFingerprint
{
public:
    using Key = qint64;

    static Key relationKey(int memberId, int groupId) { return Key(memberId) << 32 | quint32(groupId); }
    static Key authorityKey(int folderId, int grantee) { return Key(folderId) << 32 | quint32(grantee); }
    static int high(Key key) { return static_cast<int>(key >> 32); }
    static int low(Key key) { return static_cast<int>(static_cast<quint32>(key)); }

    static ChartFingerprint of(const ChartTables& tables);

    // The prints of one row, or nullptr when the table has no row of that key.
    const qint64* row(ChartTable table, Key key) const;
    int rowCount(ChartTable table) const;
    void forEachKey(ChartTable table, const std::function<void(Key)>& visit) const;
    // Every row's key with its prints, in the order the rows were added.
    template <typename Visit>
    void forEachRow(ChartTable table, Visit&& visit) const
    {
        const Table& t = m_tables[static_cast<size_t>(table)];
        const auto width = static_cast<size_t>(ChartFields::count(table));
        for (size_t i = 0; i < t.keys.size(); ++i)
            visit(t.keys[i], t.prints.data() + i * width);
    }
    // row() for keys that mostly come in the order of this print's rows, as another print of the
    // same tables gives them: `cursor` (0 to begin with) remembers where the last one was, so that
    // a run of rows in the same order costs no lookup.
    const qint64* rowAfter(ChartTable table, Key key, size_t& cursor) const;
    bool isEmpty() const;

    bool operator==(const ChartFingerprint& other) const;

    // How the rows of each table change from this print (the stored tables) to `now`.
    struct Counts
    {
        int added = 0;
        int changed = 0;
        int removed = 0;
        int moved = 0; // ranks only: kept, but in another place of the order
        bool operator==(const Counts&) const = default;
    };
    using Summary = std::array<Counts, kChartTableCount>;
    Summary changesTo(const ChartFingerprint& now) const;

    // The prints of single rows, as of() makes them.
    static void printGroup(const GroupRow& row, qint64* out);
    static void printMember(const MemberRecord& row, qint64* out);
    static void printRelation(const RelationRow& row, qint64* out);
    static void printRank(const RankRecord& row, int order, qint64* out);
    static void printFolder(const FolderRecord& row, qint64* out);
    static void printAuthority(const AuthorityRecord& row, qint64* out);
    static void printLink(const DirectoryLink& row, qint64* out);
    static qint64 printText(const QString& text);

    // Adds one row; a second row of the same key folds into the first, so that it still counts.
    void add(ChartTable table, Key key, const qint64* fields);

private:
    void reserve(ChartTable table, size_t rows);

    struct Table
    {
        QHash<Key, qsizetype> at; // where the row's prints begin in `prints`
        std::vector<Key> keys; // in the order the rows were added
        std::vector<qint64> prints;
        int duplicates = 0;
    };

    Table m_tables[kChartTableCount];
};

} // namespace sable
