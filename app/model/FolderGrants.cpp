#include "app/model/FolderGrants.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "core/records/IndexingPolicy.h"
#include "core/records/IntelligenceError.h"

#include <unistd.h>

namespace tovi {
namespace {

bool isOpenToUser(const std::string& path) {
    return ::access(path.c_str(), R_OK | X_OK) == 0;
}

} // namespace

FolderGrant makeGrant(const std::string& folder, const FileIndexer& indexer,
                      platform::Bookmarks& bookmarks) {
    const std::string path = indexer.acceptedRoot(folder);
    try {
        return {path, bookmarks.create(platform::DirectoryEntry::open(path)), true};
    } catch (const std::system_error& error) {
        throw IntelligenceError::inaccessible(path + ": " + reasonOf(error));
    }
}

FolderGrant checkedGrant(const FolderGrant& grant, platform::Bookmarks& bookmarks) {
    FolderGrant checked = grant;
    const auto found = bookmarks.locate(grant.bookmark, grant.path);
    checked.available =
        found && IndexingPolicy::acceptsRoot(found->path) && isOpenToUser(found->path);
    if (!checked.available || (!found->stale && found->path == grant.path)) return checked;
    try {
        checked.bookmark = bookmarks.create(platform::DirectoryEntry::open(found->path));
        checked.path = found->path;
    } catch (const std::system_error&) {
        checked.available = false;
    }
    return checked;
}

std::optional<std::string> addGrant(std::vector<FolderGrant>& roots, const FolderGrant& grant) {
    for (FolderGrant& root : roots) {
        if (root.path == grant.path && (!root.available || root.bookmark.empty())) {
            root = grant;
            return std::nullopt;
        }
        if (isSameOrBelow(grant.path, root.path)) {
            return std::string(lastPathComponent(grant.path)) + " is already included in " +
                   std::string(lastPathComponent(root.path));
        }
    }
    roots.push_back(grant);
    return std::nullopt;
}

} // namespace tovi
