// Which members the member list shows and in which order: the search, the no-department filter, the
// sort by a column, and how the rows shown follow removals, insertions and edits of the list; the
// departments of a member as the list shows them.

#include "ChartText.h"
#include "orgchart/ChartBuilder.h"
#include "orgchart/DepartmentPaths.h"
#include "orgchart/MemberListRows.h"

#include <QTest>

using namespace sable;

namespace {

struct Person
{
    int id;
    const char* login;
    const char* name;
    int gender;
    const char* email;
    const char* mobile;
    const char* office;
    QList<int> groups;
};

// 본사(1)[#4 영업부(2) 개발부(3)]; rows 0..4 as below.
const Person kPeople[] = {
    {1, "kim10", "김철수", 0, "cs.kim@example.com", "010-1111-2222", "", {2}},
    {2, "lee2", "이영희", 1, "", "010-3333-4444", "", {3, 2}},
    {3, "Park1", "박민수", 0, "", "", "02-555-0000", {}},
    {4, "choi", "가나다", 1, "", "", "", {1}},
    {5, "kim9", "김철수", 0, "", "", "", {3}},
};

void build(OrgChart& chart)
{
    ChartBuilder builder(chart);
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("영업부"), 1, 2, 1});
    builder.addGroup({3, QStringLiteral("개발부"), 1, 3, 1});
    QHash<int, int> positions;
    for (const Person& p : kPeople) {
        MemberRecord member;
        member.K_MemberID = p.id;
        member.MemberID = QString::fromUtf8(p.login);
        member.MemberName = QString::fromUtf8(p.name);
        member.Gender = p.gender;
        member.Email = QString::fromUtf8(p.email);
        member.HP = QString::fromUtf8(p.mobile);
        member.OfficePhone = QString::fromUtf8(p.office);
        builder.addMember(member);
        for (const int group : p.groups)
            builder.addRelation({p.id, group, -1, ++positions[group]});
    }
    builder.finish();
}

std::vector<int> toVector(const QList<int>& rows)
{
    return {rows.begin(), rows.end()};
}

} // namespace

class TestMemberList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void search_data();
    void search();
    void sort_data();
    void sort();
    void followsRemovalsAndInsertions();
    void editsAndPins();
    void diffRanges_data();
    void diffRanges();
    void departmentsOfMembers();
};

void TestMemberList::search_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("withoutDepartment");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("login ID") << "kim" << false << QList<int> {0, 4};
    QTest::newRow("any letter case") << "KIM1" << false << QList<int> {0};
    QTest::newRow("name") << "김철" << false << QList<int> {0, 4};
    QTest::newRow("e-mail") << "cs.k" << false << QList<int> {0};
    QTest::newRow("mobile") << "3333" << false << QList<int> {1};
    QTest::newRow("office telephone") << "555" << false << QList<int> {2};
    QTest::newRow("a department") << "영업" << false << QList<int> {0, 1};
    QTest::newRow("a department path") << "본사/개발" << false << QList<int> {1, 4};
    QTest::newRow("in no department") << "" << true << QList<int> {2};
    QTest::newRow("both") << "김" << true << QList<int> {};
    QTest::newRow("nothing asked") << "" << false << QList<int> {0, 1, 2, 3, 4};
}

void TestMemberList::search()
{
    QFETCH(QString, text);
    QFETCH(bool, withoutDepartment);
    QFETCH(QList<int>, rows);
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    MemberListRows list(chart, paths);
    const MemberListRows::Filter filter {text, withoutDepartment};
    QCOMPARE(list.rowsFor(filter), toVector(rows));
    // A longer search looks only through what the shorter one found, and finds the same.
    list.setFilter({text.left(1), withoutDepartment});
    list.setShown(list.rowsFor(list.filter()));
    QCOMPARE(list.rowsFor(filter), toVector(rows));
}

void TestMemberList::sort_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("descending");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("name, Korean order, equal names keep their order")
        << int(ColMemberName) << false << QList<int> {3, 0, 4, 2, 1};
    QTest::newRow("name descending, equal names still in list order")
        << int(ColMemberName) << true << QList<int> {1, 2, 0, 4, 3};
    QTest::newRow("ID, numbers by value") << int(ColMemberID) << false << QList<int> {3, 4, 0, 1, 2};
    QTest::newRow("gender by the stored value") << int(ColGender) << false << QList<int> {0, 2, 4, 1, 3};
    QTest::newRow("departments, none first")
        << MemberListRows::kDepartmentsColumn << false << QList<int> {2, 3, 4, 0, 1};
    QTest::newRow("the list's own order") << -1 << false << QList<int> {0, 1, 2, 3, 4};
}

