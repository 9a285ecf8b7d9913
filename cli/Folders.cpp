#include "cli/Folders.h"

#include "app/preferences/PreferencesFile.h"
#include "base/Text.h"
#include "cli/Format.h"
#include "cli/ModelSession.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>

namespace tovi::cli {
namespace {

bool isIn(const std::vector<FolderGrant>& roots, const std::string& path) {
    return std::any_of(roots.begin(), roots.end(),
                       [&](const FolderGrant& root) { return root.path == path; });
}

/// The connected folder that the user named; it may be gone from the disk.
std::string connectedPath(const std::string& folder, AppModel& model) {
    const std::vector<std::string> indexed = model.index()->store.roots();
    const std::string absolute = absolutePath(folder);
    std::error_code missing;
    for (const std::string& candidate :
         {absolute, std::filesystem::weakly_canonical(absolute, missing).string()}) {
        if (isIn(model.folders()->roots(), candidate) ||
            std::find(indexed.begin(), indexed.end(), candidate) != indexed.end()) {
            return candidate;
        }
    }
    throw std::runtime_error("This folder is not connected: " + absolute);
}

} // namespace

void rememberFolders(const std::vector<std::string>& roots, const FileIndexer& indexer,
                     const Context& context) {
    PreferencesFile file(context.preferencesPath());
    const Preferences before = file.read();
    Preferences preferences = before;
    platform::SystemBookmarks bookmarks;
    FolderAccess access(bookmarks);
    for (const std::string& root : roots) {
        const auto known = std::find_if(preferences.roots.begin(), preferences.roots.end(),
                                        [&](const FolderGrant& each) { return each.path == root; });
        if (known == preferences.roots.end()) {
            preferences.roots.push_back(access.grant(root, indexer));
        } else if (!access.checked(*known).available) {
            *known = access.grant(root, indexer);
        }
    }
    if (preferences != before) file.save(1, preferences);
}

bool isTheConnectedFolder(const std::string& root, const Context& context) {
    platform::SystemBookmarks bookmarks;
    FolderAccess access(bookmarks);
    for (const FolderGrant& grant : context.readPreferences().roots) {
        if (grant.path != root) continue;
        const FolderGrant found = access.checked(grant);
        return (found.available && found.path == root) || !std::filesystem::exists(root);
    }
    return true;
}

void forgetFolder(const std::string& folder, const Context& context) {
    ModelSession session(context);
    AppModel& model = session.model();
    const std::string path = connectedPath(folder, model);
    const std::int64_t files = model.index()->store.summary(path).total();
    if (isIn(model.folders()->roots(), path)) {
        model.removeRoot(QString::fromStdString(path));
        session.waitUntil([&] {
            return !isIn(model.folders()->roots(), path) ||
                   !model.notices()->errorMessage().isEmpty();
        });
    } else {
        model.index()->store.removeRoot(path);
    }
    session.finish();
    if (context.json) {
        context.print({{"forgotten", path}, {"files", files}});
    } else {
        fmt::print("Forgot {} with {}. The files themselves were not touched.\n", printable(path),
                   formatCount(files, "file"));
    }
}

} // namespace tovi::cli
