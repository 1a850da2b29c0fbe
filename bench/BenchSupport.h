#pragma once

#include "ChartGenerator.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QTextStream>

namespace sable::bench {

// Peak resident memory of the process since the last reset, in MiB.
double peakMemoryMiB();
// Starts a new peak measurement (where the system allows it).
void resetPeakMemory();

// The chart size of the benchmarks, times the factor of "--scale F" in `arguments` (1 without it).
ChartSize scaledChartSize(const QStringList& arguments);

// One measured step: wall time in seconds.
template <typename F>
double timeIt(F&& work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

} // namespace sable::bench
