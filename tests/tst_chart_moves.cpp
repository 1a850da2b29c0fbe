// Reorganising the chart: departments and members moved by command and by dragging tree nodes,
// what is refused and why, and undo and redo that give back exactly the document before and after.

#include "ChartText.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartMoves.h"
#include "orgchart/ChartBuilder.h"

#include <QDataStream>
#include <QIODevice>
#include <QTest>

using namespace sable;

namespace {

// 본사[#1:1 A[#2:2 A1[#3:3]] B[#4:3 #5] C] with members 1..6 (6 in no department), ranks 1..3, and
// member 5 also in A1.
void chart(CSableManagerDoc& doc)
{
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    for (int id = 1; id <= 6; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        member.MemberID = QStringLiteral("user%1").arg(id);
        member.MemberName = QStringLiteral("사용자%1").arg(id);
        builder.addMember(member);
    }
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("A"), 1, 2, 1});
    builder.addGroup({4, QStringLiteral("B"), 1, 3, 1});
    builder.addGroup({5, QStringLiteral("C"), 1, 4, 1});
    builder.addGroup({3, QStringLiteral("A1"), 2, 2, 2});
    builder.addRelation({1, 1, 1, 1});
    builder.addRelation({2, 2, 2, 1});
    builder.addRelation({3, 3, 3, 1});
    builder.addRelation({5, 3, -1, 2});
    builder.addRelation({4, 4, 3, 1});
    builder.addRelation({5, 4, -1, 2});
    builder.finish();
    for (int id = 1; id <= 3; ++id)
        contents.ranks.insert(id - 1, {id, QStringLiteral("직급%1").arg(id)});
    contents.fileBox.groupAuthorities = {{1, 2, Read}, {1, 3, ReadWrite}};
    doc.adopt(std::move(contents));
}

const QString kStart = QStringLiteral("본사[#1:1 A[#2:2 A1[#3:3 #5]] B[#4:3 #5] C]");

OrgNode* group(CSableManagerDoc& doc, int id)
{
    return doc.chart().findGroup(id);
}

OrgNode* placement(CSableManagerDoc& doc, int groupId, int memberId)
{
    return doc.chart().placementIn(group(doc, groupId), memberId);
}

// Checks the step against `expected` and that undo and redo give back exactly before and after.
void verifyStep(CSableManagerDoc& doc, const QByteArray& before, const QString& expected)
{
    QCOMPARE(chartText(doc.chart()), expected);
    if (expected == kStart) {
        QCOMPARE(snapshot(doc), before);
        return;
    }
    QVERIFY(doc.isModified());
    const QByteArray after = snapshot(doc);
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
    doc.history().redo();
    QCOMPARE(snapshot(doc), after);
}

QByteArray forgedPayload(const QByteArray& token, quint64 revision, const QList<QList<quint32>>& paths)
{
    QByteArray payload;
    QDataStream out(&payload, QIODevice::WriteOnly);
    out << quint32(0x53424e31) << token << revision << quint32(paths.size());
    for (const auto& path : paths) {
        out << quint32(path.size());
        for (const quint32 row : path)
            out << row;
    }
    return payload;
}

} // namespace

class TestChartMoves : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moveDepartment_data();
    void moveDepartment();
    void moveMemberNodes_data();
    void moveMemberNodes();
    void moveUsers_data();
    void moveUsers();
    void dropPlace_data();
    void dropPlace();
    void nodePayload_data();
    void nodePayload();
    void dragLabel();
};

void TestChartMoves::moveDepartment_data()
{
    QTest::addColumn<int>("department");
    QTest::addColumn<int>("parent"); // a group, 0 for the top level, -(member) for that member's node in A1
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("tree");
    QTest::addColumn<QString>("balloon");
    QTest::newRow("into another department, last") << 2 << 4 << -1 << "본사[#1:1 B[#4:3 #5 A[#2:2 A1[#3:3 #5]]] C]"
                                                   << "";
    QTest::newRow("before a sibling") << 5 << 1 << 1 << "본사[#1:1 C A[#2:2 A1[#3:3 #5]] B[#4:3 #5]]"
                                      << "";
    QTest::newRow("after a later sibling") << 2 << 1 << 4 << "본사[#1:1 B[#4:3 #5] C A[#2:2 A1[#3:3 #5]]]"
                                           << "";
    QTest::newRow("beside the top department") << 3 << 0 << 0 << kStart << "";
    QTest::newRow("where it is already") << 2 << 1 << 2 << kStart << "";
    QTest::newRow("onto a member node: its department")
        << 5 << -3 << -1 << "본사[#1:1 A[#2:2 A1[#3:3 #5 C]] B[#4:3 #5]]"
        << "";
    QTest::newRow("under itself") << 2 << 2 << -1 << kStart << "부서를 자기 자신이나 그 아래 부서로 옮길 수 없습니다.";
    QTest::newRow("under its own sub-department")
        << 2 << 3 << -1 << kStart << "부서를 자기 자신이나 그 아래 부서로 옮길 수 없습니다.";
    QTest::newRow("the top department") << 1 << 5 << -1 << kStart
                                        << "부서를 자기 자신이나 그 아래 부서로 옮길 수 없습니다.";
}

