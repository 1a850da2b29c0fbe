// Bulk import and export of users: reading files in every encoding, matching headers, the fate of
// every row with the reasons of refusals, the import as one undoable step, and the export read back.

#include "ChartText.h"
#include "document/CSableManagerDoc.h"
#include "document/ChartEdits.h"
#include "document/DemoOrganisation.h"
#include "document/ImportEdits.h"
#include "platform/CodePage949.h"
#include "userimport/ImportPreview.h"
#include "userimport/UserExport.h"

#include <QStringEncoder>
#include <QTest>

using namespace sable;
using Fate = ImportRow::Fate;

namespace {

const QString kHeader = QStringLiteral("아이디,이름,비밀번호,이메일,휴대폰,성별,부서,직급\n");

ImportTable readTable(const QByteArray& bytes)
{
    QString error;
    std::optional<ImportTable> table = ImportTableReader::read(bytes, {}, &error);
    if (!table)
        qWarning("%s", qPrintable(error));
    return table ? std::move(*table) : ImportTable();
}

ImportPreview previewOf(const CSableManagerDoc& doc, const QString& csv, ImportMode mode = ImportMode::AddAndUpdate)
{
    const ImportTable table = readTable(csv.toUtf8());
    return ImportPreview::make(doc.chart(), doc.ranks(), table, ColumnMapping::matchHeaders(table.columns), mode);
}

QList<Fate> fates(const ImportPreview& preview)
{
    QList<Fate> out;
    for (const ImportRow& row : preview.rows())
        out << row.fate;
    return out;
}

QStringList reasons(const ImportRow& row)
{
    QStringList out;
    for (const ImportRefusal& refusal : row.refusals)
        out << refusal.describe();
    return out;
}

void adoptDemo(CSableManagerDoc& doc)
{
    doc.adopt(DemoOrganisation::contents());
}

} // namespace

class TestUserImport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodings_data();
    void encodings();
    void headerMatching_data();
    void headerMatching();
    void refusals_data();
    void refusals();
    void updateVersusAddOnly();
    void departmentPathCreatesLevels();
    void emptyChartGetsOneTopDepartment();
    void undoRestoresExactly();
    void exportThenImportChangesNothing();
    void exportIntoEmptyChartIsLossless();
    void malformedFile_data();
    void malformedFile();
};

void TestUserImport::encodings_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("detected");
    const QString text = QStringLiteral("id\tname\tpw\r\nkim\t김철수\t1\r\nlee\t이영희\t2\r\n");
    QStringEncoder utf16(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    QTest::newRow("UTF-8 with BOM") << "\xEF\xBB\xBF" + text.toUtf8() << int(FileEncoding::Utf8);
    QTest::newRow("UTF-8") << text.toUtf8() << int(FileEncoding::Utf8);
    QTest::newRow("Korean code page") << CodePage949::encode(text) << int(FileEncoding::Cp949);
    QTest::newRow("UTF-16 with BOM") << QByteArray(utf16.encode(text)) << int(FileEncoding::Utf16);
}

void TestUserImport::encodings()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, detected);
    QString error;
    const auto table = ImportTableReader::read(bytes, {}, &error);
    QVERIFY2(table, qPrintable(error));
    QCOMPARE(int(table->encoding), detected);
    QCOMPARE(table->delimiter, QChar(u'\t'));
    QCOMPARE(table->columns, (QStringList {"id", "name", "pw"}));
    QCOMPARE(table->rows.size(), size_t(2));
    QCOMPARE(table->rows[1].fields, (QStringList {"lee", "이영희", "2"}));
    QCOMPARE(table->rows[1].line, 3);

    // Read in another encoding than its own, the file is refused at its first Hangul line, or read
    // as different text; never taken for the same names.
    const FileEncoding other = detected == int(FileEncoding::Cp949) ? FileEncoding::Utf8 : FileEncoding::Cp949;
    const auto forced = ImportTableReader::read(bytes, {other, std::nullopt, true}, &error);
    if (forced) {
        QVERIFY(forced->rows.size() != 2 || forced->rows[1].fields.value(1) != QStringLiteral("이영희"));
    } else {
        QVERIFY2(error.startsWith(QStringLiteral("2번째 줄을")) || error.startsWith(QStringLiteral("1번째 줄을")),
            qPrintable(error));
    }
}

