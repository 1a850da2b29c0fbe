#pragma once

#include "onboarding/MailServerSettings.h"

#include <QDialog>
#include <QPointer>

class QComboBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QThread;

namespace sable {

// "메일 서버 설정": the server the account notices go through, with a test that shows what the
// server answers. The stored password is never put back into the form: an empty password field
// keeps it.
class MailServerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit MailServerDialog(Registry registry, QWidget* parent = nullptr);
    ~MailServerDialog() override;

    // The settings as the form stands, with the stored password when none was typed.
    MailServerSettings settings() const;

    // Stores the settings and closes; stays open with a message when they cannot be stored.
    void accept() override;

public Q_SLOTS:
    // Connects with the settings of the form, off the window's thread.
    void testConnection();

Q_SIGNALS:
    void testFinished(bool bPassed, const QString& answer);

private:
    void buildLayout();
    void securityChosen(int index);

    Registry m_registry;
    MailServerSettings m_stored;
    QPointer<QThread> m_probe;
    QLineEdit* m_host = nullptr;
    QSpinBox* m_port = nullptr;
    QComboBox* m_security = nullptr;
    QLineEdit* m_user = nullptr;
    QLineEdit* m_password = nullptr;
    QLineEdit* m_sender = nullptr;
    QPushButton* m_testButton = nullptr;
    QPlainTextEdit* m_answer = nullptr;
    MailSecurity m_shownSecurity = MailSecurity::None;
};

} // namespace sable
