#pragma once

#include <QElapsedTimer>
#include <QString>
#include <QTextStream>

namespace sable::bench {

// Peak resident memory of the process since the last reset, in MiB.
double peakMemoryMiB();
// Starts a new peak measurement (where the system allows it).
void resetPeakMemory();

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
