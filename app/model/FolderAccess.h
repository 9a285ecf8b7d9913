#pragma once

#include "app/preferences/Preferences.h"
#include "core/indexing/FileIndexer.h"
#include "platform/Bookmark.h"
#include "platform/HeldFolder.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// Which folder on the disk a grant means. Folders that it has met are held open where that keeps
/// no disk from being unmounted. All blocks; may be called from any thread.
class FolderAccess {
  public:
    /// `bookmarks` outlives it.
    explicit FolderAccess(platform::Bookmarks& bookmarks) : bookmarks_(bookmarks) {}

    /// The grant of a folder that the user chose: its path with the links resolved, and its
    /// bookmark. Throws `IntelligenceError` for a folder that cannot be connected.
    FolderGrant grant(const std::string& folder, const FileIndexer& indexer);

    /// The grant as the disk has it now. A folder that was renamed is found again: the grant then
    /// has its new path and a new bookmark. A folder that is missing, closed to the user, in the
    /// Trash, or another one of the same name, such as the empty directory of a disk that is away,
    /// is not available; nothing else of the grant changes.
    FolderGrant checked(const FolderGrant& grant);

    /// The paths of the available grants whose folders are the ones connected and lie there still.
    std::vector<std::string> pathsInPlace(const std::vector<FolderGrant>& grants);

    /// Lets go of all other folders.
    void keepOnly(const std::vector<FolderGrant>& grants);

  private:
    using Held = std::shared_ptr<const platform::HeldFolder>;
    Held heldOf(const std::string& bookmark);
    void hold(const FolderGrant& grant);

    platform::Bookmarks& bookmarks_;
    std::mutex mutex_;                 // guards what follows
    std::map<std::string, Held> held_; // by bookmark
};

/// Adds `grant` to `roots`, or renews the one of that path where it was lost. Gives the sentence
/// for the user where the folder is in an available root already.
std::optional<std::string> addGrant(std::vector<FolderGrant>& roots, const FolderGrant& grant);

} // namespace tovi
