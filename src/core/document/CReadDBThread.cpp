#include "document/CReadDBThread.h"

#include "db/DbConnection.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcReader, "sable.reader", QtWarningMsg)

namespace sable {
namespace {

// Passes progress on as signals, but a position only when the bar would move (every 1/200 of the
// range): a hundred thousand queued signals would keep the window busy for nothing.
class SignalProgress final : public LoadProgress
{
public:
    explicit SignalProgress(CReadDBThread& thread)
        : m_thread(thread)
    { }

    void setText(const QString& text) override { Q_EMIT m_thread.progressText(text); }
    void setRange(int count) override
    {
        m_step = std::max(1, count / 200);
        m_last = -1;
        Q_EMIT m_thread.progressRange(count);
    }
    void setPosition(int position) override
    {
        if (position != 0 && m_last >= 0 && position - m_last < m_step)
            return;
        m_last = position;
        Q_EMIT m_thread.progressPosition(position);
    }

private:
    CReadDBThread& m_thread;
    int m_step = 1;
    int m_last = -1;
};

} // namespace

CReadDBThread::CReadDBThread(std::function<DbConnection()> connect, QObject* parent)
    : QThread(parent)
    , m_connect(std::move(connect))
{ }

CReadDBThread::~CReadDBThread()
{
    stop();
    wait();
}

void CReadDBThread::stop()
{
    m_bContinue.store(0);
    qCDebug(lcReader) << "m_bContinue =====> FALSE";
}

ChartReader::Result CReadDBThread::takeResult()
{
    return std::move(m_result);
}

void CReadDBThread::run()
{
    SignalProgress progress(*this);
    m_result = ChartReader::read(m_connect, progress, m_bContinue);
    if (m_result.outcome == ChartReader::Outcome::Loaded)
        Q_EMIT loaded();
    Q_EMIT ended(m_bContinue.load());
}

} // namespace sable
