#pragma once

#include "core/cleanup/CleanupPolicy.h"
#include "platform/Mounts.h"

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi {

struct CleanupScan {
    std::string root; // absolute
    CleanupFolders folders;
    std::vector<std::string> excludedPaths{};
    std::size_t entryLimit = 500'000;
    std::size_t candidateLimit = 20'000;
    Date now;
};

struct CleanupReport {
    std::string rootPath;                     // links resolved
    std::vector<CleanupCandidate> candidates; // the largest first
    std::int64_t scannedFiles = 0;            // regular files met
    std::int64_t scannedBytes = 0;            // the sum of their sizes
    std::int64_t skippedCount = 0;            // links, folders and files that the policy left out
    std::vector<std::string> issues;          // sentences for the user
    std::string notice;                       // what no scan looks at
    bool isPartial = false;                   // something could not be looked at
    bool reachedLimit = false;                // the walk stopped at the entry limit
    Date startedAt;
    Date finishedAt;
};

struct CleanupProgress {
    std::int64_t entries = 0;
    std::int64_t files = 0;
    std::int64_t bytes = 0;
    const std::string& path; // what is looked at
};

/// Walks one folder and reports what may be cleaned up. It changes nothing and enters no link.
class CleanupScanner {
  public:
    using Progress = std::function<void(const CleanupProgress&)>;

    /// All outlive the scanner.
    CleanupScanner(const CleanupDiscoveryMetadata& metadata,
                   const platform::Availability& availability,
                   std::vector<platform::Mount> mounts = platform::mounts(),
                   Clock clock = Date::now)
        : metadata_(metadata),
          availability_(availability),
          mounts_(std::move(mounts)),
          clock_(std::move(clock)) {}

    /// Memory is bounded by the limit of candidates. `progress` hears of every 512th entry.
    /// Throws `CleanupScanError` for a root that cannot be scanned, and `Cancelled`.
    CleanupReport scan(const CleanupScan& request, const Progress& progress = {},
                       const std::stop_token& stop = {}) const;

  private:
    const CleanupDiscoveryMetadata& metadata_;
    const platform::Availability& availability_;
    std::vector<platform::Mount> mounts_;
    Clock clock_;
};

} // namespace tovi