void TestUserImport::headerMatching_data()
{
    QTest::addColumn<QStringList>("headers");
    QTest::addColumn<QList<int>>("fields"); // the field each column feeds, -1 for none
    QTest::newRow("Korean, as the member list and the export name them")
        << QStringList {"아이디", "이름", "비밀번호", "정보 공개", "부서", "직급"}
        << QList<int> {ColMemberID, ColMemberName, ColPasswd, ColPublic, FieldDepartment, FieldRank};
    QTest::newRow("database column names") << QStringList {"MemberID", "MemberName", "Passwd", "HP", "bAdmin",
        "HomePhone"} << QList<int> {ColMemberID, ColMemberName, ColPasswd, ColHP, ColAdmin, ColHomePhone};
    QTest::newRow("plain English, any case and spacing")
        << QStringList {" Login ID ", "NAME", "Password", "E-Mail", "Mobile Phone", "office_phone", "Department"}
        << QList<int> {ColMemberID, ColMemberName, ColPasswd, ColEmail, ColHP, ColOfficePhone, FieldDepartment};
    QTest::newRow("unknown and repeated names stay unmapped")
        << QStringList {"사번", "이름", "name", "id"} << QList<int> {-1, ColMemberName, -1, ColMemberID};
}

void TestUserImport::headerMatching()
{
    QFETCH(QStringList, headers);
    QFETCH(QList<int>, fields);
    const ColumnMapping mapping = ColumnMapping::matchHeaders(headers);
    QList<int> found(headers.size(), -1);
    for (int field = 0; field < ImportFieldCount; ++field) {
        if (mapping.isMapped(field))
            found[mapping.column(field)] = field;
    }
    QCOMPARE(found, fields);
}

void TestUserImport::refusals_data()
{
    QTest::addColumn<QString>("rows");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QStringList>("reasons"); // of the first row
    const int update = int(ImportMode::AddAndUpdate);
    QTest::newRow("no ID") << ",김철수,pw,,,,," << update << QStringList {"아이디: 아이디를 입력하세요."};
    QTest::newRow("no password") << "kim,김철수,,,,,," << update << QStringList {"비밀번호: 비밀번호를 입력하세요."};
    QTest::newRow("no name") << "kim,,pw,,,,," << update << QStringList {"이름: 이름을 입력하세요."};
    QTest::newRow("ID twice in the file") << "kim,김철수,pw,,,,,\nlee,이영희,pw,,,,,\nkim,김철순,pw,,,,," << update
                                          << QStringList {"아이디: 같은 아이디가 4번째 줄에도 있습니다."};
    QTest::newRow("existing ID when only adding")
        << "jhkim,김정훈2,pw,,,,," << int(ImportMode::AddOnly) << QStringList {"아이디: 이미 존재하는 아이디입니다."};
    QTest::newRow("21-byte ID") << QString(21, u'k') + ",김철수,pw,,,,," << update
                                << QStringList {"아이디: 20자를 초과할 수 없습니다."};
    QTest::newRow("11 Hangul syllables in the name")
        << "kim," + QString(11, u'가') + ",pw,,,,," << update << QStringList {"이름: 20자를 초과할 수 없습니다."};
    QTest::newRow("14-byte mobile number, with a bad e-mail")
        << "kim,김철수,pw,kim.example.com,010-1234-56789,,," << update
        << QStringList {"휴대폰: 13자를 초과할 수 없습니다.", "이메일: 이메일 주소에 @가 없습니다."};
    QTest::newRow("101-byte e-mail") << "kim,김철수,pw," + QString(89, u'k') + "@example.com,,,," << update
                                     << QStringList {"이메일: 100자를 초과할 수 없습니다."};
    QTest::newRow("unknown gender") << "kim,김철수,pw,,,중성,," << update
                                    << QStringList {"성별: 남자 또는 여자만 쓸 수 있습니다."};
    QTest::newRow("three ranks for two departments")
        << "kim,김철수,pw,,,,세이블상사/인사팀;재무팀,부장;과장;사원" << update
        << QStringList {"직급: 직급은 하나이거나 부서마다 하나여야 합니다. (부서 2개, 직급 3개)"};
    QTest::newRow("a rank without a department") << "kim,김철수,pw,,,,,부장" << update
                                                 << QStringList {"직급: 직급은 하나이거나 부서마다 하나여야 합니다. "
                                                                 "(부서 0개, 직급 1개)"};
    QTest::newRow("more cells than the header")
        << "kim,김철수,pw,,,,,,x" << update << QStringList {"칸이 9개로 머리글의 8개보다 많습니다."};
    QTest::newRow("accepted: plain words for choices, one rank for all")
        << "kim,김철수,pw,kim@example.com,,F,경영지원본부/인사팀;경영지원본부/재무팀,과장" << update << QStringList {};
}

