#include "ChartGenerator.h"

#include "orgchart/ChartBuilder.h"

#include <QRandomGenerator>
#include <QSet>

namespace sable::bench {
namespace {

const QStringList kFamilyNames = {QStringLiteral("김"), QStringLiteral("이"), QStringLiteral("박"),
    QStringLiteral("최"), QStringLiteral("정"), QStringLiteral("강"), QStringLiteral("조"), QStringLiteral("윤")};
const QStringList kSyllables
    = {QStringLiteral("민"), QStringLiteral("서"), QStringLiteral("지"), QStringLiteral("현"), QStringLiteral("우"),
        QStringLiteral("준"), QStringLiteral("하"), QStringLiteral("은"), QStringLiteral("수"), QStringLiteral("영")};

QString personName(QRandomGenerator& random)
{
    return kFamilyNames[random.bounded(kFamilyNames.size())] + kSyllables[random.bounded(kSyllables.size())]
        + kSyllables[random.bounded(kSyllables.size())];
}

MemberRecord makeMember(int id, QRandomGenerator& random)
{
    MemberRecord m;
    m.K_MemberID = id;
    m.MemberID = QStringLiteral("user%1").arg(id);
    m.MemberName = personName(random);
    m.Passwd = QStringLiteral("pw%1").arg(random.bounded(100000));
    m.Gender = random.bounded(2);
    m.Email = m.MemberID + QStringLiteral("@example.com");
    m.HP = QStringLiteral("010-%1-%2").arg(random.bounded(1000, 10000)).arg(random.bounded(1000, 10000));
    m.Address = QStringLiteral("서울특별시 중구 세종대로 %1").arg(random.bounded(1, 300));
    m.OfficePhone = QStringLiteral("02-3700-%1").arg(random.bounded(1000, 10000));
    m.BirthDay = QStringLiteral("19%1-0%2-1%3")
                     .arg(random.bounded(60, 100))
                     .arg(random.bounded(1, 10))
                     .arg(random.bounded(10));
    m.bAdmin = random.bounded(10) == 0;
    return m;
}

} // namespace

ChartContents generateChart(const ChartSize& size)
{
    QRandomGenerator random(20261121);
    ChartContents contents;
    ChartBuilder builder(*contents.chart);
    for (int id = 1; id <= size.members; ++id)
        builder.addMember(makeMember(id, random));

    // Departments: each new one under a random earlier one that is not yet at the deepest level.
    std::vector<int> depth {0};
    std::vector<int> childCount(static_cast<size_t>(size.departments), 0);
    std::vector<GroupRow> groups {{1, QStringLiteral("본사"), -1, 1, 0}};
    for (int id = 2; id <= size.departments; ++id) {
        int parent = 0;
        do
            parent = random.bounded(id - 1);
        while (depth[static_cast<size_t>(parent)] >= size.maxDepth - 1);
        depth.push_back(depth[static_cast<size_t>(parent)] + 1);
        const int position = ++childCount[static_cast<size_t>(parent)];
        groups.push_back({id, QStringLiteral("부서 %1").arg(id), parent + 1, position, depth.back()});
    }
    // Memberships follow the sub-departments of their department.
    for (int i = 0; i < size.memberships; ++i) {
        const int member = i < size.members ? i + 1 : random.bounded(size.members) + 1;
        const int group = (i < size.members ? i : random.bounded(size.members)) % size.departments;
        const int position = ++childCount[static_cast<size_t>(group)];
        builder.addRelation({member, group + 1, random.bounded(size.ranks + 1) - 1 + 1, position});
    }
    std::stable_sort(groups.begin(), groups.end(), [](const GroupRow& a, const GroupRow& b) {
        return std::pair(a.Depth, a.Position) < std::pair(b.Depth, b.Position);
    });
    for (const GroupRow& row : groups)
        builder.addGroup(row);
    builder.finish();

    for (int id = 1; id <= size.ranks; ++id)
        contents.ranks.insert(id - 1, {id, QStringLiteral("직급 %1").arg(id)});
    for (int id = 1; id <= size.folders; ++id)
        contents.fileBox.folders.push_back({id, QStringLiteral("\\공유 %1\\자료").arg(id)});
    QSet<qint64> used;
    const auto authorities = [&](std::vector<AuthorityRecord>& list, int count, int grantees) {
        used.clear();
        while (static_cast<int>(list.size()) < count) {
            const int folder = random.bounded(size.folders) + 1;
            const int grantee = random.bounded(grantees) + 1;
            if (!used.contains(qint64(folder) << 32 | grantee)) {
                used.insert(qint64(folder) << 32 | grantee);
                list.push_back({folder, grantee, random.bounded(3)});
            }
        }
    };
    authorities(contents.fileBox.groupAuthorities, size.groupAuthorities, size.departments);
    authorities(contents.fileBox.userAuthorities, size.userAuthorities, size.members);
    return contents;
}

} // namespace sable::bench
