#pragma once

#include "document/ChartDiff.h"

#include <QDateTime>
#include <QString>

#include <optional>
#include <vector>

namespace sable {

class DbConnection;

// Who saved, from where and with what.
struct SaveAuthor
{
    QString user; // the operating-system account
    QString host;
    QString program; // "console" or "sablectl"

    // The account and the machine this process runs as, for `program`.
    static SaveAuthor current(const QString& program);
};

// One row of the journal: one row a save changed.
struct JournalEntry
{
    int saveId = 0;
    QDateTime savedAt;
    SaveAuthor author;
    QString table; // "부서", "사용자", ...
    QString action; // "추가", "변경", "삭제"
    QString key; // the row's number in its table ("12", "345/12"); empty in rows of older versions
    QString name;
    QString loginId;
    QString department;
    QString fields; // the fields that changed, by name; never a value
};

struct JournalFilter
{
    QDateTime since; // invalid: from the first save
    QDateTime until; // saves before this time; invalid: up to the last save
    QString user; // part of the account name, without regard to case; empty: anyone
    QString department; // part of a department name
    QString loginId; // part of a login ID
    QString key; // a row's number, or one of the two numbers of a row that joins two
    int limit = 10000; // the newest rows first, at most this many
};

// What every save changed, kept in tables of the console's own beside the chart (SM_Journal for
// the saves, SM_JournalRow for their rows), written in the save's own transaction so that the
// journal and the chart never disagree. Values are never written: a changed password shows as a
// changed field.
namespace ChangeJournal {

// Creates the two tables where they are missing, and the columns later versions added to tables an
// earlier one made; false when that failed.
bool ensureTables(DbConnection& connection);

// Records one save and its rows; false when a statement failed.
bool record(DbConnection& connection, const QDateTime& savedAt, const SaveAuthor& author,
    const std::vector<RowChange>& changes);

// The rows matching `filter`, newest save first; nullopt when the journal cannot be read. A database
// without a journal yet gives no rows.
std::optional<std::vector<JournalEntry>> read(DbConnection& connection, const JournalFilter& filter);

QString actionText(RowChange::Kind kind);

} // namespace ChangeJournal
} // namespace sable
