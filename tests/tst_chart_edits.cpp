// The editing commands of the chart and the ranks: their rules, what they tell the administrator,
// and undo and redo that give back exactly the document before and after.

#include "ChartText.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/ChartJson.h"
#include "document/DemoOrganisation.h"
#include "document/RankEdits.h"
#include "orgchart/ChartBuilder.h"

#include <QTest>

using namespace sable;

namespace {

const AskYesNo kYes = [](const QString&) { return true; };
const AskYesNo kNo = [](const QString&) { return false; };

// 본사[A B 팀[C]] with members A..C = 1..3 and ranks 부장(1), 대리(2), 사원(3).
void smallChart(CSableManagerDoc& doc, const QList<int>& ranksOfRootMembers = {1, 2})
{
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    for (int id = 1; id <= 4; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        member.MemberID = QStringLiteral("user%1").arg(id);
        member.MemberName = QString(QChar(u'A' + id - 1));
        member.Passwd = QStringLiteral("pw");
        builder.addMember(member);
    }
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("팀"), 1, 3, 1});
    builder.addRelation({1, 1, ranksOfRootMembers.value(0), 1});
    builder.addRelation({2, 1, ranksOfRootMembers.value(1), 2});
    builder.addRelation({3, 2, 3, 1});
    builder.finish();
    contents.ranks.insert(0, {1, QStringLiteral("부장")});
    contents.ranks.insert(1, {2, QStringLiteral("대리")});
    contents.ranks.insert(2, {3, QStringLiteral("사원")});
    doc.adopt(std::move(contents));
}

OrgNode* root(CSableManagerDoc& doc)
{
    return doc.chart().rootGroup();
}

} // namespace

class TestChartEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void moves_data();
    void moves();
    void sortByRank_data();
    void sortByRank();
    void addToDepartmentOnce();
    void deleteNodeVersusDeleteUser();
    void deleteDepartment();
    void cellLimits_data();
    void cellLimits();
    void birthdays_data();
    void birthdays();
    void entryRow();
    void leaveRowWithoutPassword();
    void setRankCommands();
    void rankNames();
    void rankDeletion();
    void renameRank_data();
    void renameRank();
    void dragPayload_data();
    void dragPayload();
    void undoRedoRestoresExactly_data();
    void undoRedoRestoresExactly();
    void undoAcrossSave();
};

void TestChartEdits::moves_data()
{
    QTest::addColumn<int>("how");
    QTest::addColumn<int>("child"); // 0 A, 1 B, 2 팀
    QTest::addColumn<QString>("tree");
    QTest::newRow("first to top") << int(ChartEdits::Move::ToTop) << 0 << "본사[#1:1 #2:2 팀[#3:3]]";
    QTest::newRow("first up") << int(ChartEdits::Move::Up) << 0 << "본사[#1:1 #2:2 팀[#3:3]]";
    QTest::newRow("last down") << int(ChartEdits::Move::Down) << 2 << "본사[#1:1 #2:2 팀[#3:3]]";
    QTest::newRow("last to bottom") << int(ChartEdits::Move::ToBottom) << 2 << "본사[#1:1 #2:2 팀[#3:3]]";
    QTest::newRow("last up, with its subtree") << int(ChartEdits::Move::Up) << 2 << "본사[#1:1 팀[#3:3] #2:2]";
    QTest::newRow("last to top") << int(ChartEdits::Move::ToTop) << 2 << "본사[팀[#3:3] #1:1 #2:2]";
    QTest::newRow("first down") << int(ChartEdits::Move::Down) << 0 << "본사[#2:2 #1:1 팀[#3:3]]";
    QTest::newRow("first to bottom") << int(ChartEdits::Move::ToBottom) << 0 << "본사[#2:2 팀[#3:3] #1:1]";
}

