#include "app/model/ScanRun.h"

#include "base/Cancelled.h"
#include "core/records/IntelligenceError.h"

namespace tovi {

std::vector<FolderGrant> checkRoots(const std::vector<FolderGrant>& roots, IndexStore* store,
                                    FolderAccess& access, const std::stop_token& stop) {
    std::vector<FolderGrant> checked;
    for (const FolderGrant& root : roots) {
        throwIfCancelled(stop);
        checked.push_back(access.checked(root));
        const std::string& path = checked.back().path;
        if (store != nullptr && path != root.path) store->moveRoot(root.path, path);
    }
    return checked;
}

std::string unavailableFolder(const std::string& path) {
    return "Unavailable folder: " + path + ". Previous index retained.";
}

ScanOutcome runScan(const ScanSettings& settings, FolderAccess& access, const FileIndexer& indexer,
                    IndexStore& store, const std::function<void(PublishedProgress)>& progress,
                    const std::stop_token& stop) {
    ScanOutcome outcome;
    for (const FolderGrant& grant : settings.roots) {
        throwIfCancelled(stop);
        const std::string& root = grant.path;
        if (access.pathsInPlace({grant}).empty()) { // it went while others were scanned
            outcome.unavailable.push_back(unavailableFolder(root));
            continue;
        }
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
