// The registration mail dialog and the mail server dialog as an administrator uses them, sending
// through the test fixture's mail server.

#include "Messages.h"
#include "SmtpFixture.h"
#include "TestSupport.h"
#include "onboarding/MailServerDialog.h"
#include "onboarding/RegistrationMailDialog.h"
#include "platform/LocalAddress.h"

#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTableView>
#include <QTest>

using namespace sable;

namespace {

QPushButton* button(const QWidget& parent, const QString& text)
{
    for (QPushButton* candidate : parent.findChildren<QPushButton*>()) {
        if (candidate->text() == text)
            return candidate;
    }
    return nullptr;
}

QStringList column(const RecipientModel& model, int column)
{
    QStringList out;
    for (int row = 0; row < model.rowCount(); ++row)
        out << model.index(row, column).data().toString();
    return out;
}

} // namespace

class TestRegistrationMailDialog : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void opensWithItsTexts();
    void sendsRowByRow();
    void sendingStopsWithANotice_data();
    void sendingStopsWithANotice();
    void resetKeepsTheTexts();
    void mailServerPasswordNeverShown();
    void mailServerTest_data();
    void mailServerTest();

private:
    StartupSettings startupSettings() const;
    SmtpServer m_smtp = SmtpServer::fromFixture();
};

StartupSettings TestRegistrationMailDialog::startupSettings() const
{
    StartupSettings settings;
    settings.versionTag = QStringLiteral("SM50");
    settings.serverType = 1;
    return settings;
}

void TestRegistrationMailDialog::opensWithItsTexts()
{
    TempHome home;
    RegistrationMailDialog dialog(home.config(), startupSettings());
    QCOMPARE(dialog.windowTitle(), QStringLiteral("등록메일(설치파일) 전송"));
    QVERIFY(!dialog.isModal());
    QCOMPARE(dialog.findChild<QLineEdit*>(QStringLiteral("senderName"))->text(), QStringLiteral("세이블관리자"));
    QCOMPARE(dialog.findChild<QLineEdit*>(QStringLiteral("subject"))->text(),
        QStringLiteral("Sable Server에 등록되셨습니다."));
    QCOMPARE(dialog.findChild<QPlainTextEdit*>(QStringLiteral("memo"))->toPlainText(),
        QString(Msg::kMailDefaultMemo).replace(QLatin1String("\r\n"), QLatin1String("\n")));
    const auto* grid = dialog.findChild<QTableView*>(QStringLiteral("recipients"));
    QStringList headers;
    QList<int> widths;
    for (int c = 0; c < grid->model()->columnCount(); ++c) {
        headers << grid->model()->headerData(c, Qt::Horizontal).toString();
        widths << grid->columnWidth(c);
    }
    QCOMPARE(headers, QStringList({"이름", "아이디", "E-Mail", "암호", "결과"}));
    QCOMPARE(widths, QList<int>({60, 60, 120, 60, 48}));
    for (const QString& text : {Msg::kMailSendButton, Msg::kMailResetButton, Msg::kMailCancelButton})
        QVERIFY2(button(dialog, text) && button(dialog, text)->isEnabled(), qPrintable(text));
    QVERIFY(!button(dialog, Msg::kMailStopButton)->isEnabled());
}

