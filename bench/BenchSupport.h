#pragma once

#include "ChartGenerator.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <functional>
#include <utility>

namespace sable {
class DbConnection;
}

namespace sable::bench {

// Peak resident memory of the process since the last reset, in MiB.
double peakMemoryMiB();
// Starts a new peak measurement (where the system allows it).
void resetPeakMemory();

// The chart size of the benchmarks, times the factor of "--scale F" in `arguments` (1 without it).
ChartSize scaledChartSize(const QStringList& arguments);

// What a save is handed to connect to the database of `connectionString`.
std::function<DbConnection()> connector(const QString& connectionString);
// Creates the chart's tables in the database of `connectionString`, creating the file too.
bool createTables(const QString& connectionString);

// One measured step: wall time in seconds.
template <typename F>
double timeIt(F&& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

// Prints each measured step as a line: its label, padded to `labelWidth`, and its time.
class Report
{
public:
    Report(QTextStream& out, int labelWidth)
        : m_out(out)
        , m_labelWidth(labelWidth)
    { }

    template <typename F>
    double measure(const QString& what, F&& work)
    {
        const double seconds = timeIt(std::forward<F>(work));
        m_out << what.leftJustified(m_labelWidth) << QStringLiteral("%1 ms\n").arg(seconds * 1000, 9, 'f', 1);
        // A long run shows its progress as it goes.
        m_out.flush();
        return seconds;
    }

private:
    QTextStream& m_out;
    int m_labelWidth;
};

} // namespace sable::bench