void TestChartEdits::moves()
{
    QFETCH(int, how);
    QFETCH(int, child);
    QFETCH(QString, tree);
    CSableManagerDoc doc;
    smallChart(doc);
    OrgNode* node = root(doc)->child(child);
    const EditOutcome outcome = ChartEdits(doc).move(node, static_cast<ChartEdits::Move>(how));
    QCOMPARE(chartText(doc.chart()), tree);
    QCOMPARE(outcome.node, node);
    // Also a move that cannot happen counts as an edit.
    QVERIFY(doc.isModified());
    doc.history().undo();
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[#1:1 #2:2 팀[#3:3]]"));
    QVERIFY(!doc.isModified());
}

void TestChartEdits::sortByRank_data()
{
    QTest::addColumn<QList<int>>("ranks"); // of members 1 and 2 in 본사
    QTest::addColumn<QString>("tree");
    QTest::newRow("by rank, department last") << QList<int> {2, 1} << "본사[#2:1 #1:2 팀[#3:3]]";
    QTest::newRow("equal ranks keep their order") << QList<int> {2, 2} << "본사[#1:2 #2:2 팀[#3:3]]";
    QTest::newRow("no rank after every rank") << QList<int> {-1, 3} << "본사[#2:3 #1 팀[#3:3]]";
    QTest::newRow("a deleted rank counts as none") << QList<int> {99, 3} << "본사[#2:3 #1:99 팀[#3:3]]";
}

void TestChartEdits::sortByRank()
{
    QFETCH(QList<int>, ranks);
    QFETCH(QString, tree);
    CSableManagerDoc doc;
    smallChart(doc, ranks);
    // Put the department first and members into the sub-department, to see departments go last and
    // the sort go down into them.
    ChartEdits edits(doc);
    edits.move(root(doc)->child(2), ChartEdits::Move::ToTop);
    edits.addToDepartment({0, 1}, doc.chart().findGroup(2));
    doc.chart().setRank(doc.chart().placementIn(doc.chart().findGroup(2), 1), 3);
    doc.chart().setRank(doc.chart().placementIn(doc.chart().findGroup(2), 2), 1);
    doc.setModified(false);
    edits.sortByRank(root(doc));
    QCOMPARE(chartText(doc.chart()).section(QStringLiteral(" 팀"), 0, 0) + u']',
        tree.section(QStringLiteral(" 팀"), 0, 0) + u']');
    QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(2)), QStringLiteral("#2:1 #3:3 #1:3"));
    QVERIFY(!doc.isModified());
}

void TestChartEdits::addToDepartmentOnce()
{
    CSableManagerDoc doc;
    smallChart(doc);
    ChartEdits edits(doc);
    QVERIFY(!doc.chart().hasPlacement(4));
    QCOMPARE(ChartEdits::addToDepartmentLabel(doc.chart().findGroup(2)), QStringLiteral("[팀]에 추가"));
    QCOMPARE(ChartEdits::addToDepartmentLabel(root(doc)->child(0)), QString());
    QCOMPARE(ChartEdits::addToDepartmentLabel(nullptr), QString());
    edits.addToDepartment({3, 2}, doc.chart().findGroup(2));
    edits.addToDepartment({3}, doc.chart().findGroup(2));
    // One node per member and department; the rank is the number of ranks, as it stands.
    QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(2)), QStringLiteral("#3:3 #4:3"));
    QVERIFY(doc.chart().hasPlacement(4));
    QVERIFY(doc.isModified());
    QVERIFY(!edits.addToDepartment({0}, root(doc)->child(0)).bChanged);
}

