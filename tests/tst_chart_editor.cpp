// The chart editor and the rank editor as an administrator sees them: what the tree and the member
// list show, sorting, searching and counting the list, dragging in the tree and what a drag shows,
// the move command, the birthday cell, and the department picker.

#include "ChartText.h"
#include "document/ChartMoves.h"
#include "document/DemoOrganisation.h"
#include "document/RankEdits.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/CPositionFormView.h"
#include "orgchart/DepartmentPickerDialog.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeModel.h"
#include "orgchart/OrgTreeView.h"
#include "orgchart/RankModels.h"
#include "widgets/BalloonTip.h"
#include "widgets/CutTextDelegate.h"
#include "widgets/DragLabel.h"

#include <QCheckBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTest>

using namespace sable;

namespace {

// The chart editor on the demo organisation, shown, with every question answered by the test.
struct Editor
{
    CSableManagerDoc doc;
    std::unique_ptr<COrganizeFormView> form;
    QStringList chosen;
    int choice = 0;

    Editor()
    {
        doc.adopt(DemoOrganisation::contents());
        form = std::make_unique<COrganizeFormView>(doc);
        Prompter prompter;
        prompter.askYesNo = [](QWidget*, const QString&) { return true; };
        prompter.choose = [this](QWidget*, const QString& question, const QStringList& choices) {
            chosen << question << choices;
            return choice;
        };
        form->setPrompter(prompter);
        form->resize(1000, 600);
        form->show();
    }

    MemberListModel& list() const { return *form->memberModel(); }
    OrgTreeModel& tree() const { return *form->treeModel(); }
    OrgNode* group(int id) { return doc.chart().findGroup(id); }
    QModelIndex node(int id) { return tree().indexOf(group(id)); }
    QString nameAt(int row) const { return list().index(row, ColMemberName).data().toString(); }

