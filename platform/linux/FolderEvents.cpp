#include "platform/FolderEvents.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"
#include "base/Text.h"
#include "platform/DirectoryWalker.h"
#include "platform/linux/DirectoryMarks.h"
#include "platform/linux/MountTable.h"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>

namespace tovi::platform {
namespace {

using Clock = std::chrono::steady_clock;
using State = FolderFreshness::State;

constexpr std::chrono::seconds settlingTime{1}; // before a root that was lost is looked at again
constexpr std::chrono::seconds absence{10};     // between two looks for one that is not there

// A date from the kernel may be as old as its last tick.
constexpr double clockTick = 0.02;

FileDescriptor openDirectory(const std::string& path) {
    return FileDescriptor(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
}

struct Root {
    FolderFreshness freshness;
    std::vector<Mount> mounts;
    std::optional<Clock::time_point> nextTry;
    bool isWhole = false;  // every folder below is watched
    std::string refusal{}; // of the first that could not be, a sentence
    bool isGone = false;

    const std::string& path() const { return freshness.root; }
};

class SystemFolderEvents final : public FolderEvents {
  public:
    explicit SystemFolderEvents(FolderEventOptions options)
        : options_(std::move(options)), wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (!wakeUp_.isOpen()) throw systemError("eventfd");
        if (options_.mayUseFanotify) addService(makeFanotifyMarks());
        addService(makeInotifyMarks());
    }

    void watch(const std::vector<std::string>& roots, const std::stop_token& stop) override {
        std::vector<Root> wanted;
        for (const std::string& path : roots) {
            const auto known = std::find_if(roots_.begin(), roots_.end(),
                                            [&](const Root& root) { return root.path() == path; });
            if (known != roots_.end()) {
                wanted.push_back(*known);
            } else {
                wanted.push_back({{path, State::stale, Date::now(), "It is not watched yet."},
                                  {},
                                  Clock::now()});
            }
        }
        roots_ = std::move(wanted);
        dropOutsideRoots();
        const Date began = Date::now();
        for (Root& root : roots_) {
            if (root.freshness.state == State::stale) attach(root, began, stop);
        }
    }

    std::vector<FolderEvent> wait(std::optional<Duration> longest,
                                  const std::stop_token& stop) override {
        if (events_.empty()) collect(longest, stop);
        return std::exchange(events_, {});
    }

    void interrupt() override { ::eventfd_write(wakeUp_.get(), 1); }

    std::vector<FolderFreshness> freshness() const override {
        std::vector<FolderFreshness> all;
        for (const Root& root : roots_)
            all.push_back(root.freshness);
        return all;
    }

  private:
    struct Service {
        std::unique_ptr<DirectoryMarks> marks;
        std::size_t maximum = 0;
        std::size_t used = 0;
    };
    struct Place {
        std::size_t service;
        MarkKey key;
        auto operator<=>(const Place&) const = default;
    };
    class Marker;

    void collect(std::optional<Duration> longest, const std::stop_token& stop) try {
        std::vector<pollfd> sources{{wakeUp_.get(), POLLIN, 0}, {mounts_.descriptor(), POLLPRI, 0}};
        for (const Service& service : services_)
            sources.push_back({service.marks->descriptor(), POLLIN, 0});
        ::poll(sources.data(), sources.size(), timeout(longest));
        if (sources[0].revents != 0) {
            eventfd_t count = 0;
            ::eventfd_read(wakeUp_.get(), &count);
        }
        for (std::size_t n = 0; n < services_.size(); ++n) {
            if (sources[n + 2].revents != 0) read(n, stop);
        }
        if (sources[1].revents != 0) checkMounts(stop);
        for (Root& root : roots_) {
            if (root.nextTry && *root.nextTry <= Clock::now()) tryAgain(root, stop);
        }
    } catch (const Cancelled&) {
        for (Root& root : roots_) {
            setState(root, State::stale, "It is not watched yet.");
            root.nextTry = Clock::now();
        }
        throw;
    }

    void addService(std::unique_ptr<DirectoryMarks> marks) {
        if (!marks) return;
        const std::size_t maximum = options_.maximumWatches.value_or(marks->limit().number / 2);
        services_.push_back({std::move(marks), maximum, 0});
    }

    int timeout(std::optional<Duration> longest) const {
        std::optional<Duration> left = longest;
        for (const Root& root : roots_) {
            if (!root.nextTry) continue;
            const Duration untilTry = *root.nextTry - Clock::now();
            left = std::min(left.value_or(untilTry), untilTry);
        }
        if (!left) return -1;
        constexpr std::int64_t day = 86'400'000;
        const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(*left).count();
        return static_cast<int>(std::clamp<std::int64_t>(milliseconds, 0, day));
    }

    Root* rootOf(const std::string& path) {
        Root* longest = nullptr;
        for (Root& root : roots_) {
            if (!isSameOrBelow(path, root.path())) continue;
            if (!longest || root.path().size() > longest->path().size()) longest = &root;
        }
        return longest;
    }

    void tryIn(Root& root, Duration longest) {
        root.nextTry = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                          std::min(longest, options_.period));
    }

