#include "document/ChartReader.h"

#include "Messages.h"
#include "db/DbConnection.h"
#include "directory/DirectoryLinkStore.h"
#include "filebox/FileBoxStore.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/RankStore.h"

namespace sable {
namespace {

using Outcome = ChartReader::Outcome;

// One load: the phases share the connection, the builder and the progress.
class Load
{
public:
    Load(DbConnection& connection, ChartContents& contents, LoadProgress& progress, const std::atomic<int>& bContinue)
        : m_db(connection)
        , m_builder(*contents.chart)
        , m_progress(progress)
        , m_bContinue(bContinue)
    { }
    ~Load() { m_builder.finish(); }

    // The three phases in order; the first that does not finish ends the load.
    Outcome run();

private:
    Outcome members();
    Outcome groups();
    Outcome relations();

    // Sets the range from "SELECT COUNT(*) FROM table"; false when the statement failed.
    bool countRows(const QString& table);
    bool stopped() const { return m_bContinue.load() == 0; }

    DbConnection& m_db;
    ChartBuilder m_builder;
    LoadProgress& m_progress;
    const std::atomic<int>& m_bContinue;
};

Outcome Load::run()
{
    for (const auto phase : {&Load::members, &Load::groups, &Load::relations}) {
        const Outcome outcome = (this->*phase)();
        if (outcome != Outcome::Loaded)
            return outcome;
    }
    return Outcome::Loaded;
}

bool Load::countRows(const QString& table)
{
    DbRecordset count = m_db.execute(QStringLiteral("SELECT COUNT(*) FROM ") + table);
    if (!count.isValid())
        return false;
    if (!count.isEof())
        m_progress.setRange(count.fieldInt(0));
    return true;
}

Outcome Load::members()
{
    m_progress.setText(Msg::kLoadMembers);
    if (!countRows(QStringLiteral("SD_Member")))
        return Outcome::ReadFailed;
    DbRecordset rows = m_db.execute(
        QStringLiteral("SELECT MemberID,MemberName,Passwd,Gender,bPublic,Email,HP,Homephone,Address,HomePhone,BirthDay,"
                       "bSolar,bAdmin,K_MemberID,Officephone,Description  FROM SD_Member"));
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext(), ++count) {
        m_progress.setPosition(count);
        if (stopped())
            return Outcome::OpenFailed;
        MemberRecord member;
        member.bAdmin = rows.fieldInt(12) != 0;
        member.bSolar = rows.fieldInt(11) != 0;
        member.bPublic = rows.fieldInt(4) != 0;
        member.Gender = rows.fieldInt(3) == 0 ? 0 : 1;
        member.K_MemberID = rows.fieldInt(13);
        member.Description = rows.fieldText(15);
        member.BirthDay = rows.fieldText(10);
        member.Address = rows.fieldText(8);
        member.OfficePhone = rows.fieldText(14);
        member.HomePhone = rows.fieldText(7); // the first of the two home-phone columns
        member.HP = rows.fieldText(6);
        member.Email = rows.fieldText(5);
        member.Passwd = rows.fieldText(2);
        member.MemberName = rows.fieldText(1);
        member.MemberID = rows.fieldText(0);
        m_builder.addMember(std::move(member));
    }
    return Outcome::Loaded;
}

Outcome Load::groups()
{
    m_progress.setText(Msg::kLoadGroups);
    m_progress.setPosition(0);
    if (!countRows(QStringLiteral("SD_Group")))
        return Outcome::ReadFailed;
    DbRecordset rows = m_db.execute(
        QStringLiteral("SELECT K_GroupID,GroupName,Position,K_GroupID_P FROM SD_Group ORDER BY Depth,Position"));
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext(), ++count) {
        if (stopped())
            return Outcome::OpenFailed;
        m_progress.setPosition(count);
        GroupRow row;
        row.GroupName = rows.fieldText(1);
        row.K_GroupID = rows.fieldInt(0);
        row.Position = rows.fieldInt(2);
        row.K_GroupID_P = rows.fieldInt(3);
        m_builder.addGroup(row);
    }
    return Outcome::Loaded;
}

Outcome Load::relations()
{
    m_progress.setText(Msg::kLoadRelations);
    m_progress.setPosition(0);
    if (!countRows(QStringLiteral("SD_Relation")))
        return Outcome::ReadFailed;
    // Memberships are read for the departments of the tree only; with no department none are read.
    if (!m_builder.hasGroups())
        return Outcome::Loaded;
    std::vector<int> groupIds = m_builder.groupIdsInTreeOrder();
    std::sort(groupIds.begin(), groupIds.end());
    DbRecordset rows = m_db.execute(QStringLiteral("SELECT K_MemberID,K_RankID,Position,K_GroupID FROM SD_Relation"));
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext()) {
        const int groupId = rows.fieldInt(3);
        if (!std::binary_search(groupIds.begin(), groupIds.end(), groupId))
            continue;
        m_progress.setPosition(count++);
        if (stopped())
            return Outcome::OpenFailed;
        m_builder.addRelation({rows.fieldInt(0), groupId, rows.fieldInt(1), rows.fieldInt(2)});
    }
    return Outcome::Loaded;
}

} // namespace

ChartReader::Result ChartReader::read(
    const std::function<DbConnection()>& connect, LoadProgress& progress, const std::atomic<int>& bContinue)
{
    Result result;
    progress.setText(Msg::kLoadOpening);
    DbConnection connection = connect();
    if (connection.isEmpty()) {
        result.outcome = Outcome::OpenFailed;
        result.errorText = DbConnection::lastError();
        return result;
    }
    const auto fail = [&result](Outcome outcome) {
        result.outcome = outcome;
        if (outcome == Outcome::ReadFailed)
            result.errorText = DbConnection::lastError();
        return std::move(result);
    };
    const auto stoppedBetweenPhases = [&bContinue] { return bContinue.load() == 0; };
    Outcome chart = Outcome::Loaded;
    {
        // The builder puts together what was read when the load ends, also when it ends early.
        Load load(connection, result.contents, progress, bContinue);
        chart = load.run();
    }
    if (chart != Outcome::Loaded)
        return fail(chart);
    if (stoppedBetweenPhases())
        return fail(Outcome::Stopped);
    if (!RankStore::load(connection, result.contents.ranks))
        return fail(Outcome::ReadFailed);
    if (stoppedBetweenPhases())
        return fail(Outcome::Stopped);
    if (!FileBoxStore::load(connection, result.contents.fileBox))
        return fail(Outcome::ReadFailed);
    if (!DirectoryLinkStore::load(connection, result.contents.directoryLinks))
        return fail(Outcome::ReadFailed);
    connection.close();
    if (stoppedBetweenPhases())
        return fail(Outcome::Stopped);
    return result;
}

QString ChartReader::message(Outcome outcome)
{
    switch (outcome) {
    case Outcome::OpenFailed:
        return Msg::kLoadOpenFailed;
    case Outcome::ReadFailed:
        return Msg::kLoadReadFailed;
    case Outcome::Loaded:
    case Outcome::Stopped:
        break;
    }
    return {};
}

} // namespace sable
