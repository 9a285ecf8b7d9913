#pragma once

#include "base/Date.h"

#include <functional>

namespace tovi {

/// Threads, timers and clocks as the models use them. Models live on the main thread; all but
/// `run` and `post` are called there. Outlives the models.
class Executor {
  public:
    virtual ~Executor() = default;

    /// Runs `work`, which must not throw, on a thread that is not the main one.
    virtual void run(std::function<void()> work) = 0;

    /// Runs `callback` on the main thread, after all that were posted before it. From any thread.
    virtual void post(std::function<void()> callback) = 0;

    /// Runs `callback` on the main thread once `seconds` have passed.
    virtual void after(double seconds, std::function<void()> callback) = 0;

    /// Seconds of a clock that only goes forward and stands still while the machine sleeps.
    virtual double uptime() const = 0;

    virtual Date now() const = 0;
};

} // namespace tovi