    void search(const QString& text)
    {
        form->searchBox()->setText(text);
        QTRY_COMPARE(list().searchText(), text.trimmed());
    }
    // The departments directly under a department, by name.
    QString departmentsUnder(int id)
    {
        QStringList names;
        for (int i = 0; i < group(id)->childCount(); ++i) {
            if (group(id)->child(i)->isGroup())
                names << group(id)->child(i)->name();
        }
        return names.join(u' ');
    }
    void selectMemberRows(const QList<int>& memberRows)
    {
        form->memberList()->clearSelection();
        for (const int row : memberRows)
            form->memberList()->selectionModel()->select(
                list().index(list().rowOfMember(row), 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
};

} // namespace

class TestChartEditor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { BalloonTip::hideCurrent(); }
    void treeShowsRanksAndIds();
    void departmentsColumn();
    void sortingByHeader();
    void searchCountAndLiveFilter();
    void typedUserStaysWhileSearching();
    void birthdayCell();
    void dragDepartmentInTree_data();
    void dragDepartmentInTree();
    void dropPlaceUnderThePointer();
    void dragShowsACompactLabel();
    void moveCommandAsksWhichMembership();
    void departmentPicker();
    void rankGridSearch();
};

void TestChartEditor::treeShowsRanksAndIds()
{
    Editor editor;
    const QModelIndex chief = editor.tree().indexOf(editor.doc.chart().placementIn(editor.group(1), 1));
    QCOMPARE(chief.data().toString(), QStringLiteral("김정훈 (대표이사)"));
    QCOMPARE(chief.data(Qt::EditRole).toString(), QStringLiteral("김정훈"));
    QVERIFY(chief.data(Qt::ToolTipRole).toString().startsWith(QStringLiteral("아이디: jhkim\n")));
    // No parentheses for no rank; a renamed rank shows at once.
    ChartEdits(editor.doc).setRank(editor.doc.chart().placementIn(editor.group(1), 1), 200);
    QCOMPARE(chief.data().toString(), QStringLiteral("김정훈"));
    ChartEdits(editor.doc).setRank(editor.doc.chart().placementIn(editor.group(1), 1), 201);
    RankEdits(editor.doc).renameRank(0, QStringLiteral("회장"));
    QCOMPARE(chief.data().toString(), QStringLiteral("김정훈 (회장)"));
}

void TestChartEditor::departmentsColumn()
{
    Editor editor;
    const QModelIndex twoPlaces = editor.list().index(3, MemberListModel::kDepartmentsColumn);
    QCOMPARE(twoPlaces.data().toString(), QStringLiteral("세이블상사/경영지원본부/인사팀;세이블상사/기술연구소"));
    QCOMPARE(editor.list().index(38, MemberListModel::kDepartmentsColumn).data().toString(), QString());
    QCOMPARE(editor.form->memberList()->horizontalHeader()->visualIndex(MemberListModel::kDepartmentsColumn), 2);
    QVERIFY(!(editor.list().flags(twoPlaces) & Qt::ItemIsEditable));
    // The cut cell says all of it as a tool tip; a cell that shows all of its text has none.
    QTableView* view = editor.form->memberList();
    auto* cells = static_cast<CutTextDelegate*>(view->itemDelegate());
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.widget = view;
    option.rect = view->visualRect(twoPlaces);
    QVERIFY(cells->isCut(option, twoPlaces));
    option.rect = view->visualRect(editor.list().index(0, ColMemberID));
    QVERIFY(!cells->isCut(option, editor.list().index(0, ColMemberID)));
    // Moving a department changes what the column shows.
    ChartMoves(editor.doc).moveDepartment(editor.group(8), editor.group(2));
    QCOMPARE(twoPlaces.data().toString(),
        QStringLiteral("세이블상사/경영지원본부/인사팀;세이블상사/경영지원본부/기술연구소"));
}

void TestChartEditor::sortingByHeader()
{
    Editor editor;
    QHeaderView* header = editor.form->memberList()->horizontalHeader();
    editor.form->sortByColumn(ColMemberName);
    QCOMPARE(editor.nameAt(0), QStringLiteral("강은서"));
    QCOMPARE(editor.nameAt(39), QStringLiteral("황태현"));
    QVERIFY(editor.list().isEntryRow(40));
    QCOMPARE(header->sortIndicatorSection(), int(ColMemberName));
    editor.form->sortByColumn(ColMemberName);
    QCOMPARE(editor.nameAt(0), QStringLiteral("황태현"));
    QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
    editor.form->sortByColumn(ColMemberName);
    QCOMPARE(editor.nameAt(0), QStringLiteral("김정훈"));
    QCOMPARE(header->sortIndicatorSection(), -1);
    // A choice column by the value it stores: men (0) first, each in list order.
    editor.form->sortByColumn(ColGender);
    QCOMPARE(editor.nameAt(0), QStringLiteral("김정훈"));
    QCOMPARE(editor.nameAt(1), QStringLiteral("이민재"));
    // The selection stays on the same member.
    editor.selectMemberRows({2});
    editor.form->sortByColumn(ColMemberID);
    QCOMPARE(editor.form->selectedMemberRows(), std::vector<int> {2});
}

void TestChartEditor::searchCountAndLiveFilter()
{
    Editor editor;
    QCOMPARE(editor.form->countLabel()->text(), QStringLiteral("40명"));
    editor.search(QStringLiteral("국내영업"));
    QCOMPARE(editor.list().shownCount(), 7);
    QCOMPARE(editor.form->countLabel()->text(), QStringLiteral("7명 / 전체 40명"));
    // Edits apply the search again: a member moved away leaves, a department renamed into it comes.
    ChartMoves(editor.doc).moveUsers({12}, editor.group(8), {});
    QTRY_COMPARE(editor.list().shownCount(), 6);
    ChartEdits(editor.doc).renameDepartment(editor.group(7), QStringLiteral("국내영업2팀"));
    QTRY_COMPARE(editor.list().shownCount(), 12);
    QCOMPARE(editor.form->countLabel()->text(), QStringLiteral("12명 / 전체 40명"));
    editor.doc.history().undo();
    QTRY_COMPARE(editor.list().shownCount(), 6);
    // Only those in no department, with the search cleared.
    editor.search(QString());
    editor.form->findChild<QCheckBox*>()->setChecked(true);
    QTRY_COMPARE(editor.list().shownCount(), 2);
    ChartEdits(editor.doc).addToDepartment({38}, editor.group(3));
    QTRY_COMPARE(editor.list().shownCount(), 1);
}

void TestChartEditor::typedUserStaysWhileSearching()
{
    Editor editor;
    editor.search(QStringLiteral("기술"));
    const int shown = editor.list().shownCount();
    const QModelIndex entry = editor.list().index(editor.list().entryRow(), ColMemberID);
    QVERIFY(editor.list().setData(entry, QStringLiteral("newbie")));
    // Its name and password are still to come: it stays until the search changes.
    QCOMPARE(editor.list().shownCount(), shown + 1);
    QCOMPARE(editor.list().index(shown, ColMemberID).data().toString(), QStringLiteral("newbie"));
    QVERIFY(editor.list().setData(editor.list().index(shown, ColMemberName), QStringLiteral("신입")));
    QTest::qWait(20);
    QCOMPARE(editor.list().shownCount(), shown + 1);
    editor.search(QStringLiteral("기술연"));
    QCOMPARE(editor.list().shownCount(), shown);
}

void TestChartEditor::birthdayCell()
{
    Editor editor;
    QTableView* view = editor.form->memberList();
    const QModelIndex birthday = editor.list().index(0, ColBirthDay);
    QVERIFY(view->columnWidth(ColBirthDay) >= view->fontMetrics().horizontalAdvance(QStringLiteral("0000-00-00")));
    view->setCurrentIndex(birthday);
    view->edit(birthday);
    auto* line = view->viewport()->findChild<QLineEdit*>();
    QVERIFY(line);
    QCOMPARE(line->text(), QStringLiteral("1962-03-14"));
    line->setText(QStringLiteral("1962.3.15"));
    Q_EMIT view->itemDelegate()->commitData(line);
    Q_EMIT view->itemDelegate()->closeEditor(line);
    QCOMPARE(editor.doc.chart().member(0).BirthDay, QStringLiteral("1962-03-15"));
    editor.list().setData(birthday, QStringLiteral("15/03/1962"));
    QVERIFY(BalloonTip::current());
    QCOMPARE(BalloonTip::current()->balloon().text, QStringLiteral("생년월일은 1985-07-14처럼 입력하세요."));
    QCOMPARE(editor.doc.chart().member(0).BirthDay, QStringLiteral("1962-03-15"));
}

void TestChartEditor::dragDepartmentInTree_data()
{
    QTest::addColumn<int>("dragged");
    QTest::addColumn<int>("parent");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("subtree"); // the departments under the parent afterwards, or the balloon
    QTest::newRow("into a department") << 7 << 8 << -1 << "해외영업팀";
    QTest::newRow("between two") << 8 << 1 << 2 << "경영지원본부 기술연구소 영업본부";
    QTest::newRow("under itself") << 5 << 6 << -1 << "!부서를 자기 자신이나 그 아래 부서로 옮길 수 없습니다.";
}

void TestChartEditor::dragDepartmentInTree()
{
    QFETCH(int, dragged);
    QFETCH(int, parent);
    QFETCH(int, row);
    QFETCH(QString, subtree);
    Editor editor;
    std::unique_ptr<QMimeData> data(editor.tree().mimeData({editor.node(dragged)}));
    QVERIFY(data->hasFormat(nodeDragMimeType()));
    QVERIFY(editor.tree().canDropMimeData(data.get(), Qt::MoveAction, row, 0, editor.node(parent)));
    editor.tree().dropMimeData(data.get(), Qt::MoveAction, row, 0, editor.node(parent));
    if (subtree.startsWith(u'!')) {
        QVERIFY(BalloonTip::current());
        QCOMPARE(BalloonTip::current()->balloon().text, subtree.mid(1));
        QVERIFY(!editor.doc.isModified());
        return;
    }
    QCOMPARE(editor.departmentsUnder(parent), subtree);
    // The moved department is selected and in sight.
    QCOMPARE(editor.form->selectedNode(), editor.group(dragged));
    // A payload another program made, or one of a chart changed since, moves nothing and says nothing.
    QMimeData foreign;
    foreign.setData(nodeDragMimeType(), QByteArray("SBN1 not from here"));
    const QByteArray before = snapshot(editor.doc);
    QVERIFY(!editor.tree().canDropMimeData(&foreign, Qt::MoveAction, -1, 0, editor.node(3)));
    editor.tree().dropMimeData(data.get(), Qt::MoveAction, -1, 0, editor.node(3));
    QCOMPARE(snapshot(editor.doc), before);
}

void TestChartEditor::dropPlaceUnderThePointer()
{
    Editor editor;
    OrgTreeView* view = editor.form->tree();
    view->expandAll();
    std::unique_ptr<QMimeData> department(editor.tree().mimeData({editor.node(7)}));
    const QRect sales = view->visualRect(editor.node(5));
    const auto at = [&](double fraction) {
        return view->dropTargetAt(
            QPoint(sales.center().x(), sales.top() + int(sales.height() * fraction)), department.get());
    };
    const OrgTreeView::DropTarget upper = at(0.1);
    QCOMPARE(upper.parent, editor.node(1));
    QCOMPARE(upper.row, editor.group(5)->row());
    QVERIFY(upper.bLine);
    const OrgTreeView::DropTarget middle = at(0.5);
    QCOMPARE(middle.parent, editor.node(5));
    QCOMPARE(middle.row, -1);
    QCOMPARE(middle.marker.top(), sales.top());
    QCOMPARE(at(0.9).row, editor.group(5)->row() + 1);
    // Member rows over a member node go to its department, which is the one highlighted.
    QMimeData members;
    members.setData(memberDragMimeType(), ChartEdits(editor.doc).dragPayload({38}));
    const QModelIndex member = editor.tree().indexOf(editor.doc.chart().placementIn(editor.group(6), 13));
    const OrgTreeView::DropTarget onMember = view->dropTargetAt(view->visualRect(member).center(), &members);
    QCOMPARE(onMember.parent, editor.node(6));
    QCOMPARE(onMember.marker.top(), view->visualRect(editor.node(6)).top());
    QMimeData text;
    text.setText(QStringLiteral("another program"));
    QVERIFY(!view->dropTargetAt(sales.center(), &text).isValid());
}

void TestChartEditor::dragShowsACompactLabel()
{
    Editor editor;
    editor.selectMemberRows({0, 1, 2});
    QCOMPARE(editor.form->memberList()->dragLabel(), QStringLiteral("사용자 3명: 김정훈, 박서연, …"));
    const QPixmap label = DragLabel::pixmap(editor.form->memberList()->dragLabel(), editor.form->memberList());
    QVERIFY(label.deviceIndependentSize().width() <= 320);
    QVERIFY(label.deviceIndependentSize().height() < 40);
    // Held away from the pointer, so that the place aimed at stays in sight.
    QVERIFY(DragLabel::hotSpot().x() < 0 && DragLabel::hotSpot().y() < 0);
    // In the tree: a department alone, or every selected member node.
    OrgTreeView* tree = editor.form->tree();
    tree->setCurrentIndex(editor.node(5));
    QCOMPARE(tree->draggedNodes(), std::vector<OrgNode*> {editor.group(5)});
    OrgNode* first = editor.doc.chart().placementIn(editor.group(6), 13);
    OrgNode* second = editor.doc.chart().placementIn(editor.group(6), 14);
    tree->setCurrentIndex(editor.tree().indexOf(second));
    tree->selectionModel()->select(editor.tree().indexOf(first), QItemSelectionModel::Select);
    QCOMPARE(tree->draggedNodes(), (std::vector<OrgNode*> {first, second}));
}

void TestChartEditor::moveCommandAsksWhichMembership()
{
    Editor editor;
    editor.choice = 1;
    editor.form->setDepartmentPicker([&](const OrgNode* moving) { return moving ? nullptr : editor.group(4); });
    editor.selectMemberRows({3, 4});
    editor.form->memberList()->setFocus();
    QVERIFY(editor.form->canMoveToDepartment());
    editor.form->moveToDepartment();
    QCOMPARE(editor.chosen,
        (QStringList {QStringLiteral("최하윤 님은 여러 부서에 속해 있습니다.\n어느 부서에서 옮길까요?"),
            QStringLiteral("세이블상사/경영지원본부/인사팀"), QStringLiteral("세이블상사/기술연구소")}));
    // The chosen membership moved, with its rank; the other user's only one went too, both in the
    // order the tree showed them.
    QCOMPARE(chartText(editor.doc.chart(), editor.group(4)), QStringLiteral("#7:3 #8:4 #9:5 #10:6 #5:5 #4:4"));
    QVERIFY(editor.doc.chart().placementIn(editor.group(3), 4));
    QCOMPARE(editor.doc.history().undoText(), QStringLiteral("사용자 부서 이동: 재무팀"));
}

void TestChartEditor::departmentPicker()
{
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    DepartmentPickerDialog picker(doc.chart(), doc.chart().findGroup(5));
    picker.searchBox()->setText(QStringLiteral("영업"));
    const QAbstractItemModel* shown = picker.tree()->model();
    const QModelIndex top = shown->index(0, 0);
    QCOMPARE(shown->rowCount(top), 1); // 영업본부 only, under the top department
    const QModelIndex sales = shown->index(0, 0, top);
    // The department being moved, and what lies below it, cannot take it.
    QVERIFY(!(shown->flags(sales) & Qt::ItemIsSelectable));
    picker.tree()->setCurrentIndex(shown->index(0, 0, sales));
    QCOMPARE(picker.selectedDepartment(), nullptr);
    picker.searchBox()->clear();
    picker.selectDepartment(doc.chart().findGroup(8));
    QCOMPARE(picker.selectedDepartment(), doc.chart().findGroup(8));
}

void TestChartEditor::rankGridSearch()
{
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    CPositionFormView ranks(doc);
    MembershipRankModel* grid = ranks.membershipModel();
    QCOMPARE(grid->rowCount(), 39);
    ranks.searchBox()->setText(QStringLiteral("인사팀"));
    QCOMPARE(grid->rowCount(), 4);
    ranks.searchBox()->setText(QStringLiteral("JHKIM"));
    QCOMPARE(grid->rowCount(), 1);
    ranks.searchBox()->setText(QStringLiteral("대표"));
    QCOMPARE(grid->index(0, MembershipRankModel::ColLoginId).data().toString(), QStringLiteral("jhkim"));
    // The grid keeps its search, and its selection, when the chart changes under it.
    ranks.membershipList()->selectRow(0);
    ChartEdits(doc).setRank(doc.chart().placementIn(doc.chart().findGroup(2), 2), 201);
    QTRY_COMPARE(grid->rowCount(), 2);
    const QModelIndexList selected = ranks.membershipList()->selectionModel()->selectedRows();
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.first().data().toString(), QStringLiteral("jhkim"));
}

QTEST_MAIN(TestChartEditor)
#include "tst_chart_editor.moc"
