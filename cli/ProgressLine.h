#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace tovi::cli {

/// One line on standard error that is rewritten as work goes on: a bar where the total is known,
/// the count, the rate and what is being handled. Nothing is written unless people watch on a
/// terminal.
class ProgressLine {
  public:
    /// `total` is 0 where it is not known; `noun` is what is counted, in the plural.
    ProgressLine(std::int64_t total, std::string noun, bool enabled);
    ~ProgressLine();
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(std::int64_t count, std::string_view item);

  private:
    using Time = std::chrono::steady_clock::time_point;

    std::int64_t total_;
    std::string noun_;
    bool enabled_;
    Time started_;
    Time shown_;
};

} // namespace tovi::cli
