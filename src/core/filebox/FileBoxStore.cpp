#include "filebox/FileBoxStore.h"

#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "filebox/FileBoxLists.h"

namespace sable::FileBoxStore {
namespace {

bool loadAuthorities(DbConnection& connection, const QString& sql, std::vector<AuthorityRecord>& list)
{
    DbRecordset rows = connection.execute(sql);
    if (!rows.isValid())
        return false;
    for (; !rows.isEof(); rows.moveNext())
        list.push_back({rows.fieldInt(0), rows.fieldInt(1), FileBoxLists::levelFromText(rows.fieldText(2))});
    return true;
}

bool storeAuthorities(DbConnection& connection, const QString& table, const QString& granteeColumn,
    const std::vector<AuthorityRecord>& list)
{
    if (!connection.executeNoRecords(QStringLiteral("DELETE FROM ") + table))
        return false;
    BatchInserter insert(connection, table, {QStringLiteral("K_FolderID"), granteeColumn, QStringLiteral("Authority")});
    for (const AuthorityRecord& record : list) {
        if (!insert.add({record.K_FolderID, record.grantee, FileBoxLists::levelToText(record.level)}))
            return false;
    }
    return insert.flush();
}

} // namespace

bool load(DbConnection& connection, FileBoxLists& lists)
{
    DbRecordset rows = connection.execute(QStringLiteral("SELECT K_FolderID,FolderPath FROM SB_Folder"));
    if (!rows.isValid())
        return false;
    for (; !rows.isEof(); rows.moveNext()) {
        // Paths written by older tools doubled their backslashes.
        QString path = rows.fieldText(1);
        path.replace(QStringLiteral("\\\\"), QStringLiteral("\\"));
        lists.folders.push_back({rows.fieldInt(0), path});
    }
    rows.close();
    return loadAuthorities(connection, QStringLiteral("SELECT K_FolderID,K_GroupID,Authority FROM SB_GroupAuthority"),
               lists.groupAuthorities)
        && loadAuthorities(connection, QStringLiteral("SELECT K_FolderID,K_MemberID,Authority FROM SB_UserAuthority"),
            lists.userAuthorities);
}

bool store(DbConnection& connection, const FileBoxLists& lists)
{
    if (!connection.executeNoRecords(QStringLiteral("DELETE FROM SB_Folder")))
        return false;
    {
        BatchInserter insert(
            connection, QStringLiteral("SB_Folder"), {QStringLiteral("K_FolderID"), QStringLiteral("FolderPath")});
        for (const FolderRecord& folder : lists.folders) {
            if (!insert.add({folder.K_FolderID, BatchInserter::text(folder.FolderPath)}))
                return false;
        }
        if (!insert.flush())
            return false;
    }
    return storeAuthorities(
               connection, QStringLiteral("SB_GroupAuthority"), QStringLiteral("K_GroupID"), lists.groupAuthorities)
        && storeAuthorities(
            connection, QStringLiteral("SB_UserAuthority"), QStringLiteral("K_MemberID"), lists.userAuthorities);
}

} // namespace sable::FileBoxStore