void TestChartMoves::moveDepartment()
{
    QFETCH(int, department);
    QFETCH(int, parent);
    QFETCH(int, index);
    QFETCH(QString, tree);
    QFETCH(QString, balloon);
    CSableManagerDoc doc;
    chart(doc);
    const QByteArray before = snapshot(doc);
    OrgNode* target = parent > 0 ? group(doc, parent)
        : parent == 0            ? doc.chart().invisibleRoot()
                                 : placement(doc, 3, -parent);
    const EditOutcome outcome = ChartMoves(doc).moveDepartment(group(doc, department), target, index);
    QCOMPARE(outcome.balloon ? outcome.balloon->text : QString(), balloon);
    if (outcome.balloon)
        QCOMPARE(outcome.balloon->node, group(doc, department));
    QCOMPARE(outcome.bChanged, tree != kStart);
    verifyStep(doc, before, tree);
    // Everything below goes along: the depths follow, the permissions stay with the department.
    QCOMPARE(doc.chart().depth(group(doc, 3)), doc.chart().depth(group(doc, 2)) + 1);
    QCOMPARE(doc.fileBox().groupAuthorities.size(), size_t(2));
}

void TestChartMoves::moveMemberNodes_data()
{
    QTest::addColumn<QList<int>>("nodes"); // group * 10 + member
    QTest::addColumn<int>("department");
    QTest::addColumn<bool>("copy");
    QTest::addColumn<QString>("tree");
    QTest::newRow("keeps the rank") << QList<int> {22} << 5 << false << "본사[#1:1 A[A1[#3:3 #5]] B[#4:3 #5] C[#2:2]]";
    QTest::newRow("several, in tree order")
        << QList<int> {44, 11, 33} << 5 << false << "본사[A[#2:2 A1[#5]] B[#5] C[#1:1 #3:3 #4:3]]";
    QTest::newRow("merges where the member is")
        << QList<int> {35} << 4 << false << "본사[#1:1 A[#2:2 A1[#3:3]] B[#4:3 #5] C]";
    QTest::newRow("the same member twice merges")
        << QList<int> {35, 45} << 5 << false << "본사[#1:1 A[#2:2 A1[#3:3]] B[#4:3] C[#5]]";
    QTest::newRow("its own department") << QList<int> {44} << 4 << false << kStart;
    QTest::newRow("copy adds by the adding rule")
        << QList<int> {22, 11} << 5 << true << "본사[#1:1 A[#2:2 A1[#3:3 #5]] B[#4:3 #5] C[#2:3 #1:3]]";
}

void TestChartMoves::moveMemberNodes()
{
    QFETCH(QList<int>, nodes);
    QFETCH(int, department);
    QFETCH(bool, copy);
    QFETCH(QString, tree);
    CSableManagerDoc doc;
    chart(doc);
    const QByteArray before = snapshot(doc);
    std::vector<OrgNode*> placements;
    for (const int code : nodes)
        placements.push_back(placement(doc, code / 10, code % 10));
    const int steps = doc.history().index();
    ChartMoves(doc).moveMemberNodes(placements, group(doc, department), copy);
    QCOMPARE(doc.history().index(), steps + (tree == kStart ? 0 : 1));
    verifyStep(doc, before, tree);
}

void TestChartMoves::moveUsers_data()
{
    QTest::addColumn<QList<int>>("rows");
    QTest::addColumn<int>("choice"); // of member 5's memberships (A1, then B in tree order); -1 cancels
    QTest::addColumn<QString>("tree");
    QTest::addColumn<bool>("asked");
    QTest::newRow("one membership, rank kept")
        << QList<int> {1} << 0 << "본사[#1:1 A[A1[#3:3 #5]] B[#4:3 #5] C[#2:2]]" << false;
    QTest::newRow("in no department: placed with no rank")
        << QList<int> {5} << 0 << "본사[#1:1 A[#2:2 A1[#3:3 #5]] B[#4:3 #5] C[#6]]" << false;
    QTest::newRow("several: the chosen one moves")
        << QList<int> {4} << 1 << "본사[#1:1 A[#2:2 A1[#3:3 #5]] B[#4:3] C[#5]]" << true;
    QTest::newRow("cancelled: nobody moves") << QList<int> {1, 4} << -1 << kStart << true;
    QTest::newRow("together, one step") << QList<int> {0, 3, 5} << 0
                                        << "본사[A[#2:2 A1[#3:3 #5]] B[#5] C[#1:1 #4:3 #6]]" << false;
}

void TestChartMoves::moveUsers()
{
    QFETCH(QList<int>, rows);
    QFETCH(int, choice);
    QFETCH(QString, tree);
    QFETCH(bool, asked);
    CSableManagerDoc doc;
    chart(doc);
    const QByteArray before = snapshot(doc);
    QStringList questions;
    const auto choose = [&](const MemberRecord& member, const std::vector<OrgNode*>& placements) -> OrgNode* {
        QStringList paths;
        for (const OrgNode* node : placements)
            paths << doc.chart().departmentPath(node);
        questions << member.MemberID + u'>' + paths.join(u'|');
        return choice >= 0 ? placements[static_cast<size_t>(choice)] : nullptr;
    };
    ChartMoves(doc).moveUsers(std::vector<int>(rows.begin(), rows.end()), group(doc, 5), choose);
    QCOMPARE(questions, asked ? QStringList {QStringLiteral("user5>본사/A/A1|본사/B")} : QStringList());
    verifyStep(doc, before, tree);
}