void TestRegistrationMailDialog::sendsRowByRow()
{
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    TempHome home;
    home.writeFile(QStringLiteral("home/Template.html"),
        "<p>__SERVER_NAME__|__USER_ID__|__USER_PASSWORD__|__MAJOR_VERSION__|__OFFICE__</p><pre>__ADDITIONAL_MEMO__</"
        "pre>");
    QVERIFY(m_smtp.settings().write(home.registry()));
    RegistrationMailDialog dialog(home.config(), startupSettings());
    dialog.show();
    const QString kim = uniqueAddress(QStringLiteral("kim"));
    const QString lee = uniqueAddress(QStringLiteral("lee"));
    QVERIFY(dialog.AddRecipient(QStringLiteral("김철수"), kim, QStringLiteral("kim01"), QStringLiteral("pw1")));
    QVERIFY(
        dialog.AddRecipient(QStringLiteral("최"), m_smtp.refusedAddress, QStringLiteral("choi"), QStringLiteral("x")));
    QVERIFY(!dialog.AddRecipient(QStringLiteral("김철수"), kim, QStringLiteral("other"), QStringLiteral("x")));
    QVERIFY(!dialog.AddRecipient(QStringLiteral("박"), QStringLiteral("park-at-example"), QStringLiteral("p"), {}));
    QVERIFY(dialog.AddRecipient(QStringLiteral("이영희"), lee, QStringLiteral("lee02"), QStringLiteral("pw2")));
    QSignalSpy notices(&dialog, &RegistrationMailDialog::noticeShown);
    // The address the mail gives is shown, the machine's own, and the administrator's word counts.
    auto* serverAddress = dialog.findChild<QLineEdit*>(QStringLiteral("serverAddress"));
    QCOMPARE(serverAddress->text(), LocalAddress::GetLocalAddress());
    serverAddress->setText(QStringLiteral(" msg.sable.example "));

    QTest::mouseClick(button(dialog, Msg::kMailSendButton), Qt::LeftButton);
    QVERIFY(dialog.isSending());
    QVERIFY(!button(dialog, Msg::kMailSendButton)->isEnabled());
    QVERIFY(button(dialog, Msg::kMailStopButton)->isEnabled());
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.isSending(), 60000);

    QCOMPARE(column(*dialog.recipients(), RecipientModel::ResultColumn), QStringList({"성공", "실패", "성공"}));
    QCOMPARE(notices.size(), 1);
    QCOMPARE(notices.first().first().toString(), QStringLiteral("메일을 전송이 끝났습니다."));
    const auto* grid = dialog.findChild<QTableView*>(QStringLiteral("recipients"));
    QCOMPARE(grid->selectionModel()->selectedRows().value(0).row(), 2);
    QVERIFY(button(dialog, Msg::kMailSendButton)->isEnabled());

    const QString memo = QString(Msg::kMailDefaultMemo);
    const QList<ReceivedMail> received = m_smtp.receivedBy(lee);
    QCOMPARE(received.size(), 1);
    QCOMPARE(received.first().subject, Msg::kMailDefaultSubject);
    QCOMPARE(received.first().fromName, Msg::kMailDefaultSenderName);
    QCOMPARE(QString::fromUtf8(received.first().body),
        QStringLiteral("<p>msg.sable.example|lee02|pw2|SM50|1</p><pre>%1</pre>").arg(memo));
    QCOMPARE(m_smtp.receivedBy(kim).size(), 1);
}

void TestRegistrationMailDialog::sendingStopsWithANotice_data()
{
    QTest::addColumn<bool>("bTemplate");
    QTest::addColumn<bool>("bServerUp");
    QTest::addColumn<QString>("notice");
    QTest::newRow("no template") << false << true << Msg::kTemplateOpenFailed;
    QTest::newRow("server down") << true << false << Msg::kMailTransportError;
}

void TestRegistrationMailDialog::sendingStopsWithANotice()
{
    QFETCH(bool, bTemplate);
    QFETCH(bool, bServerUp);
    QFETCH(QString, notice);
    TempHome home;
    if (bTemplate)
        home.writeFile(QStringLiteral("home/Template.html"), "<p>__USER_ID__</p>");
    MailServerSettings settings = m_smtp.settings();
    settings.port = static_cast<quint16>(bServerUp ? m_smtp.port : closedLocalPort());
    QVERIFY(settings.write(home.registry()));
    RegistrationMailDialog dialog(home.config(), startupSettings());
    dialog.AddRecipient(QStringLiteral("한"), uniqueAddress(QStringLiteral("han")), QStringLiteral("h"), {});
    dialog.AddRecipient(QStringLiteral("오"), uniqueAddress(QStringLiteral("oh")), QStringLiteral("o"), {});
    QSignalSpy notices(&dialog, &RegistrationMailDialog::noticeShown);
    dialog.sendMail();
    QTRY_VERIFY_WITH_TIMEOUT(!dialog.isSending(), 60000);
    QCOMPARE(notices.size(), 1);
    QCOMPARE(notices.first().first().toString(), notice);
    QCOMPARE(column(*dialog.recipients(), RecipientModel::ResultColumn), QStringList({"", ""}));
    QTRY_VERIFY(dialog.findChild<QMessageBox*>());
    QCOMPARE(dialog.findChild<QMessageBox*>()->text(), notice);
}

