// The chart in memory: what the tree computes (positions, depths, identifiers), what it finds, and
// the rules of the rank list and the file-box lists.

#include "ChartText.h"
#include "filebox/FileBoxHome.h"
#include "filebox/FileBoxLists.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/OrgChartListener.h"
#include "orgchart/RankList.h"

#include <QTest>

#include <limits>

using namespace sable;

namespace {

// Builds "본사(1) > 영업부(2), 개발부(3)" with members 1..3: #1 in 본사 first, #2 in 영업부, #3 in both.
void buildSmallChart(OrgChart& chart)
{
    ChartBuilder builder(chart);
    for (int id = 1; id <= 3; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        member.MemberID = QStringLiteral("user%1").arg(id);
        member.MemberName = QStringLiteral("사용자%1").arg(id);
        builder.addMember(member);
    }
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("영업부"), 1, 2, 1});
    builder.addGroup({3, QStringLiteral("개발부"), 1, 3, 1});
    builder.addRelation({1, 1, 5, 1});
    builder.addRelation({2, 2, -1, 1});
    builder.addRelation({3, 2, 7, 2});
    builder.addRelation({3, 3, 7, 1});
    builder.finish();
}

// Records what listeners are told, to check that every change is announced before and after.
class Recorder final : public OrgChartListener
{
public:
    QStringList events;
    void nodesAboutToBeInserted(const OrgNode*, int first, int) override
    {
        events << QStringLiteral("+?%1").arg(first);
    }
    void nodesInserted(const OrgNode*, int first, int) override { events << QStringLiteral("+%1").arg(first); }
    void nodesAboutToBeRemoved(const OrgNode*, int first, int) override { events << QStringLiteral("-?%1").arg(first); }
    void nodesRemoved(const OrgNode*, int first, int) override { events << QStringLiteral("-%1").arg(first); }
    void memberChanged(int row) override { events << QStringLiteral("m%1").arg(row); }
    void membersChanged(const std::vector<int>& rows) override { events << QStringLiteral("m*%1").arg(rows.size()); }
    void treeAboutToBeRestructured() override { events << QStringLiteral("~?"); }
    void treeRestructured(const std::vector<const OrgNode*>& nodes) override
    {
        events << QStringLiteral("~%1").arg(nodes.size());
    }
};

// 본사 holding `count` members #1..#count, each in no other department.
void buildWideChart(OrgChart& chart, int count)
{
    ChartBuilder builder(chart);
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("팀"), 1, count + 1, 1});
    for (int id = 1; id <= count; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        builder.addMember(member);
        builder.addRelation({id, 1, -1, id});
    }
    builder.finish();
}

} // namespace

class TestChartModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void positionsAndDepths();
    void placementsFollowChanges();
    void batchRemovalAndReturn_data();
    void batchRemovalAndReturn();
    void batchMoveKeepsPlacements();
    void rowsByIdentifier();
    void nextGroupId_data();
    void nextGroupId();
    void nextMemberId();
    void takeAndPutBackMembers();
    void rankPositions();
    void folderNumbering_data();
    void folderNumbering();
    void authorityLevels_data();
    void authorityLevels();
    void setAuthorityReplacesOrAppends();
    void relativeFolderPath_data();
    void relativeFolderPath();
};

void TestChartModel::positionsAndDepths()
{
    OrgChart chart;
    buildSmallChart(chart);
    QCOMPARE(chartText(chart), QStringLiteral("본사[#1:5 영업부[#2 #3:7] 개발부[#3:7]]"));
    const OrgNode* top = chart.rootGroup();
    QCOMPARE(chart.parentGroupId(top), -1);
    QCOMPARE(chart.position(top), 1);
    QCOMPARE(chart.depth(top), 0);
    // Positions count members and sub-departments together.
    const OrgNode* sales = chart.findGroup(2);
    QCOMPARE(chart.position(sales), 2);
    QCOMPARE(chart.depth(sales), 1);
    QCOMPARE(chart.parentGroupId(sales), 1);
    const OrgNode* inDevelopment = chart.placementIn(chart.findGroup(3), 3);
    QVERIFY(inDevelopment);
    QCOMPARE(chart.depth(inDevelopment), 2);
    QCOMPARE(chart.departmentPath(inDevelopment), QStringLiteral("본사/개발부"));
    QCOMPARE(chart.displayName(inDevelopment), QStringLiteral("사용자3"));
    QCOMPARE(chart.position(nullptr), -1);
    QCOMPARE(chart.depth(nullptr), -1);
}

