#pragma once

#include <csignal>
#include <stop_token>
#include <thread>

namespace tovi::cli {

/// Turns the first Ctrl-C or termination signal into a requested stop, so that work ends in
/// order; the second ends the program at once. Create it before any other thread.
class Interruption {
  public:
    Interruption();
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    std::stop_token token() const { return source_.get_token(); }

  private:
    void wait();

    sigset_t signals_{};
    std::stop_source source_;
    std::thread thread_;
};

} // namespace tovi::cli
