#pragma once

#include "platform/Bookmark.h"
#include "platform/ExclusiveMove.h"
#include "platform/Trash.h"

#include <filesystem>
#include <functional>
#include <map>
#include <set>

namespace tovi::test {

/// Moves and trashes like the system's, but asks `before` first, which may throw or change the
/// tree, and counts what it did.
class FakeExclusiveMove final : public platform::ExclusiveMove {
  public:
    std::function<void(const std::string& from, const std::string& to)> before = [](auto&, auto&) {
    };
    std::error_code syncError;

    std::error_code move(const platform::DirectoryEntry& from,
                         const platform::DirectoryEntry& to) override {
        before(from.path(), to.path());
        if (std::filesystem::exists(std::filesystem::symlink_status(to.path()))) {
            throw std::system_error(EEXIST, std::generic_category(), to.path());
        }
        std::filesystem::rename(from.path(), to.path());
        return syncError;
    }
    void finish(const platform::DirectoryEntry& from, const platform::DirectoryEntry& to) override {
        std::error_code ignored;
        if (std::filesystem::equivalent(from.path(), to.path(), ignored)) {
            std::filesystem::remove(from.path());
        }
    }
};

class FakeTrash : public platform::Trash {
  public:
    explicit FakeTrash(std::string directory) : directory_(std::move(directory)) {
        std::filesystem::create_directories(directory_);
    }

    std::function<void(const std::string& path)> before = [](auto&) {};
    std::error_code syncError;

    platform::TrashedItem move(const platform::DirectoryEntry& item,
                               const Announce& announce) override {
        const std::string place =
            directory_ + "/" + std::to_string(++count_) + "-" + std::string(item.name());
        announce(place);
        before(item.path());
        std::error_code error;
        std::filesystem::rename(item.path(), place, error);
        if (error) throw platform::TrashError("No trash for " + item.path());
        notes_[place] = item.path();
        return {place, syncError};
    }
    void forget(const std::string& trashedPath, const std::string& originalPath) override {
        const auto note = notes_.find(trashedPath);
        if (note == notes_.end() || note->second != originalPath) return;
        if (!std::filesystem::exists(trashedPath)) notes_.erase(note);
    }
    bool hasNote(const std::string& trashedPath) const { return notes_.contains(trashedPath); }

  private:
    std::string directory_;
    int count_ = 0;
    std::map<std::string, std::string> notes_;
};

/// Knows the files it was shown by their inode and finds them in the two directories it is told.
class FakeBookmarks final : public platform::Bookmarks {
  public:
    std::string create(const platform::DirectoryEntry& item) override {
        made_.push_back({item.path(), platform::attributesOf(item.path()).inode});
        return std::to_string(made_.size() - 1);
    }
    std::optional<Location> locate(const std::string& bookmark,
                                   const std::string& likelyPath) override {
        if (bookmark.empty() || bookmark.find_first_not_of("0123456789") != std::string::npos) {
            return std::nullopt;
        }
        const auto& [path, inode] = made_.at(std::stoul(bookmark));
        std::error_code ignored;
        for (const std::filesystem::path& directory :
             {std::filesystem::path(path).parent_path(),
              std::filesystem::path(likelyPath).parent_path()}) {
            for (const auto& item : std::filesystem::directory_iterator(directory, ignored)) {
                if (platform::attributesOf(item.path()).inode == inode) {
                    return Location{item.path(), item.path() != path};
                }
            }
        }
        return std::nullopt;
    }

  private:
    std::vector<std::pair<std::string, std::uint64_t>> made_;
};

} // namespace tovi::test