void TestUserImport::refusals()
{
    QFETCH(QString, rows);
    QFETCH(int, mode);
    QFETCH(QStringList, reasons);
    CSableManagerDoc doc;
    adoptDemo(doc);
    const QByteArray before = snapshot(doc);
    const ImportPreview preview = previewOf(doc, kHeader + rows, ImportMode(mode));
    const ImportRow& first = preview.rows().front();
    QCOMPARE(::reasons(first), reasons);
    QCOMPARE(first.fate, reasons.isEmpty() ? Fate::New : Fate::Refused);
    if (reasons.isEmpty()) {
        QVERIFY(ImportEdits::apply(doc, preview));
        const MemberRecord& kim = doc.chart().members().back();
        QCOMPARE(kim.Gender, 1);
        QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(3)).section(u' ', -1), QStringLiteral("#41:4"));
        QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(4)).section(u' ', -1), QStringLiteral("#41:4"));
    } else if (!preview.hasChanges()) {
        // A refused row changes nothing, not even the modified flag.
        QVERIFY(!ImportEdits::apply(doc, preview));
        QCOMPARE(snapshot(doc), before);
    }
}

void TestUserImport::updateVersusAddOnly()
{
    const QString file = kHeader
        + QStringLiteral("newbie,신입,pw,,,,기술연구소,사원\n"
                         "jhkim,김정훈,sable1234,,010-9999-0000,,,\n"
                         "sypark,박서연,sable1234,sypark@example.com,010-2301-1002,여자,경영지원본부,이사\n"
                         "hychoi,최하윤,sable1234,hychoi@example.com,010-2301-1004,여자,경영지원본부/인사팀,부장\n");
    for (const ImportMode mode : {ImportMode::AddOnly, ImportMode::AddAndUpdate}) {
        CSableManagerDoc doc;
        adoptDemo(doc);
        const ImportPreview preview = previewOf(doc, file, mode);
        const bool update = mode == ImportMode::AddAndUpdate;
        QCOMPARE(fates(preview),
            (QList<Fate> {Fate::New, update ? Fate::Update : Fate::Refused, Fate::Unchanged,
                update ? Fate::Update : Fate::Refused}));
        const std::optional<ImportResult> result = ImportEdits::apply(doc, preview);
        QVERIFY(result);
        QCOMPARE(result->added, 1);
        QCOMPARE(result->updated, update ? 2 : 0);
        QCOMPARE(doc.chart().memberCount(), 41);
        QCOMPARE(doc.chart().member(0).HP, update ? QStringLiteral("010-9999-0000") : QStringLiteral("010-2301-1001"));
        // The e-mail column is given, so its empty cell empties the field; the unmapped columns stay.
        QCOMPARE(doc.chart().member(0).Email.isEmpty(), update);
        QCOMPARE(doc.chart().member(0).Address, QStringLiteral("서울특별시 중구 세종대로 110"));
        // An update sets the rank where the user already sits and adds no second place.
        QCOMPARE(doc.chart().placementsOf(4).size(), size_t(2));
        QCOMPARE(doc.chart().placementIn(doc.chart().findGroup(3), 4)->rankId(), update ? 3 : 4);
        QCOMPARE(chartText(doc.chart(), doc.chart().findGroup(8)).section(u' ', -1), QStringLiteral("#41:6"));
        QVERIFY(doc.isModified());
    }

    // A preview made before another edit is not applied.
    CSableManagerDoc doc;
    adoptDemo(doc);
    const ImportPreview stale = previewOf(doc, file);
    ChartEdits(doc).addUserByEntry(QStringLiteral("meanwhile"), false);
    QVERIFY(!ImportEdits::apply(doc, stale));
    QCOMPARE(doc.chart().memberCount(), 41);
}

