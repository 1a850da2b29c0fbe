// The import wizard as an administrator goes through it: the sample file of the demo home, a file
// in the Korean code page whose encoding and columns are changed by hand, and a malformed file.

#include "ChartText.h"
#include "TestSupport.h"
#include "document/DemoOrganisation.h"
#include "platform/CodePage949.h"
#include "userimport/ImportFilePage.h"
#include "userimport/ImportMappingPage.h"
#include "userimport/ImportPreviewPage.h"
#include "userimport/ImportWizard.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>
#include <QTableView>
#include <QTest>

using namespace sable;

namespace {

QStringList column(const QAbstractItemModel& model, int column)
{
    QStringList out;
    for (int row = 0; row < model.rowCount(); ++row)
        out << model.index(row, column).data().toString();
    return out;
}

} // namespace

class TestImportWizard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void importsTheSample();
    void encodingAndColumnsByHand();
    void malformedFileGoesNoFurther();
};

void TestImportWizard::importsTheSample()
{
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    const QByteArray before = snapshot(doc);
    ImportWizard wizard(doc);
    wizard.show();
    QCOMPARE(wizard.windowTitle(), QStringLiteral("사용자 가져오기"));
    QVERIFY(!wizard.filePage()->isComplete());
    wizard.filePage()->setFilePath(QStringLiteral(SAMPLE_USERS));
    QCOMPARE(wizard.filePage()->statusText(), QStringLiteral("열 10개, 사용자 11줄을 읽었습니다."));
    QCOMPARE(wizard.filePage()->findChild<QComboBox*>(QStringLiteral("encoding"))->itemText(0),
        QStringLiteral("자동 감지 (UTF-8)"));
    QVERIFY(wizard.filePage()->isComplete());

    wizard.next();
    QCOMPARE(wizard.currentId(), int(ImportWizard::MappingPage));
    ImportMappingPage* mapping = wizard.mappingPage();
    QCOMPARE(mapping->columnChoice(ColMemberID)->currentText(), QStringLiteral("아이디"));
    QCOMPARE(mapping->columnChoice(FieldRank)->currentText(), QStringLiteral("직급"));
    QCOMPARE(mapping->columnChoice(ColAddress)->currentText(), QStringLiteral("(가져오지 않음)"));
    mapping->updateChoice()->setChecked(true);

    wizard.next();
    ImportPreviewPage* preview = wizard.previewPage();
    QCOMPARE(preview->summaryText(), QStringLiteral("추가 5명, 수정 1명, 변경 없음 0명, 거부 5명"));
    QVERIFY(preview->isComplete());
    QTableView* rows = preview->rowsView();
    QCOMPARE(rows->model()->rowCount(), 11);
    preview->refusedOnly()->setChecked(true);
    QCOMPARE(column(*rows->model(), 0), (QStringList {"8", "9", "10", "11", "12"}));
    QCOMPARE(rows->model()->index(0, 5).data().toString(), QStringLiteral("비밀번호: 비밀번호를 입력하세요."));
    QCOMPARE(doc.chart().memberCount(), 40);

    wizard.button(QWizard::FinishButton)->click();
    QCOMPARE(wizard.result()->added, 5);
    QCOMPARE(wizard.result()->updated, 1);
    QCOMPARE(doc.chart().memberCount(), 45);
    QVERIFY(doc.isModified());
    doc.history().undo();
    QCOMPARE(snapshot(doc), before);
}

void TestImportWizard::encodingAndColumnsByHand()
{
    TempHome home;
    home.writeFile(QStringLiteral("users.txt"),
        CodePage949::encode(QStringLiteral("login\t성명\t암호\tdept\r\nkim\t김철수\tpw\t본사/영업부\r\n")));
    CSableManagerDoc doc;
    ImportWizard wizard(doc);
    wizard.show();
    ImportFilePage* file = wizard.filePage();
    file->setFilePath(home.path(QStringLiteral("users.txt")));
    QCOMPARE(wizard.table()->encoding, FileEncoding::Cp949);
    QCOMPARE(wizard.table()->delimiter, QChar(u'\t'));
    QCOMPARE(file->findChild<QComboBox*>(QStringLiteral("delimiter"))->itemText(0), QStringLiteral("자동 감지 (탭)"));

    // Read as UTF-8 it cannot be; read with commas it is one column.
    file->setEncodingChoice(1);
    QCOMPARE(file->statusText(), QStringLiteral("1번째 줄을 UTF-8(으)로 읽을 수 없습니다."));
    QVERIFY(!file->isComplete());
    file->setEncodingChoice(2);
    file->setDelimiterChoice(1);
    QCOMPARE(file->statusText(), QStringLiteral("열 1개, 사용자 1줄을 읽었습니다."));
    file->setDelimiterChoice(0);
    QVERIFY(file->isComplete());

    wizard.next();
    ImportMappingPage* mapping = wizard.mappingPage();
    QCOMPARE(mapping->columnChoice(ColMemberName)->currentText(), QStringLiteral("성명"));
    QCOMPARE(mapping->columnChoice(FieldDepartment)->currentText(), QStringLiteral("dept"));
    // Without an ID column the wizard goes no further; a column feeds one field only.
    mapping->columnChoice(ColMemberID)->setCurrentIndex(0);
    QVERIFY(!mapping->isComplete());
    mapping->columnChoice(ColDescription)->setCurrentIndex(1);
    mapping->columnChoice(ColMemberID)->setCurrentIndex(1);
    QVERIFY(mapping->isComplete());
    QCOMPARE(mapping->columnChoice(ColDescription)->currentIndex(), 0);

    wizard.next();
    QCOMPARE(wizard.previewPage()->summaryText(), QStringLiteral("추가 1명, 수정 0명, 변경 없음 0명, 거부 0명"));
    wizard.button(QWizard::FinishButton)->click();
    QCOMPARE(chartText(doc.chart()), QStringLiteral("본사[영업부[#1]]"));
    QCOMPARE(doc.chart().member(0).MemberName, QStringLiteral("김철수"));
}

void TestImportWizard::malformedFileGoesNoFurther()
{
    TempHome home;
    home.writeFile(QStringLiteral("bad.csv"), "아이디,이름,비밀번호\nkim,김철수,pw\nlee,\"이영희,pw\n");
    CSableManagerDoc doc;
    doc.adopt(DemoOrganisation::contents());
    const QByteArray before = snapshot(doc);
    ImportWizard wizard(doc);
    wizard.show();
    wizard.filePage()->setFilePath(home.path(QStringLiteral("bad.csv")));
    QCOMPARE(wizard.filePage()->statusText(), QStringLiteral("3번째 줄: 따옴표가 닫히지 않았습니다."));
    QVERIFY(!wizard.filePage()->isComplete());
    QVERIFY(!wizard.button(QWizard::NextButton)->isEnabled());
    wizard.reject();
    QVERIFY(!wizard.result());
    QCOMPARE(snapshot(doc), before);
}

QTEST_MAIN(TestImportWizard)
#include "tst_import_wizard.moc"
