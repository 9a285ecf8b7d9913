#pragma once

#include <chrono>

#include <sys/resource.h>

namespace tovi::bench {

/// Wall time and processor time (user and system, all threads) since it was made, in seconds.
class Stopwatch {
  public:
    double wall() const {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    }
    double processor() const { return processorNow() - processorStart_; }

  private:
    static double processorNow() {
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const auto seconds = [](const timeval& time) {
            return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
        };
        return seconds(usage.ru_utime) + seconds(usage.ru_stime);
    }

    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
    double processorStart_ = processorNow();
};

} // namespace tovi::bench