void TestChartEdits::deleteNodeVersusDeleteUser()
{
    CSableManagerDoc doc;
    smallChart(doc);
    ChartEdits edits(doc);
    edits.addToDepartment({0}, doc.chart().findGroup(2));
    doc.fileBox().userAuthorities = {{1, 1, Read}, {1, 2, Read}, {2, 1, ReadWrite}};

    // A member node: only that membership goes.
    edits.deleteNode(doc.chart().placementIn(root(doc), 1), kNo);
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[#2:2 팀[#3:3 #1:3]]"));
    QCOMPARE(doc.chart().memberCount(), 4);
    QVERIFY(doc.deletedMembers().isEmpty());

    // The member's row: every node, the member, its permissions; the cascade learns of it.
    edits.deleteUsers({0}, kNo);
    QCOMPARE(doc.chart().memberCount(), 4);
    edits.deleteUsers({0}, kYes);
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[#2:2 팀[#3:3]]"));
    QCOMPARE(doc.chart().memberCount(), 3);
    QCOMPARE(doc.deletedMembers(), QList<int> {1});
    QCOMPARE(doc.fileBox().userAuthorities, (std::vector<AuthorityRecord> {{1, 2, Read}}));
    // The top department is never deleted.
    QVERIFY(!edits.deleteNode(root(doc), kYes).bChanged);
}

void TestChartEdits::deleteDepartment()
{
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    ChartEdits edits(doc);
    OrgNode* sales = doc.chart().findGroup(5);
    QVERIFY(!edits.deleteNode(sales, kNo).bChanged);
    QVERIFY(doc.chart().findGroup(5));
    QString asked;
    edits.deleteNode(sales, [&asked](const QString& question) { return asked = question, true; });
    QCOMPARE(asked,
        QStringLiteral(
            "조직도가 삭제 되며 그룹에 속한 사용자는 더 이상 그룹에 속하지 않게 됩니다.\n\n계속 하시겠습니까?"));
    QCOMPARE(doc.chart().findGroup(6), nullptr);
    QCOMPARE(doc.deletedGroups(), (QList<int> {5, 6, 7}));
    // Released members are in no department now (greyed); the permissions of the departments go.
    QVERIFY(!doc.chart().hasPlacement(13));
    for (const AuthorityRecord& a : doc.fileBox().groupAuthorities)
        QVERIFY(a.grantee != 5 && a.grantee != 7);
}

void TestChartEdits::cellLimits_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("21-byte ID") << int(ColMemberID) << QString(21, u'a') << "20자를 초과할 수 없습니다.";
    QTest::newRow("20-byte ID") << int(ColMemberID) << QString(20, u'a') << "";
    QTest::newRow("14-byte mobile number") << int(ColHP) << "010-1234-5678x"
                                           << "13자를 초과할 수 없습니다.";
    QTest::newRow("10 hangul syllables") << int(ColMemberName) << QString(10, u'가') << "";
    QTest::newRow("11 hangul syllables") << int(ColMemberName) << QString(11, u'가') << "20자를 초과할 수 없습니다.";
    QTest::newRow("101-byte address") << int(ColAddress) << QString(101, u'x') << "100자를 초과할 수 없습니다.";
    QTest::newRow("unlimited description") << int(ColDescription) << QString(500, u'설') << "";
    QTest::newRow("gender choice") << int(ColGender) << "여자"
                                   << "";
}

void TestChartEdits::cellLimits()
{
    QFETCH(int, column);
    QFETCH(QString, text);
    QFETCH(QString, refusal);
    CSableManagerDoc doc;
    smallChart(doc);
    const MemberRecord before = doc.chart().member(0);
    const EditOutcome outcome = ChartEdits(doc).editCell(0, column, text);
    if (refusal.isEmpty()) {
        QVERIFY(outcome.bChanged);
        QCOMPARE(MemberColumns::text(doc.chart().member(0), column), text);
        QVERIFY(doc.isModified());
    } else {
        QVERIFY(outcome.balloon);
        QCOMPARE(outcome.balloon->text, refusal);
        QCOMPARE(outcome.balloon->icon, Balloon::Icon::Error);
        QCOMPARE(outcome.balloon->durationMs, 3000);
        QCOMPARE(outcome.balloon->column, column);
        QCOMPARE(doc.chart().member(0), before);
        QVERIFY(!doc.isModified());
    }
}

void TestChartEdits::birthdays_data()
{
    QTest::addColumn<QString>("stored"); // before the edit
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("result"); // empty with a refusal
    QTest::newRow("as the cell shows it") << ""
                                          << "1985-07-14"
                                          << "1985-07-14";
    QTest::newRow("with dots") << ""
                               << "1985.07.14"
                               << "1985-07-14";
    QTest::newRow("with dots and spaces") << ""
                                          << "1985. 7. 14."
                                          << "1985-07-14";
    QTest::newRow("with slashes") << ""
                                  << "1985/7/4"
                                  << "1985-07-04";
    QTest::newRow("digits alone") << ""
                                  << "19850714"
                                  << "1985-07-14";
    QTest::newRow("emptied") << "1985-07-14"
                             << ""
                             << "";
    QTest::newRow("an old text left as it is") << "7월 14일"
                                               << "7월 14일"
                                               << "7월 14일";
    QTest::newRow("day first") << ""
                               << "14.07.1985"
                               << "!";
    QTest::newRow("no such day") << ""
                                 << "1985-02-30"
                                 << "!";
    QTest::newRow("mixed separators") << ""
                                      << "1985-07.14"
                                      << "!";
    QTest::newRow("words") << "1985-07-14"
                           << "칠월"
                           << "!";
}

void TestChartEdits::birthdays()
{
    QFETCH(QString, stored);
    QFETCH(QString, typed);
    QFETCH(QString, result);
    CSableManagerDoc doc;
    smallChart(doc);
    MemberRecord member = doc.chart().member(0);
    member.BirthDay = stored;
    doc.chart().setMember(0, member);
    const EditOutcome outcome = ChartEdits(doc).editCell(0, ColBirthDay, typed);
    if (result == QStringLiteral("!")) {
        QVERIFY(outcome.balloon);
        QCOMPARE(outcome.balloon->text, QStringLiteral("생년월일은 1985-07-14처럼 입력하세요."));
        QCOMPARE(outcome.balloon->column, int(ColBirthDay));
        QCOMPARE(doc.chart().member(0).BirthDay, stored);
        QVERIFY(!doc.isModified());
        return;
    }
    QVERIFY(!outcome.balloon);
    QCOMPARE(doc.chart().member(0).BirthDay, result);
    QCOMPARE(doc.isModified(), result != stored);
}

void TestChartEdits::entryRow()
{
    CSableManagerDoc doc;
    ChartEdits edits(doc);
    const EditOutcome first = edits.addUserByEntry(QStringLiteral("kim"), true);
    QCOMPARE(doc.chart().memberCount(), 1);
    const MemberRecord& kim = doc.chart().member(0);
    QCOMPARE(kim.K_MemberID, 1);
    QCOMPARE(MemberColumns::text(kim, ColGender), QStringLiteral("남자"));
    QCOMPARE(MemberColumns::text(kim, ColPublic), QStringLiteral("공개"));
    QCOMPARE(MemberColumns::text(kim, ColSolar), QStringLiteral("양력"));
    QCOMPARE(MemberColumns::text(kim, ColAdmin), QStringLiteral("있음"));
    QVERIFY(!doc.chart().hasPlacement(1));
    QVERIFY(first.balloon);
    QCOMPARE(first.balloon->title, QStringLiteral("Tip!"));
    QCOMPARE(first.balloon->icon, Balloon::Icon::Question);

    // The second member gets no tip, and no tip at all with balloon help off.
    QVERIFY(!edits.addUserByEntry(QStringLiteral("lee"), true).balloon);
    CSableManagerDoc quiet;
    QVERIFY(!ChartEdits(quiet).addUserByEntry(QStringLiteral("kim"), false).balloon);

    // An existing ID creates nothing; the next identifier is the greatest plus one.
    const EditOutcome duplicate = edits.addUserByEntry(QStringLiteral("kim"), true);
    QCOMPARE(duplicate.balloon->text, QStringLiteral("이미 존재하는 아이디입니다."));
    QCOMPARE(duplicate.balloon->row, 2);
    QCOMPARE(doc.chart().memberCount(), 2);
    QCOMPARE(doc.chart().member(1).K_MemberID, 2);
}

void TestChartEdits::leaveRowWithoutPassword()
{
    CSableManagerDoc doc;
    ChartEdits edits(doc);
    edits.addUserByEntry(QStringLiteral("kim"), false);
    const auto balloon = edits.checkLeaveRow(0);
    QVERIFY(balloon);
    QCOMPARE(balloon->text, QStringLiteral("비밀번호를 입력하세요."));
    QCOMPARE(balloon->column, int(ColPasswd));
    QVERIFY(!edits.checkLeaveRow(1)); // the entry row
    edits.editCell(0, ColPasswd, QStringLiteral("secret"));
    QVERIFY(!edits.checkLeaveRow(0));
}

void TestChartEdits::setRankCommands()
{
    CSableManagerDoc doc;
    smallChart(doc);
    ChartEdits edits(doc);
    OrgNode* a = doc.chart().placementIn(root(doc), 1);
    edits.setRank(a, 203);
    QCOMPARE(a->rankId(), 3);
    edits.setRank(a, 200);
    QCOMPARE(a->rankId(), -1);
    QVERIFY(!edits.setRank(a, 204).bChanged);
    QVERIFY(!edits.setRank(doc.chart().findGroup(2), 201).bChanged);
}

void TestChartEdits::rankNames()
{
    CSableManagerDoc doc;
    RankEdits ranks(doc);
    QVERIFY(ranks.emptyListHint());
    QCOMPARE(ranks.emptyListHint()->text, QStringLiteral("마우스 오른쪽 버튼을 눌러서 직급을 추가하세요."));
    for (int i = 0; i < 4; ++i)
        QCOMPARE(ranks.addRank().rankIndex, i);
    QStringList names;
    for (const RankRecord& rank : doc.ranks().ranks())
        names << QStringLiteral("%1=%2").arg(rank.RankName).arg(rank.K_RankID);
    QCOMPARE(names, (QStringList {"새 직급=1", "새 직급 (1)=2", "새 직급 (2)=3", "새 직급 (3)=4"}));
    QVERIFY(!ranks.emptyListHint());
}

void TestChartEdits::rankDeletion()
{
    CSableManagerDoc doc;
    smallChart(doc, {3, 1});
    RankEdits ranks(doc);
    QVERIFY(!ranks.deleteRank(2, kNo).bChanged);
    QString asked;
    ranks.deleteRank(2, [&asked](const QString& question) { return asked = question, true; });
    QCOMPARE(
        asked, QStringLiteral("삭제된 직급을 가지고 있는 사용자는 직급이 없어지게 됩니다.\n직급을 삭제하시겠습니까?"));
    // Its memberships have no rank now, show "직급없음" and sort after the ranked ones.
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[#1 #2:1 팀[#3]]"));
    QCOMPARE(doc.ranks().nameOf(-1), QStringLiteral("직급없음"));
    ChartEdits(doc).sortByRank(root(doc));
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[#2:1 #1 팀[#3]]"));
    // The deleted rank's number is not handed out again before the next load: a membership the
    // database still gives it must not come back with the new rank.
    ranks.addRank();
    QCOMPARE(doc.ranks().at(2).K_RankID, 4);
    QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(2)), QStringLiteral("#3"));
}

void TestChartEdits::renameRank_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("after");
    QTest::newRow("new name") << "차장"
                              << ""
                              << "차장";
    QTest::newRow("its own name") << "대리"
                                  << "이미 같은 직급이 존재합니다."
                                  << "대리";
    QTest::newRow("another rank's name") << "부장"
                                         << "이미 같은 직급이 존재합니다."
                                         << "대리";
    QTest::newRow("empty") << ""
                           << ""
                           << "대리";
}

