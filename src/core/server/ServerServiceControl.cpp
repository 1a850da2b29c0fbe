#include "server/ServerServiceControl.h"

#include "Messages.h"
#include "platform/ProcessLauncher.h"
#include "server/ServerServices.h"

#include <QScopeGuard>

#include <algorithm>
#include <chrono>

namespace sable {
namespace {

bool sameReading(const ServiceReply& a, const ServiceReply& b)
{
    return a.outcome == b.outcome && a.status.state == b.status.state;
}

} // namespace

ServerServiceControl::ServerServiceControl(std::shared_ptr<ServiceBackend> backend, AppPaths paths, QObject* parent)
    : QObject(parent)
    , m_paths(std::move(paths))
    , m_controller(std::make_shared<ServiceController>(std::move(backend), interruptibleClock()))
{
    // A refresh, a Start all and a Stop server may overlap; more never do.
    m_pool.setMaxThreadCount(3);
    connect(&m_refreshTimer, &QTimer::timeout, this, &ServerServiceControl::refreshStates);
}

ServerServiceControl::~ServerServiceControl()
{
    m_refreshTimer.stop();
    {
        std::lock_guard lock(m_sleepMutex);
        m_bClosing = true;
    }
    m_wake.notify_all();
    m_pool.waitForDone();
}

ServiceClock ServerServiceControl::interruptibleClock()
{
    ServiceClock clock = ServiceClock::system();
    clock.sleep = [this](std::uint32_t ms) {
        std::unique_lock lock(m_sleepMutex);
        return !m_wake.wait_for(lock, std::chrono::milliseconds(ms), [this] { return m_bClosing.load(); });
    };
    return clock;
}

std::shared_ptr<const ServiceController> ServerServiceControl::controller() const
{
    std::lock_guard lock(m_controllerMutex);
    return m_controller;
}

ServiceBackend& ServerServiceControl::backend() const
{
    return controller()->backend();
}

void ServerServiceControl::setBackend(std::shared_ptr<ServiceBackend> backend)
{
    {
        // Work under way keeps the controller it started with.
        std::lock_guard lock(m_controllerMutex);
        m_controller = std::make_shared<ServiceController>(std::move(backend), interruptibleClock());
    }
    refreshStates();
}

bool ServerServiceControl::isRunning(const QString& name) const
{
    return controller()->isRunning(name.toStdString());
}

bool ServerServiceControl::startService(const QString& name) const
{
    return controller()->startService(name.toStdString());
}

bool ServerServiceControl::stopService(const QString& name) const
{
    return controller()->stopService(name.toStdString());
}

bool ServerServiceControl::isFileBoxServerRunning() const
{
    return isRunning(ServerServices::kSableboxServerManager);
}

bool ServerServiceControl::stopFileBoxServer() const
{
    return stopService(ServerServices::kSableboxServerManager);
}

QStringList ServerServiceControl::registerMissingServices() const
{
    QStringList launched;
    const auto services = controller();
    for (const QString& name : ServerServices::kRegistrationOrder) {
        if (services->query(name.toStdString()).outcome != ServiceOutcome::DoesNotExist)
            continue;
        const QString program = ProcessLauncher::programPath(m_paths.programFolder, name);
        if (ProcessLauncher::launchDetached(program, {ServerServices::kServiceSwitch}, m_paths.programFolder))
            launched << name;
    }
    return launched;
}

ServerServiceControl::StartAllResult ServerServiceControl::startAll()
{
    StartAllResult result;
    if (m_bStartInProgress.exchange(true))
        return result;
    // The flag is cleared on every way out, so that Start works again after Stop in the same run.
    const auto clearFlag = qScopeGuard([this] { m_bStartInProgress = false; });
    const auto& order = ServerServices::kStartAllOrder;
    if (std::all_of(order.cbegin(), order.cend(), [this](const QString& name) { return isRunning(name); }))
        return result;
    result.bRan = true;
    for (const QString& name : order) {
        if (!isRunning(name) && !startService(name))
            result.failures << Msg::kServiceStartFailed.arg(name);
    }
    return result;
}

QStringList ServerServiceControl::stopServer()
{
    QStringList notStopped;
    for (const QString& name : ServerServices::kStopServerOrder) {
        if (isRunning(name) && !stopService(name))
            notStopped << name;
    }
    return notStopped;
}

void ServerServiceControl::restartServices()
{
    stopServer();
    startAll();
}

void ServerServiceControl::requestStartAll()
{
    auto failures = std::make_shared<QStringList>();
    runBusy([this, failures] { *failures = startAll().failures; },
        [this, failures] { Q_EMIT startAllFinished(*failures); });
}

void ServerServiceControl::requestStopServer()
{
    auto notStopped = std::make_shared<QStringList>();
    runBusy([this, notStopped] { *notStopped = stopServer(); },
        [this, notStopped] { Q_EMIT stopServerFinished(*notStopped); });
}

void ServerServiceControl::requestRestart()
{
    runBusy([this] { restartServices(); }, [this] { Q_EMIT restartFinished(); });
}

void ServerServiceControl::runBusy(std::function<void()> work, std::function<void()> done)
{
    if (m_busy++ == 0)
        Q_EMIT busyChanged(true);
    m_pool.start([this, work = std::move(work), done = std::move(done)] {
        work();
        QMetaObject::invokeMethod(
            this,
            [this, done] {
                if (--m_busy == 0)
                    Q_EMIT busyChanged(false);
                done();
                refreshStates();
            },
            Qt::QueuedConnection);
    });
}

void ServerServiceControl::startRefreshing(int intervalMs)
{
    refreshStates();
    if (intervalMs > 0)
        m_refreshTimer.start(intervalMs);
    else
        m_refreshTimer.stop();
}

void ServerServiceControl::refreshStates()
{
    if (m_bRefreshing.exchange(true))
        return;
    m_pool.start([this, services = controller()] {
        States states;
        for (const QString& name : ServerServices::kStartAllOrder)
            states.insert(name, services->query(name.toStdString()));
        QMetaObject::invokeMethod(
            this, [this, states] { applyStates(states); }, Qt::QueuedConnection);
    });
}

void ServerServiceControl::applyStates(const States& states)
{
    m_bRefreshing = false;
    const bool changed = states.size() != m_states.size()
        || !std::equal(states.cbegin(), states.cend(), m_states.cbegin(), sameReading);
    m_states = states;
    if (changed)
        Q_EMIT statesChanged();
}

QStringList ServerServiceControl::runningServices() const
{
    QStringList running;
    for (auto it = m_states.cbegin(); it != m_states.cend(); ++it) {
        if (it->isDone() && it->status.state == ServiceState::Running)
            running << it.key();
    }
    return running;
}

QString ServerServiceControl::unavailableReason() const
{
    if (m_states.isEmpty())
        return {};
    for (const ServiceReply& reply : m_states) {
        if (reply.outcome != ServiceOutcome::Unavailable)
            return {};
    }
    return QString::fromStdString(m_states.first().message);
}

bool ServerServiceControl::isStartEnabled() const
{
    return !isBusy() && startEnabledFor(runningServices());
}

bool ServerServiceControl::isStopEnabled() const
{
    // Also when nothing can be reached, so that the command can say why.
    return !isBusy() && (stopEnabledFor(runningServices()) || !unavailableReason().isEmpty());
}

bool ServerServiceControl::startEnabledFor(const QStringList& running)
{
    for (const QString& name : ServerServices::kCountedForStart) {
        if (!running.contains(name))
            return true;
    }
    return false;
}

bool ServerServiceControl::stopEnabledFor(const QStringList& running)
{
    for (const QString& name : ServerServices::kCountedForStop) {
        if (running.contains(name))
            return true;
    }
    return false;
}

} // namespace sable
