// Two saves meeting on a large chart: this console and someone else each changed 1,000 users (a
// field each, 100 of them the same user on both sides, decided as "all mine"), added 100 departments
// and removed 100 memberships. The merge (the comparison, the rows both changed, the renumbering and
// the merged tables), with its result made once more under the other decisions, must stay under 1 s
// at 100,000 users. Reference, measured in the same run: one
// fingerprint of the tables, which any comparison of the two sides must at least make.
// usage: bench_merge [--scale F]

#include "BenchSupport.h"
#include "ChartGenerator.h"
#include "document/ChartFingerprint.h"
#include "document/ChartMerge.h"
#include "document/ChartTables.h"

#include <QCoreApplication>

using namespace sable;
using namespace sable::bench;

namespace {

constexpr double kBoundSeconds = 1.0;

// One side's edits: `count` users from `first` on with another e-mail, departments added under the
// top one from the chart's greatest number on, and memberships removed from `firstRelation` on.
void change(ChartTables& tables, const QString& side, int first, int count, size_t firstRelation)
{
    for (int i = 0; i < count; ++i) {
        MemberRecord& member = tables.members[static_cast<size_t>(first + i) % tables.members.size()];
        member.Email = side + QStringLiteral("%1@example.com").arg(i);
    }
    int highest = 0;
    for (const GroupRow& group : tables.groups)
        highest = std::max(highest, group.K_GroupID);
    const GroupRow top = tables.groups.front(); // a copy: the pushes below move the rows
    for (int i = 0; i < 100; ++i) {
        GroupRow group = top;
        group.K_GroupID = highest + 1 + i;
        group.GroupName = side + QStringLiteral(" 신설팀 %1").arg(i);
        group.K_GroupID_P = top.K_GroupID;
        group.Depth = top.Depth + 1;
        group.Position = 100000 + i;
        tables.groups.push_back(group);
    }
    tables.relations.erase(tables.relations.begin() + static_cast<std::ptrdiff_t>(firstRelation),
        tables.relations.begin() + static_cast<std::ptrdiff_t>(firstRelation + 100));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const ChartSize size = scaledChartSize(app.arguments());
    const ChartContents contents = generateChart(size);
    const ChartTables base = ChartTables::of(*contents.chart, contents.ranks, contents.fileBox, {});
    ChartTables mine = base;
    auto theirs = std::make_shared<ChartTables>(base);
    // 900 users only here, 900 only there, 100 on both sides.
    change(mine, QStringLiteral("mine"), 0, 1000, 0);
    change(*theirs, QStringLiteral("theirs"), 900, 1000, 1000);

    ChartFingerprint basePrint;
    const double reference = timeIt([&] { basePrint = ChartFingerprint::of(base); });
    size_t conflicts = 0;
    size_t merged = 0;
    std::unique_ptr<ChartMerge> merge;
    const double merging = timeIt([&] {
        // The console hands over tables made for the merge; the copy for it is not the merge's work.
        merge = std::make_unique<ChartMerge>(basePrint, std::move(mine), theirs);
        merge->decideAll(true);
        conflicts = merge->conflicts().size();
        merged = merge->result().members.size();
    });
    // Deciding otherwise takes another pass over the tables.
    const double again = timeIt([&] {
        merge->decideAll(false);
        merged = std::min(merged, merge->result().members.size());
    });

    QTextStream out(stdout);
    out << "users: " << base.members.size() << ", conflicts: " << conflicts << ", merged users: " << merged << "\n";
    out << QStringLiteral("merge          %1 s   reference (one fingerprint) %2 s   ratio %3\n")
               .arg(merging, 0, 'f', 3)
               .arg(reference, 0, 'f', 3)
               .arg(merging / reference, 0, 'f', 2);
    out << QStringLiteral("all theirs     %1 s   (the result again under other decisions)\n").arg(again, 0, 'f', 3);
    if (conflicts != 100 || merged != base.members.size()) {
        out << "the merge did not find the 100 rows changed on both sides" << Qt::endl;
        return 1;
    }
    if (size.members >= 100000 && merging + again > kBoundSeconds) {
        out << "over the bound of " << kBoundSeconds << " s" << Qt::endl;
        return 1;
    }
    return 0;
}