    void setState(Root& root, State state, std::string reason) {
        FolderFreshness& freshness = root.freshness;
        if (freshness.state != state) freshness.since = Date::now();
        freshness.state = state;
        freshness.reason = std::move(reason);
    }

    /// Watches a root whole or as far as it may; one that is not there is tried again later.
    void attach(Root& root, std::optional<Date> began, const std::stop_token& stop);
    void walk(Root& root, const std::string& path, std::optional<Date> began,
              const std::stop_token& stop);

    /// Whether the folder is now watched, so that what is in it may be looked at.
    bool mark(Root& root, const std::string& path, std::optional<Date> began) {
        const FileDescriptor directory = openDirectory(path);
        if (!directory.isOpen()) return false; // the index cannot read it either
        std::optional<Place> place = add(directory, DirectoryMarks::Scope::entries);
        if (const auto known = place ? paths_.find(*place) : paths_.end(); known != paths_.end()) {
            if (known->second == path) return true;
            drop(std::string(known->second)); // it was renamed
            place = add(directory, DirectoryMarks::Scope::entries);
        }
        if (!place) {
            root.isWhole = false;
            root.refusal = refusal_;
            return false;
        }
        if (places_.contains(path)) drop(path);
        ++services_[place->service].used;
        places_.emplace(path, *place);
        paths_.emplace(*std::move(place), path);
        struct stat status {};
        if (began && ::fstat(directory.get(), &status) == 0 &&
            Date::fromTimespec(status.st_ctim) >= *began - clockTick) {
            events_.push_back({FolderEvent::Kind::changed, path});
        }
        return true;
    }

    /// From the first service that can mark this folder; nothing, and `refusal_`, where none can.
    std::optional<Place> add(const FileDescriptor& directory, DirectoryMarks::Scope scope) {
        refusal_.clear();
        for (std::size_t n = 0; n < services_.size(); ++n) {
            Service& service = services_[n];
            try {
                Place place{n, service.marks->add(directory, scope)};
                const bool isRoom = service.used < service.maximum || paths_.contains(place) ||
                                    scope == DirectoryMarks::Scope::itself;
                if (isRoom) return place;
                service.marks->remove(place.key);
                refusal_ = fmt::format("It has more folders than Tovi watches at once ({}).",
                                       service.maximum);
            } catch (const std::system_error& error) {
                if (error.code() == std::errc::no_space_on_device) {
                    const KernelLimit limit = service.marks->limit();
                    refusal_ = fmt::format("The system lets your programs watch no more folders "
                                           "({} is {}).",
                                           limit.name, limit.number);
                } else if (refusal_.empty()) { // a limit tells more than a file system without
                    refusal_ = "The system cannot watch all of it: " + reasonOf(error) + ".";
                }
            }
        }
        return std::nullopt;
    }

    using Places = std::map<std::string, Place>;

    Places::iterator remove(Places::iterator at) {
        Service& service = services_[at->second.service];
        service.marks->remove(at->second.key);
        --service.used;
        paths_.erase(at->second);
        return places_.erase(at);
    }

    void dropOutsideRoots() {
        for (auto at = places_.begin(); at != places_.end();)
            at = rootOf(at->first) ? std::next(at) : remove(at);
    }

    /// Watches no longer what is at or below `path`.
    void drop(const std::string& path) {
        if (const auto itself = places_.find(path); itself != places_.end()) remove(itself);
        const std::string prefix = path.ends_with('/') ? path : path + '/';
        for (auto at = places_.lower_bound(prefix);
             at != places_.end() && at->first.starts_with(prefix);)
            at = remove(at);
    }

    void markAncestors(const std::string& path) {
        for (std::size_t slash = path.rfind('/'); slash != 0 && slash != std::string::npos;
             slash = path.rfind('/', slash - 1)) {
            const std::string ancestor = path.substr(0, slash);
            const FileDescriptor directory = openDirectory(ancestor);
            if (!directory.isOpen()) continue; // its renaming is seen by the next scan only
            if (auto place = add(directory, DirectoryMarks::Scope::itself)) {
                ancestors_.insert_or_assign(*std::move(place), ancestor);
            }
        }
    }

    void read(std::size_t service, const std::stop_token& stop) {
        std::vector<std::string> folders; // that came, went or were renamed
        services_[service].marks->read([&](const MarkNotice& notice) {
            if (notice.isOverflow()) return overflowed();
            const Place place{service, notice.key};
            const bool isLost = notice.name.empty() && (notice.isGone || notice.isMoved);
            if (const auto ancestor = ancestors_.find(place);
                isLost && ancestor != ancestors_.end()) {
                const std::string path = ancestor->second;
                ancestors_.erase(ancestor);
                loseRoots(path);
            }
            const auto known = paths_.find(place);
            if (known == paths_.end()) return;
            std::string path = known->second;
            if (isLost) {
                if (notice.isGone) drop(path);
                return loseRoots(path);
            }
            if (notice.name.empty()) return;
            if (!path.ends_with('/')) path += '/';
            path += notice.name;
            if (notice.isDirectory && !options_.isExcluded(path)) folders.push_back(path);
            events_.push_back({FolderEvent::Kind::changed, std::move(path)});
        });
        std::sort(folders.begin(), folders.end());
        folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
        for (const std::string& path : folders)
            lookAt(path, stop);
    }

