#include "directory/DirectoryLinkStore.h"

#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"
#include "directory/DirectoryLinks.h"
#include "orgchart/OrgChart.h"

#include <algorithm>

namespace sable::DirectoryLinkStore {
namespace {

const QString kTable = QStringLiteral("SM_DirectoryLink");

bool hasTable(const DbConnection& connection)
{
    return connection.tables().contains(kTable, Qt::CaseInsensitive);
}

// DNs have no fixed length: the engine's long text type.
QString createStatement(const DbConnection& connection)
{
    QString text = QStringLiteral("VARCHAR(1024)");
    switch (DbSchema::dialectOf(connection)) {
    case DbSchema::Dialect::Sqlite:
    case DbSchema::Dialect::PostgreSql:
        text = QStringLiteral("TEXT");
        break;
    case DbSchema::Dialect::SqlServer:
        text = QStringLiteral("NVARCHAR(MAX)");
        break;
    case DbSchema::Dialect::Other:
        text = QStringLiteral("LONGTEXT");
        break;
    }
    return QStringLiteral(
        "CREATE TABLE %1 (K_MemberID INTEGER NOT NULL PRIMARY KEY, EntryID %2 NOT NULL, EntryDN %2 NULL)")
        .arg(kTable, text);
}

} // namespace

bool load(DbConnection& connection, DirectoryLinks& links)
{
    if (!hasTable(connection))
        return true;
    DbRecordset rows = connection.execute(QStringLiteral("SELECT K_MemberID,EntryID,EntryDN FROM ") + kTable);
    if (!rows.isValid())
        return false;
    for (; !rows.isEof(); rows.moveNext())
        links.set(rows.fieldInt(0), DirectoryLink {rows.fieldText(1), rows.fieldText(2)});
    return true;
}

bool store(DbConnection& connection, const DirectoryLinks& links, const OrgChart& chart)
{
    std::vector<int> kept;
    kept.reserve(static_cast<size_t>(links.count()));
    for (auto at = links.all().cbegin(); at != links.all().cend(); ++at) {
        if (chart.rowOf(at.key()) >= 0)
            kept.push_back(at.key());
    }
    if (!hasTable(connection)) {
        if (kept.empty())
            return true;
        if (!connection.executeNoRecords(createStatement(connection)))
            return false;
    } else if (!connection.executeNoRecords(QStringLiteral("DELETE FROM ") + kTable)) {
        return false;
    }
    std::sort(kept.begin(), kept.end());
    BatchInserter insert(
        connection, kTable, {QStringLiteral("K_MemberID"), QStringLiteral("EntryID"), QStringLiteral("EntryDN")});
    for (const int memberId : kept) {
        const DirectoryLink& link = *links.find(memberId);
        if (!insert.add({memberId, BatchInserter::text(link.entryId), BatchInserter::text(link.dn)}))
            return false;
    }
    return insert.flush();
}

} // namespace sable::DirectoryLinkStore
