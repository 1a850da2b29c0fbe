// The three-way merge of the chart's tables: each kind of change on one side, on both sides, and
// what one side removed while the other relied on it; renumbering; orders.

#include "document/ChartMerge.h"

#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace sable;

namespace {

using Edit = std::function<void(ChartTables&)>;

// 본사 (1) over 영업부 (2) and 개발부 (3); kim (10) and park (12) in 영업부, lee (11) in 개발부.
ChartTables baseTables()
{
    ChartTables t;
    t.groups = {{1, QStringLiteral("본사"), -1, 1, 0}, {2, QStringLiteral("영업부"), 1, 1, 1},
        {3, QStringLiteral("개발부"), 1, 2, 1}};
    for (const auto& [id, login] : {std::pair(10, "kim"), std::pair(11, "lee"), std::pair(12, "park")}) {
        MemberRecord m;
        m.K_MemberID = id;
        m.MemberID = QString::fromLatin1(login);
        m.MemberName = QString::fromLatin1(login).toUpper();
        m.Passwd = QStringLiteral("pw");
        t.members.push_back(m);
    }
    t.relations = {{10, 2, 1, 1}, {12, 2, -1, 2}, {11, 3, 2, 1}};
    t.ranks.insert(0, {1, QStringLiteral("부장")});
    t.ranks.insert(1, {2, QStringLiteral("과장")});
    t.ranks.insert(2, {3, QStringLiteral("사원")});
    t.fileBox.folders = {{1, QStringLiteral("\\공용")}, {2, QStringLiteral("\\영업")}};
    t.fileBox.groupAuthorities = {{1, 2, ReadWrite}};
    t.fileBox.userAuthorities = {{2, 11, Read}};
    t.links.set(12, DirectoryLink {QStringLiteral("e12"), QStringLiteral("uid=park,ou=영업")});
    return t;
}

GroupRow* group(ChartTables& t, int id)
{
    const auto it
        = std::find_if(t.groups.begin(), t.groups.end(), [id](const GroupRow& g) { return g.K_GroupID == id; });
    return it == t.groups.end() ? nullptr : &*it;
}

MemberRecord* member(ChartTables& t, int id)
{
    const auto it
        = std::find_if(t.members.begin(), t.members.end(), [id](const MemberRecord& m) { return m.K_MemberID == id; });
    return it == t.members.end() ? nullptr : &*it;
}

RelationRow* relation(ChartTables& t, int memberId, int groupId)
{
    const auto it = std::find_if(t.relations.begin(), t.relations.end(),
        [&](const RelationRow& r) { return r.K_MemberID == memberId && r.K_GroupID == groupId; });
    return it == t.relations.end() ? nullptr : &*it;
}

void removeGroup(ChartTables& t, int id)
{
    std::erase_if(t.groups, [id](const GroupRow& g) { return g.K_GroupID == id; });
    std::erase_if(t.relations, [id](const RelationRow& r) { return r.K_GroupID == id; });
    std::erase_if(t.fileBox.groupAuthorities, [id](const AuthorityRecord& a) { return a.grantee == id; });
}

MemberRecord newMember(int id, const char* login)
{
    MemberRecord m;
    m.K_MemberID = id;
    m.MemberID = QString::fromLatin1(login);
    m.MemberName = QString::fromLatin1(login);
    m.Passwd = QStringLiteral("new");
    return m;
}

// Renders what a probe asks of merged tables: "g3" a department, "m10" a user, "r10/2" a membership,
// "kids2" the children of a department in order, "ranks", "ga1/2" and "ua2/11" permissions.
QString probe(const ChartTables& t, const QString& what)
{
    ChartTables& tables = const_cast<ChartTables&>(t);
    const QRegularExpressionMatch m = QRegularExpression(QStringLiteral("^([a-z]+)(-?\\d*)(?:/(\\d+))?$")).match(what);
    const QString kind = m.captured(1);
    const int a = m.captured(2).toInt();
    const int b = m.captured(3).toInt();
    if (kind == QLatin1String("g")) {
        const GroupRow* g = group(tables, a);
        return g ? QStringLiteral("%1@%2").arg(g->GroupName).arg(g->K_GroupID_P) : QStringLiteral("-");
    }
    if (kind == QLatin1String("m")) {
        const MemberRecord* r = member(tables, a);
        return r ? QStringLiteral("%1/%2/%3").arg(r->MemberID, r->Passwd, r->Email) : QStringLiteral("-");
    }
    if (kind == QLatin1String("r")) {
        const RelationRow* r = relation(tables, a, b);
        return r ? QString::number(r->K_RankID) : QStringLiteral("-");
    }
    if (kind == QLatin1String("kids")) {
        std::vector<std::pair<int, QString>> kids;
        for (const GroupRow& g : t.groups) {
            if (g.K_GroupID_P == a)
                kids.emplace_back(g.Position, QStringLiteral("g%1").arg(g.K_GroupID));
        }
        for (const RelationRow& r : t.relations) {
            if (r.K_GroupID == a)
                kids.emplace_back(r.Position, QStringLiteral("m%1").arg(r.K_MemberID));
        }
        std::sort(kids.begin(), kids.end());
        QStringList names;
        for (const auto& kid : kids)
            names << kid.second;
        return names.join(u',');
    }
    if (kind == QLatin1String("link")) {
        const DirectoryLink* link = t.links.find(a);
        return link ? link->entryId : QStringLiteral("-");
    }
    if (kind == QLatin1String("ranks")) {
        QStringList names;
        for (const RankRecord& r : t.ranks.ranks())
            names << QStringLiteral("%1:%2").arg(r.K_RankID).arg(r.RankName);
        return names.join(u',');
    }
    const auto& list = kind == QLatin1String("ga") ? t.fileBox.groupAuthorities : t.fileBox.userAuthorities;
    for (const AuthorityRecord& r : list) {
        if (r.K_FolderID == a && r.grantee == b)
            return QString::number(r.level);
    }
    return QStringLiteral("-");
}

// The first row that refers to a department, user, rank or folder the tables do not hold.
QString danglingReference(const ChartTables& t)
{
    QSet<int> groups, members, ranks, folders;
    for (const GroupRow& g : t.groups)
        groups.insert(g.K_GroupID);
    for (const MemberRecord& m : t.members)
        members.insert(m.K_MemberID);
    for (const RankRecord& r : t.ranks.ranks())
        ranks.insert(r.K_RankID);
    for (const FolderRecord& f : t.fileBox.folders)
        folders.insert(f.K_FolderID);
    for (const GroupRow& g : t.groups) {
        if (g.K_GroupID_P >= 0 && !groups.contains(g.K_GroupID_P))
            return QStringLiteral("department %1 under %2").arg(g.K_GroupID).arg(g.K_GroupID_P);
    }
    for (const RelationRow& r : t.relations) {
        if (!members.contains(r.K_MemberID) || !groups.contains(r.K_GroupID)
            || (r.K_RankID >= 0 && !ranks.contains(r.K_RankID)))
            return QStringLiteral("membership %1/%2 rank %3").arg(r.K_MemberID).arg(r.K_GroupID).arg(r.K_RankID);
    }
    for (const AuthorityRecord& a : t.fileBox.groupAuthorities) {
        if (!folders.contains(a.K_FolderID) || !groups.contains(a.grantee))
            return QStringLiteral("department permission %1/%2").arg(a.K_FolderID).arg(a.grantee);
    }
    for (const AuthorityRecord& a : t.fileBox.userAuthorities) {
        if (!folders.contains(a.K_FolderID) || !members.contains(a.grantee))
            return QStringLiteral("user permission %1/%2").arg(a.K_FolderID).arg(a.grantee);
    }
    for (const int memberId : t.links.all().keys()) {
        if (!members.contains(memberId))
            return QStringLiteral("directory link of %1").arg(memberId);
    }
    return {};
}

QString conflictsOf(const ChartMerge& merge)
{
    static const char* kinds[] = {"both", "changed-here-removed-there", "removed-here-changed-there",
        "used-here-removed-there", "removed-here-used-there", "order"};
    QStringList out;
    for (const MergeConflict& c : merge.conflicts())
        out << QStringLiteral("%1:%2").arg(c.name, QLatin1String(kinds[static_cast<int>(c.kind)]));
    return out.join(u';');
}

struct Case
{
    const char* name;
    Edit here;
    Edit there;
    const char* conflicts;
    const char* keepMine; // "probe=value|..." with every conflict decided for this console
    const char* keepTheirs; // the same with every conflict decided for the database
};

const std::vector<Case>& cases()
{
    static const std::vector<Case> all = {
        {"department renamed here", [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("개발팀"); },
            [](ChartTables&) {}, "", "g3=개발팀@1", "g3=개발팀@1"},
        {"department renamed there", [](ChartTables&) {},
            [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("연구소"); }, "", "g3=연구소@1",
            "g3=연구소@1"},
        {"department renamed on both sides", [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("개발팀"); },
            [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("연구소"); }, "개발팀:both", "g3=개발팀@1",
            "g3=연구소@1"},
        {"moved here, renamed there: both hold",
            [](ChartTables& t) {
                group(t, 3)->K_GroupID_P = 2;
                group(t, 3)->Position = 3;
            },
            [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("연구소"); }, "",
            "g3=연구소@2|kids2=m10,m12,g3", "g3=연구소@2"},
        {"renamed here, removed there", [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("개발팀"); },
            [](ChartTables& t) { removeGroup(t, 3); }, "개발팀:changed-here-removed-there", "g3=개발팀@1|r11/3=2",
            "g3=-|r11/3=-"},
        {"removed here, renamed there", [](ChartTables& t) { removeGroup(t, 3); },
            [](ChartTables& t) { group(t, 3)->GroupName = QStringLiteral("연구소"); },
            "연구소:removed-here-changed-there", "g3=-", "g3=연구소@1|r11/3=2"},
        {"removed on both sides", [](ChartTables& t) { removeGroup(t, 3); }, [](ChartTables& t) { removeGroup(t, 3); },
            "", "g3=-|kids1=g2", "g3=-"},
        {"a new department on each side under one number",
            [](ChartTables& t) {
                t.groups.push_back({4, QStringLiteral("신규팀"), 2, 3, 2});
            },
            [](ChartTables& t) {
                t.groups.push_back({4, QStringLiteral("지원팀"), 1, 3, 1});
            },
            "", "g4=지원팀@1|g5=신규팀@2|kids1=g2,g3,g4|kids2=m10,m12,g5", "g5=신규팀@2"},
        {"a member put in a department removed there",
            [](ChartTables& t) {
                t.relations.push_back({10, 3, -1, 2});
            },
            [](ChartTables& t) { removeGroup(t, 3); }, "개발부:used-here-removed-there", "g3=개발부@1|r10/3=-1|r11/3=2",
            "g3=-|r10/3=-|r11/3=-"},
        {"loops of two moves are broken where the database has them",
            [](ChartTables& t) { group(t, 2)->K_GroupID_P = 3; }, [](ChartTables& t) { group(t, 3)->K_GroupID_P = 2; },
            "", "g2=영업부@1|g3=개발부@2", "g2=영업부@1|g3=개발부@2"},
        {"password changed by the server, e-mail here: both hold",
            [](ChartTables& t) { member(t, 10)->Email = QStringLiteral("kim@corp"); },
            [](ChartTables& t) { member(t, 10)->Passwd = QStringLiteral("secret"); }, "", "m10=kim/secret/kim@corp",
            "m10=kim/secret/kim@corp"},
        {"the same field changed on both sides", [](ChartTables& t) { member(t, 10)->Email = QStringLiteral("a@x"); },
            [](ChartTables& t) { member(t, 10)->Email = QStringLiteral("b@x"); }, "KIM (kim):both", "m10=kim/pw/a@x",
            "m10=kim/pw/b@x"},
        {"the same change on both sides is no conflict",
            [](ChartTables& t) { member(t, 10)->Email = QStringLiteral("a@x"); },
            [](ChartTables& t) { member(t, 10)->Email = QStringLiteral("a@x"); }, "", "m10=kim/pw/a@x",
            "m10=kim/pw/a@x"},
        {"a user removed here, changed there",
            [](ChartTables& t) {
                std::erase_if(t.members, [](const MemberRecord& m) { return m.K_MemberID == 12; });
                std::erase_if(t.relations, [](const RelationRow& r) { return r.K_MemberID == 12; });
            },
            [](ChartTables& t) { member(t, 12)->Passwd = QStringLiteral("changed"); },
            "PARK (park):removed-here-changed-there", "m12=-|r12/2=-", "m12=park/changed/|r12/2=-1"},
        {"new users on both sides under one number: memberships follow",
            [](ChartTables& t) {
                t.members.push_back(newMember(13, "choi"));
                t.relations.push_back({13, 2, 3, 3});
            },
            [](ChartTables& t) {
                t.members.push_back(newMember(13, "jung"));
                t.relations.push_back({13, 3, -1, 2});
            },
            "", "m13=jung/new/|m14=choi/new/|r14/2=3|r13/3=-1|r13/2=-", "m14=choi/new/"},
        {"rank of a membership changed on both sides", [](ChartTables& t) { relation(t, 10, 2)->K_RankID = 2; },
            [](ChartTables& t) { relation(t, 10, 2)->K_RankID = 3; }, "KIM (kim) - 영업부:both", "r10/2=2", "r10/2=3"},
        {"members reordered here, one added there after its predecessor",
            [](ChartTables& t) {
                relation(t, 10, 2)->Position = 2;
                relation(t, 12, 2)->Position = 1;
            },
            [](ChartTables& t) {
                t.relations.push_back({11, 2, -1, 2});
            },
            "", "kids2=m12,m10,m11", "kids2=m12,m10,m11"},
        {"both reordered one department differently",
            [](ChartTables& t) {
                relation(t, 10, 2)->Position = 2;
                relation(t, 12, 2)->Position = 1;
            },
            [](ChartTables& t) {
                group(t, 2)->Position = 2;
                group(t, 3)->Position = 1;
                relation(t, 10, 2)->Position = 2;
                relation(t, 12, 2)->Position = 1;
            },
            "", "kids2=m12,m10|kids1=g3,g2", "kids1=g3,g2"},
        {"the top level reordered on both sides in different ways",
            [](ChartTables& t) {
                t.groups.push_back({4, QStringLiteral("지원팀"), 1, 3, 1}), group(t, 3)->Position = 1,
                                                                                     group(t, 2)->Position = 2;
            },
            [](ChartTables& t) {
                t.groups.push_back({5, QStringLiteral("감사팀"), 1, 0, 1});
                group(t, 2)->Position = 3;
                group(t, 3)->Position = 1;
                group(t, 5)->Position = 2;
            },
            "", "kids1=g3,g5,g2,g4", "kids1=g3,g5,g2,g4"},
        {"rank renamed on both sides", [](ChartTables& t) { t.ranks.rename(0, QStringLiteral("본부장")); },
            [](ChartTables& t) { t.ranks.rename(0, QStringLiteral("실장")); }, "본부장:both",
            "ranks=1:본부장,2:과장,3:사원", "ranks=1:실장,2:과장,3:사원"},
        {"ranks reordered here, one added there", [](ChartTables& t) { t.ranks.move(2, 0); },
            [](ChartTables& t) {
                t.ranks.insert(3, {4, QStringLiteral("인턴")});
            },
            "", "ranks=3:사원,1:부장,2:과장,4:인턴", "ranks=3:사원,1:부장,2:과장,4:인턴"},
        {"ranks reordered on both sides differently", [](ChartTables& t) { t.ranks.move(2, 0); },
            [](ChartTables& t) { t.ranks.move(0, 2); }, "직급 순서:order", "ranks=3:사원,1:부장,2:과장",
            "ranks=2:과장,3:사원,1:부장"},
        {"a rank given here, removed there", [](ChartTables& t) { relation(t, 12, 2)->K_RankID = 3; },
            [](ChartTables& t) { t.ranks.take(2); }, "사원:used-here-removed-there",
            "r12/2=3|ranks=1:부장,2:과장,3:사원", "r12/2=-1|ranks=1:부장,2:과장"},
        {"new ranks on both sides under one number",
            [](ChartTables& t) {
                t.ranks.insert(3, {4, QStringLiteral("인턴")});
            },
            [](ChartTables& t) {
                t.ranks.insert(3, {4, QStringLiteral("고문")});
            },
            "", "ranks=1:부장,2:과장,3:사원,4:고문,5:인턴", "ranks=1:부장,2:과장,3:사원,4:고문,5:인턴"},
        {"users linked to the directory on each side",
            [](ChartTables& t) {
                t.links.set(10, DirectoryLink {QStringLiteral("e10"), QStringLiteral("uid=kim")});
            },
            [](ChartTables& t) {
                t.links.set(11, DirectoryLink {QStringLiteral("e11"), QStringLiteral("uid=lee")});
            },
            "", "link10=e10|link11=e11|link12=e12", "link10=e10|link11=e11"},
        {"a link follows its user, removed there",
            [](ChartTables& t) {
                t.links.set(12, DirectoryLink {QStringLiteral("e12"), QStringLiteral("uid=park,ou=개발")});
            },
            [](ChartTables& t) {
                std::erase_if(t.members, [](const MemberRecord& m) { return m.K_MemberID == 12; });
                std::erase_if(t.relations, [](const RelationRow& r) { return r.K_MemberID == 12; });
                t.links.set(12, std::nullopt);
            },
            "", "m12=-|link12=-", "m12=-|link12=-"},
        {"permission level changed on both sides", [](ChartTables& t) { t.fileBox.groupAuthorities[0].level = Read; },
            [](ChartTables& t) { t.fileBox.groupAuthorities[0].level = NoAccess; }, "\\공용: 영업부:both", "ga1/2=1",
            "ga1/2=0"},
        {"permission granted here on a folder removed there",
            [](ChartTables& t) {
                t.fileBox.userAuthorities.push_back({1, 10, ReadWrite});
            },
            [](ChartTables& t) {
                std::erase_if(t.fileBox.folders, [](const FolderRecord& f) { return f.K_FolderID == 1; });
                t.fileBox.groupAuthorities.clear();
            },
            "\\공용:used-here-removed-there", "ua1/10=2|ga1/2=2", "ua1/10=-|ga1/2=-"},
        {"permission removed there, changed here",
            [](ChartTables& t) { t.fileBox.userAuthorities[0].level = ReadWrite; },
            [](ChartTables& t) { t.fileBox.userAuthorities.clear(); }, "\\영업: LEE (lee):changed-here-removed-there",
            "ua2/11=2", "ua2/11=-"},
    };
    return all;
}

} // namespace

