#include "document/ChartSave.h"

#include "Messages.h"
#include "SettingsKeys.h"
#include "directory/DirectoryLinkStore.h"
#include "document/CSableManagerDoc.h"
#include "filebox/FileBoxStore.h"
#include "orgchart/ChartStore.h"
#include "orgchart/RankStore.h"
#include "platform/ChangeNotice.h"
#include "platform/IniFile.h"

namespace sable {
namespace {

// Writes everything in one transaction; false (rolled back) on the first failure.
bool writeAll(DbConnection& db, const CSableManagerDoc& doc, const IniFile& settings)
{
    if (db.isEmpty() || !db.beginTrans())
        return false;
    if (ChartSave::writeTables(db, doc)) {
        // The version is raised before the commit, so a commit that fails leaves it raised.
        const int version = ChartSave::nextVersion(settings.readInt(Keys::kGroupInfo, Keys::kVersion, 0));
        settings.writeString(
            Keys::kGroupInfo, Keys::kVersion, QStringLiteral("%1").arg(version, 4, 10, QLatin1Char('0')));
        if (db.commitTrans())
            return true;
    }
    db.rollbackTrans();
    return false;
}

} // namespace

bool ChartSave::writeTables(DbConnection& db, const CSableManagerDoc& doc)
{
    return ChartStore::write(db, doc.chart()) && RankStore::store(db, doc.ranks())
        && FileBoxStore::store(db, doc.fileBox()) && DirectoryLinkStore::store(db, doc.directoryLinks(), doc.chart())
        && ChartStore::runDeletionCascade(db, doc.deletedMembers(), doc.deletedGroups());
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

ChartSave::Outcome ChartSave::run(CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with)
{
    if (const auto stopped = prepare(doc, with))
        return *stopped;
    return finish(doc, with, write(doc, settings, with));
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
    if (!with.askYesNo(Msg::kSaveQuestion))
        return Outcome::Declined;
    if (!with.bEditorOpen)
        return refuse(Balloon::error(Msg::kSaveInEditor));
    if (const auto problem = checkNamesAndPasswords(doc))
        return refuse(*problem);
    return std::nullopt;
}

bool ChartSave::write(const CSableManagerDoc& doc, const IniFile& settings, const Collaborators& with)
{
    if (with.isFileBoxServerRunning && with.isFileBoxServerRunning() && with.stopFileBoxServer)
        with.stopFileBoxServer();
    DbConnection db = with.connect();
    const bool saved = writeAll(db, doc, settings);
    if (db.state() == 1)
        db.close();
    return saved;
}

ChartSave::Outcome ChartSave::finish(CSableManagerDoc& doc, const Collaborators& with, bool written)
{
    if (!written) {
        if (with.showBalloon)
            with.showBalloon(Balloon::error(Msg::kSaveDatabaseError));
        return Outcome::DatabaseFailed;
    }
    doc.markSaved();
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