    /// Follows a folder that may have come, gone or been replaced by another.
    void lookAt(const std::string& path, const std::stop_token& stop) {
        Root* root = rootOf(path);
        if (!root) return;
        const bool wasWhole = root->isWhole;
        const auto known = places_.find(path);
        const std::optional<Place> before =
            known == places_.end() ? std::nullopt : std::optional(known->second);
        if (!mark(*root, path, std::nullopt)) {
            drop(path);
        } else if (places_.at(path) != before) {
            walk(*root, path, std::nullopt, stop);
        }
        if (wasWhole && !root->isWhole) becomePeriodic(*root);
    }

    void becomePeriodic(Root& root) {
        setState(root, State::periodic,
                 services_.empty() ? "The system lets no more programs watch folders."
                                   : root.refusal);
        tryIn(root, options_.period);
    }

    void overflowed() {
        for (Root& root : roots_) {
            if (root.freshness.state == State::stale) continue;
            events_.push_back({FolderEvent::Kind::lost, root.path()});
            setState(root, State::stale, "More has changed at once than the system could tell.");
            tryIn(root, settlingTime);
        }
    }

    /// The folder that was at `path` is there no longer.
    void loseRoots(const std::string& path) {
        for (Root& root : roots_) {
            if (!isSameOrBelow(root.path(), path) || root.isGone) continue;
            drop(root.path());
            root.isGone = true;
            events_.push_back({FolderEvent::Kind::rootChanged, root.path()});
            setState(root, State::stale, "The folder was moved, deleted or unmounted.");
            tryIn(root, settlingTime);
        }
    }

    void tryAgain(Root& root, const std::stop_token& stop) {
        const bool wasGone = root.isGone;
        attach(root, std::nullopt, stop);
        if (root.freshness.state == State::stale) return;
        events_.push_back(
            {wasGone ? FolderEvent::Kind::rootChanged : FolderEvent::Kind::lost, root.path()});
    }

    void checkMounts(const std::stop_token& stop) {
        for (Root& root : roots_) {
            if (root.mounts == MountTable::around(root.path())) continue;
            events_.push_back({FolderEvent::Kind::mountsChanged, root.path()});
            attach(root, std::nullopt, stop);
        }
    }

    const FolderEventOptions options_;
    FileDescriptor wakeUp_;
    MountTable mounts_;
    std::vector<Service> services_;
    std::vector<Root> roots_;
    Places places_;                      // of every watched folder, by its path
    std::map<Place, std::string> paths_; // the same the other way round
    std::map<Place, std::string> ancestors_;
    std::vector<FolderEvent> events_; // not handed over yet
    std::string refusal_;             // why the last folder could not be marked
};

/// Marks a folder before the walk reads it.
class SystemFolderEvents::Marker final : public WalkVisitor {
  public:
    Marker(SystemFolderEvents& events, Root& root, std::optional<Date> began)
        : events_(events), root_(root), began_(began) {}

    void enter(const WalkDirectory&) override {}
    Step visit(WalkItem& item) override {
        if (item.type() != FileType::directory || !root_.isWhole ||
            events_.options_.isExcluded(item.path())) {
            return Step::skip;
        }
        return events_.mark(root_, item.path(), began_) ? Step::descend : Step::skip;
    }
    void leave() override {}
    void failed(const std::string&, const std::system_error&) override {}

  private:
    SystemFolderEvents& events_;
    Root& root_;
    std::optional<Date> began_;
};

void SystemFolderEvents::walk(Root& root, const std::string& path, std::optional<Date> began,
                              const std::stop_token& stop) {
    try {
        Marker marker(*this, root, began);
        walkDirectory(path, marker, stop);
    } catch (const std::system_error&) {
        return; // gone again; its mark tells
    }
}

void SystemFolderEvents::attach(Root& root, std::optional<Date> began,
                                const std::stop_token& stop) {
    root.mounts = MountTable::around(root.path());
    root.nextTry.reset();
    root.isWhole = true;
    markAncestors(root.path());
    if (mark(root, root.path(), began)) {
        walk(root, root.path(), began, stop);
    } else if (root.isWhole) {
        root.isGone = true;
        setState(root, State::stale, "The folder is not there or cannot be read.");
        tryIn(root, absence);
        return;
    }
    root.isGone = false;
    root.isWhole ? setState(root, State::live, {}) : becomePeriodic(root);
}

} // namespace

std::unique_ptr<FolderEvents> watchFoldersOfTheSystem(FolderEventOptions options) {
    return std::make_unique<SystemFolderEvents>(std::move(options));
}

} // namespace tovi::platform
