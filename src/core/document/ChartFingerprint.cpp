#include "document/ChartFingerprint.h"

#include "document/ChartTables.h"

#include <algorithm>

static_assert(sable::ChartFields::kMemberFieldCount == sable::MemberColumnCount);

namespace sable {
namespace {

constexpr int kMaxFields = ChartFields::kMemberFieldCount;

int tableIndex(ChartTable table)
{
    return static_cast<int>(table);
}

// Counts the ranks that keep their place and those whose place among the kept ones changed.
void countRankMoves(const ChartFingerprint& before, const ChartFingerprint& after, ChartFingerprint::Counts& counts)
{
    std::vector<std::pair<qint64, ChartFingerprint::Key>> oldOrder;
    std::vector<std::pair<qint64, ChartFingerprint::Key>> newOrder;
    before.forEachKey(ChartTable::Ranks, [&](ChartFingerprint::Key key) {
        if (const qint64* kept = after.row(ChartTable::Ranks, key)) {
            oldOrder.emplace_back(before.row(ChartTable::Ranks, key)[ChartFields::RankOrder], key);
            newOrder.emplace_back(kept[ChartFields::RankOrder], key);
        }
    });
    std::sort(oldOrder.begin(), oldOrder.end());
    std::sort(newOrder.begin(), newOrder.end());
    for (size_t i = 0; i < oldOrder.size(); ++i) {
        if (oldOrder[i].second != newOrder[i].second)
            ++counts.moved;
    }
}

} // namespace

int ChartFields::count(ChartTable table)
{
    switch (table) {
    case ChartTable::Groups:
        return GroupFieldCount;
    case ChartTable::Members:
        return kMemberFieldCount;
    case ChartTable::Relations:
        return RelationFieldCount;
    case ChartTable::Ranks:
        return RankFieldCount;
    case ChartTable::Folders:
        return kFolderFieldCount;
    case ChartTable::DirectoryLinks:
        return LinkFieldCount;
    case ChartTable::GroupAuthorities:
    case ChartTable::UserAuthorities:
        break;
    }
    return kAuthorityFieldCount;
}

qint64 ChartFingerprint::printText(const QString& text)
{
    // Fixed-width text columns give back what was stored padded with blanks: the same value.
    qsizetype length = text.size();
    while (length > 0 && text[length - 1] == u' ')
        --length;
    return static_cast<qint64>(qHash(QStringView(text).first(length), 0x5ab1e));
}

void ChartFingerprint::printGroup(const GroupRow& row, qint64* out)
{
    out[ChartFields::GroupName] = printText(row.GroupName);
    out[ChartFields::GroupParent] = row.K_GroupID_P;
    out[ChartFields::GroupPosition] = row.Position;
}

void ChartFingerprint::printMember(const MemberRecord& m, qint64* out)
{
    // A choice column prints its stored value: the same for a row as its text, without making the text.
    for (int column = 0; column < MemberColumnCount; ++column) {
        out[column] = MemberColumns::isChoice(column) ? MemberColumns::storedValue(m, column)
                                                      : printText(MemberColumns::text(m, column));
    }
}

void ChartFingerprint::printRelation(const RelationRow& row, qint64* out)
{
    out[ChartFields::RelationRank] = row.K_RankID;
    out[ChartFields::RelationPosition] = row.Position;
}

void ChartFingerprint::printRank(const RankRecord& row, int order, qint64* out)
{
    out[ChartFields::RankName] = printText(row.RankName);
    out[ChartFields::RankOrder] = order;
}

void ChartFingerprint::printFolder(const FolderRecord& row, qint64* out)
{
    out[0] = printText(row.FolderPath);
}

void ChartFingerprint::printAuthority(const AuthorityRecord& row, qint64* out)
{
    out[0] = row.level;
}

void ChartFingerprint::printLink(const DirectoryLink& row, qint64* out)
{
    out[ChartFields::LinkEntry] = printText(row.entryId);
    out[ChartFields::LinkDn] = printText(row.dn);
}

void ChartFingerprint::add(ChartTable table, Key key, const qint64* fields)
{
    Table& t = m_tables[tableIndex(table)];
    const int count = ChartFields::count(table);
    const auto existing = t.at.constFind(key);
    if (existing == t.at.cend()) {
        t.at.insert(key, static_cast<qsizetype>(t.prints.size()));
        t.keys.push_back(key);
        t.prints.insert(t.prints.end(), fields, fields + count);
        return;
    }
    // Two rows under one key are a fault of the data, but one whose change must still show.
    ++t.duplicates;
    qint64* kept = t.prints.data() + *existing;
    for (int i = 0; i < count; ++i)
        kept[i] = static_cast<qint64>(qHashMulti(0, kept[i], fields[i], t.duplicates));
}

void ChartFingerprint::reserve(ChartTable table, size_t rows)
{
    Table& t = m_tables[tableIndex(table)];
    t.at.reserve(static_cast<qsizetype>(rows));
    t.keys.reserve(rows);
    t.prints.reserve(rows * static_cast<size_t>(ChartFields::count(table)));
}

ChartFingerprint ChartFingerprint::of(const ChartTables& tables)
{
    // The prints of a large chart are kept side by side while a save compares them: sized once,
    // they take no more than the rows need.
    ChartFingerprint print;
    print.reserve(ChartTable::Groups, tables.groups.size());
    print.reserve(ChartTable::Members, tables.members.size());
    print.reserve(ChartTable::Relations, tables.relations.size());
    qint64 fields[kMaxFields];
    for (const GroupRow& row : tables.groups) {
        printGroup(row, fields);
        print.add(ChartTable::Groups, row.K_GroupID, fields);
    }
    for (const MemberRecord& row : tables.members) {
        printMember(row, fields);
        print.add(ChartTable::Members, row.K_MemberID, fields);
    }
    for (const RelationRow& row : tables.relations) {
        printRelation(row, fields);
        print.add(ChartTable::Relations, relationKey(row.K_MemberID, row.K_GroupID), fields);
    }
    for (int i = 0; i < tables.ranks.count(); ++i) {
        printRank(tables.ranks.at(i), i, fields);
        print.add(ChartTable::Ranks, tables.ranks.at(i).K_RankID, fields);
    }
    for (const FolderRecord& row : tables.fileBox.folders) {
        printFolder(row, fields);
        print.add(ChartTable::Folders, row.K_FolderID, fields);
    }
    for (const AuthorityRecord& row : tables.fileBox.groupAuthorities) {
        printAuthority(row, fields);
        print.add(ChartTable::GroupAuthorities, authorityKey(row.K_FolderID, row.grantee), fields);
    }
    for (const AuthorityRecord& row : tables.fileBox.userAuthorities) {
        printAuthority(row, fields);
        print.add(ChartTable::UserAuthorities, authorityKey(row.K_FolderID, row.grantee), fields);
    }
    for (auto it = tables.links.all().cbegin(); it != tables.links.all().cend(); ++it) {
        printLink(it.value(), fields);
        print.add(ChartTable::DirectoryLinks, it.key(), fields);
    }
    return print;
}

const qint64* ChartFingerprint::row(ChartTable table, Key key) const
{
    const Table& t = m_tables[tableIndex(table)];
    const auto found = t.at.constFind(key);
    return found == t.at.cend() ? nullptr : t.prints.data() + *found;
}

const qint64* ChartFingerprint::rowAfter(ChartTable table, Key key, size_t& cursor) const
{
    const Table& t = m_tables[tableIndex(table)];
    const auto width = static_cast<size_t>(ChartFields::count(table));
    if (cursor < t.keys.size() && t.keys[cursor] == key)
        return t.prints.data() + width * cursor++;
    const auto found = t.at.constFind(key);
    if (found == t.at.cend())
        return nullptr;
    cursor = static_cast<size_t>(*found) / width + 1;
    return t.prints.data() + *found;
}

int ChartFingerprint::rowCount(ChartTable table) const
{
    return static_cast<int>(m_tables[tableIndex(table)].at.size());
}

void ChartFingerprint::forEachKey(ChartTable table, const std::function<void(Key)>& visit) const
{
    const Table& t = m_tables[tableIndex(table)];
    for (auto it = t.at.cbegin(); it != t.at.cend(); ++it)
        visit(it.key());
}

bool ChartFingerprint::isEmpty() const
{
    return std::all_of(std::begin(m_tables), std::end(m_tables), [](const Table& t) { return t.at.isEmpty(); });
}

bool ChartFingerprint::operator==(const ChartFingerprint& other) const
{
    for (int t = 0; t < kChartTableCount; ++t) {
        const auto table = static_cast<ChartTable>(t);
        const int fields = ChartFields::count(table);
        if (m_tables[t].at.size() != other.m_tables[t].at.size()
            || m_tables[t].duplicates != other.m_tables[t].duplicates)
            return false;
        for (auto it = m_tables[t].at.cbegin(); it != m_tables[t].at.cend(); ++it) {
            const qint64* theirs = other.row(table, it.key());
            if (!theirs || !std::equal(theirs, theirs + fields, m_tables[t].prints.data() + it.value()))
                return false;
        }
    }
    return true;
}

ChartFingerprint::Summary ChartFingerprint::changesTo(const ChartFingerprint& now) const
{
    Summary summary;
    for (int t = 0; t < kChartTableCount; ++t) {
        const auto table = static_cast<ChartTable>(t);
        // A rank in another place of the order counts as moved, not as changed.
        const int compared = table == ChartTable::Ranks ? ChartFields::RankOrder : ChartFields::count(table);
        Counts& counts = summary[static_cast<size_t>(t)];
        now.forEachKey(table, [&](Key key) {
            const qint64* old = row(table, key);
            if (!old)
                ++counts.added;
            else if (!std::equal(old, old + compared, now.row(table, key)))
                ++counts.changed;
        });
        forEachKey(table, [&](Key key) {
            if (!now.row(table, key))
                ++counts.removed;
        });
    }
    countRankMoves(*this, now, summary[static_cast<size_t>(ChartTable::Ranks)]);
    return summary;
}

} // namespace sable