void TestChartMoves::dropPlace_data()
{
    QTest::addColumn<int>("target"); // a group, or -(member) for the node of that member in A1
    QTest::addColumn<double>("fraction");
    QTest::addColumn<int>("parent");
    QTest::addColumn<int>("index");
    QTest::newRow("upper third: before") << 4 << 0.2 << 1 << 2;
    QTest::newRow("middle: last child") << 4 << 0.5 << 4 << -1;
    QTest::newRow("lower third: after") << 4 << 0.8 << 1 << 3;
    QTest::newRow("beside the top department: into it") << 1 << 0.1 << 1 << -1;
    QTest::newRow("member node, upper: before it") << -5 << 0.1 << 3 << 1;
    QTest::newRow("member node, middle: its department") << -5 << 0.5 << 3 << -1;
}

void TestChartMoves::dropPlace()
{
    QFETCH(int, target);
    QFETCH(double, fraction);
    QFETCH(int, parent);
    QFETCH(int, index);
    CSableManagerDoc doc;
    chart(doc);
    OrgNode* node = target > 0 ? group(doc, target) : placement(doc, 3, -target);
    const ChartMoves::DropPlace place = ChartMoves::departmentDropPlace(doc.chart(), node, fraction);
    QCOMPARE(place.parent, group(doc, parent));
    QCOMPARE(place.index, index);
    QCOMPARE(place.bBetween, index >= 0);
    QCOMPARE(ChartMoves::memberDropDepartment(node), node->isGroup() ? node : node->parent());
}

void TestChartMoves::nodePayload_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("a department") << 0 << true;
    QTest::newRow("member nodes") << 1 << true;
    QTest::newRow("out of date") << 2 << false;
    QTest::newRow("from another console") << 3 << false;
    QTest::newRow("cut short") << 4 << false;
    QTest::newRow("a department and a member") << 5 << false;
    QTest::newRow("two departments") << 6 << false;
    QTest::newRow("a place that does not exist") << 7 << false;
    QTest::newRow("the same node twice") << 8 << false;
    QTest::newRow("nothing") << 9 << false;
}

void TestChartMoves::nodePayload()
{
    QFETCH(int, kind);
    QFETCH(bool, accepted);
    CSableManagerDoc doc;
    chart(doc);
    ChartMoves moves(doc);
    const QByteArray department = moves.nodePayload({group(doc, 2)});
    const QByteArray token = department.mid(8, 16);
    const quint64 revision = doc.chart().revision();
    QByteArray payload;
    switch (kind) {
    case 0:
        payload = department;
        break;
    case 1:
        payload = moves.nodePayload({placement(doc, 4, 4), placement(doc, 1, 1)});
        break;
    case 2:
        doc.chart().renameGroup(group(doc, 5), QStringLiteral("D"));
        payload = department;
        break;
    case 3:
        payload = forgedPayload(QByteArray(16, 'x'), revision, {{0, 1}});
        break;
    case 4:
        payload = department.left(department.size() - 2);
        break;
    case 5:
        payload = moves.nodePayload({group(doc, 2), placement(doc, 1, 1)});
        break;
    case 6:
        payload = moves.nodePayload({group(doc, 2), group(doc, 4)});
        break;
    case 7:
        payload = forgedPayload(token, revision, {{0, 9}});
        break;
    case 8:
        payload = forgedPayload(token, revision, {{0, 0}, {0, 0}});
        break;
    case 9:
        payload = forgedPayload(token, revision, {});
        break;
    }
    QCOMPARE(moves.nodesOfPayload(payload).has_value(), accepted);
    const QByteArray before = snapshot(doc);
    const EditOutcome outcome = moves.dropNodes(payload, group(doc, 5), -1, false);
    QCOMPARE(outcome.bChanged, accepted);
    QVERIFY(!outcome.balloon);
    if (!accepted)
        QCOMPARE(snapshot(doc), before);
}

void TestChartMoves::dragLabel()
{
    CSableManagerDoc doc;
    chart(doc);
    ChartMoves moves(doc);
    QCOMPARE(moves.dragLabel(std::vector<int> {1}), QStringLiteral("사용자 1명: 사용자1"));
    QCOMPARE(moves.dragLabel(std::vector<int> {1, 2}), QStringLiteral("사용자 2명: 사용자1, 사용자2"));
    QCOMPARE(moves.dragLabel(std::vector<int> {1, 2, 3}), QStringLiteral("사용자 3명: 사용자1, 사용자2, …"));
    QCOMPARE(moves.dragLabel(std::vector<OrgNode*> {group(doc, 3)}), QStringLiteral("부서: A1"));
}

QTEST_GUILESS_MAIN(TestChartMoves)
#include "tst_chart_moves.moc"
