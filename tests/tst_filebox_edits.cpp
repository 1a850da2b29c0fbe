// The file-box permission edits: setting and granting levels, folder numbering, removal (also by the
// chart's deletions), the permissions a user receives through departments, and exact undo.

#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/ChartJson.h"
#include "document/FileBoxEdits.h"
#include "orgchart/ChartBuilder.h"

#include <QTest>

using namespace sable;

namespace {

const AskYesNo kYes = [](const QString&) { return true; };

// Everything a save writes, the deletion lists and the modified flag.
QByteArray snapshot(const CSableManagerDoc& doc)
{
    QByteArray out = ChartJson::write(doc.tables());
    for (const int id : doc.deletedMembers())
        out += " dm" + QByteArray::number(id);
    for (const int id : doc.deletedGroups())
        out += " dg" + QByteArray::number(id);
    return out + (doc.isModified() ? " modified" : " clean");
}

// 본사(1)[user 1, 팀(2)[user 2, user 1], 영업(3)[user 3]]: user 1 sits in two departments.
// Folders 1 \공용, 2 \팀자료, 4 \영업; department permissions 본사 R on 1, 팀 W on 2, 팀 W on 1,
// 영업 R on 4; user 1 has R on 2 of their own.
void smallBox(CSableManagerDoc& doc)
{
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    for (int id = 1; id <= 3; ++id) {
        MemberRecord member;
        member.K_MemberID = id;
        member.MemberID = QStringLiteral("user%1").arg(id);
        member.MemberName = QStringLiteral("U%1").arg(id);
        member.Passwd = QStringLiteral("pw");
        builder.addMember(member);
    }
    builder.addGroup({1, QStringLiteral("본사"), -1, 1, 0});
    builder.addGroup({2, QStringLiteral("팀"), 1, 2, 1});
    builder.addGroup({3, QStringLiteral("영업"), 1, 3, 1});
    builder.addRelation({1, 1, -1, 1});
    builder.addRelation({2, 2, -1, 1});
    builder.addRelation({1, 2, -1, 2});
    builder.addRelation({3, 3, -1, 1});
    builder.finish();
    contents.fileBox.folders
        = {{1, QStringLiteral("\\공용")}, {2, QStringLiteral("\\팀자료")}, {4, QStringLiteral("\\영업")}};
    contents.fileBox.groupAuthorities = {{1, 1, Read}, {2, 2, ReadWrite}, {1, 2, ReadWrite}, {4, 3, Read}};
    contents.fileBox.userAuthorities = {{2, 1, Read}};
    doc.adopt(std::move(contents));
}

} // namespace

class TestFileBoxEdits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void setSamePairTwice();
    void folderNumbering_data();
    void folderNumbering();
    void grantKeepsExistingLevels();
    void removePermissions();
    void inheritedPermissions_data();
    void inheritedPermissions();
    void chartDeletionsTakePermissions_data();
    void chartDeletionsTakePermissions();
    void undoRedoRestoresExactly_data();
    void undoRedoRestoresExactly();
    void granteePayload_data();
    void granteePayload();
};

void TestFileBoxEdits::setSamePairTwice()
{
    CSableManagerDoc doc;
    smallBox(doc);
    FileBoxEdits edits(doc);
    QVERIFY(edits.setGroupLevel(QStringLiteral("\\영업"), 1, ReadWrite));
    QVERIFY(edits.setGroupLevel(QStringLiteral("\\영업"), 1, NoAccess));
    QVERIFY(!edits.setGroupLevel(QStringLiteral("\\영업"), 1, NoAccess)); // nothing to change
    const auto& groups = doc.fileBox().groupAuthorities;
    QCOMPARE(std::count_if(groups.begin(), groups.end(),
                 [](const AuthorityRecord& a) { return a.K_FolderID == 4 && a.grantee == 1; }),
        1);
    QCOMPARE(groups.back(), (AuthorityRecord {4, 1, NoAccess}));
    QCOMPARE(doc.history().count(), 2);
    QVERIFY(doc.isModified());
    // A member's permission is kept apart from a department's with the same number.
    QVERIFY(edits.setMemberLevel(QStringLiteral("\\영업"), 1, Read));
    QCOMPARE(doc.fileBox().userAuthorities.back(), (AuthorityRecord {4, 1, Read}));
    QCOMPARE(groups.back(), (AuthorityRecord {4, 1, NoAccess}));
}