void TestChartEdits::renameRank()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    QFETCH(QString, after);
    CSableManagerDoc doc;
    smallChart(doc);
    const EditOutcome outcome = RankEdits(doc).renameRank(1, name);
    QCOMPARE(outcome.message, message);
    QCOMPARE(doc.ranks().at(1).RankName, after);
    QCOMPARE(doc.isModified(), after != QStringLiteral("대리"));
}

void TestChartEdits::dragPayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("accepted");
    const QByteArray two = QByteArray::fromHex("02000000"
                                               "01000000"
                                               "01000000"
                                               "03000000"
                                               "01000000");
    QTest::newRow("two members") << two << true;
    QTest::newRow("short") << QByteArray::fromHex("0200") << false;
    QTest::newRow("count larger than the data") << two.left(12) << false;
    QTest::newRow("count smaller than the data") << QByteArray::fromHex("01000000") + two.mid(4) << false;
    QTest::newRow("no members") << QByteArray::fromHex("00000000") << false;
    QTest::newRow("unknown member") << QByteArray::fromHex("01000000"
                                                           "63000000"
                                                           "01000000")
                                    << false;
}

void TestChartEdits::dragPayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, accepted);
    CSableManagerDoc doc;
    smallChart(doc);
    ChartEdits edits(doc);
    QCOMPARE(edits.dragPayload({0, 2}),
        QByteArray::fromHex("02000000"
                            "01000000"
                            "01000000"
                            "03000000"
                            "01000000"));
    const QByteArray before = snapshot(doc);
    const EditOutcome outcome = edits.dropOnDepartment(payload, doc.chart().findGroup(2));
    QCOMPARE(outcome.bChanged, accepted);
    if (accepted)
        QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(2)), QStringLiteral("#3:3 #1:3"));
    else
        QCOMPARE(snapshot(doc), before);
}

