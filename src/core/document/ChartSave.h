#pragma once

#include "db/DbConnection.h"
#include "document/Balloon.h"

#include <functional>

namespace sable {

class CSableManagerDoc;
class IniFile;

// The save of the chart: the checks, the question, the file-box service stopped while the tables
// are rewritten in one transaction, the chart version raised, the services started again and the
// server told. The console and sablectl run the same sequence with their own collaborators.
class ChartSave
{
public:
    struct Collaborators
    {
        std::function<bool(const QString& question)> askYesNo;
        std::function<void(const Balloon& balloon)> showBalloon;
        std::function<DbConnection()> connect;
        // Service control; an empty function stands for a server without services here.
        std::function<bool()> isFileBoxServerRunning;
        std::function<void()> stopFileBoxServer;
        std::function<void()> requestStartAll;
        std::function<void()> restartAll;
        // The chart-changed notice; empty: sent to the local server's port.
        std::function<bool()> sendChartChangedNotice;
        // Whether the chart editor is open (a save asked for elsewhere is refused).
        bool bEditorOpen = true;
    };

    enum class Outcome
    {
        Saved,
        Declined, // the administrator answered No
        Refused, // a check stopped it; a balloon said why; nothing was written
        DatabaseFailed, // rolled back; the balloon "데이터 베이스에 오류가 발생했습니다."; the chart stays as it was
    };

    // Runs the whole sequence on `doc`, raising [GroupInfo] Version in `settings`.
    static Outcome run(CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with);

    // The sequence in three parts, so that a window can run the writing off its thread while it
    // keeps drawing: the checks and the question (nullopt: go on), the writing (which only reads
    // the document, which must not change meanwhile), and what follows it.
    static std::optional<Outcome> prepare(const CSableManagerDoc& doc, const Collaborators& with);
    static bool write(const CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with);
    static Outcome finish(CSableManagerDoc& doc, const Collaborators& with, bool written);

    // The checks of the member list: before the question every member needs an identifier and a
    // password, after it a name and a password. The balloon points at the first wrong cell.
    static std::optional<Balloon> checkIdsAndPasswords(const CSableManagerDoc& doc);
    static std::optional<Balloon> checkNamesAndPasswords(const CSableManagerDoc& doc);

    // The table writes of a save, inside the caller's transaction: the chart, the ranks, the file-box
    // lists, the users the directory sync keeps and the deletion cascade.
    static bool writeTables(DbConnection& db, const CSableManagerDoc& doc);

    // The chart version after `current`: one more, and 1 after 9999.
    static int nextVersion(int current);
};

} // namespace sable
