#pragma once

#include <algorithm>
#include <cmath>

namespace tovi {

/// How long an operation still takes, at the pace that it has had so far.
class TimeLeft {
  public:
    static constexpr int unknown = -1;

    TimeLeft() = default;
    /// `now` is in seconds of a clock that only goes forward.
    explicit TimeLeft(double now) : began_(now) {}

    /// `done` of `total`, in any unit.
    void update(double done, double total, double now) {
        constexpr double firstGuess = 1; // second; what comes before tells nothing of the pace
        const double passed = now - began_;
        if (done <= 0 || passed < firstGuess) return;
        constexpr double longest = 1e6; // seconds
        const double left = passed * std::max(total - done, 0.0) / done;
        seconds_ = static_cast<int>(std::ceil(std::min(left, longest)));
    }

    /// Seconds, or `unknown`.
    int seconds() const { return seconds_; }

  private:
    double began_ = 0;
    int seconds_ = unknown;
};

} // namespace tovi
