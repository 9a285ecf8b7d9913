#pragma once

#include "base/Date.h"

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tovi::platform {

struct FolderEvent {
    enum class Kind {
        changed,       // the item at `path`
        lost,          // anything below the root `path` may have changed
        rootChanged,   // the root `path` vanished, moved, or came back
        mountsChanged, // what is mounted at, above or below the root `path`
    };
    Kind kind = Kind::changed;
    std::string path; // absolute

    friend bool operator==(const FolderEvent&, const FolderEvent&) = default;
};

/// How soon changes below a root are heard of.
struct FolderFreshness {
    enum class State {
        live,     // at once
        periodic, // some at once, and everything is to be scanned now and then
        stale,    // not at all, but the root is tried again now and then
    };
    std::string root;
    State state = State::stale;
    Date since;         // when this state began
    std::string reason; // a sentence; empty while live

    friend bool operator==(const FolderFreshness&, const FolderFreshness&) = default;
};

/// Tells of changes below folders. One thread uses it at a time; only `interrupt` may be called
/// from others.
class FolderEvents {
  public:
    using Duration = std::chrono::duration<double>; // seconds

    virtual ~FolderEvents() = default;

    /// Watches these folders, absolute and without links, and no others. What goes on meanwhile
    /// below folders that were watched before is not lost. Throws `Cancelled`; what is then
    /// missing is watched by the next call of this or of `wait`.
    virtual void watch(const std::vector<std::string>& roots, const std::stop_token& stop) = 0;

    /// What happened since the last call; waits for it, at most for `longest`, forever without.
    /// It may return with nothing sooner, and does when interrupted. Throws `Cancelled`.
    virtual std::vector<FolderEvent> wait(std::optional<Duration> longest,
                                          const std::stop_token& stop) = 0;

    /// Ends the wait under way, or the next one.
    virtual void interrupt() = 0;

    /// One of each root, in the order given.
    virtual std::vector<FolderFreshness> freshness() const = 0;
};

struct FolderEventOptions {
    /// Whether the folder at this path below a root is left alone, with everything in it.
    std::function<bool(const std::string& path)> isExcluded;
    bool mayUseFanotify = true;
    /// Folders to watch at once, with each of the system's two services; half of what the system
    /// allows the user if not given.
    std::optional<std::size_t> maximumWatches;
    /// Between two scans of a root that is not watched whole.
    FolderEvents::Duration period = std::chrono::minutes(5);
};

/// Watches every folder by itself with fanotify(7), with inotify(7) where that cannot be had, and
/// asks for timed scans of roots with more folders than may be watched. Throws
/// `std::system_error` where the process has no descriptor left.
std::unique_ptr<FolderEvents> watchFoldersOfTheSystem(FolderEventOptions options);

} // namespace tovi::platform
