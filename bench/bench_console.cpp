// The chart editor on a large chart, each figure beside a reference measured in the same run:
// opening and scrolling (reference: the same views over a model of fixed texts); sorting the member
// list by a header (reference: a plain sort of the same texts); searching it at 100,000 and 300,000
// users, and applying the search again after an edit (reference: a plain filter of the same rows);
// the departments column for every row (reference: each path worked out from the tree); edits of
// thousands of selected users and moving a large department with the editor open (reference: the
// same edits on a document that no view watches). Runs without a screen.
// usage: bench_console [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartMoves.h"
#include "orgchart/COrganizeFormView.h"
#include "orgchart/DepartmentPaths.h"
#include "orgchart/MemberListModel.h"
#include "orgchart/MemberTableView.h"
#include "orgchart/OrgTreeView.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>

using namespace sable;
using namespace sable::bench;

namespace {

const AskYesNo kYes = [](const QString&) { return true; };
constexpr double kEditBoundMs = 50;
constexpr double kSearchBoundMs = 150;
constexpr double kSortBoundMs = 300;
constexpr double kColumnBoundMs = 200;

class FixedModel final : public QAbstractTableModel
{
public:
    explicit FixedModel(int rows)
        : m_rows(rows)
    { }
    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : m_rows; }
    int columnCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : MemberColumnCount; }
    QVariant data(const QModelIndex& index, int role) const override
    {
        return role == Qt::DisplayRole ? QVariant(QStringLiteral("가나다 %1").arg(index.row())) : QVariant();
    }

private:
    int m_rows;
};

// Figures beside their references, each with the bound it must keep.
struct BoundReport
{
    QTextStream& out;
    bool bWithinBounds = true;

    void line(const QString& what, double ms, const QString& reference, double referenceMs, double boundMs)
    {
        bWithinBounds = bWithinBounds && (boundMs <= 0 || ms <= boundMs);
        out << QStringLiteral("%1 %2 ms   reference: %3 %4 ms%5\n")
                   .arg(what.leftJustified(52))
                   .arg(ms, 8, 'f', 1)
                   .arg(reference)
                   .arg(referenceMs, 0, 'f', 1)
                   .arg(boundMs > 0 ? QStringLiteral(" (bound %1 ms)").arg(boundMs) : QString());
        out.flush();
    }
};

double ms(double seconds)
{
    return seconds * 1000;
}

// Pages through the view from top to bottom, drawing each page; returns the slowest page in ms.
double pageThrough(QAbstractItemView* view, int pages, double* average)
{
    QScrollBar* bar = view->verticalScrollBar();
    double worst = 0;
    double total = 0;
    for (int page = 0; page < pages; ++page) {
        const double seconds = timeIt([&] {
            bar->setValue(bar->minimum() + (bar->maximum() - bar->minimum()) * page / std::max(1, pages - 1));
            view->viewport()->repaint();
        });
        worst = std::max(worst, seconds);
        total += seconds;
    }
    *average = total / pages * 1000;
    return worst * 1000;
}

// An edit as the window sees it: the change, what the views do about it, and the next paint.
template <typename F>
double editShown(COrganizeFormView& editor, F&& edit)
{
    return ms(timeIt([&] {
        edit();
        QApplication::processEvents();
        editor.memberList()->viewport()->repaint();
        editor.tree()->viewport()->repaint();
    }));
}

