#pragma once

#include "onboarding/RecipientModel.h"
#include "onboarding/RegistrationMailSender.h"
#include "server/StartupConfig.h"

#include <QDialog>
#include <QMessageBox>
#include <QPointer>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QTableView;

namespace sable {

// "등록메일(설치파일) 전송": mails the selected members their sign-in data from the template in the
// server's folder. Modeless; the main window creates it once and shows it again on later commands,
// and the chart editor hands it the members to mail through AddRecipient.
class RegistrationMailDialog final : public QDialog
{
    Q_OBJECT

public:
    RegistrationMailDialog(StartupConfig config, StartupSettings settings, QWidget* parent = nullptr);
    ~RegistrationMailDialog() override;

    // A row for one member; refused silently for a malformed or already listed address.
    bool AddRecipient(const QString& name, const QString& email, const QString& id, const QString& password);

    RecipientModel* recipients() const { return m_recipients; }
    bool isSending() const { return m_sender != nullptr; }
    QString templatePath() const;

public Q_SLOTS:
    // "메일전송(&M)": one message per row, in order, on a worker thread.
    void sendMail();
    // "초기화(D)": the recipients and their results go; the texts stay.
    void resetRecipients();
    void stopSending();
    void editMailServer();

Q_SIGNALS:
    // A notice was put on screen (the end of a sending, an error); tests and the window may follow it.
    void noticeShown(const QString& text);

protected:
    // "취소(&C)", Escape and the close box hide the dialog for the next command; a sending stops.
    void reject() override;

private:
    void buildLayout();
    void setSending(bool bSending);
    void showRow(int row);
    void showNotice(QMessageBox::Icon icon, const QString& text, const QString& detail = {});
    QString memoText() const;

    StartupConfig m_config;
    StartupSettings m_settings;
    RecipientModel* m_recipients;
    QPointer<RegistrationMailSender> m_sender;
    QLineEdit* m_senderName = nullptr;
    QLineEdit* m_subject = nullptr;
    QPlainTextEdit* m_memo = nullptr;
    QLineEdit* m_serverAddress = nullptr;
    QTableView* m_grid = nullptr;
    QPushButton* m_mailServerButton = nullptr;
    QPushButton* m_sendButton = nullptr;
    QPushButton* m_resetButton = nullptr;
    QPushButton* m_stopButton = nullptr;
};

} // namespace sable