class TestChartMerge : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void merge_data();
    void merge();
    void rowOrderDoesNotMatter_data() { merge_data(); }
    void rowOrderDoesNotMatter();
    void nothingChangedThereIsNoConflict();
    void changesAreNamed();
};

void TestChartMerge::merge_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < cases().size(); ++i)
        QTest::newRow(cases()[i].name) << static_cast<int>(i);
}

void TestChartMerge::merge()
{
    QFETCH(int, index);
    const Case& c = cases()[static_cast<size_t>(index)];
    const ChartTables base = baseTables();
    ChartTables mine = base;
    c.here(mine);
    auto theirs = std::make_shared<ChartTables>(base);
    c.there(*theirs);
    ChartMerge merge(ChartFingerprint::of(base), mine, theirs);
    QCOMPARE(conflictsOf(merge), QString::fromUtf8(c.conflicts));
    for (const bool keepMine : {true, false}) {
        merge.decideAll(keepMine);
        QStringList dropped;
        const ChartTables result = merge.result(&dropped);
        const QStringList expected = QString::fromUtf8(keepMine ? c.keepMine : c.keepTheirs).split(u'|');
        for (const QString& pair : expected) {
            const QString what = pair.section(u'=', 0, 0);
            QVERIFY2(probe(result, what) == pair.section(u'=', 1),
                qPrintable(QStringLiteral("%1 (%2): %3").arg(pair, keepMine ? "mine" : "theirs", probe(result, what))));
        }
        // Whatever was decided, nothing of the merge refers to a row it left out.
        QCOMPARE(danglingReference(result), QString());
    }
}

