#pragma once

#include "db/DbConnection.h"
#include "document/Balloon.h"
#include "document/ChartFingerprint.h"
#include "document/ChartTables.h"

#include <functional>
#include <memory>
#include <optional>

namespace sable {

class CSableManagerDoc;
class IniFile;

// The save of the chart: the checks, the question, the file-box service stopped while the tables
// are rewritten in one transaction, the chart version raised, the services started again and the
// server told. Inside the transaction, before anything is written and with every other writer held
// off, the database is compared with what the document read: when someone else saved meanwhile,
// nothing is written and the caller merges. What the save replaces is kept as a restore point and
// what it changes goes into the change journal, in the same transaction. The console and sablectl
// run the same sequence with their own collaborators.
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
        // The program that saves, as the change journal names it.
        QString program;
        // Where the restore points go and how many are kept; no folder, no restore points.
        QString restoreFolder;
        int restorePointsKept = 50;
        // The tables are replaced with the document's whatever the database holds now (the import
        // of a chart file does that by design): nothing is compared.
        bool bReplace = false;
    };

    enum class Outcome
    {
        Saved,
        Declined, // the administrator answered No
        Refused, // a check stopped it; a balloon said why; nothing was written
        DatabaseFailed, // rolled back; the balloon "데이터 베이스에 오류가 발생했습니다."; the chart stays as it was
        Conflict, // someone else saved since the document read the chart: nothing written, to be merged
    };

    // What the writing did.
    struct Written
    {
        bool bWritten = false;
        QString refusal; // nothing was written because of this (a folder or a file that cannot be written)
        QString versionProblem; // written, but the chart version in the settings file could not be raised
        std::shared_ptr<const ChartTables> theirs; // the tables as someone else left them: merge with these
        ChartFingerprint print; // the tables as written
    };

    // Runs the whole sequence on `doc`, raising [GroupInfo] Version in `settings` once committed. On a conflict,
    // `conflict` (when given) receives what the database holds now.
    static Outcome run(CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with,
        std::shared_ptr<const ChartTables>* conflict = nullptr);

    // The sequence in three parts, so that a window can run the writing off its thread while it
    // keeps drawing: the checks and the question (nullopt: go on), the writing (which only reads
    // the document, which must not change meanwhile), and what follows it.
    static std::optional<Outcome> prepare(const CSableManagerDoc& doc, const Collaborators& with);
    static Written write(const CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with);
    static Outcome finish(CSableManagerDoc& doc, const Collaborators& with, const Written& written);

    // The checks of the member list: before the question every member needs an identifier and a
    // password, after it a name and a password, and no login ID may be there twice (compared
    // without regard to case). The balloon points at the first wrong cell.
    static std::optional<Balloon> checkIdsAndPasswords(const CSableManagerDoc& doc);
    static std::optional<Balloon> checkNamesAndPasswords(const CSableManagerDoc& doc);
    static std::optional<Balloon> checkUniqueLoginIds(const CSableManagerDoc& doc);

    // The table writes of a save, inside the caller's transaction: the chart, the ranks, the file-box
    // lists, the users the directory sync keeps, the deletion cascade and the per-user rows a restore
    // puts back.
    static bool writeTables(DbConnection& db, const CSableManagerDoc& doc, const ChartTables& tables);

    // The tables a save locks and compares.
    static const QStringList& lockedTables();

    // The chart version after `current`: one more, and 1 after 9999.
    static int nextVersion(int current);
};

} // namespace sable