void TestChartEdits::undoRedoRestoresExactly_data()
{
    QTest::addColumn<int>("operation");
    const char* names[] = {"add department", "rename department", "delete department", "delete member node", "move",
        "sort by rank", "set rank", "add user", "edit cell", "delete users", "add to department", "drop", "add rank",
        "rename rank", "delete rank", "move rank", "membership ranks"};
    for (int i = 0; i < int(std::size(names)); ++i)
        QTest::newRow(names[i]) << i;
}

void TestChartEdits::undoRedoRestoresExactly()
{
    QFETCH(int, operation);
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    ChartEdits chart(doc);
    RankEdits ranks(doc);
    OrgChart& c = doc.chart();
    // An earlier edit, so that the flag and the history do not start empty.
    ranks.addRank();
    const QByteArray before = snapshot(doc);
    const int stepsBefore = doc.history().index();
    switch (operation) {
    case 0:
        chart.addDepartment(c.findGroup(6));
        break;
    case 1:
        chart.renameDepartment(c.findGroup(6), QStringLiteral("영업 1팀"));
        break;
    case 2:
        chart.deleteNode(c.findGroup(2), kYes);
        break;
    case 3:
        chart.deleteNode(c.placementIn(c.findGroup(8), 4), kYes);
        break;
    case 4:
        chart.move(c.findGroup(8), ChartEdits::Move::ToTop);
        break;
    case 5:
        chart.sortByRank(c.rootGroup());
        break;
    case 6:
        chart.setRank(c.placementIn(c.findGroup(6), 13), 205);
        break;
    case 7:
        chart.addUserByEntry(QStringLiteral("newbie"), true);
        break;
    case 8:
        chart.editCell(5, ColGender, QStringLiteral("남자"));
        break;
    case 9:
        chart.deleteUsers({0, 3, 4, 39}, kYes);
        break;
    case 10:
        chart.addToDepartment({38, 39, 0}, c.findGroup(3));
        break;
    case 11:
        chart.dropOnDepartment(chart.dragPayload({38, 2}), c.findGroup(7));
        break;
    case 12:
        ranks.addRank();
        break;
    case 13:
        ranks.renameRank(0, QStringLiteral("회장"));
        break;
    case 14:
        ranks.deleteRank(3, kYes);
        break;
    case 15:
        ranks.moveRankDown(0);
        break;
    case 16:
        ranks.setMembershipRanks({c.placementIn(c.findGroup(3), 3), c.placementIn(c.findGroup(4), 7)}, 201);
        break;
    }
    const QByteArray after = snapshot(doc);
    QVERIFY(after != before);
    QCOMPARE(doc.history().index(), stepsBefore + 1);
    QVERIFY(!doc.history().undoText().isEmpty());
    verifyUndoRedo(doc, before, after);
}

void TestChartEdits::undoAcrossSave()
{
    CSableManagerDoc doc;
    smallChart(doc);
    ChartEdits edits(doc);
    edits.renameDepartment(doc.chart().findGroup(2), QStringLiteral("개발팀"));
    doc.markSaved({});
    QVERIFY(!doc.isModified());
    edits.deleteUsers({2}, kYes);
    doc.history().undo();
    QVERIFY(!doc.isModified()); // back at the saved state
    doc.history().undo();
    QVERIFY(doc.isModified()); // before the saved state: differs from the database
    QCOMPARE(doc.chart().findGroup(2)->name(), QStringLiteral("팀"));
    doc.history().redo();
    QVERIFY(!doc.isModified());
}

QTEST_GUILESS_MAIN(TestChartEdits)
#include "tst_chart_edits.moc"
