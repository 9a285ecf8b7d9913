#pragma once

#include <QAbstractEventDispatcher>
#include <QObject>
#include <algorithm>
#include <ctime>
#include <utility>

namespace tovi::bench {

/// Of the process or of the calling thread.
inline double processorMilliseconds(clockid_t clock) {
    timespec used{};
    clock_gettime(clock, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) * 1e-6;
}

/// The longest that the main thread worked between two looks for events, in milliseconds of
/// processor time, which neither waiting nor other programs add to. A dispatcher says that it is
/// about to block before everything that it does in one go, or after; from one time to the next it
/// did it once.
class LongestTurn {
  public:
    LongestTurn() {
        QObject::connect(QAbstractEventDispatcher::instance(),
                         &QAbstractEventDispatcher::aboutToBlock, &context_, [this] { end(); });
    }

    /// Since the last call.
    double take() {
        end();
        return std::exchange(longest_, 0);
    }

  private:
    static double now() { return processorMilliseconds(CLOCK_THREAD_CPUTIME_ID); }

    void end() {
        const double ended = now();
        longest_ = std::max(longest_, ended - std::exchange(begun_, ended));
    }

    QObject context_;
    double begun_ = now();
    double longest_ = 0;
};

} // namespace tovi::bench
