#include "document/ChartSave.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "directory/DirectoryLinkStore.h"
#include "document/CSableManagerDoc.h"
#include "document/ChangeJournal.h"
#include "document/ChartDiff.h"
#include "document/RestorePoints.h"
#include "filebox/FileBoxStore.h"
#include "orgchart/ChartStore.h"
#include "orgchart/RankStore.h"
#include "platform/ChangeNotice.h"
#include "platform/IniFile.h"
#include "platform/LeadingNumber.h"

#include <future>

namespace sable {
namespace {

// One save's writing: what it writes, the journal entry and the restore point it leaves.
class Writing
{
public:
    Writing(const CSableManagerDoc& doc, const IniFile& settings, const ChartSave::Collaborators& with)
        : m_doc(doc)
        , m_settings(settings)
        , m_with(with)
        , m_mine(doc.tables())
        , m_points(with.restoreFolder, with.restorePointsKept)
        , m_savedAt(QDateTime::currentDateTimeUtc())
        , m_author(SaveAuthor::current(with.program))
    {
        m_result.print = ChartFingerprint::of(m_mine);
    }

    ChartSave::Written run();

private:
    bool checkBeforeWriting();
    bool writeInTransaction(DbConnection& db);
    void raiseVersion();
    bool startRestorePoint(DbConnection& db, ChartTables theirs, const ChartFingerprint& theirPrint);
    bool restorePointWritten();
    bool refuse(const QString& why)
    {
        m_result.refusal = why;
        return false;
    }

