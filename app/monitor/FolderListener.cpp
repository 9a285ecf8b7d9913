#include "app/monitor/FolderListener.h"

#include "core/records/FileEventPolicy.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace tovi {
namespace {

using Kind = platform::FolderEvent::Kind;

double monotonicSeconds() {
    return platform::FolderEvents::Duration(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

std::uint32_t flagsOf(Kind kind) {
    switch (kind) {
    case Kind::changed:
        return 0;
    case Kind::lost:
        return fileEvent::kernelDropped;
    case Kind::rootChanged:
        return fileEvent::rootChanged;
    case Kind::mountsChanged:
        return fileEvent::mounted | fileEvent::unmounted;
    }
    return fileEvent::kernelDropped;
}

} // namespace

FolderListener::FolderListener(platform::FolderEvents& events, Timing timing, Handlers handlers)
    : events_(events), timing_(std::move(timing)), handlers_(std::move(handlers)) {
    if (!timing_.uptime) timing_.uptime = monotonicSeconds;
}

void FolderListener::start(std::vector<std::string> paths, const std::stop_token& stop) {
    watchedPaths_ = std::move(paths);
    batchEnd_.reset();
    isBatchRelevant_ = false;
    pendingCall_.reset();
    events_.watch(watchedPaths_, stop);
    publishFreshness();
}

void FolderListener::step(const std::stop_token& stop) {
    const std::vector<platform::FolderEvent> events = events_.wait(untilNext(), stop);
    // First, so that events that never pause cannot put the call off for ever.
    finishWhatIsDue();
    receive(events);
    publishFreshness();
}

void FolderListener::receive(const std::vector<platform::FolderEvent>& events) {
    if (events.empty()) return;
    if (!batchEnd_) batchEnd_ = timing_.uptime() + timing_.latency;
    isBatchRelevant_ =
        isBatchRelevant_ || std::any_of(events.begin(), events.end(), [&](const auto& event) {
            return FileEventPolicy::requiresRescan(event.path, flagsOf(event.kind), watchedPaths_);
        });
}

void FolderListener::finishWhatIsDue() {
    const double now = timing_.uptime();
    if (pendingCall_ && *pendingCall_ <= now) {
        pendingCall_.reset();
        handlers_.changed();
    }
    if (batchEnd_ && *batchEnd_ <= now) {
        batchEnd_.reset();
        if (std::exchange(isBatchRelevant_, false)) pendingCall_ = now + timing_.debounce;
    }
}

std::optional<platform::FolderEvents::Duration> FolderListener::untilNext() const {
    constexpr double never = std::numeric_limits<double>::infinity();
    const double next = std::min(batchEnd_.value_or(never), pendingCall_.value_or(never));
    if (next == never) return std::nullopt;
    return platform::FolderEvents::Duration(std::max(next - timing_.uptime(), 0.0));
}

void FolderListener::publishFreshness() {
    std::vector<platform::FolderFreshness> current = events_.freshness();
    if (current == freshness_) return;
    freshness_ = std::move(current);
    if (handlers_.freshness) handlers_.freshness(freshness_);
}

} // namespace tovi
