#pragma once

#include "document/ChartReader.h"

#include <QThread>

#include <atomic>
#include <functional>

namespace sable {

// Loads the chart off the window's thread. Progress, "loaded" and "ended" reach the window as
// queued signals; the stop button clears m_bContinue, which the reader looks at row by row.
class CReadDBThread final : public QThread
{
    Q_OBJECT

public:
    // `connect` runs on the reader's thread and opens a connection of its own there.
    explicit CReadDBThread(std::function<DbConnection()> connect, QObject* parent = nullptr);
    ~CReadDBThread() override;

    // Asks the load to stop at the next row or between two phases.
    void stop();
    bool isContinuing() const { return m_bContinue.load() != 0; }

    // What was read, once the thread has finished.
    ChartReader::Result takeResult();

Q_SIGNALS:
    void progressText(const QString& text);
    void progressRange(int count);
    void progressPosition(int position);
    // The chart is loaded and can be taken.
    void loaded();
    // The reader ends, loaded or not; `bContinue` is 0 when it was stopped.
    void ended(int bContinue);

protected:
    void run() override;

private:
    std::function<DbConnection()> m_connect;
    std::atomic<int> m_bContinue {1};
    ChartReader::Result m_result;
};

} // namespace sable
