#include "document/ChartReader.h"

#include "Messages.h"
#include "db/DbConnection.h"
#include "directory/DirectoryLinkStore.h"
#include "document/ChartTables.h"
#include "filebox/FileBoxStore.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/ChartStore.h"
#include "orgchart/RankStore.h"

namespace sable {
namespace {

using Outcome = ChartReader::Outcome;

// One load: the phases share the connection, the builder and the progress.
class Load
{
public:
    Load(DbConnection& connection, ChartContents& contents, LoadProblems& problems, LoadProgress& progress,
        const std::atomic<int>& bContinue, bool bPrint)
        : m_db(connection)
        , m_builder(*contents.chart)
        , m_stored(contents.stored)
        , m_problems(problems)
        , m_bPrint(bPrint)
        , m_progress(progress)
        , m_bContinue(bContinue)
    { }
    ~Load()
    {
        m_builder.finish();
        m_problems = m_builder.problems();
    }

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
    // What the database holds, row by row as it passes: what a save later compares it with.
    ChartFingerprint& m_stored;
    LoadProblems& m_problems;
    const bool m_bPrint;
    qint64 m_fields[ChartFields::kMemberFieldCount] = {};
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
    DbRecordset rows = m_db.execute(ChartStore::membersQuery());
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext(), ++count) {
        m_progress.setPosition(count);
        if (stopped())
            return Outcome::OpenFailed;
        MemberRecord member = ChartStore::memberAt(rows);
        if (m_bPrint) {
            ChartFingerprint::printMember(member, m_fields);
            m_stored.add(ChartTable::Members, member.K_MemberID, m_fields);
        }
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
    DbRecordset rows = m_db.execute(ChartStore::groupsQuery());
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext(), ++count) {
        if (stopped())
            return Outcome::OpenFailed;
        m_progress.setPosition(count);
        const GroupRow group = ChartStore::groupAt(rows);
        if (m_bPrint) {
            ChartFingerprint::printGroup(group, m_fields);
            m_stored.add(ChartTable::Groups, group.K_GroupID, m_fields);
        }
        m_builder.addGroup(group);
    }
    return Outcome::Loaded;
}

Outcome Load::relations()
{
    m_progress.setText(Msg::kLoadRelations);
    m_progress.setPosition(0);
    if (!countRows(QStringLiteral("SD_Relation")))
        return Outcome::ReadFailed;
    // Memberships are placed for the departments of the tree only; the builder counts the others
    // among the problems, and every row counts in the print of what the database holds.
    DbRecordset rows = m_db.execute(ChartStore::relationsQuery());
    if (!rows.isValid())
        return Outcome::ReadFailed;
    for (int count = 1; !rows.isEof(); rows.moveNext()) {
        const RelationRow relation = ChartStore::relationAt(rows);
        if (m_bPrint) {
            ChartFingerprint::printRelation(relation, m_fields);
            m_stored.add(ChartTable::Relations, ChartFingerprint::relationKey(relation.K_MemberID, relation.K_GroupID),
                m_fields);
        }
        m_progress.setPosition(count++);
        if (stopped())
            return Outcome::OpenFailed;
        m_builder.addRelation(relation);
    }
    return Outcome::Loaded;
}

// The ranks and the file-box lists are few: their prints are made once they are read.
void addSmallTables(ChartContents& contents)
{
    ChartTables small;
    small.ranks = contents.ranks;
    small.fileBox = contents.fileBox;
    const ChartFingerprint print = ChartFingerprint::of(small);
    small.links = contents.directoryLinks;
    for (const ChartTable table : {ChartTable::Ranks, ChartTable::Folders, ChartTable::GroupAuthorities,
             ChartTable::UserAuthorities, ChartTable::DirectoryLinks}) {
        print.forEachKey(
            table, [&](ChartFingerprint::Key key) { contents.stored.add(table, key, print.row(table, key)); });
    }
}

} // namespace

ChartReader::Result ChartReader::read(
    const std::function<DbConnection()>& connect, LoadProgress& progress, const std::atomic<int>& bContinue, Use use)
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
        Load load(connection, result.contents, result.problems, progress, bContinue, use == Use::Editing);
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
    if (use == Use::Editing)
        addSmallTables(result.contents);
    if (!DirectoryLinkStore::load(connection, result.contents.directoryLinks))
        return fail(Outcome::ReadFailed);
    connection.close();
    if (stoppedBetweenPhases())
        return fail(Outcome::Stopped);
    return result;
}

QString ChartReader::describe(const LoadProblems& problems)
{
    if (!problems.any())
        return {};
    const QString kinds[LoadProblems::KindCount]
        = {Msg::kProblemUnknownDepartment, Msg::kProblemUnknownUser, Msg::kProblemNoParent,
            Msg::kProblemDuplicateDepartment, Msg::kProblemDuplicateUser, Msg::kProblemDuplicateLogin};
    QStringList lines {Msg::kProblemsHeading.arg(problems.total())};
    for (int kind = 0; kind < LoadProblems::KindCount; ++kind) {
        const int count = problems.counts[static_cast<size_t>(kind)];
        if (count == 0)
            continue;
        QString examples = problems.examples[static_cast<size_t>(kind)].join(QStringLiteral(", "));
        if (count > LoadProblems::kExamples)
            examples += QStringLiteral(", ...");
        lines << kinds[kind].arg(count).arg(examples);
    }
    return lines.join(u'\n');
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
