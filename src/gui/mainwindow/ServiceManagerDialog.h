#pragma once

#include "platform/Registry.h"
#include "server/ServiceManagerSettings.h"

#include <QDialog>

class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QThread;

namespace sable {

// "서비스 관리자 설정": which service manager starts and stops the server's seven services (none,
// supervisord, the Windows service manager), where the supervisor listens and with which user and
// password, and a test that shows what the manager answered. OK writes the choice.
class ServiceManagerDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit ServiceManagerDialog(Registry registry, QWidget* parent = nullptr);
    ~ServiceManagerDialog() override;

    // The settings as the dialog shows them now.
    ServiceManagerSettings settings() const;

    void accept() override;

public Q_SLOTS:
    // "연결 시험(&T)": asks the manager off the UI thread; the answer shows in the dialog.
    void testConnection();

Q_SIGNALS:
    void testFinished(bool bReached, const QString& answer);

private:
    void buildLayout();
    void kindChosen();

    Registry m_registry;
    ServiceManagerSettings m_stored;
    QRadioButton* m_none = nullptr;
    QRadioButton* m_supervisor = nullptr;
    QRadioButton* m_scm = nullptr;
    QLineEdit* m_url = nullptr;
    QLineEdit* m_user = nullptr;
    QLineEdit* m_password = nullptr;
    QPushButton* m_testButton = nullptr;
    QPlainTextEdit* m_answer = nullptr;
    QThread* m_probe = nullptr;
};

} // namespace sable
