#include "orgchart/RankList.h"

#include "Messages.h"
#include "orgchart/Revision.h"

#include <algorithm>
#include <limits>

namespace sable {

int RankList::positionOf(int rankId) const
{
    return m_positionById.value(rankId, -1);
}

QString RankList::nameOf(int rankId) const
{
    const int position = positionOf(rankId);
    return position < 0 ? Msg::kNoRank : at(position).RankName;
}

int RankList::indexOfName(const QString& name) const
{
    for (int i = 0; i < count(); ++i) {
        if (at(i).RankName == name)
            return i;
    }
    return -1;
}

int RankList::nextRankId() const
{
    return m_highestRankId == std::numeric_limits<int>::max() ? -1 : m_highestRankId + 1;
}

void RankList::insert(int index, RankRecord rank)
{
    m_highestRankId = std::max(m_highestRankId, rank.K_RankID);
    m_ranks.insert(m_ranks.begin() + std::clamp(index, 0, count()), std::move(rank));
    reindex();
}

RankRecord RankList::take(int index)
{
    RankRecord taken = std::move(m_ranks[static_cast<size_t>(index)]);
    m_ranks.erase(m_ranks.begin() + index);
    reindex();
    return taken;
}

void RankList::move(int from, int to)
{
    RankRecord rank = take(from);
    insert(to, std::move(rank));
}

void RankList::rename(int index, const QString& name)
{
    m_ranks[static_cast<size_t>(index)].RankName = name;
    m_revision = Revision::next();
}

void RankList::clear()
{
    m_ranks.clear();
    m_positionById.clear();
    m_highestRankId = 0;
    m_revision = Revision::next();
}

void RankList::reindex()
{
    m_revision = Revision::next();
    m_positionById.clear();
    for (int i = count() - 1; i >= 0; --i)
        m_positionById.insert(at(i).K_RankID, i);
}

} // namespace sable
