#pragma once

#include "platform/AppPaths.h"

#include <QObject>
#include <QProcess>
#include <QThread>

#include <functional>
#include <memory>

namespace sable {

// The change of database: runs the settings program with no parameters in the server's folder and,
// when it reports a change (exit code 5), tells the server to reload its database; when that notice
// cannot be sent, the services are stopped and started again instead, so that the server reads the
// new database at its start. The console then shows Msg::kDatabaseSettingsChanged and closes, since
// its chart came from the old database. Nothing here blocks: the outcome comes by signal.
class DatabaseSettingsChange final : public QObject
{
    Q_OBJECT

public:
    enum class Outcome
    {
        NotStarted, // the program could not be started: nothing changes and nothing is shown
        Unchanged, // it ended with an exit code other than 5
        Changed, // the settings changed; the notice was sent or the services restarted
    };
    Q_ENUM(Outcome)

    static constexpr int kChangedExitCode = 5;

    // `restartServices` stops and starts the services and returns when done; it runs on a worker.
    DatabaseSettingsChange(
        AppPaths paths, QString programFolder, std::function<void()> restartServices, QObject* parent = nullptr);
    // Waits for a settings program or a restart still under way.
    ~DatabaseSettingsChange() override;

    // How the reload notice is sent; by default the reload-database notice to 127.0.0.1:16203.
    void setNoticeSender(std::function<bool()> send) { m_sendNotice = std::move(send); }

    // "<folder of the console>/setdb", SetDB.exe on Windows.
    QString programPath() const;
    static QString programName();

    // Starts the program unless it already runs; the outcome comes by finished().
    void start();
    bool isRunning() const { return m_process != nullptr || m_worker != nullptr; }

Q_SIGNALS:
    void finished(sable::DatabaseSettingsChange::Outcome outcome);

private:
    void programEnded(int exitCode, QProcess::ExitStatus status);
    void settingsChanged();
    void finish(Outcome outcome);

    AppPaths m_paths;
    QString m_programFolder;
    std::function<void()> m_restartServices;
    std::function<bool()> m_sendNotice;
    QProcess* m_process = nullptr;
    QThread* m_worker = nullptr;
};

} // namespace sable