void TestChartModel::placementsFollowChanges()
{
    OrgChart chart;
    buildSmallChart(chart);
    Recorder recorder;
    chart.addListener(&recorder);
    QCOMPARE(chart.placementsOf(3).size(), size_t(2));

    // Removing the sales department releases #2 (now in no department) but not #3.
    std::unique_ptr<OrgNode> sales = chart.takeNode(chart.findGroup(2));
    QCOMPARE(chart.findGroup(2), nullptr);
    QVERIFY(!chart.hasPlacement(2));
    QCOMPARE(chart.placementsOf(3).size(), size_t(1));
    QCOMPARE(chart.groupCount(), 2);
    QCOMPARE(chart.placementCount(), 2);
    QCOMPARE(chartText(chart), QStringLiteral("본사[#1:5 개발부[#3:7]]"));
    QCOMPARE(recorder.events, QStringList({"-?1", "-1", QStringLiteral("m%1").arg(chart.rowOf(2))}));

    // Putting it back restores the same finds, and a later sibling's position moves.
    recorder.events.clear();
    chart.insertNode(chart.rootGroup(), 1, std::move(sales));
    QCOMPARE(chart.findGroup(2)->row(), 1);
    QCOMPARE(chart.position(chart.findGroup(3)), 3);
    QVERIFY(chart.hasPlacement(2));
    QCOMPARE(recorder.events, QStringList({"+?1", "+1", QStringLiteral("m%1").arg(chart.rowOf(2))}));

    chart.moveNode(chart.findGroup(3), 0);
    QCOMPARE(chartText(chart), QStringLiteral("본사[개발부[#3:7] #1:5 영업부[#2 #3:7]]"));
    QCOMPARE(chart.position(chart.placementIn(chart.rootGroup(), 1)), 2);
    chart.removeListener(&recorder);
}

void TestChartModel::batchRemovalAndReturn_data()
{
    QTest::addColumn<int>("step"); // every step-th member node of 40 is taken
    QTest::addColumn<QStringList>("events");
    QTest::newRow("a few places: told range by range")
        << 10 << QStringList {"-?30", "-30", "-?20", "-20", "-?10", "-10", "-?0", "-0", "m30", "m20", "m10", "m0"};
    QTest::newRow("many places: told at once") << 2 << QStringList {"~?", "~20", "m*20"};
}

void TestChartModel::batchRemovalAndReturn()
{
    QFETCH(int, step);
    QFETCH(QStringList, events);
    OrgChart chart;
    buildWideChart(chart, 40);
    const QString before = chartText(chart);
    Recorder recorder;
    chart.addListener(&recorder);
    std::vector<OrgNode*> nodes;
    for (int row = 0; row < 40; row += step)
        nodes.push_back(chart.rootGroup()->child(row));
    std::vector<DetachedNode> taken = chart.takeNodes(nodes);
    QCOMPARE(recorder.events, events);
    QCOMPARE(chart.placementCount(), 40 - static_cast<int>(nodes.size()));
    QVERIFY(!chart.hasPlacement(1));
    QCOMPARE(chart.position(chart.findGroup(2)), 41 - static_cast<int>(nodes.size()));
    // Put back, each at its place: the same tree, the same finds.
    chart.insertNodes(std::move(taken));
    QCOMPARE(chartText(chart), before);
    QCOMPARE(chart.placementIn(chart.rootGroup(), 1), chart.rootGroup()->child(0));
    QCOMPARE(chart.position(chart.findGroup(2)), 41);
    chart.removeListener(&recorder);
}