void TestUserImport::departmentPathCreatesLevels()
{
    CSableManagerDoc doc;
    adoptDemo(doc);
    const ImportPreview preview = previewOf(doc,
        kHeader
            + QStringLiteral("cs1,상담원1,pw,,,,세이블상사/고객지원본부/상담팀/야간조,상담원\n"
                             "cs2,상담원2,pw,,,,고객지원본부 / 상담팀,팀장\n"
                             "bad,,pw,,,,세이블상사/폐기될부서,없는직급\n"));
    QCOMPARE(preview.newDepartmentPaths(),
        (QStringList {
            "세이블상사/고객지원본부", "세이블상사/고객지원본부/상담팀", "세이블상사/고객지원본부/상담팀/야간조"}));
    QCOMPARE(preview.newRankNames(), (QStringList {"상담원", "팀장"}));
    const auto result = ImportEdits::apply(doc, preview);
    QVERIFY(result);
    QCOMPARE(result->departments, 3);
    QCOMPARE(result->ranks, 2);
    // The new departments are numbered as "새 부서" would be and go last under their parents.
    OrgNode* top = doc.chart().rootGroup();
    OrgNode* support = top->child(top->childCount() - 1);
    QCOMPARE(support->groupId(), 9);
    QCOMPARE(chartText(doc.chart(), support), QStringLiteral("상담팀[야간조[#41:7] #42:8]"));
    QCOMPARE(doc.chart().findGroup(10)->name(), QStringLiteral("상담팀"));
    QCOMPARE(doc.chart().findGroup(11)->name(), QStringLiteral("야간조"));
    QCOMPARE(doc.ranks().count(), 8);
    QCOMPARE(doc.ranks().at(6), (RankRecord {7, QStringLiteral("상담원")}));
    QCOMPARE(doc.ranks().at(7), (RankRecord {8, QStringLiteral("팀장")}));
}

