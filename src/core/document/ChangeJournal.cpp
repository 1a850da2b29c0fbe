#include "document/ChangeJournal.h"

#include "Messages.h"
#include "db/BatchInserter.h"
#include "db/DbConnection.h"
#include "db/DbSchema.h"

#include <QSysInfo>

#ifdef Q_OS_UNIX
#include <pwd.h>
#include <unistd.h>
#endif

namespace sable {

SaveAuthor SaveAuthor::current(const QString& program)
{
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = qEnvironmentVariable("USERNAME");
#ifdef Q_OS_UNIX
    // Services and scheduled jobs often run without either variable: the account is still known.
    if (user.isEmpty()) {
        if (const passwd* account = getpwuid(geteuid()))
            user = QString::fromLocal8Bit(account->pw_name);
    }
#endif
    return {user, QSysInfo::machineHostName(), program};
}

namespace ChangeJournal {
namespace {

const QString kSaves = QStringLiteral("SM_Journal");
const QString kRows = QStringLiteral("SM_JournalRow");

// Column limits: a value that does not fit is cut to fit rather than failing the save.
constexpr int kNameLength = 400;
constexpr int kFieldsLength = 1000;

// Journals written before rows carried their keys lack this column until the next save adds it.
const DbSchema::ColumnSpec kKeyColumn {QStringLiteral("RowKey"), 50};

QVariant fitted(const QString& text, int length)
{
    return BatchInserter::text(text.left(length));
}

std::optional<int> nextSaveId(DbConnection& connection)
{
    DbRecordset rows = connection.execute(QStringLiteral("SELECT MAX(K_SaveID) FROM ") + kSaves);
    if (!rows.isValid())
        return std::nullopt;
    return (rows.isEof() ? 0 : rows.fieldInt(0)) + 1;
}

JournalEntry entryAt(const DbRecordset& rows)
{
    JournalEntry entry;
    entry.saveId = rows.fieldInt(0);
    entry.savedAt = QDateTime::fromString(rows.fieldText(1), Qt::ISODate);
    entry.author = {rows.fieldText(2), rows.fieldText(3), rows.fieldText(4)};
    entry.table = rows.fieldText(5);
    entry.action = rows.fieldText(6);
    entry.name = rows.fieldText(7);
    entry.loginId = rows.fieldText(8);
    entry.department = rows.fieldText(9);
    entry.fields = rows.fieldText(10);
    entry.key = rows.fieldText(11);
    return entry;
}

} // namespace

QString actionText(RowChange::Kind kind)
{
    switch (kind) {
    case RowChange::Kind::Added:
        return Msg::kJournalAdded;
    case RowChange::Kind::Changed:
        break;
    case RowChange::Kind::Removed:
        return Msg::kJournalRemoved;
    }
    return Msg::kJournalChanged;
}

bool ensureTables(DbConnection& connection)
{
    return DbSchema::createTableIfMissing(connection, kSaves,
               {{QStringLiteral("K_SaveID")}, {QStringLiteral("SavedAt"), 32}, {QStringLiteral("OsUser"), 100},
                   {QStringLiteral("Host"), 100}, {QStringLiteral("Program"), 50}, {QStringLiteral("RowCount")}})
        && DbSchema::createTableIfMissing(connection, kRows,
            {{QStringLiteral("K_SaveID")}, {QStringLiteral("TableName"), 50}, {QStringLiteral("Action"), 20},
                {QStringLiteral("RowName"), kNameLength}, {QStringLiteral("LoginID"), 50},
                {QStringLiteral("Department"), 100}, {QStringLiteral("Fields"), kFieldsLength}, kKeyColumn})
        && DbSchema::addColumnIfMissing(connection, kRows, kKeyColumn);
}

bool record(
    DbConnection& connection, const QDateTime& savedAt, const SaveAuthor& author, const std::vector<RowChange>& changes)
{
    const std::optional<int> saveId = nextSaveId(connection);
    if (!saveId)
        return false;
    if (!connection.executeNoRecords(
            QStringLiteral("INSERT INTO %1 (K_SaveID,SavedAt,OsUser,Host,Program,RowCount) VALUES (?,?,?,?,?,?)")
                .arg(kSaves),
            {*saveId, savedAt.toUTC().toString(Qt::ISODate), fitted(author.user, 100), fitted(author.host, 100),
                fitted(author.program, 50), static_cast<int>(changes.size())}))
        return false;
    BatchInserter insert(connection, kRows,
        {QStringLiteral("K_SaveID"), QStringLiteral("TableName"), QStringLiteral("Action"), QStringLiteral("RowName"),
            QStringLiteral("LoginID"), QStringLiteral("Department"), QStringLiteral("Fields"), kKeyColumn.name});
    for (const RowChange& change : changes) {
        if (!insert.add({*saveId, ChartNames::table(change.table), actionText(change.kind),
                fitted(change.name, kNameLength), fitted(change.loginId, 50), fitted(change.department, 100),
                fitted(change.fields.join(QStringLiteral(", ")), kFieldsLength),
                BatchInserter::text(ChartNames::key(change.table, change.key))}))
            return false;
    }
    return insert.flush();
}

std::optional<std::vector<JournalEntry>> read(DbConnection& connection, const JournalFilter& filter)
{
    std::vector<JournalEntry> entries;
    if (!connection.tables().contains(kSaves, Qt::CaseInsensitive))
        return entries;
    // Read before any save of this version added the column: the rows have no keys yet.
    const bool bKeys = DbSchema::hasColumn(connection, kRows, kKeyColumn.name);
    if (!bKeys && !filter.key.isEmpty())
        return entries;
    QString sql = QStringLiteral("SELECT j.K_SaveID,j.SavedAt,j.OsUser,j.Host,j.Program,r.TableName,r.Action,"
                                 "r.RowName,r.LoginID,r.Department,r.Fields,%3 FROM %1 r JOIN %2 j ON r.K_SaveID = "
                                 "j.K_SaveID WHERE 1 = 1")
                      .arg(kRows, kSaves, bKeys ? QStringLiteral("r.RowKey") : QStringLiteral("NULL"));
    QVariantList values;
    const auto where = [&sql, &values](const QString& condition, const QVariantList& bound) {
        sql += QStringLiteral(" AND ") + condition;
        values << bound;
    };
    const auto anywhere = [](const QString& part) { return QString(u'%' + part + u'%'); };
    if (filter.since.isValid())
        where(QStringLiteral("j.SavedAt >= ?"), {filter.since.toUTC().toString(Qt::ISODate)});
    if (filter.until.isValid())
        where(QStringLiteral("j.SavedAt < ?"), {filter.until.toUTC().toString(Qt::ISODate)});
    if (!filter.user.isEmpty())
        where(QStringLiteral("LOWER(j.OsUser) LIKE ?"), {anywhere(filter.user.toLower())});
    if (!filter.department.isEmpty())
        where(QStringLiteral("r.Department LIKE ?"), {anywhere(filter.department)});
    if (!filter.loginId.isEmpty())
        where(QStringLiteral("LOWER(r.LoginID) LIKE ?"), {anywhere(filter.loginId.toLower())});
    if (!filter.key.isEmpty()) {
        // A number finds the row it identifies and the rows that join it to another.
        const QString key = filter.key;
        where(QStringLiteral("(r.RowKey = ? OR r.RowKey LIKE ? OR r.RowKey LIKE ?)"),
            {key, QString(key + QStringLiteral("/%")), QString(QStringLiteral("%/") + key)});
    }
    sql += QStringLiteral(" ORDER BY j.K_SaveID DESC");
    DbRecordset rows = connection.execute(sql, values);
    if (!rows.isValid())
        return std::nullopt;
    for (; !rows.isEof() && static_cast<int>(entries.size()) < filter.limit; rows.moveNext())
        entries.push_back(entryAt(rows));
    return entries;
}

} // namespace ChangeJournal
} // namespace sable
