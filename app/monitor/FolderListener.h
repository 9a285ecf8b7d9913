#pragma once

#include "platform/FolderEvents.h"

#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// Waits for what happens below folders and gathers it: events are taken in batches, and a batch
/// with one that the index should hear of sets the time at which `changed` is called, anew if it
/// was set already. Used by one thread; knows none.
class FolderListener {
  public:
    struct Timing {
        double latency = 1.0;           // seconds from the first event of a batch to its end
        double debounce = 1.0;          // seconds from the end of a batch to the call
        std::function<double()> uptime; // seconds; the monotonic clock if not given
    };
    struct Handlers {
        std::function<void()> changed;
        std::function<void(const std::vector<platform::FolderFreshness>&)> freshness;
    };

    FolderListener(platform::FolderEvents& events, Timing timing, Handlers handlers);

    /// Listens to these folders and no others; what was to be told of the others is forgotten.
    /// Throws `Cancelled`.
    void start(std::vector<std::string> paths, const std::stop_token& stop);

    /// Waits for the next thing to do and does it. Throws `Cancelled`.
    void step(const std::stop_token& stop);

  private:
    void receive(const std::vector<platform::FolderEvent>& events);
    void finishWhatIsDue();
    std::optional<platform::FolderEvents::Duration> untilNext() const;
    void publishFreshness();

    platform::FolderEvents& events_;
    Timing timing_;
    Handlers handlers_;
    std::vector<std::string> watchedPaths_;
    std::vector<platform::FolderFreshness> freshness_; // as published last
    std::optional<double> batchEnd_;
    bool isBatchRelevant_ = false;
    std::optional<double> pendingCall_;
};

} // namespace tovi
