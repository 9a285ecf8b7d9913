#pragma once

#include "core/records/FileRecord.h"

#include <cstdint>
#include <map>
#include <vector>

namespace tovi {

enum class LibraryOrder { newest, oldest, name, largest, smallest, kind };

/// Sorts by `order`, ties newest first, then by path. Names are compared as people expect: without
/// regard to case, and numbers by their value.
void sortFiles(std::vector<FileRecord>& files, LibraryOrder order);

/// Some files in numbers. Folders are counted, but have no size.
struct LibrarySummary {
    struct Count {
        std::int64_t files = 0;
        std::int64_t bytes = 0;

        friend bool operator==(const Count&, const Count&) = default;
    };
    Count total;
    std::map<FileKind, Count> byKind;

    void add(FileKind kind, std::int64_t files, std::int64_t bytes);

    friend bool operator==(const LibrarySummary&, const LibrarySummary&) = default;
};

LibrarySummary summarize(const std::vector<FileRecord>& files);

/// The newest `count` downloads among `files`, by `effectiveDate`, ties by path. Downloads are the
/// files that `DownloadGroups` shows.
std::vector<FileRecord> latestDownloads(const std::vector<FileRecord>& files, std::size_t count);

} // namespace tovi
