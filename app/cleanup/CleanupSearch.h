#pragma once

#include "core/cleanup/CleanupScanner.h"

#include <array>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

struct CleanupSearch {
    std::vector<std::string> connected; // the folders that may be scanned
    std::string folder;                 // the only one to scan, if not empty: one of them or below
    CleanupFolders folders;
    std::vector<std::string> excludedPaths;
    Date now;
};

/// The candidates of each category, the largest first.
using CandidatesByCategory = std::array<std::vector<CleanupCandidate>, allCleanupCategories.size()>;

struct CleanupFindings {
    CleanupReport report; // of all folders together, without its candidates, which are these:
    CandidatesByCategory candidates;
};

/// How far a search has come, kept for another thread.
struct CleanupSearchProgress {
    std::int64_t entries = 0;
    std::string path;
};

/// Scans the folders one after the other; one that cannot be scanned is an issue. Blocks. Throws
/// `CleanupScanError` where none could be scanned, and `Cancelled`.
CleanupFindings searchForCleanup(const CleanupSearch& search, const CleanupScanner& scanner,
                                 const std::function<void(const CleanupSearchProgress&)>& progress,
                                 const std::stop_token& stop);

} // namespace tovi