void TestRegistrationMailDialog::resetKeepsTheTexts()
{
    TempHome home;
    RegistrationMailDialog dialog(home.config(), startupSettings());
    dialog.show();
    auto* subject = dialog.findChild<QLineEdit*>(QStringLiteral("subject"));
    subject->setText(QStringLiteral("계정 안내"));
    dialog.AddRecipient(QStringLiteral("김"), QStringLiteral("kim@example.com"), QStringLiteral("kim"), {});
    QTest::mouseClick(button(dialog, Msg::kMailCancelButton), Qt::LeftButton);
    QVERIFY(!dialog.isVisible());
    dialog.show(); // the window's next command shows the same dialog with what it held
    QCOMPARE(dialog.recipients()->rowCount(), 1);
    QTest::mouseClick(button(dialog, Msg::kMailResetButton), Qt::LeftButton);
    QCOMPARE(dialog.recipients()->rowCount(), 0);
    QCOMPARE(subject->text(), QStringLiteral("계정 안내"));
    QVERIFY(dialog.AddRecipient(QStringLiteral("김"), QStringLiteral("kim@example.com"), QStringLiteral("kim"), {}));
}

void TestRegistrationMailDialog::mailServerPasswordNeverShown()
{
    TempHome home;
    MailServerSettings stored = m_smtp.settings();
    stored.user = QStringLiteral("sable");
    stored.password = QStringLiteral("stored-secret");
    QVERIFY(stored.write(home.registry()));

    MailServerDialog dialog(home.registry());
    auto* password = dialog.findChild<QLineEdit*>(QStringLiteral("password"));
    QCOMPARE(password->text(), QString());
    QCOMPARE(password->echoMode(), QLineEdit::Password);
    QCOMPARE(dialog.settings().password, QStringLiteral("stored-secret"));

    auto* security = dialog.findChild<QComboBox*>(QStringLiteral("security"));
    auto* port = dialog.findChild<QSpinBox*>(QStringLiteral("port"));
    port->setValue(25);
    security->setCurrentIndex(int(MailSecurity::Tls));
    QCOMPARE(port->value(), 465);
    port->setValue(2465);
    security->setCurrentIndex(int(MailSecurity::StartTls));
    QCOMPARE(port->value(), 2465);

    password->setText(QStringLiteral("new-secret"));
    dialog.accept();
    QCOMPARE(MailServerSettings::read(home.registry()).password, QStringLiteral("new-secret"));
    dialog.findChild<QLineEdit*>(QStringLiteral("user"))->clear();
    dialog.accept();
    QCOMPARE(MailServerSettings::read(home.registry()).password, QString());
}

void TestRegistrationMailDialog::mailServerTest_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<bool>("bPassed");
    QTest::addColumn<QString>("reply");
    QTest::newRow("login accepted") << QStringLiteral("mail-secret") << true << QStringLiteral("235 ");
    QTest::newRow("login refused") << QStringLiteral("wrong") << false << QStringLiteral("535 ");
}

void TestRegistrationMailDialog::mailServerTest()
{
    QFETCH(QString, password);
    QFETCH(bool, bPassed);
    QFETCH(QString, reply);
    SABLE_REQUIRE_FIXTURE(m_smtp.isAvailable(), "the mail server fixture");
    TempHome home;
    MailServerSettings stored = m_smtp.settings();
    stored.user = m_smtp.user;
    stored.password = password;
    QVERIFY(stored.write(home.registry()));
    MailServerDialog dialog(home.registry());
    QSignalSpy finished(&dialog, &MailServerDialog::testFinished);
    QTest::mouseClick(button(dialog, Msg::kMailServerTestButton), Qt::LeftButton);
    QVERIFY(finished.wait(30000));
    QCOMPARE(finished.first().at(0).toBool(), bPassed);
    const QString answer = dialog.findChild<QPlainTextEdit*>(QStringLiteral("answer"))->toPlainText();
    QVERIFY2(answer.contains(QLatin1String("220 ")) && answer.contains(reply), qPrintable(answer));
    QVERIFY(!answer.contains(password));
}

QTEST_MAIN(TestRegistrationMailDialog)
#include "tst_registration_mail_dialog.moc"