void TestFileBoxEdits::folderNumbering_data()
{
    QTest::addColumn<QList<int>>("existing");
    QTest::addColumn<QList<int>>("expected"); // of two new folders, in turn
    QTest::newRow("gap after 2") << QList<int> {1, 2, 4} << QList<int> {3, 5};
    QTest::newRow("gap at the start") << QList<int> {2, 3} << QList<int> {1, 4};
    QTest::newRow("unordered list") << QList<int> {5, 1, 3} << QList<int> {2, 4};
    QTest::newRow("empty list") << QList<int> {} << QList<int> {1, 2};
}

void TestFileBoxEdits::folderNumbering()
{
    QFETCH(QList<int>, existing);
    QFETCH(QList<int>, expected);
    CSableManagerDoc doc;
    smallBox(doc);
    doc.fileBox().folders.clear();
    for (const int id : existing)
        doc.fileBox().folders.push_back({id, QStringLiteral("\\old%1").arg(id)});
    FileBoxEdits edits(doc);
    QVERIFY(edits.setGroupLevel(QStringLiteral("\\new1"), 3, Read));
    QCOMPARE(edits.grant({QStringLiteral("\\new2")}, {Grantee::user(2)}, Read), 1);
    QCOMPARE(doc.fileBox().findFolderByPath(QStringLiteral("\\new1"))->K_FolderID, expected[0]);
    QCOMPARE(doc.fileBox().findFolderByPath(QStringLiteral("\\new2"))->K_FolderID, expected[1]);
    QCOMPARE(doc.fileBox().groupAuthorities.back(), (AuthorityRecord {expected[0], 3, Read}));
    // A folder in the list keeps its number: no second record for the same path.
    QVERIFY(edits.setMemberLevel(QStringLiteral("\\new1"), 2, ReadWrite));
    QCOMPARE(doc.fileBox().folders.size(), size_t(existing.size() + 2));
}

void TestFileBoxEdits::grantKeepsExistingLevels()
{
    CSableManagerDoc doc;
    smallBox(doc);
    FileBoxEdits edits(doc);
    const int steps = doc.history().count();
    // 팀 already writes to \팀자료; 영업 and user 3 are new there; a repeated grantee counts once.
    const int added = edits.grant({QStringLiteral("\\팀자료")},
        {Grantee::department(2), Grantee::department(3), Grantee::user(3), Grantee::user(3)}, Read);
    QCOMPARE(added, 2);
    QCOMPARE(edits.levelOf({2, Grantee::department(2)}), std::optional<int>(ReadWrite));
    QCOMPARE(edits.levelOf({2, Grantee::department(3)}), std::optional<int>(Read));
    QCOMPARE(edits.levelOf({2, Grantee::user(3)}), std::optional<int>(Read));
    QCOMPARE(doc.history().count(), steps + 1);
    // Nothing new: no step, no change.
    QCOMPARE(edits.grant({QStringLiteral("\\팀자료")}, {Grantee::department(3)}, ReadWrite), 0);
    QCOMPARE(doc.history().count(), steps + 1);
    QCOMPARE(edits.grant({QString()}, {Grantee::department(3)}, Read), 0);
}

void TestFileBoxEdits::removePermissions()
{
    CSableManagerDoc doc;
    smallBox(doc);
    FileBoxEdits edits(doc);
    QCOMPARE(edits.removePermissions({{1, Grantee::department(2)}, {2, Grantee::user(1)}, {9, Grantee::user(1)}}), 2);
    QCOMPARE(
        doc.fileBox().groupAuthorities, (std::vector<AuthorityRecord> {{1, 1, Read}, {2, 2, ReadWrite}, {4, 3, Read}}));
    QVERIFY(doc.fileBox().userAuthorities.empty());
    // The folders stay, even without permissions.
    QCOMPARE(doc.fileBox().folders.size(), size_t(3));
    QVERIFY(!edits.removePermission({2, Grantee::user(1)}));
    QCOMPARE(doc.history().count(), 1);
}

void TestFileBoxEdits::inheritedPermissions_data()
{
    QTest::addColumn<int>("member");
    QTest::addColumn<QList<QList<int>>>("expected"); // folder, department, level
    QTest::newRow("two departments, one folder twice")
        << 1 << QList<QList<int>> {{1, 1, Read}, {2, 2, ReadWrite}, {1, 2, ReadWrite}};
    QTest::newRow("one department") << 2 << QList<QList<int>> {{2, 2, ReadWrite}, {1, 2, ReadWrite}};
    QTest::newRow("in no department") << 7 << QList<QList<int>> {};
}

