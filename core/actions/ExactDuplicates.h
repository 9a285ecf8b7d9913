#pragma once

#include "core/records/FileRecord.h"
#include "platform/Availability.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <stop_token>
#include <vector>

namespace tovi {

/// Files of byte-for-byte equal content, at least two, ordered by path.
struct DuplicateGroup {
    std::vector<FileRecord> files; // `sha256` is the digest of the content read now
    /// Bytes that keeping one copy frees: names of one and the same file count once.
    std::int64_t reclaimableBytes = 0;
};

struct ExactDuplicates {
    std::vector<DuplicateGroup> groups; // ordered by the path of their first file
    std::size_t unreadable = 0;         // files left out because they could not be read
};

/// Hears how many of the files that share their size are done; from any thread, one at a time.
using DuplicateProgress = std::function<void(std::size_t done, std::size_t total)>;

/// Finds equal files among records, folders and applications aside, by size and then by SHA-256 of
/// what is on the disk now. Files that vanished, changed since they were indexed or are not local
/// are left out. No byte is read twice, and files that differ from all others of their size in
/// their first bytes are read no further; memory does not grow with the size of the files. Works
/// on all cores. Throws `Cancelled`.
ExactDuplicates exactDuplicates(std::span<const FileRecord> files,
                                const platform::Availability& availability,
                                const DuplicateProgress& progress = {},
                                const std::stop_token& stop = {});

/// What is left of a group found earlier: without files that are gone or were changed since, as far
/// as their size and date tell. Reads no file.
DuplicateGroup filesInPlace(const DuplicateGroup& group);

} // namespace tovi
