#pragma once

#include "app/model/FolderAccess.h"
#include "app/model/IndexConnections.h"

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

/// The connected folders as the disk has them; rows of a folder that was renamed move along in
/// the index, if there is one. Blocks.
std::vector<FolderGrant> checkRoots(const std::vector<FolderGrant>& roots, IndexStore* store,
                                    FolderAccess& access, const std::stop_token& stop);

struct ScanSettings {
    std::vector<FolderGrant> roots; // in the order in which they are scanned
    std::vector<std::string> exclusions;
    bool includeCode = false;
};

/// One step of a scan, kept for another thread.
struct PublishedProgress {
    std::int64_t count = 0;
    std::string root;
    bool isFinished = false; // with this root
};

struct ScanOutcome {
    std::vector<std::string> unavailable; // one sentence for each root that could not be scanned
    std::vector<std::string> unread;      // one line for each file that could not be read
};

std::string unavailableFolder(const std::string& path);

/// Scans the roots one after the other, those that are not in place by then left out. Blocks.
/// Throws the store's errors and `Cancelled`.
ScanOutcome runScan(const ScanSettings& settings, FolderAccess& access, const FileIndexer& indexer,
                    IndexStore& store, const std::function<void(PublishedProgress)>& progress,
                    const std::stop_token& stop);

} // namespace tovi
