#pragma once

#include <QtGlobal>

#include <atomic>

namespace sable::Revision {

// A number never handed out before in this process: the revision of a changed container, so that
// two containers, or one before and after a change, never show the same one.
inline quint64 next()
{
    static std::atomic<quint64> counter {0};
    return ++counter;
}

} // namespace sable::Revision
