#pragma once

namespace sable {

class DbConnection;
class RankList;

// SD_Rank: the rank order lives in the order of the table's rows (or, where the engine does not keep
// that order, in an order column of the console's own that the rows are read by).
namespace RankStore {

bool load(DbConnection& connection, RankList& ranks);
// Deletes every row and inserts the ranks in rank order.
bool store(DbConnection& connection, const RankList& ranks);

} // namespace RankStore
} // namespace sable
