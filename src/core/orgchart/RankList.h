#pragma once

#include <QHash>
#include <QString>

#include <vector>

namespace sable {

// A rank (job title); its place in the rank list is its order, the first ranking highest.
struct RankRecord
{
    int K_RankID = 0;
    QString RankName;

    bool operator==(const RankRecord&) const = default;
};

// The ranks in rank order. A rank value that names no rank in the list (-1 above all) is "no rank".
class RankList
{
public:
    int count() const { return static_cast<int>(m_ranks.size()); }
    const RankRecord& at(int index) const { return m_ranks[static_cast<size_t>(index)]; }
    const std::vector<RankRecord>& ranks() const { return m_ranks; }

    // 0-based place in rank order, -1 for no rank or an unknown identifier.
    int positionOf(int rankId) const;
    // The rank's name, or "직급없음" for no rank.
    QString nameOf(int rankId) const;
    // The index of the rank with that name (names compare exactly), or -1.
    int indexOfName(const QString& name) const;
    // The identifier a new rank gets: the greatest the list has held since it was last cleared or
    // replaced, plus one (1 for an empty list), -1 on overflow. Freed numbers are not handed out again.
    int nextRankId() const;
    // Changes with every change of the list; no two lists share one (see OrgChart::revision).
    quint64 revision() const { return m_revision; }

    void insert(int index, RankRecord rank);
    RankRecord take(int index);
    void move(int from, int to);
    void rename(int index, const QString& name);
    void clear();

private:
    void reindex();

    std::vector<RankRecord> m_ranks;
    QHash<int, int> m_positionById;
    quint64 m_revision = 0;
    int m_highestRankId = 0;
};

} // namespace sable