    const CSableManagerDoc& m_doc;
    const IniFile& m_settings;
    const ChartSave::Collaborators& m_with;
    const ChartTables m_mine;
    const RestorePoints m_points;
    const QDateTime m_savedAt;
    const SaveAuthor m_author;
    ChartSave::Written m_result;
    // Last, so that a save that stops early still waits for its point before the rest goes away.
    QString m_pointProblem;
    std::future<bool> m_pointWritten;
};

bool Writing::checkBeforeWriting()
{
    QString problem;
    if (!m_with.restoreFolder.isEmpty() && !m_points.prepare(&problem))
        return refuse(Msg::kSaveRestoreFolderFailed.arg(problem));
    // The version is raised after the commit; a settings file that cannot take it (a lock held, a
    // folder in its place, a full disk) must stop the save before the transaction begins. Another
    // save may raise the version meanwhile: the check never writes a value of its own over it.
    if (!m_settings.writeDefault(Keys::kGroupInfo, Keys::kVersion, QStringLiteral("0000")))
        return refuse(Msg::kSaveSettingsNotWritable.arg(m_settings.path()));
    return true;
}

bool Writing::startRestorePoint(DbConnection& db, ChartTables theirs, const ChartFingerprint& theirPrint)
{
    std::optional<UserData> userData = ChartStore::readUserData(db, m_doc.deletedMembers());
    if (!userData)
        return false;
    // Packing a large chart takes about as long as writing it to the database: the point is written
    // on a thread of its own meanwhile, and the save waits for it before its commit.
    RestorePoint point {m_savedAt, m_author, ChartDiff::summaryLines(theirPrint.changesTo(m_result.print)),
        std::move(theirs), std::move(*userData)};
    m_pointWritten = std::async(
        std::launch::async, [this, point = std::move(point)] { return m_points.write(point, &m_pointProblem); });
    return true;
}

bool Writing::restorePointWritten()
{
    if (!m_pointWritten.valid())
        return true;
    return m_pointWritten.get() || refuse(Msg::kSaveRestoreFolderFailed.arg(m_pointProblem));
}

bool Writing::writeInTransaction(DbConnection& db)
{
    std::optional<ChartTables> theirs = ChartTables::read(db);
    if (!theirs)
        return false;
    const ChartFingerprint theirPrint = ChartFingerprint::of(*theirs);
    if (!m_with.bReplace && theirPrint != m_doc.base()) {
        m_result.theirs = std::make_shared<const ChartTables>(std::move(*theirs));
        return false;
    }
    if (!ChangeJournal::ensureTables(db))
        return refuse(Msg::kSaveJournalFailed.arg(DbConnection::lastError()));
    // Named before the stored rows go to the restore point.
    const std::vector<RowChange> changes = ChartDiff::between(theirPrint, m_result.print, ChartNames(m_mine, *theirs));
    if (!m_with.restoreFolder.isEmpty() && !startRestorePoint(db, std::move(*theirs), theirPrint))
        return false;
    if (!ChangeJournal::record(db, m_savedAt, m_author, changes) || !ChartSave::writeTables(db, m_doc, m_mine)
        || !restorePointWritten() || !db.commitTrans())
        return false;
    raiseVersion();
    return true;
}

void Writing::raiseVersion()
{
    // Only once the tables hold the new chart: a version ahead of the database sends the server's
    // clients for a chart that is not there (and a save killed before its commit must not leave one).
    // Killed between the commit and this write, the version stays behind until the next save.
    const bool bRaised
        = m_settings.updateString(Keys::kGroupInfo, Keys::kVersion, [](const std::optional<QString>& current) {
              const int value = current && !current->isEmpty() ? LeadingNumber::profileValue(*current) : 0;
              return QStringLiteral("%1").arg(ChartSave::nextVersion(value), 4, 10, QLatin1Char('0'));
          });
    if (!bRaised)
        m_result.versionProblem = Msg::kSaveVersionNotRaised.arg(m_settings.path());
}

ChartSave::Written Writing::run()
{
    if (!checkBeforeWriting())
        return m_result;
    if (m_with.isFileBoxServerRunning && m_with.isFileBoxServerRunning() && m_with.stopFileBoxServer)
        m_with.stopFileBoxServer();
    DbConnection db = m_with.connect();
    if (!db.isEmpty() && db.beginWriteTrans(ChartSave::lockedTables())) {
        m_result.bWritten = writeInTransaction(db);
        if (!m_result.bWritten)
            db.rollbackTrans();
    }
    if (db.state() == 1)
        db.close();
    return m_result;
}

} // namespace

const QStringList& ChartSave::lockedTables()
{
    static const QStringList tables = {QStringLiteral("SD_Group"), QStringLiteral("SD_Member"),
        QStringLiteral("SD_Relation"), QStringLiteral("SD_Rank"), QStringLiteral("SB_Folder"),
        QStringLiteral("SB_GroupAuthority"), QStringLiteral("SB_UserAuthority")};
    return tables;
}

bool ChartSave::writeTables(DbConnection& db, const CSableManagerDoc& doc, const ChartTables& tables)
{
    // The memberships of a department that exists now were just written: a deleted department's
    // number in the list must not take them away again.
    QList<int> deletedGroups;
    for (const int groupId : doc.deletedGroups()) {
        if (!doc.chart().findGroup(groupId))
            deletedGroups << groupId;
    }
    return ChartStore::write(db, tables.groups, tables.members, tables.relations) && RankStore::store(db, tables.ranks)
        && FileBoxStore::store(db, tables.fileBox) && DirectoryLinkStore::store(db, tables.links, doc.chart())
        && ChartStore::runDeletionCascade(db, doc.deletedMembers(), deletedGroups)
        && ChartStore::insertUserData(db, doc.pendingUserData());
}

int ChartSave::nextVersion(int current)
{
    const int next = current + 1;
    return next > 9999 ? 1 : next;
}

std::optional<Balloon> ChartSave::checkIdsAndPasswords(const CSableManagerDoc& doc)
{
    const OrgChart& chart = doc.chart();
    for (int row = 0; row < chart.memberCount(); ++row) {
        const MemberRecord& member = chart.member(row);
        if (member.MemberID.isEmpty() || member.Passwd.isEmpty())
            return Balloon::error(Msg::kSaveEmptyIdOrPassword)
                .atCell(row, member.MemberID.isEmpty() ? ColMemberID : ColPasswd);
    }
    return std::nullopt;
}

std::optional<Balloon> ChartSave::checkNamesAndPasswords(const CSableManagerDoc& doc)
{
    const OrgChart& chart = doc.chart();
    for (int row = 0; row < chart.memberCount(); ++row) {
        const MemberRecord& member = chart.member(row);
        if (member.Passwd.isEmpty() || member.MemberName.isEmpty())
            return Balloon::error(Msg::kSaveEmptyIdOrPassword)
                .atCell(row, member.Passwd.isEmpty() ? ColPasswd : ColMemberName);
    }
    return std::nullopt;
}

std::optional<Balloon> ChartSave::checkUniqueLoginIds(const CSableManagerDoc& doc)
{
    const OrgChart& chart = doc.chart();
    QHash<QString, int> seen;
    seen.reserve(chart.memberCount());
    for (int row = 0; row < chart.memberCount(); ++row) {
        const QString& id = chart.member(row).MemberID;
        if (id.isEmpty())
            continue;
        if (seen.contains(id.toCaseFolded()))
            return Balloon::error(Msg::kSaveDuplicateLoginId.arg(id)).atCell(row, ColMemberID);
        seen.insert(id.toCaseFolded(), row);
    }
    return std::nullopt;
}

ChartSave::Outcome ChartSave::run(CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with,
    std::shared_ptr<const ChartTables>* conflict)
{
    if (const auto stopped = prepare(doc, with))
        return *stopped;
    const Written written = write(doc, settings, with);
    if (conflict)
        *conflict = written.theirs;
    return finish(doc, with, written);
}

std::optional<ChartSave::Outcome> ChartSave::prepare(const CSableManagerDoc& doc, const Collaborators& with)
{
    const auto refuse = [&with](const Balloon& balloon) {
        if (with.showBalloon)
            with.showBalloon(balloon);
        return Outcome::Refused;
    };
    if (const auto problem = checkIdsAndPasswords(doc))
        return refuse(*problem);
    if (const auto problem = checkUniqueLoginIds(doc))
        return refuse(*problem);
    if (!with.askYesNo(Msg::kSaveQuestion))
        return Outcome::Declined;
    if (!with.bEditorOpen)
        return refuse(Balloon::error(Msg::kSaveInEditor));
    if (const auto problem = checkNamesAndPasswords(doc))
        return refuse(*problem);
    return std::nullopt;
}

ChartSave::Written ChartSave::write(const CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with)
{
    return Writing(doc, settings, with).run();
}

ChartSave::Outcome ChartSave::finish(CSableManagerDoc& doc, const Collaborators& with, const Written& written)
{
    if (!written.bWritten) {
        if (written.theirs)
            return Outcome::Conflict;
        if (with.showBalloon)
            with.showBalloon(Balloon::error(written.refusal.isEmpty() ? Msg::kSaveDatabaseError : written.refusal));
        return written.refusal.isEmpty() ? Outcome::DatabaseFailed : Outcome::Refused;
    }
    doc.markSaved(written.print);
    if (!written.versionProblem.isEmpty() && with.showBalloon)
        with.showBalloon(Balloon::error(written.versionProblem));
    if (with.requestStartAll)
        with.requestStartAll();
    const bool sent = with.sendChartChangedNotice
        ? with.sendChartChangedNotice()
        : ChangeNotice::send(ChangeNotice::Kind::ReloadDatabase, ChangeNotice::kDatabasePort);
    if (!sent && with.restartAll)
        with.restartAll();
    return Outcome::Saved;
}

} // namespace sable
