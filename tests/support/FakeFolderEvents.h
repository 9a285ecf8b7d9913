#pragma once

#include "base/Cancelled.h"
#include "base/Text.h"
#include "platform/FolderEvents.h"

#include <algorithm>
#include <utility>

namespace tovi::test {

/// Folders in which only that happens which a test says. One thread uses it.
class FakeFolderEvents final : public platform::FolderEvents {
  public:
    using Kind = platform::FolderEvent::Kind;

    void watch(const std::vector<std::string>& roots, const std::stop_token& stop) override {
        throwIfCancelled(stop);
        std::vector<platform::FolderFreshness> wanted;
        for (const std::string& root : roots) {
            const auto known = find(root);
            wanted.push_back(known == roots_.end()
                                 ? platform::FolderFreshness{root,
                                                             platform::FolderFreshness::State::live,
                                                             Date::now(),
                                                             {}}
                                 : *known);
        }
        roots_ = std::move(wanted);
    }
    std::vector<platform::FolderEvent> wait(std::optional<Duration> longest,
                                            const std::stop_token& stop) override {
        throwIfCancelled(stop);
        if (events_.empty()) pass(longest);
        return std::exchange(events_, {});
    }
    void interrupt() override {}
    std::vector<platform::FolderFreshness> freshness() const override { return roots_; }

    void happen(Kind kind, const std::string& path) {
        const bool isHeard = std::any_of(roots_.begin(), roots_.end(), [&](const auto& root) {
            return isSameOrBelow(path, root.root);
        });
        if (isHeard) events_.push_back({kind, path});
    }
    void vanish(const std::string& root) {
        happen(Kind::rootChanged, root);
        find(root)->state = platform::FolderFreshness::State::stale;
        find(root)->reason = "The folder is gone.";
    }

    /// What a wait in which nothing happens does instead.
    std::function<void(std::optional<Duration>)> pass = [](auto) {};

  private:
    std::vector<platform::FolderFreshness>::iterator find(const std::string& root) {
        return std::find_if(roots_.begin(), roots_.end(),
                            [&](const auto& each) { return each.root == root; });
    }

    std::vector<platform::FolderFreshness> roots_;
    std::vector<platform::FolderEvent> events_;
};

} // namespace tovi::test
