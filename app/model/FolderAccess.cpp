#include "app/model/FolderAccess.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "core/records/IndexingPolicy.h"
#include "core/records/IntelligenceError.h"

#include <algorithm>

#include <unistd.h>

namespace tovi {
namespace {

bool isOpenToUser(const std::string& path) {
    return ::access(path.c_str(), R_OK | X_OK) == 0;
}

} // namespace

FolderGrant FolderAccess::grant(const std::string& folder, const FileIndexer& indexer) {
    const std::string path = indexer.acceptedRoot(folder);
    try {
        FolderGrant made{path, bookmarks_.create(platform::DirectoryEntry::open(path)), true};
        hold(made);
        return made;
    } catch (const std::system_error& error) {
        throw IntelligenceError::inaccessible(path + ": " + reasonOf(error));
    }
}

FolderGrant FolderAccess::checked(const FolderGrant& grant) {
    FolderGrant checked = grant;
    const Held held = heldOf(grant.bookmark);
    const std::string likely = held ? held->path().value_or(grant.path) : grant.path;
    const auto found = bookmarks_.locate(grant.bookmark, likely);
    checked.available = found && IndexingPolicy::acceptsRoot(found->path) &&
                        isOpenToUser(found->path) && (!held || held->isAt(found->path));
    if (!checked.available) return checked;
    if (found->stale || found->path != grant.path) {
        try {
            checked.bookmark = bookmarks_.create(platform::DirectoryEntry::open(found->path));
            checked.path = found->path;
        } catch (const std::system_error&) {
            checked.available = false;
            return checked;
        }
    }
    hold(checked);
    return checked;
}

std::vector<std::string> FolderAccess::pathsInPlace(const std::vector<FolderGrant>& grants) {
    std::vector<std::string> paths;
    for (const FolderGrant& grant : grants) {
        if (!grant.available) continue;
        const FolderGrant found = checked(grant);
        if (found.available && found.path == grant.path) paths.push_back(grant.path);
    }
    return paths;
}

FolderAccess::Held FolderAccess::heldOf(const std::string& bookmark) {
    const std::lock_guard lock(mutex_);
    const auto found = held_.find(bookmark);
    return found == held_.end() ? nullptr : found->second;
}

void FolderAccess::hold(const FolderGrant& grant) {
    if (heldOf(grant.bookmark)) return;
    auto folder = platform::HeldFolder::hold(grant.path);
    if (!folder) return;
    const std::lock_guard lock(mutex_);
    held_.emplace(grant.bookmark, std::make_shared<platform::HeldFolder>(std::move(*folder)));
}

void FolderAccess::keepOnly(const std::vector<FolderGrant>& grants) {
    const std::lock_guard lock(mutex_);
    std::erase_if(held_, [&](const auto& held) {
        return std::none_of(grants.begin(), grants.end(),
                            [&](const FolderGrant& grant) { return grant.bookmark == held.first; });
    });
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