void TestChartModel::batchMoveKeepsPlacements()
{
    OrgChart chart;
    buildWideChart(chart, 30);
    Recorder recorder;
    chart.addListener(&recorder);
    OrgNode* team = chart.findGroup(2);
    std::vector<NodeMove> moves;
    for (int row = 0; row < 30; row += 3)
        moves.push_back({chart.rootGroup()->child(row), team, static_cast<int>(moves.size())});
    const quint64 departments = chart.departmentRevision();
    std::vector<NodeMove> back = chart.moveNodes(moves);
    QCOMPARE(chartText(chart, team), QStringLiteral("#1 #4 #7 #10 #13 #16 #19 #22 #25 #28"));
    // Nobody left a department or came into one: no member changed, the departments stayed.
    QCOMPARE(recorder.events, (QStringList {"~?", "~10"}));
    QCOMPARE(chart.placementsOf(4).size(), size_t(1));
    QCOMPARE(chart.placementIn(team, 4), team->child(1));
    QCOMPARE(chart.departmentRevision(), departments);
    chart.moveNodes(back);
    QCOMPARE(chart.rootGroup()->child(3)->memberId(), 4);
    QCOMPARE(team->childCount(), 0);
    chart.removeListener(&recorder);
}

void TestChartModel::rowsByIdentifier()
{
    // Small identifiers, one far beyond them, and one identifier twice: the first row counts.
    OrgChart chart;
    for (const int id : {5, 1 << 30, 5, 7, -3}) {
        MemberRecord member;
        member.K_MemberID = id;
        chart.insertMember(chart.memberCount(), member);
    }
    QCOMPARE(chart.rowOf(5), 0);
    QCOMPARE(chart.rowOf(1 << 30), 1);
    QCOMPARE(chart.rowOf(-3), 4);
    chart.takeMembers({0, 1});
    QCOMPARE(chart.rowOf(5), 0);
    QCOMPARE(chart.rowOf(1 << 30), -1);
    QCOMPARE(chart.rowOf(7), 1);
    MemberRecord first;
    first.K_MemberID = 7;
    chart.insertMember(0, first);
    QCOMPARE(chart.rowOf(7), 0);
    QCOMPARE(chart.rowOf(-3), 3);
}

void TestChartModel::nextGroupId_data()
{
    QTest::addColumn<QList<int>>("ids");
    QTest::addColumn<int>("next");
    QTest::newRow("empty tree") << QList<int> {} << 2;
    QTest::newRow("negative and zero count as 1") << QList<int> {-5, 0} << 2;
    QTest::newRow("greatest plus one") << QList<int> {3, 17, 5} << 18;
    QTest::newRow("overflow") << QList<int> {std::numeric_limits<int>::max()} << -2;
}

void TestChartModel::nextGroupId()
{
    QFETCH(QList<int>, ids);
    OrgChart chart;
    for (const int id : ids)
        chart.insertNode(
            chart.invisibleRoot(), chart.invisibleRoot()->childCount(), OrgNode::makeGroup(id, QStringLiteral("g")));
    QTEST(chart.nextGroupId(), "next");
    // Deleting the department with the greatest number does not free the number before the next load.
    if (!ids.isEmpty()) {
        chart.takeNode(chart.findGroup(*std::max_element(ids.begin(), ids.end())));
        QTEST(chart.nextGroupId(), "next");
    }
}

void TestChartModel::nextMemberId()
{
    OrgChart chart;
    QCOMPARE(chart.nextMemberId(), 1);
    MemberRecord member;
    member.K_MemberID = 41;
    chart.insertMember(0, member);
    member.K_MemberID = 7;
    chart.insertMember(1, member);
    QCOMPARE(chart.nextMemberId(), 42);
    chart.takeMember(0);
    QCOMPARE(chart.nextMemberId(), 42);
    OrgChart fresh;
    chart.swapContents(fresh);
    QCOMPARE(chart.nextMemberId(), 1);
}

void TestChartModel::takeAndPutBackMembers()
{
    OrgChart chart;
    for (int id = 1; id <= 40; ++id) {
        MemberRecord member;
        member.K_MemberID = id * 10;
        chart.insertMember(chart.memberCount(), member);
    }
    // Many separate rows, more than are announced one range at a time.
    std::vector<int> rows;
    for (int row = 0; row < 40; row += 2)
        rows.push_back(row);
    std::vector<MemberRecord> taken = chart.takeMembers(rows);
    QCOMPARE(chart.memberCount(), 20);
    QCOMPARE(taken.front().K_MemberID, 10);
    QCOMPARE(chart.rowOf(20), 0);
    QCOMPARE(chart.rowOf(10), -1);
    chart.insertMembers(rows, std::move(taken));
    for (int row = 0; row < 40; ++row)
        QCOMPARE(chart.member(row).K_MemberID, (row + 1) * 10);
    QCOMPARE(chart.rowOf(400), 39);
}

