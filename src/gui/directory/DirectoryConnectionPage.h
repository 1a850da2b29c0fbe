#pragma once

#include "directory/DirectorySettings.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSpinBox;
class QThread;

namespace sable {

// The directory's address, the account the console binds with, where and what to search, and the
// connection test that shows the server's answer and how many entries the filter finds. The stored
// password is never put back into the form: an empty password field keeps it.
class DirectoryConnectionPage final : public QWidget
{
    Q_OBJECT

public:
    explicit DirectoryConnectionPage(QWidget* parent = nullptr);
    ~DirectoryConnectionPage() override;

    void load(const DirectorySettings& settings);
    // Puts the form's values into `settings` (the stored password stays when none was typed).
    void store(DirectorySettings& settings) const;

    // Where the test takes the settings from (the whole dialog's form).
    void setSettingsSource(std::function<DirectorySettings()> source) { m_source = std::move(source); }

public Q_SLOTS:
    // Connects with the form's settings, off the window's thread.
    void testConnection();

Q_SIGNALS:
    void testFinished(bool bPassed, const QString& answer);

private:
    void browseCaFile();

    std::function<DirectorySettings()> m_source;
    QPointer<QThread> m_probe;
    QLineEdit* m_url;
    QCheckBox* m_startTls;
    QLineEdit* m_caFile;
    QLineEdit* m_bindDn;
    QLineEdit* m_password;
    QLineEdit* m_baseDn;
    QLineEdit* m_filter;
    QSpinBox* m_pageSize;
    QSpinBox* m_timeout;
    QPushButton* m_testButton;
    QPlainTextEdit* m_answer;
};

} // namespace sable