void TestFileBoxEdits::inheritedPermissions()
{
    QFETCH(int, member);
    QFETCH(QList<QList<int>>, expected);
    CSableManagerDoc doc;
    smallBox(doc);
    std::vector<InheritedPermission> wanted;
    for (const QList<int>& e : expected)
        wanted.push_back({e[0], e[1], e[2]});
    QCOMPARE(FileBoxEdits(doc).inheritedPermissions(member), wanted);
}

void TestFileBoxEdits::chartDeletionsTakePermissions_data()
{
    QTest::addColumn<bool>("department");
    QTest::newRow("delete the department 팀") << true;
    QTest::newRow("delete user 1") << false;
}

void TestFileBoxEdits::chartDeletionsTakePermissions()
{
    QFETCH(bool, department);
    CSableManagerDoc doc;
    smallBox(doc);
    const QByteArray before = snapshot(doc);
    ChartEdits chart(doc);
    if (department)
        chart.deleteNode(doc.chart().findGroup(2), kYes);
    else
        chart.deleteUsers({0}, kYes);
    const FileBoxLists& lists = doc.fileBox();
    if (department) {
        QCOMPARE(lists.groupAuthorities, (std::vector<AuthorityRecord> {{1, 1, Read}, {4, 3, Read}}));
        QCOMPARE(lists.userAuthorities.size(), size_t(1));
    } else {
        QCOMPARE(lists.groupAuthorities.size(), size_t(4));
        QVERIFY(lists.userAuthorities.empty());
    }
    // One step takes the chart and the permissions away, and one undo brings both back.
    QCOMPARE(doc.history().count(), 1);
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
}

void TestFileBoxEdits::undoRedoRestoresExactly_data()
{
    QTest::addColumn<int>("operation");
    const char* names[] = {"level on a new folder", "level on a listed folder", "level by key", "grant on two folders",
        "remove from both lists"};
    for (int i = 0; i < int(std::size(names)); ++i)
        QTest::newRow(names[i]) << i;
}

void TestFileBoxEdits::undoRedoRestoresExactly()
{
    QFETCH(int, operation);
    CSableManagerDoc doc;
    smallBox(doc);
    FileBoxEdits edits(doc);
    // An earlier edit, so that neither the flag nor the history starts empty.
    edits.setMemberLevel(QStringLiteral("\\공용"), 3, Read);
    const QByteArray before = snapshot(doc);
    switch (operation) {
    case 0:
        QVERIFY(edits.setGroupLevel(QStringLiteral("\\새 폴더"), 3, ReadWrite));
        break;
    case 1:
        QVERIFY(edits.setGroupLevel(QStringLiteral("\\공용"), 1, ReadWrite));
        break;
    case 2:
        QVERIFY(edits.setLevel(PermissionKey {2, Grantee::user(1)}, NoAccess));
        break;
    case 3:
        QCOMPARE(edits.grant({QStringLiteral("\\영업"), QStringLiteral("\\새 폴더")}, {Grantee::user(2)}, Read), 2);
        break;
    case 4:
        QCOMPARE(edits.removePermissions({{2, Grantee::department(2)}, {2, Grantee::user(1)}}), 2);
        break;
    }
    const QByteArray after = snapshot(doc);
    QVERIFY(after != before);
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
    doc.history().redo();
    QCOMPARE(snapshot(doc), after);
    doc.history().undo();
    doc.history().undo();
    QVERIFY(!doc.isModified());
}

void TestFileBoxEdits::granteePayload_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("valid");
    QTest::newRow("department and user") << QByteArray("D2,U3") << true;
    QTest::newRow("unknown department") << QByteArray("D9") << false;
    QTest::newRow("unknown user") << QByteArray("U2,U9") << false;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no number") << QByteArray("D") << false;
    QTest::newRow("other letter") << QByteArray("G2") << false;
}

void TestFileBoxEdits::granteePayload()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, valid);
    CSableManagerDoc doc;
    smallBox(doc);
    const auto grantees = FileBoxEdits(doc).granteesOfPayload(payload);
    QCOMPARE(grantees.has_value(), valid);
    if (valid)
        QCOMPARE(FileBoxEdits::granteePayload(*grantees), payload);
}

QTEST_GUILESS_MAIN(TestFileBoxEdits)
#include "tst_filebox_edits.moc"
