#pragma once

#include "platform/AppPaths.h"
#include "platform/ServiceController.h"

#include <QMap>
#include <QObject>
#include <QStringList>
#include <QThreadPool>
#include <QTimer>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace sable {

// The server's seven services as the console and sablectl handle them: registration of missing
// ones, Start all, Stop server, the enabled state of the Start and Stop commands, and the single
// steps the chart save needs. Long operations run on worker threads of this object so that the
// window never waits for a service; the states are kept in a cache refreshed in the background, so
// that menu updates never query the service manager.
class ServerServiceControl final : public QObject
{
    Q_OBJECT

public:
    using States = QMap<QString, ServiceReply>;

    struct StartAllResult
    {
        bool bRan = false; // false when another Start all was under way or every service was running
        QStringList failures; // "%1 서비스 실행에 실패했습니다." for each service that did not start
    };

    ServerServiceControl(std::shared_ptr<ServiceBackend> backend, AppPaths paths, QObject* parent = nullptr);
    // Interrupts the waits of running operations (their remaining requests are still made) and
    // waits for the workers to end.
    ~ServerServiceControl() override;

    // The service manager in use; valid until setBackend().
    ServiceBackend& backend() const;
    // Another service manager from now on (its settings changed); operations under way finish with
    // the one they started with. The states are read again.
    void setBackend(std::shared_ptr<ServiceBackend> backend);

    // The primitives; start and stop wait while the service is pending, so keep them off the UI thread.
    bool isRunning(const QString& name) const;
    bool startService(const QString& name) const;
    bool stopService(const QString& name) const;

    // What saving the chart needs, each callable without arguments.
    bool isFileBoxServerRunning() const;
    bool stopFileBoxServer() const;
    void requestStartAll();
    void requestRestart();

    // Launches "<home>/<name> /service" for every service the manager does not know, in the
    // registration order, without waiting; returns the names launched.
    QStringList registerMissingServices() const;

    // Starts every service that is not running, in the Start all order, unless a Start all is already
    // under way or all seven run. A failed start is noted and the next service is tried.
    StartAllResult startAll();
    // Stops the running services in the Stop server order, leaving Sable_CheckD; returns those that
    // did not stop.
    QStringList stopServer();
    // Stop server, then Start all: what makes the server read its database afresh.
    void restartServices();

    void requestStopServer();

    bool isStartInProgress() const { return m_bStartInProgress; }
    // True while a Start all, Stop server or restart of this object runs on a worker.
    bool isBusy() const { return m_busy > 0; }

    // Refreshes the cached states now and every `intervalMs` (0: only when asked).
    void startRefreshing(int intervalMs);
    void refreshStates();
    const States& states() const { return m_states; }
    QStringList runningServices() const;
    // Why no service can be controlled, as the service manager said, when none of the seven could be
    // reached at the last reading; empty when at least one could.
    QString unavailableReason() const;

    // Start (32801) is enabled when a counted service is not running, Stop (32802) when a counted
    // one runs or none can be reached (so that it can say why); both are disabled while a worker of
    // this object runs.
    bool isStartEnabled() const;
    bool isStopEnabled() const;
    static bool startEnabledFor(const QStringList& running);
    static bool stopEnabledFor(const QStringList& running);

Q_SIGNALS:
    void statesChanged();
    void busyChanged(bool bBusy);
    void startAllFinished(const QStringList& failures);
    void stopServerFinished(const QStringList& notStopped);
    void restartFinished();

private:
    ServiceClock interruptibleClock();
    std::shared_ptr<const ServiceController> controller() const;
    void runBusy(std::function<void()> work, std::function<void()> done);
    void applyStates(const States& states);

    AppPaths m_paths;
    mutable std::mutex m_controllerMutex;
    std::shared_ptr<ServiceController> m_controller;
    QThreadPool m_pool;
    QTimer m_refreshTimer;
    States m_states;
    std::atomic<bool> m_bStartInProgress {false};
    std::atomic<bool> m_bRefreshing {false};
    std::atomic<bool> m_bClosing {false};
    std::atomic<int> m_busy {0};
    std::mutex m_sleepMutex;
    std::condition_variable m_wake;
};

} // namespace sable
