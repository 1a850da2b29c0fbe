// The wait for a pending service, over a service that reports what a test scripts and a clock that
// only pretends to sleep: which rounds are slept, when the wait gives up, and what counts as done.

#include "platform/ServiceController.h"

#include <QTest>

#include <deque>

using namespace sable;

Q_DECLARE_METATYPE(ServiceReply)
Q_DECLARE_METATYPE(std::vector<ServiceReply>)
Q_DECLARE_METATYPE(std::vector<std::uint32_t>)

namespace {

ServiceReply status(ServiceState state, std::uint32_t checkPoint, std::uint32_t waitHint)
{
    return {ServiceOutcome::Done, {state, checkPoint, waitHint}, {}};
}

ServiceReply outcome(ServiceOutcome what)
{
    return {what, {}, "scripted"};
}

// Answers queries from a script; once the script is used up, the last answer repeats.
class ScriptedService final : public ServiceBackend
{
public:
    ScriptedService(ServiceReply request, std::vector<ServiceReply> script)
        : m_request(std::move(request))
        , m_queries(script.begin(), script.end())
    { }

    ServiceReply query(const std::string&) override
    {
        ++queries;
        const ServiceReply next = m_queries.front();
        if (m_queries.size() > 1)
            m_queries.pop_front();
        return next;
    }
    ServiceReply start(const std::string&) override { return m_request; }
    ServiceReply stop(const std::string&) override { return m_request; }

    int queries = 0;

private:
    ServiceReply m_request;
    std::deque<ServiceReply> m_queries;
};

struct FakeClock
{
    std::uint64_t now = 5000;
    std::vector<std::uint32_t> sleeps;

    ServiceClock clock()
    {
        return {[this] { return now; },
            [this](std::uint32_t ms) {
                sleeps.push_back(ms);
                now += ms;
                return true;
            }};
    }
};

std::vector<std::uint32_t> repeated(std::uint32_t ms, std::size_t times)
{
    return std::vector<std::uint32_t>(times, ms);
}

} // namespace

class TestServiceWait : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitStep_data();
    void waitStep();
    void startWait_data();
    void startWait();
    void stopWaitsForStopped();
    void interruptedSleepEndsTheWait();
};

void TestServiceWait::waitStep_data()
{
    QTest::addColumn<quint32>("hint");
    QTest::addColumn<quint32>("step");
    QTest::newRow("no hint") << 0u << 1000u;
    QTest::newRow("below the floor") << 9999u << 1000u;
    QTest::newRow("a tenth") << 50000u << 5000u;
    QTest::newRow("at the ceiling") << 100000u << 10000u;
    QTest::newRow("above the ceiling") << 200000u << 10000u;
}

void TestServiceWait::waitStep()
{
    QFETCH(quint32, hint);
    QFETCH(quint32, step);
    QCOMPARE(ServiceController::waitStep(hint), step);
}

void TestServiceWait::startWait_data()
{
    QTest::addColumn<ServiceReply>("request");
    QTest::addColumn<std::vector<ServiceReply>>("queries");
    QTest::addColumn<bool>("started");
    QTest::addColumn<std::vector<std::uint32_t>>("sleeps");

    const auto done = outcome(ServiceOutcome::Done);
    using S = ServiceState;
    QTest::newRow("running at once") << done << std::vector {status(S::Running, 0, 0)} << true
                                     << std::vector<std::uint32_t> {};
    QTest::newRow("hint 0: one round without progress ends it")
        << done << std::vector {status(S::StartPending, 0, 0)} << false << repeated(1000, 1);
    QTest::newRow("hint 200000: rounds of 10000 until more than the hint passed")
        << done << std::vector {status(S::StartPending, 0, 200000)} << false << repeated(10000, 21);
    QTest::newRow("a growing check point keeps it waiting")
        << done
        << std::vector {status(S::StartPending, 1, 1500), status(S::StartPending, 2, 1500),
               status(S::StartPending, 3, 1500), status(S::StartPending, 4, 1500), status(S::Running, 0, 0)}
        << true << repeated(1000, 4);
    QTest::newRow("progress, then a stall longer than the hint")
        << done
        << std::vector {status(S::StartPending, 1, 2500), status(S::StartPending, 2, 2500),
               status(S::StartPending, 2, 2500)}
        << false << repeated(1000, 4);
    QTest::newRow("a query that fails ends the wait")
        << done << std::vector {status(S::StartPending, 1, 30000), outcome(ServiceOutcome::Failed)} << false
        << repeated(3000, 1);
    QTest::newRow("stopped instead of running")
        << done << std::vector {status(S::StartPending, 0, 5000), status(S::Stopped, 0, 0)} << false
        << repeated(1000, 1);
    QTest::newRow("the first query fails")
        << done << std::vector {outcome(ServiceOutcome::Failed)} << false << std::vector<std::uint32_t> {};
    QTest::newRow("missing service counts as started")
        << outcome(ServiceOutcome::DoesNotExist) << std::vector {outcome(ServiceOutcome::DoesNotExist)} << true
        << std::vector<std::uint32_t> {};
    QTest::newRow("unreachable manager counts as started")
        << outcome(ServiceOutcome::Unavailable) << std::vector {outcome(ServiceOutcome::Unavailable)} << true
        << std::vector<std::uint32_t> {};
    QTest::newRow("refused start") << outcome(ServiceOutcome::Failed) << std::vector {status(S::Stopped, 0, 0)} << false
                                   << std::vector<std::uint32_t> {};
}

void TestServiceWait::startWait()
{
    QFETCH(ServiceReply, request);
    QFETCH(std::vector<ServiceReply>, queries);
    QFETCH(bool, started);
    QFETCH(std::vector<std::uint32_t>, sleeps);
    FakeClock clock;
    const ServiceController controller(std::make_shared<ScriptedService>(request, queries), clock.clock());
    QCOMPARE(controller.startService("SableD"), started);
    QCOMPARE(clock.sleeps, sleeps);
}

void TestServiceWait::stopWaitsForStopped()
{
    using S = ServiceState;
    FakeClock clock;
    auto service = std::make_shared<ScriptedService>(outcome(ServiceOutcome::Done),
        std::vector {status(S::StopPending, 0, 20000), status(S::StopPending, 1, 20000), status(S::Stopped, 0, 0)});
    const ServiceController controller(service, clock.clock());
    QVERIFY(controller.stopService("GroupD"));
    QCOMPARE(clock.sleeps, repeated(2000, 2));

    // A service that ends up running did not stop.
    FakeClock other;
    const ServiceController stuck(std::make_shared<ScriptedService>(outcome(ServiceOutcome::Done),
                                      std::vector {status(S::StopPending, 0, 0), status(S::Running, 0, 0)}),
        other.clock());
    QVERIFY(!stuck.stopService("GroupD"));
}

void TestServiceWait::interruptedSleepEndsTheWait()
{
    auto service = std::make_shared<ScriptedService>(
        outcome(ServiceOutcome::Done), std::vector {status(ServiceState::StartPending, 0, 200000)});
    int slept = 0;
    const ServiceController controller(service,
        {[] { return std::uint64_t {0}; },
            [&slept](std::uint32_t) {
                ++slept;
                return false;
            }});
    QVERIFY(!controller.startService("SableD"));
    QCOMPARE(slept, 1);
    QCOMPARE(service->queries, 1);
}

QTEST_GUILESS_MAIN(TestServiceWait)
#include "tst_service_wait.moc"
