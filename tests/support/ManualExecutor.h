#pragma once

#include "app/background/Executor.h"

#include <algorithm>
#include <deque>
#include <map>

namespace tovi::test {

/// An executor that a test steps by hand, all on its own thread: work, delivery and time stand
/// still until they are asked to go on.
class ManualExecutor final : public Executor {
  public:
    void run(std::function<void()> work) override { work_.push_back(std::move(work)); }
    void post(std::function<void()> callback) override { posted_.push_back(std::move(callback)); }
    void after(double seconds, std::function<void()> callback) override {
        timers_.emplace(uptime_ + std::max(seconds, 0.0), std::move(callback));
    }
    double uptime() const override { return uptime_; }
    Date now() const override { return {1'700'000'000 + uptime_}; }

    std::size_t workCount() const { return work_.size(); }
    std::size_t timerCount() const { return timers_.size(); }

    /// Does the piece of work that waits at `index`, the oldest by default.
    void work(std::size_t index = 0) {
        const auto chosen = work_.begin() + static_cast<std::ptrdiff_t>(index);
        const auto job = std::move(*chosen);
        work_.erase(chosen);
        job();
    }
    /// Delivers everything that was posted.
    void deliver() {
        while (!posted_.empty()) {
            const auto callback = std::move(posted_.front());
            posted_.pop_front();
            callback();
        }
    }
    /// Works and delivers until nothing is left but timers.
    void settle() {
        for (deliver(); !work_.empty(); deliver())
            work();
    }
    /// Lets time pass; timers ring in order, each followed by what it set going.
    void advance(double seconds) {
        const double end = uptime_ + seconds;
        while (!timers_.empty() && timers_.begin()->first <= end) {
            uptime_ = std::max(uptime_, timers_.begin()->first);
            const auto callback = std::move(timers_.begin()->second);
            timers_.erase(timers_.begin());
            callback();
            settle();
        }
        uptime_ = std::max(uptime_, end);
    }

    /// Lets time pass in the middle of work: no timer rings.
    void pass(double seconds) { uptime_ += seconds; }

  private:
    std::deque<std::function<void()>> work_;
    std::deque<std::function<void()>> posted_;
    std::multimap<double, std::function<void()>> timers_;
    double uptime_ = 1000;
};

} // namespace tovi::test
