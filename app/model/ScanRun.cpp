#include "app/model/ScanRun.h"

#include "base/Cancelled.h"
#include "core/records/IntelligenceError.h"

namespace tovi {

std::vector<FolderGrant> checkRoots(const std::vector<FolderGrant>& roots, IndexStore* store,
                                    platform::Bookmarks& bookmarks, const std::stop_token& stop) {
    std::vector<FolderGrant> checked;
    for (const FolderGrant& root : roots) {
        throwIfCancelled(stop);
        checked.push_back(checkedGrant(root, bookmarks));
        const std::string& path = checked.back().path;
        if (store != nullptr && path != root.path) store->moveRoot(root.path, path);
    }
    return checked;
}

std::string unavailableFolder(const std::string& path) {
    return "Unavailable folder: " + path + ". Previous index retained.";
}

ScanOutcome runScan(const ScanSettings& settings, const FileIndexer& indexer, IndexStore& store,
                    const std::function<void(PublishedProgress)>& progress,
                    const std::stop_token& stop) {
    ScanOutcome outcome;
    for (const std::string& root : settings.roots) {
        throwIfCancelled(stop);
        try {
            const ScanReport report = indexer.scan(
                root, store, settings.exclusions, settings.includeCode,
                [&](const ScanProgress& step) {
                    progress({step.count, root, step.phase == "Finished"});
                },
                stop);
            outcome.unread.insert(outcome.unread.end(), report.errors.begin(), report.errors.end());
        } catch (const IntelligenceError& error) {
            if (error.kind() != IntelligenceError::Kind::inaccessible) throw;
            outcome.unavailable.push_back(unavailableFolder(root));
        }
    }
    return outcome;
}

} // namespace tovi