void TestChartMerge::rowOrderDoesNotMatter()
{
    // The merge walks both sides expecting their rows mostly in one order; rows in another order
    // must merge to the same.
    QFETCH(int, index);
    const Case& c = cases()[static_cast<size_t>(index)];
    const ChartTables base = baseTables();
    ChartTables mine = base;
    c.here(mine);
    ChartTables theirs = base;
    c.there(theirs);
    const auto reversed = [](ChartTables t) {
        std::reverse(t.members.begin(), t.members.end());
        std::reverse(t.relations.begin(), t.relations.end());
        std::reverse(t.fileBox.folders.begin(), t.fileBox.folders.end());
        std::reverse(t.fileBox.userAuthorities.begin(), t.fileBox.userAuthorities.end());
        return t;
    };
    ChartMerge inOrder(ChartFingerprint::of(base), mine, std::make_shared<ChartTables>(theirs));
    ChartMerge otherOrder(ChartFingerprint::of(base), reversed(mine), std::make_shared<ChartTables>(reversed(theirs)));
    QStringList expected = conflictsOf(inOrder).split(u';');
    QStringList actual = conflictsOf(otherOrder).split(u';');
    expected.sort();
    actual.sort();
    QCOMPARE(actual, expected);
    for (const bool keepMine : {true, false}) {
        inOrder.decideAll(keepMine);
        otherOrder.decideAll(keepMine);
        QVERIFY(ChartFingerprint::of(otherOrder.result()) == ChartFingerprint::of(inOrder.result()));
    }
}