void TestMemberList::sort()
{
    QFETCH(int, column);
    QFETCH(bool, descending);
    QFETCH(QList<int>, rows);
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    MemberListRows list(chart, paths);
    list.sortBy(MemberColumnCount - 1, Qt::AscendingOrder);
    list.sortBy(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    QCOMPARE(list.shown(), toVector(rows));
    for (int shown = 0; shown < list.count(); ++shown)
        QCOMPARE(list.shownRow(list.memberRow(shown)), shown);
}

void TestMemberList::followsRemovalsAndInsertions()
{
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    MemberListRows list(chart, paths);
    list.sortBy(ColMemberName, Qt::AscendingOrder); // 3 0 4 2 1
    // Rows 0 and 2 go: the view takes them out of what it shows first, then the list renumbers.
    for (const int row : {2, 0}) {
        const int shown = list.shownRow(row);
        list.eraseShown(shown, shown);
    }
    chart.takeMembers({0, 2});
    list.membersRemoved({0, 2});
    QCOMPARE(list.shown(), (std::vector<int> {1, 2, 0})); // 가나다 김철수(kim9) 이영희
    // A member comes at row 1: those after it move down; it is shown last until the next sort.
    MemberRecord fresh;
    fresh.K_MemberID = 9;
    fresh.MemberName = QStringLiteral("갑을");
    chart.insertMember(1, fresh);
    list.membersInserted({1});
    QCOMPARE(list.shown(), (std::vector<int> {2, 3, 0}));
    const std::vector<int> target = list.rowsAfterChanges({1});
    QCOMPARE(target, (std::vector<int> {2, 3, 0, 1}));
    list.setShown(target);
    list.sortBy(ColMemberName, Qt::AscendingOrder);
    QCOMPARE(list.shown(), (std::vector<int> {2, 1, 3, 0}));
}

void TestMemberList::editsAndPins()
{
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    MemberListRows list(chart, paths);
    list.setFilter({QStringLiteral("김"), false});
    list.setShown(list.rowsFor(list.filter()));
    QCOMPARE(list.shown(), (std::vector<int> {0, 4}));
    // A name edited away from the search leaves; one edited into it comes, in its place.
    MemberRecord renamed = chart.member(0);
    renamed.MemberName = QStringLiteral("최철수");
    chart.setMember(0, renamed);
    MemberRecord found = chart.member(2);
    found.MemberName = QStringLiteral("김민수");
    chart.setMember(2, found);
    list.setShown(list.rowsAfterChanges({0, 2}));
    QCOMPARE(list.shown(), (std::vector<int> {2, 4}));
    // A member just typed in stays, whatever the search, until the search changes.
    list.pin(chart.member(3).K_MemberID);
    list.setShown(list.rowsAfterChanges({3}));
    QCOMPARE(list.shown(), (std::vector<int> {2, 3, 4}));
    list.setFilter({QStringLiteral("김민"), false});
    QCOMPARE(list.rowsFor(list.filter()), (std::vector<int> {2}));
    // A department renamed into the search brings its members.
    chart.renameGroup(chart.findGroup(3), QStringLiteral("김민연구소"));
    QCOMPARE(list.rowsFor(list.filter()), (std::vector<int> {1, 2, 4}));
}

void TestMemberList::diffRanges_data()
{
    QTest::addColumn<QList<int>>("shown");
    QTest::addColumn<QList<int>>("target");
    QTest::addColumn<QString>("ranges"); // removed (last first) | inserted
    QTest::newRow("same") << QList<int> {0, 2} << QList<int> {0, 2} << "|";
    QTest::newRow("some go") << QList<int> {0, 1, 2, 3, 4} << QList<int> {0, 3} << "4-4 1-2|";
    QTest::newRow("some come") << QList<int> {1} << QList<int> {0, 1, 3, 4} << "|0-0 2-3";
    QTest::newRow("both") << QList<int> {0, 1, 2} << QList<int> {1, 3} << "2-2 0-0|1-1";
}

void TestMemberList::diffRanges()
{
    QFETCH(QList<int>, shown);
    QFETCH(QList<int>, target);
    QFETCH(QString, ranges);
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    MemberListRows list(chart, paths);
    list.setShown(toVector(shown));
    const MemberListRows::Diff diff = list.diff(toVector(target));
    QStringList removed;
    for (const auto& [first, last] : diff.removed)
        removed << QStringLiteral("%1-%2").arg(first).arg(last);
    QStringList inserted;
    for (const auto& [first, last] : diff.inserted)
        inserted << QStringLiteral("%1-%2").arg(first).arg(last);
    QCOMPARE(removed.join(u' ') + u'|' + inserted.join(u' '), ranges);
    // Applied as a view applies them, they give the target.
    for (const auto& [first, last] : diff.removed)
        list.eraseShown(first, last);
    for (const auto& [first, last] : diff.inserted)
        list.insertShown(first, std::vector<int>(target.begin() + first, target.begin() + last + 1));
    QCOMPARE(list.shown(), toVector(target));
}

void TestMemberList::departmentsOfMembers()
{
    OrgChart chart;
    build(chart);
    const DepartmentPaths paths(chart);
    // In the order of the tree, whatever order the memberships were made in.
    QCOMPARE(paths.departmentsOf(2), QStringLiteral("본사/영업부;본사/개발부"));
    QCOMPARE(paths.departmentsOf(3), QString());
    QCOMPARE(paths.departmentsOf(4), QStringLiteral("본사"));
    // Kept until a department changes: a rename, a move.
    chart.renameGroup(chart.findGroup(2), QStringLiteral("영업본부"));
    QCOMPARE(paths.departmentsOf(1), QStringLiteral("본사/영업본부"));
    chart.reparentNode(chart.findGroup(3), chart.findGroup(2), 0);
    QCOMPARE(paths.departmentsOf(2), QStringLiteral("본사/영업본부/개발부;본사/영업본부"));
}

QTEST_GUILESS_MAIN(TestMemberList)
#include "tst_member_list.moc"
