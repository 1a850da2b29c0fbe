#include "orgchart/RankStore.h"

#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "orgchart/RankList.h"

namespace sable::RankStore {

bool load(DbConnection& connection, RankList& ranks)
{
    QString sql = QStringLiteral("SELECT K_RankID,RankName FROM SD_Rank ");
    if (DbSchema::hasRankOrderColumn(connection))
        sql += QStringLiteral("ORDER BY ") + DbSchema::rankOrderColumn();
    DbRecordset rows = connection.execute(sql);
    if (!rows.isValid())
        return false;
    for (; !rows.isEof(); rows.moveNext())
        ranks.insert(ranks.count(), {rows.fieldInt(0), rows.fieldText(1)});
    return true;
}

bool store(DbConnection& connection, const RankList& ranks)
{
    if (!connection.executeNoRecords(QStringLiteral("DELETE FROM SD_Rank")))
        return false;
    // One row per statement: an engine that numbers the rows for their order numbers a multi-row
    // statement's rows in no promised order. There are few ranks.
    for (const RankRecord& rank : ranks.ranks()) {
        if (!connection.executeNoRecords(QStringLiteral("INSERT INTO SD_Rank (K_RankID,RankName) VALUES (?,?)"),
                {rank.K_RankID, BatchInserter::text(rank.RankName)}))
            return false;
    }
    return true;
}

} // namespace sable::RankStore