// A key typed into the search box, until the list shows the result: the pause that gathers keys,
// the search and the paint.
double typeSearch(COrganizeFormView& editor, const QString& text)
{
    QElapsedTimer timer;
    timer.start();
    bool bShown = false;
    const auto connection
        = QObject::connect(editor.memberModel(), &MemberListModel::shownRowsChanged, [&bShown] { bShown = true; });
    editor.searchBox()->setText(text);
    while (!bShown && timer.elapsed() < 10000)
        QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    editor.memberList()->viewport()->repaint();
    QObject::disconnect(connection);
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

// The reference of a search: the same fields of every member looked through, nothing else.
double plainFilter(const OrgChart& chart, const QString& text, int* found)
{
    return ms(timeIt([&] {
        *found = 0;
        for (const MemberRecord& m : chart.members()) {
            if (m.MemberID.contains(text, Qt::CaseInsensitive) || m.MemberName.contains(text, Qt::CaseInsensitive)
                || m.Email.contains(text, Qt::CaseInsensitive) || m.HP.contains(text, Qt::CaseInsensitive)
                || m.OfficePhone.contains(text, Qt::CaseInsensitive) || m.HomePhone.contains(text, Qt::CaseInsensitive))
                ++*found;
        }
    }));
}

std::vector<int> spreadRows(const OrgChart& chart, int count)
{
    std::vector<int> rows;
    const int step = std::max(1, chart.memberCount() / count);
    for (int row = 0; row < chart.memberCount() && static_cast<int>(rows.size()) < count; row += step)
        rows.push_back(row);
    return rows;
}

// The department whose subtree holds the number of member nodes closest to `members`.
OrgNode* departmentHolding(const OrgChart& chart, int members)
{
    QHash<const OrgNode*, int> below;
    std::vector<OrgNode*> groups;
    chart.forEachGroup([&groups](OrgNode* group) { groups.push_back(group); });
    for (auto it = groups.rbegin(); it != groups.rend(); ++it) {
        for (int i = 0; i < (*it)->childCount(); ++i)
            below[*it] += (*it)->child(i)->isMember() ? 1 : 0;
        if ((*it)->parent() != chart.invisibleRoot())
            below[(*it)->parent()] += below[*it];
    }
    OrgNode* best = nullptr;
    for (OrgNode* group : groups) {
        if (group != chart.rootGroup() && (!best || std::abs(below[group] - members) < std::abs(below[best] - members)))
            best = group;
    }
    return best;
}

OrgNode* elsewhere(const OrgChart& chart, const OrgNode* moving)
{
    OrgNode* found = nullptr;
    chart.forEachGroup([&](OrgNode* group) {
        if (!found && group->childCount() < 50 && !OrgChart::isWithin(group, moving) && group != moving->parent())
            found = group;
    });
    return found;
}

void openingAndScrolling(BoundReport& report, CSableManagerDoc& doc, std::unique_ptr<COrganizeFormView>& editor)
{
    const double open = ms(timeIt([&] {
        editor = std::make_unique<COrganizeFormView>(doc);
        editor->resize(1000, 700);
        editor->show();
        editor->memberList()->viewport()->repaint();
        editor->tree()->viewport()->repaint();
        QApplication::processEvents();
    }));
    editor->tree()->expandToDepth(2);
    FixedModel fixed(doc.chart().memberCount() + 1);
    QTableView reference;
    reference.resize(1000, 700);
    const double referenceOpen = ms(timeIt([&] {
        reference.setModel(&fixed);
        reference.show();
        reference.viewport()->repaint();
        QApplication::processEvents();
    }));
    report.line(QStringLiteral("opening the chart editor"), open, QStringLiteral("fixed texts"), referenceOpen, 500);
    double ourAverage = 0;
    double referenceAverage = 0;
    const double ourWorst = pageThrough(editor->memberList(), 200, &ourAverage);
    const double referenceWorst = pageThrough(&reference, 200, &referenceAverage);
    report.line(
        QStringLiteral("member list, slowest page"), ourWorst, QStringLiteral("fixed texts"), referenceWorst, 0);
    double treeAverage = 0;
    report.out << QStringLiteral("department tree, a page: slowest %1 ms, average %2 ms\n")
                      .arg(pageThrough(editor->tree(), 200, &treeAverage), 0, 'f', 1)
                      .arg(treeAverage, 0, 'f', 1);
}

void sortingAndColumns(BoundReport& report, CSableManagerDoc& doc, COrganizeFormView& editor)
{
    const OrgChart& chart = doc.chart();
    QStringList names;
    for (const MemberRecord& member : chart.members())
        names << member.MemberName;
    const double plainSort = ms(timeIt([&] { std::stable_sort(names.begin(), names.end()); }));
    for (const auto& [column, what] : {std::pair(int(ColMemberName), "sorting the member list by 이름"),
             std::pair(int(MemberListModel::kDepartmentsColumn), "sorting the member list by 부서"),
             std::pair(int(ColGender), "sorting the member list by 성별")}) {
        const double sorted = editShown(editor, [&, c = column] { editor.sortByColumn(c); });
        report.line(
            QString::fromUtf8(what), sorted, QStringLiteral("std::stable_sort of the names"), plainSort, kSortBoundMs);
    }
    editor.sortByColumn(ColGender);
    editor.sortByColumn(ColGender); // back to the list's own order

    const double perPlacement = ms(timeIt([&] {
        for (const MemberRecord& member : chart.members()) {
            QStringList paths;
            for (const OrgNode* placement : chart.placementsInTreeOrder(member.K_MemberID))
                paths << chart.departmentPath(placement);
            names.first() = paths.join(u';');
        }
    }));
    const double column = ms(timeIt([&] {
        const DepartmentPaths paths(chart);
        for (const MemberRecord& member : chart.members())
            names.first() = paths.departmentsOf(member.K_MemberID);
    }));
    report.line(QStringLiteral("the 부서 column of every row"), column, QStringLiteral("each path from the tree"),
        perPlacement, kColumnBoundMs);
}

void searching(BoundReport& report, CSableManagerDoc& doc, COrganizeFormView& editor, const QString& size)
{
    int found = 0;
    const double plain = plainFilter(doc.chart(), QStringLiteral("김"), &found);
    const double typed = typeSearch(editor, QStringLiteral("김"));
    report.line(
        QStringLiteral("search \"김\" at %1 users (%2 shown)").arg(size).arg(editor.memberModel()->shownCount()), typed,
        QStringLiteral("plain filter"), plain, kSearchBoundMs);
    const double narrowed = typeSearch(editor, QStringLiteral("김민"));
    report.line(QStringLiteral("search \"김민\" at %1 users").arg(size), narrowed, QStringLiteral("plain filter"),
        plainFilter(doc.chart(), QStringLiteral("김민"), &found), kSearchBoundMs);
    const double cleared = typeSearch(editor, QString());
    report.line(QStringLiteral("clearing the search at %1 users").arg(size), cleared, QStringLiteral("plain filter"),
        plain, kSearchBoundMs);
}

void refilterAfterEdits(BoundReport& report, CSableManagerDoc& doc, COrganizeFormView& editor)
{
    typeSearch(editor, QStringLiteral("부서 1"));
    int found = 0;
    const double plain = plainFilter(doc.chart(), QStringLiteral("부서 1"), &found);
    OrgNode* department = doc.chart().findGroup(17);
    const double renamed
        = editShown(editor, [&] { ChartEdits(doc).renameDepartment(department, QStringLiteral("영업 부서 1 본부")); });
    report.line(QStringLiteral("rename a department, search applied again"), renamed, QStringLiteral("plain filter"),
        plain, kEditBoundMs);
    const double edited = editShown(editor,
        [&] { ChartEdits(doc).editCell(editor.memberModel()->memberRow(3), ColMemberName, QStringLiteral("홍길동")); });
    report.line(QStringLiteral("edit a shown name, search applied again"), edited, QStringLiteral("plain filter"),
        plain, kEditBoundMs);
    typeSearch(editor, QString());
}

// Edits of many users at once, with the editor open and beside the same edit on a document that
// nothing watches.
void manyUsers(BoundReport& report, CSableManagerDoc& doc, COrganizeFormView& editor, CSableManagerDoc& bare)
{
    OrgNode* target = doc.chart().findGroup(42);
    OrgNode* bareTarget = bare.chart().findGroup(42);
    for (const int count : {1000, 4000, 16000}) {
        const std::vector<int> rows = spreadRows(doc.chart(), count);
        const QString n = QLocale(QLocale::English).toString(count);
        const auto both = [&](const QString& what, auto&& edit) {
            const double shown = editShown(editor, [&] { edit(doc, target); });
            const double plain = ms(timeIt([&] { edit(bare, bareTarget); }));
            report.line(what.arg(n), shown, QStringLiteral("no view"), plain, kEditBoundMs);
            const double undone = editShown(editor, [&] { doc.history().undo(); });
            const double plainUndo = ms(timeIt([&] { bare.history().undo(); }));
            report.line(QStringLiteral("  undo"), undone, QStringLiteral("no view"), plainUndo, kEditBoundMs);
        };
        both(QStringLiteral("delete %1 users"),
            [&](CSableManagerDoc& d, OrgNode*) { ChartEdits(d).deleteUsers(rows, kYes); });
        both(QStringLiteral("add %1 users to a department"),
            [&](CSableManagerDoc& d, OrgNode* to) { ChartEdits(d).addToDepartment(rows, to); });
        both(QStringLiteral("move %1 users to a department"), [&](CSableManagerDoc& d, OrgNode* to) {
            ChartMoves(d).moveUsers(
                rows, to, [](const MemberRecord&, const std::vector<OrgNode*>& p) { return p.front(); });
        });
    }
    OrgNode* division = departmentHolding(doc.chart(), 10000);
    OrgNode* bareDivision = departmentHolding(bare.chart(), 10000);
    const double moved
        = editShown(editor, [&] { ChartMoves(doc).moveDepartment(division, elsewhere(doc.chart(), division)); });
    const double plainMove
        = ms(timeIt([&] { ChartMoves(bare).moveDepartment(bareDivision, elsewhere(bare.chart(), bareDivision)); }));
    report.line(QStringLiteral("move a department holding ~10,000 members"), moved, QStringLiteral("no view"),
        plainMove, kEditBoundMs);
    report.line(QStringLiteral("  undo"), editShown(editor, [&] { doc.history().undo(); }), QStringLiteral("no view"),
        ms(timeIt([&] { bare.history().undo(); })), kEditBoundMs);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTextStream out(stdout);
    BoundReport report {out};
    const ChartSize size = scaledChartSize(app.arguments());

    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    out << "chart: " << doc.chart().memberCount() << " members, " << doc.chart().groupCount() << " departments\n";
    std::unique_ptr<COrganizeFormView> editor;
    openingAndScrolling(report, doc, editor);
    sortingAndColumns(report, doc, *editor);
    searching(report, doc, *editor, QLocale(QLocale::English).toString(doc.chart().memberCount()));
    refilterAfterEdits(report, doc, *editor);
    {
        CSableManagerDoc bare;
        bare.adopt(generateChart(size));
        manyUsers(report, doc, *editor, bare);
    }
    editor.reset();

    // Three times as many users, for how the search grows with the list.
    ChartSize larger = size;
    for (int* value : {&larger.members, &larger.departments, &larger.memberships})
        *value *= 3;
    CSableManagerDoc large;
    large.adopt(generateChart(larger));
    COrganizeFormView largeEditor(large);
    largeEditor.resize(1000, 700);
    largeEditor.show();
    QApplication::processEvents();
    searching(report, large, largeEditor, QLocale(QLocale::English).toString(large.chart().memberCount()));
    out << (report.bWithinBounds ? "every figure within its bound\n" : "SOME FIGURES ABOVE THEIR BOUNDS\n");
    return report.bWithinBounds ? 0 : 1;
}