void TestChartMerge::nothingChangedThereIsNoConflict()
{
    const ChartTables base = baseTables();
    ChartTables mine = base;
    group(mine, 3)->GroupName = QStringLiteral("개발팀");
    mine.members.push_back(newMember(13, "choi"));
    ChartMerge merge(ChartFingerprint::of(base), mine, std::make_shared<ChartTables>(base));
    QVERIFY(merge.conflicts().empty());
    QVERIFY(merge.theirChanges().empty());
    QVERIFY(merge.renumbered().empty());
    // Merging with an unchanged database gives exactly this console's tables.
    QVERIFY(ChartFingerprint::of(merge.result()) == ChartFingerprint::of(mine));
}

void TestChartMerge::changesAreNamed()
{
    const ChartTables base = baseTables();
    ChartTables mine = base;
    mine.members.push_back(newMember(13, "choi"));
    auto theirs = std::make_shared<ChartTables>(base);
    member(*theirs, 11)->Passwd = QStringLiteral("changed");
    removeGroup(*theirs, 3);
    ChartMerge merge(ChartFingerprint::of(base), mine, theirs);
    QStringList there;
    for (const RowChange& change : merge.theirChanges())
        there << QStringLiteral("%1 %2 %3 [%4]")
                     .arg(ChartNames::table(change.table), change.name)
                     .arg(static_cast<int>(change.kind))
                     .arg(change.fields.join(u','));
    QCOMPARE(
        there, (QStringList {"부서 개발부 2 []", "사용자 LEE (lee) 1 [비밀번호]", "소속 LEE (lee) - 개발부 2 []"}));
    QCOMPARE(merge.myChanges().size(), size_t(1));
    QCOMPARE(merge.myChanges().front().loginId, QStringLiteral("choi"));
}

QTEST_GUILESS_MAIN(TestChartMerge)
#include "tst_chart_merge.moc"
