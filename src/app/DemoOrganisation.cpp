#include "app/DemoOrganisation.h"

#include "db/DbConnection.h"

#include <QVariantList>

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

bool run(DbConnection& connection, const QString& sql, const QVariantList& values)
{
    return connection.executeNoRecords(sql, values);
}

int depthOf(int group)
{
    int depth = 0;
    for (int parent = kGroups[group - 1].parent; parent != -1; parent = kGroups[parent - 1].parent)
        ++depth;
    return depth;
}

bool writeGroupsAndMembers(DbConnection& connection)
{
    // Members come before sub-departments among a department's children, as the console shows them.
    QMap<int, int> nextPosition;
    QMap<int, int> memberCount;
    for (const DemoMember& member : kMembers)
        ++memberCount[member.group];
    ++memberCount[kSecondPlacementGroup];
    for (const DemoGroup& group : kGroups) {
        const int position = group.parent == -1 ? 1 : memberCount[group.parent] + ++nextPosition[group.parent];
        if (!run(connection,
                QStringLiteral(
                    "INSERT INTO SD_Group (K_GroupID,GroupName,K_GroupID_P,Position,Depth) VALUES (?,?,?,?,?)"),
                {group.id, text(group.name), group.parent, position, depthOf(group.id)}))
            return false;
    }
    QMap<int, int> placed;
    for (int i = 0; i < static_cast<int>(std::size(kMembers)); ++i) {
        const DemoMember& m = kMembers[i];
        const int id = i + 1;
        const QString login = text(m.login);
        if (!run(connection,
                QStringLiteral("INSERT INTO SD_Member (K_MemberID,MemberID,MemberName,Passwd,Gender,bPublic,Email,HP,"
                               "Address,HomePhone,OfficePhone,BirthDay,Description,bSolar,bAdmin) "
                               "VALUES (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)"),
                {id, login, text(m.name), QStringLiteral("sable1234"), m.gender, 1,
                    QString(login + QStringLiteral("@example.com")), text(m.mobile),
                    QStringLiteral("서울특별시 중구 세종대로 110"), QStringLiteral(""),
                    QStringLiteral("02-3700-%1").arg(1000 + id), text(m.birthday), QStringLiteral(""), 1,
                    m.rank <= 3 ? 1 : 0}))
            return false;
        if (m.group != 0
            && !run(connection,
                QStringLiteral("INSERT INTO SD_Relation (K_MemberID,K_GroupID,K_RankID,Position) VALUES (?,?,?,?)"),
                {id, m.group, m.rank, ++placed[m.group]}))
            return false;
    }
    return run(connection,
        QStringLiteral("INSERT INTO SD_Relation (K_MemberID,K_GroupID,K_RankID,Position) VALUES (?,?,?,?)"),
        {kSecondPlacementMember, kSecondPlacementGroup, 4, ++placed[kSecondPlacementGroup]});
}

bool writeRanksAndFolders(DbConnection& connection)
{
    for (int i = 0; i < static_cast<int>(std::size(kRanks)); ++i) {
        if (!run(connection, QStringLiteral("INSERT INTO SD_Rank (K_RankID,RankName) VALUES (?,?)"),
                {i + 1, text(kRanks[i])}))
            return false;
    }
    for (const DemoFolder& folder : kFolders) {
        if (!run(connection, QStringLiteral("INSERT INTO SB_Folder (K_FolderID,FolderPath) VALUES (?,?)"),
                {folder.id, text(folder.path)}))
            return false;
    }
    for (const DemoAuthority& a : kGroupAuthorities) {
        if (!run(connection,
                QStringLiteral("INSERT INTO SB_GroupAuthority (K_FolderID,K_GroupID,Authority) VALUES (?,?,?)"),
                {a.folder, a.grantee, text(a.level)}))
            return false;
    }
    for (const DemoAuthority& a : kUserAuthorities) {
        if (!run(connection,
                QStringLiteral("INSERT INTO SB_UserAuthority (K_FolderID,K_MemberID,Authority) VALUES (?,?,?)"),
                {a.folder, a.grantee, text(a.level)}))
            return false;
    }
    return true;
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

bool write(DbConnection& connection)
{
    if (!connection.beginTrans())
        return false;
    if (writeGroupsAndMembers(connection) && writeRanksAndFolders(connection) && connection.commitTrans())
        return true;
    connection.rollbackTrans();
    return false;
}

} // namespace sable::DemoOrganisation
