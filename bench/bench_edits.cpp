// The cost of each editing command (and its undo and redo) on a large chart, beside a reference
// measured in the same run: one walk over every node of the tree. Every command should stay under
// 50 ms. usage: bench_edits [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/ChartMoves.h"
#include "document/RankEdits.h"
#include "onboarding/RecipientModel.h"
#include "onboarding/RecipientSelection.h"

#include <QCoreApplication>
#include <QHash>

using namespace sable;
using namespace sable::bench;

namespace {

const AskYesNo kYes = [](const QString&) { return true; };

// The department with the most children, to make moves and inserts among siblings costly.
OrgNode* largestDepartment(const OrgChart& chart)
{
    OrgNode* largest = chart.rootGroup();
    chart.forEachGroup([&largest](OrgNode* group) {
        if (group->childCount() > largest->childCount())
            largest = group;
    });
    return largest;
}

// The department whose subtree holds the number of member nodes closest to `members`.
OrgNode* departmentHolding(const OrgChart& chart, int members)
{
    QHash<const OrgNode*, int> below;
    std::vector<OrgNode*> groups;
    chart.forEachGroup([&groups](OrgNode* group) { groups.push_back(group); });
    // From the deepest up: each department adds its own members to its parent's count.
    for (auto it = groups.rbegin(); it != groups.rend(); ++it) {
        OrgNode* group = *it;
        for (int i = 0; i < group->childCount(); ++i)
            below[group] += group->child(i)->isMember() ? 1 : 0;
        if (group->parent() != chart.invisibleRoot())
            below[group->parent()] += below[group];
    }
    OrgNode* best = nullptr;
    for (OrgNode* group : groups) {
        if (group != chart.rootGroup() && (!best || std::abs(below[group] - members) < std::abs(below[best] - members)))
            best = group;
    }
    return best;
}

int membersBelow(const OrgNode* department)
{
    int count = 0;
    std::vector<const OrgNode*> pending {department};
    while (!pending.empty()) {
        const OrgNode* node = pending.back();
        pending.pop_back();
        for (int i = 0; i < node->childCount(); ++i) {
            const OrgNode* child = node->child(i);
            child->isMember() ? void(++count) : pending.push_back(child);
        }
    }
    return count;
}

// A department outside `moving` that is not its parent: somewhere for it to go.
OrgNode* elsewhere(const OrgChart& chart, const OrgNode* moving)
{
    OrgNode* found = nullptr;
    chart.forEachGroup([&](OrgNode* group) {
        if (!found && !OrgChart::isWithin(group, moving) && group != moving->parent())
            found = group;
    });
    return found;
}

std::vector<int> everyHundredthRow(const OrgChart& chart, int count)
{
    std::vector<int> rows;
    for (int row = 0; row < chart.memberCount() && static_cast<int>(rows.size()) < count; row += 100)
        rows.push_back(row);
    return rows;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    const ChartSize size = scaledChartSize(args);

    CSableManagerDoc doc;
    doc.adopt(generateChart(size));
    OrgChart& chart = doc.chart();
    ChartEdits edits(doc);
    RankEdits ranks(doc);
    out << "chart: " << chart.memberCount() << " members, " << chart.groupCount() << " departments, "
        << chart.placementCount() << " memberships\n";

    int nodes = 0;
    const double walk = timeIt([&] { chart.forEachNode([&nodes](OrgNode*) { ++nodes; }); });
    out << QStringLiteral("reference: one walk over %1 nodes: %2 ms\n").arg(nodes).arg(walk * 1000, 0, 'f', 2);

    double worst = 0;
    const auto measure = [&](const char* what, const std::function<void()>& edit) {
        const double seconds = timeIt(edit);
        worst = std::max(worst, seconds);
        out << QStringLiteral("%1 %2 ms\n")
                   .arg(QString::fromUtf8(what).leftJustified(40))
                   .arg(seconds * 1000, 8, 'f', 2);
        out.flush();
    };
    const auto undoRedo = [&](const char* what) {
        measure(QByteArray(QByteArray("  undo ") + what).constData(), [&] { doc.history().undo(); });
        measure(QByteArray(QByteArray("  redo ") + what).constData(), [&] { doc.history().redo(); });
    };

    OrgNode* big = largestDepartment(chart);
    out << "largest department: " << big->childCount() << " children\n";
    measure("add department", [&] { edits.addDepartment(big); });
    measure("rename department", [&] { edits.renameDepartment(big, QStringLiteral("큰 부서")); });
    measure("move to top", [&] { edits.move(big->child(big->childCount() - 1), ChartEdits::Move::ToTop); });
    measure("sort the whole tree by rank", [&] { edits.sortByRank(chart.rootGroup()); });
    undoRedo("sort");
    // Not an edit, and outside the edits' bound: the registration mail's recipients of the top
    // department, every member of the chart, picked and listed in the mail dialog's model.
    QList<int> ids;
    RecipientModel recipients;
    const double picked = timeIt([&] {
        ids = RecipientSelection::membersBelow(chart.rootGroup());
        QList<Recipient> rows;
        for (const int id : std::as_const(ids)) {
            const MemberRecord* member = chart.findMember(id);
            rows.append({member->MemberName, member->Email, member->MemberID, member->Passwd});
        }
        recipients.addRecipients(rows);
    });
    out << QStringLiteral("%1 %2 ms (%3 rows)\n")
               .arg(QStringLiteral("mail recipients of the top department").leftJustified(40))
               .arg(picked * 1000, 8, 'f', 2)
               .arg(recipients.rowCount());
    measure("set rank", [&] { edits.setRank(chart.placementsOf(500).front(), 205); });
    measure("add user by entry", [&] { edits.addUserByEntry(QStringLiteral("brand-new-user"), true); });
    measure("edit a cell", [&] { edits.editCell(777, ColMemberName, QStringLiteral("홍길동")); });
    const std::vector<int> thousand = everyHundredthRow(chart, 1000);
    measure("add 1,000 users to a department", [&] { edits.addToDepartment(thousand, big); });
    undoRedo("add to department");
    measure("drop 1,000 users on a department",
        [&] { edits.dropOnDepartment(edits.dragPayload(thousand), chart.rootGroup()); });
    measure("delete 1,000 users", [&] { edits.deleteUsers(thousand, kYes); });
    undoRedo("delete users");
    OrgNode* subtree = chart.rootGroup()->child(chart.rootGroup()->childCount() - 1);
    measure("delete a department with its subtree", [&] { edits.deleteNode(subtree, kYes); });
    undoRedo("delete department");
    OrgNode* division = departmentHolding(chart, 10000);
    OrgNode* destination = elsewhere(chart, division);
    out << "department moved: " << membersBelow(division) << " members below it\n";
    measure("move a department with its subtree", [&] { ChartMoves(doc).moveDepartment(division, destination); });
    undoRedo("move department");
    measure("add rank", [&] { ranks.addRank(); });
    measure("delete a rank in use", [&] { ranks.deleteRank(0, kYes); });
    undoRedo("delete rank");
    measure("move rank down", [&] { ranks.moveRankDown(1); });
    out << QStringLiteral("slowest command: %1 ms (bound: 50 ms)\n").arg(worst * 1000, 0, 'f', 2);
    return worst < 0.050 ? 0 : 1;
}
