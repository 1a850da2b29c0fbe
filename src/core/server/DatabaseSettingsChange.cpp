#include "server/DatabaseSettingsChange.h"

#include "platform/ChangeNotice.h"

#include <QDir>
#include <QThread>

namespace sable {

DatabaseSettingsChange::DatabaseSettingsChange(
    AppPaths paths, QString programFolder, std::function<void()> restartServices, QObject* parent)
    : QObject(parent)
    , m_paths(std::move(paths))
    , m_programFolder(std::move(programFolder))
    , m_restartServices(std::move(restartServices))
    , m_sendNotice([] { return ChangeNotice::send(ChangeNotice::Kind::ReloadDatabase, ChangeNotice::kDatabasePort); })
{ }

DatabaseSettingsChange::~DatabaseSettingsChange()
{
    // The settings program may be writing the new settings or copying the chart: it is never cut
    // short, and neither is a restart of the services.
    if (m_process) {
        m_process->disconnect(this);
        m_process->waitForFinished(-1);
    }
    if (m_worker) {
        m_worker->disconnect(this);
        m_worker->wait();
        delete m_worker;
    }
}

QString DatabaseSettingsChange::programName()
{
#ifdef Q_OS_WIN
    return QStringLiteral("SetDB.exe");
#else
    return QStringLiteral("setdb");
#endif
}

QString DatabaseSettingsChange::programPath() const
{
    return QDir(m_programFolder).filePath(programName());
}

void DatabaseSettingsChange::start()
{
    if (isRunning())
        return;
    m_process = new QProcess(this);
    m_process->setProgram(programPath());
    m_process->setWorkingDirectory(m_paths.programFolder);
    // The settings program finds the server's folder as every program of the console does.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("SABLE_HOME"), m_paths.programFolder);
    m_process->setProcessEnvironment(environment);
    m_process->setStandardInputFile(QProcess::nullDevice());
    connect(m_process, &QProcess::finished, this, &DatabaseSettingsChange::programEnded);
    connect(m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            finish(Outcome::NotStarted);
    });
    m_process->start();
}

void DatabaseSettingsChange::programEnded(int exitCode, QProcess::ExitStatus status)
{
    if (status == QProcess::NormalExit && exitCode == kChangedExitCode)
        settingsChanged();
    else
        finish(Outcome::Unchanged);
}

void DatabaseSettingsChange::settingsChanged()
{
    m_process->deleteLater();
    m_process = nullptr;
    if (m_sendNotice() || !m_restartServices) {
        finish(Outcome::Changed);
        return;
    }
    m_worker = QThread::create(m_restartServices);
    connect(m_worker, &QThread::finished, this, [this] {
        m_worker->deleteLater();
        m_worker = nullptr;
        finish(Outcome::Changed);
    });
    m_worker->start();
}

void DatabaseSettingsChange::finish(Outcome outcome)
{
    if (m_process) {
        m_process->deleteLater();
        m_process = nullptr;
    }
    Q_EMIT finished(outcome);
}

} // namespace sable
