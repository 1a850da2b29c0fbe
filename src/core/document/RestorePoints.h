#pragma once

#include "document/ChangeJournal.h"
#include "document/ChartTables.h"
#include "orgchart/ChartStore.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace sable {

// What the tables held before one save wrote over them, with the per-user rows its deletion
// cascade removed: enough to put the chart back as it was.
struct RestorePoint
{
    QDateTime savedAt;
    SaveAuthor author;
    QStringList changes; // what the save changed, a line a table
    ChartTables tables;
    UserData userData;
};

// A restore point as the list of them shows it, without its rows.
struct RestorePointInfo
{
    QString path;
    QDateTime savedAt;
    SaveAuthor author;
    QStringList changes;
};

// The restore points of a server folder: one gzip-compressed JSON file a save (readable with zcat),
// named by the time of the save, the oldest removed beyond the number kept.
class RestorePoints
{
public:
    RestorePoints(QString folder, int kept);

    static QString defaultFolder(const QString& home); // <home>/backups
    static constexpr int kDefaultKept = 50;

    const QString& folder() const { return m_folder; }
    int kept() const { return m_kept; }

    // Creates the folder when it is missing and makes sure a file can be written in it; false with
    // the reason.
    bool prepare(QString* problem) const;
    // Writes a point, then removes the oldest beyond the number kept; false with the reason.
    bool write(const RestorePoint& point, QString* problem) const;
    // Newest first; files that cannot be read are left out.
    std::vector<RestorePointInfo> list() const;

    // The whole point in `path`; nullopt with the reason (naming the file) when it is not one.
    static std::optional<RestorePoint> read(const QString& path, QString* problem);
    // The point in `path` as a restore puts it back: beside its own per-user rows, those that the
    // newer points of its folder kept of the users its tables hold (a user a later save removed left
    // them in that save's point). nullopt with the reason when the point cannot be read, or when a
    // newer one cannot (`unreadableNewer` then names it): the rows it may hold would be lost for good.
    static std::optional<RestorePoint> readForRestore(const QString& path, QString* problem, QString* unreadableNewer);

private:
    void prune() const;

    QString m_folder;
    int m_kept;
};

} // namespace sable
