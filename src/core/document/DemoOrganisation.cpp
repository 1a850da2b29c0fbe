#include "document/DemoOrganisation.h"

#include "db/DbConnection.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartSave.h"
#include "orgchart/ChartBuilder.h"

#include <QMap>

namespace sable::DemoOrganisation {
namespace {

struct DemoGroup
{
    int id;
    const char* name;
    int parent;
};

struct DemoMember
{
    const char* login;
    const char* name;
    int gender; // 0 male, 1 female
    int group; // 0: in no department
    int rank;
    const char* mobile;
    const char* birthday;
};

constexpr DemoGroup kGroups[] = {
    {1, "세이블상사", -1},
    {2, "경영지원본부", 1},
    {3, "인사팀", 2},
    {4, "재무팀", 2},
    {5, "영업본부", 1},
    {6, "국내영업팀", 5},
    {7, "해외영업팀", 5},
    {8, "기술연구소", 1},
};

constexpr const char* kRanks[] = {"대표이사", "이사", "부장", "과장", "대리", "사원"};

constexpr DemoMember kMembers[] = {
    {"jhkim", "김정훈", 0, 1, 1, "010-2301-1001", "1962-03-14"},
    {"sypark", "박서연", 1, 2, 2, "010-2301-1002", "1970-07-02"},
    {"mjlee", "이민재", 0, 3, 3, "010-2301-1003", "1975-11-23"},
    {"hychoi", "최하윤", 1, 3, 4, "010-2301-1004", "1983-01-09"},
    {"jwjung", "정지우", 0, 3, 5, "010-2301-1005", "1988-05-30"},
    {"eskang", "강은서", 1, 3, 6, "010-2301-1006", "1995-09-17"},
    {"dhyoon", "윤도현", 0, 4, 3, "010-2301-1007", "1973-02-26"},
    {"sajang", "장서아", 1, 4, 4, "010-2301-1008", "1984-12-05"},
    {"jmlim", "임준민", 0, 4, 5, "010-2301-1009", "1989-08-11"},
    {"yjhan", "한유진", 1, 4, 6, "010-2301-1010", "1996-04-21"},
    {"shoh", "오승현", 0, 5, 2, "010-2301-1011", "1968-10-03"},
    {"jyseo", "서지유", 1, 5, 5, "010-2301-1012", "1990-06-14"},
    {"mhshin", "신민호", 0, 6, 3, "010-2301-1013", "1974-03-29"},
    {"yekwon", "권예은", 1, 6, 4, "010-2301-1014", "1982-07-19"},
    {"thhwang", "황태현", 0, 6, 4, "010-2301-1015", "1981-11-08"},
    {"sbahn", "안수빈", 1, 6, 5, "010-2301-1016", "1987-02-15"},
    {"jhsong", "송지호", 0, 6, 5, "010-2301-1017", "1991-05-27"},
    {"hjyoo", "유하준", 0, 6, 6, "010-2301-1018", "1997-08-31"},
    {"cwhong", "홍채원", 1, 6, 6, "010-2301-1019", "1998-12-12"},
    {"ggjeon", "전건우", 0, 7, 3, "010-2301-1020", "1972-09-06"},
    {"dako", "고다은", 1, 7, 4, "010-2301-1021", "1983-04-02"},
    {"shmoon", "문시후", 0, 7, 5, "010-2301-1022", "1990-01-25"},
    {"yryang", "양예린", 1, 7, 5, "010-2301-1023", "1992-10-18"},
    {"jasohn", "손지안", 1, 7, 6, "010-2301-1024", "1996-03-07"},
    {"hwbae", "배현우", 0, 7, 6, "010-2301-1025", "1998-06-23"},
    {"jwbaek", "백재원", 0, 8, 2, "010-2301-1026", "1969-05-12"},
    {"sheo", "허소희", 1, 8, 3, "010-2301-1027", "1976-08-28"},
    {"sjnam", "남성진", 0, 8, 4, "010-2301-1028", "1980-12-19"},
    {"mjsim", "심민지", 1, 8, 4, "010-2301-1029", "1985-02-04"},
    {"yhno", "노영호", 0, 8, 5, "010-2301-1030", "1988-11-15"},
    {"ahjeong", "정아현", 1, 8, 5, "010-2301-1031", "1991-07-09"},
    {"kmha", "하경민", 0, 8, 5, "010-2301-1032", "1992-04-26"},
    {"bykwak", "곽보영", 1, 8, 6, "010-2301-1033", "1995-01-13"},
    {"jsseong", "성준서", 0, 8, 6, "010-2301-1034", "1996-09-01"},
    {"yecha", "차예은", 1, 8, 6, "010-2301-1035", "1997-05-20"},
    {"dwjoo", "주동원", 0, 8, 6, "010-2301-1036", "1998-02-28"},
    {"jhwoo", "우지혜", 1, 2, 5, "010-2301-1037", "1989-10-10"},
    {"trgu", "구태림", 0, 5, 6, "010-2301-1038", "1997-12-24"},
    {"intern1", "민채윤", 1, 0, 0, "010-2301-1039", "2001-03-03"},
    {"intern2", "류시우", 0, 0, 0, "010-2301-1040", "2000-08-16"},
};

// The head of personnel also sits in the research lab as its liaison.
constexpr int kSecondPlacementMember = 4; // 최하윤
constexpr int kSecondPlacementGroup = 8;

struct DemoFolder
{
    int id;
    const char* path;
};

constexpr DemoFolder kFolders[] = {{1, "\\공용"}, {2, "\\영업자료"}, {3, "\\영업자료\\해외"}, {4, "\\연구소"}};

struct DemoAuthority
{
    int folder;
    int grantee;
    const char* level;
};

constexpr DemoAuthority kGroupAuthorities[] = {{1, 1, "R"}, {2, 5, "W"}, {3, 7, "W"}, {4, 8, "W"}, {2, 2, "R"}};
constexpr DemoAuthority kUserAuthorities[] = {{1, 1, "W"}, {2, 1, "W"}, {4, 1, "W"}, {4, 4, "R"}, {1, 2, "W"}};

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

MemberRecord demoMember(int id, const DemoMember& m)
{
    MemberRecord member;
    member.K_MemberID = id;
    member.MemberID = text(m.login);
    member.MemberName = text(m.name);
    member.Passwd = QStringLiteral("sable1234");
    member.Gender = m.gender;
    member.Email = member.MemberID + QStringLiteral("@example.com");
    member.HP = text(m.mobile);
    member.Address = QStringLiteral("서울특별시 중구 세종대로 110");
    member.OfficePhone = QStringLiteral("02-3700-%1").arg(1000 + id);
    member.BirthDay = text(m.birthday);
    member.bAdmin = m.rank <= 3;
    return member;
}

// Builds the demo as stored rows: members of a department come before its sub-departments.
void buildChart(OrgChart& chart)
{
    ChartBuilder builder(chart);
    QMap<int, int> memberCount;
    for (const DemoMember& member : kMembers)
        ++memberCount[member.group];
    ++memberCount[kSecondPlacementGroup];
    QMap<int, int> nextPosition;
    for (const DemoGroup& group : kGroups) {
        const int position = group.parent == -1 ? 1 : memberCount[group.parent] + ++nextPosition[group.parent];
        builder.addGroup({group.id, text(group.name), group.parent, position, 0});
    }
    QMap<int, int> placed;
    for (int i = 0; i < static_cast<int>(std::size(kMembers)); ++i) {
        const DemoMember& m = kMembers[i];
        builder.addMember(demoMember(i + 1, m));
        if (m.group != 0)
            builder.addRelation({i + 1, m.group, m.rank, ++placed[m.group]});
    }
    builder.addRelation({kSecondPlacementMember, kSecondPlacementGroup, 4, ++placed[kSecondPlacementGroup]});
    builder.finish();
}

void buildRanksAndFolders(RankList& ranks, FileBoxLists& fileBox)
{
    for (int i = 0; i < static_cast<int>(std::size(kRanks)); ++i)
        ranks.insert(i, {i + 1, text(kRanks[i])});
    for (const DemoFolder& folder : kFolders)
        fileBox.folders.push_back({folder.id, text(folder.path)});
    for (const DemoAuthority& a : kGroupAuthorities)
        fileBox.groupAuthorities.push_back({a.folder, a.grantee, FileBoxLists::levelFromText(text(a.level))});
    for (const DemoAuthority& a : kUserAuthorities)
        fileBox.userAuthorities.push_back({a.folder, a.grantee, FileBoxLists::levelFromText(text(a.level))});
}

int countRows(DbConnection& connection, const QString& table)
{
    DbRecordset rows = connection.execute(QStringLiteral("SELECT COUNT(*) FROM ") + table);
    return rows.isValid() && !rows.isEof() ? rows.fieldInt(0) : -1;
}

} // namespace

bool isChartEmpty(DbConnection& connection)
{
    return countRows(connection, QStringLiteral("SD_Member")) == 0
        && countRows(connection, QStringLiteral("SD_Group")) == 0;
}

ChartContents contents()
{
    ChartContents demo;
    buildChart(*demo.chart);
    buildRanksAndFolders(demo.ranks, demo.fileBox);
    return demo;
}

bool write(DbConnection& connection)
{
    CSableManagerDoc doc;
    doc.adopt(contents());
    if (!connection.beginTrans())
        return false;
    if (ChartSave::writeTables(connection, doc, doc.tables()) && connection.commitTrans())
        return true;
    connection.rollbackTrans();
    return false;
}

} // namespace sable::DemoOrganisation