void TestUserImport::emptyChartGetsOneTopDepartment()
{
    CSableManagerDoc doc;
    const ImportPreview preview = previewOf(doc,
        kHeader
            + QStringLiteral("a,가,pw,,,,본사/영업부/1팀,\n"
                             "b,나,pw,,,,지사,\n"));
    QVERIFY(ImportEdits::apply(doc, preview));
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[영업부[1팀[#1]] 지사[#2]]"));
    QCOMPARE(doc.chart().findGroup(2)->name(), QStringLiteral("본사"));
}

void TestUserImport::undoRestoresExactly()
{
    CSableManagerDoc doc;
    adoptDemo(doc);
    ChartEdits(doc).renameDepartment(doc.chart().findGroup(6), QStringLiteral("국내영업1팀"));
    const QByteArray before = snapshot(doc);
    const int steps = doc.history().index();
    const ImportPreview preview = previewOf(doc,
        kHeader
            + QStringLiteral("new1,새사람,pw,n@example.com,,여자,세이블상사/신사업부/기획팀,수석\n"
                             "jhkim,김정훈,changed,,,남자,기술연구소;인사팀,대표이사;\n"
                             "bykwak,곽보영,sable1234,bykwak@example.com,010-2301-1033,여자,기술연구소,부장\n"
                             "broken,,pw,,,,,\n"));
    QVERIFY(ImportEdits::apply(doc, preview));
    const QByteArray after = snapshot(doc);
    QVERIFY(after != before);
    QCOMPARE(doc.history().index(), steps + 1);
    QCOMPARE(doc.history().undoText(), QStringLiteral("사용자 가져오기 (추가 1명, 수정 2명)"));
    verifyUndoRedo(doc, before, after);
}

void TestUserImport::exportThenImportChangesNothing()
{
    CSableManagerDoc doc;
    adoptDemo(doc);
    // Texts that need quoting, escaping or both, and a member in no department.
    ChartEdits edits(doc);
    edits.editCell(0, ColDescription, QStringLiteral("\"대표\", 인사말\n둘째 줄; 끝\\"));
    edits.editCell(1, ColAddress, QStringLiteral(" 앞뒤 공백 "));
    edits.renameDepartment(doc.chart().findGroup(7), QStringLiteral("해외/영업;팀"));
    edits.setRank(doc.chart().placementIn(doc.chart().findGroup(8), 4), 200);
    const QByteArray before = snapshot(doc);
    const ImportPreview preview = previewOf(doc, QString::fromUtf8(UserExport::csv(doc.chart(), doc.ranks())));
    QCOMPARE(preview.rows().size(), size_t(40));
    QCOMPARE(preview.count(Fate::Unchanged), 40);
    QVERIFY(!ImportEdits::apply(doc, preview));
    QCOMPARE(snapshot(doc), before);
}

void TestUserImport::exportIntoEmptyChartIsLossless()
{
    CSableManagerDoc demo;
    adoptDemo(demo);
    const QByteArray exported = UserExport::csv(demo.chart(), demo.ranks());
    QVERIFY(exported.startsWith("\xEF\xBB\xBF아이디,이름,비밀번호,"));
    QVERIFY(exported.contains("hychoi,최하윤,sable1234,여자,"));
    QVERIFY(exported.contains(",세이블상사/경영지원본부/인사팀;세이블상사/기술연구소,과장\r\n"));

    CSableManagerDoc copy;
    const ImportTable table = readTable(exported);
    QVERIFY(ImportEdits::apply(copy,
        ImportPreview::make(
            copy.chart(), copy.ranks(), table, ColumnMapping::matchHeaders(table.columns), ImportMode::AddOnly)));
    QCOMPARE(copy.chart().members(), demo.chart().members());
    QCOMPARE(UserExport::csv(copy.chart(), copy.ranks()), exported);
}

void TestUserImport::malformedFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::addColumn<bool>("toldUtf8"); // else the encoding is detected
    const QByteArray header = "아이디,이름,비밀번호\n";
    QTest::newRow("unbalanced quote") << header + "a,가,pw\nb,\"나,pw\nc,다,pw\n"
                                      << "3번째 줄: 따옴표가 닫히지 않았습니다." << false;
    QTest::newRow("text after the closing quote, after a quoted line break")
        << header + "a,\"가\n나\",pw\nb,\"다\"x,pw\n"
        << "4번째 줄: 닫는 따옴표 뒤에 구분 문자가 아닌 글자가 있습니다." << false;
    QTest::newRow("header only") << header << "가져올 사용자가 없습니다." << false;
    QTest::newRow("invalid UTF-8 on line 3") << header + "a,가,pw\n" + QByteArray("b,\xEF\xBB\xBF\xFF,pw\n")
                                             << "3번째 줄을 UTF-8(으)로 읽을 수 없습니다." << true;
    // Not told the encoding: a damaged file is named by its own encoding, at the damaged line.
    const QByteArray body = "kim,김철수,1\nlee,이영희,2\n";
    QTest::newRow("UTF-8 with one bad byte, detected") << header + body + QByteArray("park,박\xC0수,3\n") + body
                                                       << "4번째 줄을 UTF-8(으)로 읽을 수 없습니다." << false;
    QTest::newRow("UTF-8 with little Hangul and one bad byte, detected")
        << QByteArray("id,name,pw\na,가,pw\nb,x\xFFy,pw\nc,z,pw\n") << "3번째 줄을 UTF-8(으)로 읽을 수 없습니다."
        << false;
    QTest::newRow("the code page with one bad byte, detected")
        << CodePage949::encode(QString::fromUtf8(header + body)) + QByteArray("park,\xFF,3\n")
        << "4번째 줄을 CP949(으)로 읽을 수 없습니다." << false;
}

void TestUserImport::malformedFile()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    QString problem;
    QFETCH(bool, toldUtf8);
    const std::optional<FileEncoding> utf8 = toldUtf8 ? std::optional<FileEncoding>(FileEncoding::Utf8) : std::nullopt;
    QVERIFY(!ImportTableReader::read(bytes, {utf8, std::nullopt, true}, &problem));
    QCOMPARE(problem, error);
}

QTEST_GUILESS_MAIN(TestUserImport)
#include "tst_user_import.moc"