void TestChartModel::rankPositions()
{
    RankList ranks;
    QCOMPARE(ranks.nextRankId(), 1);
    ranks.insert(0, {4, QStringLiteral("부장")});
    ranks.insert(1, {9, QStringLiteral("과장")});
    ranks.insert(2, {2, QStringLiteral("사원")});
    QCOMPARE(ranks.positionOf(9), 1);
    QCOMPARE(ranks.positionOf(-1), -1);
    QCOMPARE(ranks.positionOf(5), -1);
    QCOMPARE(ranks.nameOf(5), QStringLiteral("직급없음"));
    QCOMPARE(ranks.nextRankId(), 10);
    ranks.move(2, 0);
    QCOMPARE(ranks.at(0).RankName, QStringLiteral("사원"));
    QCOMPARE(ranks.positionOf(4), 1);
    ranks.take(2);
    QCOMPARE(ranks.nextRankId(), 10); // 9 was freed: not handed out again
    QCOMPARE(ranks.positionOf(9), -1);
}

void TestChartModel::folderNumbering_data()
{
    QTest::addColumn<QList<int>>("existing");
    QTest::addColumn<QList<int>>("added");
    QTest::newRow("empty") << QList<int> {} << QList<int> {1, 2};
    QTest::newRow("gap filled first") << QList<int> {1, 2, 4} << QList<int> {3, 5};
    QTest::newRow("unordered with gaps") << QList<int> {5, 1, 3} << QList<int> {2, 4, 6};
}

void TestChartModel::folderNumbering()
{
    QFETCH(QList<int>, existing);
    QFETCH(QList<int>, added);
    FileBoxLists lists;
    for (const int id : existing)
        lists.folders.push_back({id, QStringLiteral("\\f%1").arg(id)});
    for (const int expected : added)
        QCOMPARE(lists.addFolder(QStringLiteral("\\new")), expected);
}

void TestChartModel::authorityLevels_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("written");
    QTest::newRow("W") << "W" << 2 << "W";
    QTest::newRow("lower-case w") << "w" << 2 << "W";
    QTest::newRow("r") << "r" << 1 << "R";
    QTest::newRow("X") << "X" << 0 << "X";
    QTest::newRow("lower-case x") << "x" << 0 << "X";
    QTest::newRow("empty") << "" << 0 << "X";
    QTest::newRow("anything else") << "Z" << 0 << "X";
}

void TestChartModel::authorityLevels()
{
    QFETCH(QString, stored);
    QFETCH(int, level);
    QFETCH(QString, written);
    QCOMPARE(FileBoxLists::levelFromText(stored), level);
    QCOMPARE(FileBoxLists::levelToText(level), written);
}

void TestChartModel::setAuthorityReplacesOrAppends()
{
    std::vector<AuthorityRecord> list;
    QCOMPARE(FileBoxLists::setAuthority(list, 1, 7, Read), 0);
    QCOMPARE(FileBoxLists::setAuthority(list, 2, 7, Read), 0);
    QCOMPARE(FileBoxLists::setAuthority(list, 1, 7, ReadWrite), 1);
    QCOMPARE(list.size(), size_t(2));
    QCOMPARE(list[0], (AuthorityRecord {1, 7, ReadWrite}));
}

void TestChartModel::relativeFolderPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("relative");
    QTest::newRow("home itself") << "/srv/sable/SableBox"
                                 << "\\";
    QTest::newRow("trailing slash") << "/srv/sable/SableBox/"
                                    << "\\";
    QTest::newRow("nested") << "/srv/sable/SableBox/Team/Docs"
                            << "\\Team\\Docs";
    QTest::newRow("outside") << "/srv/sable/Other"
                             << "";
    QTest::newRow("only a common prefix") << "/srv/sable/SableBoxes"
                                          << "";
}

void TestChartModel::relativeFolderPath()
{
    QFETCH(QString, path);
    QTEST(FileBoxHome::relativeFolderPath(QStringLiteral("/srv/sable/SableBox"), path), "relative");
}

QTEST_GUILESS_MAIN(TestChartModel)
#include "tst_chart_model.moc"
