#pragma once

#include "platform/DirectoryEntry.h"

#include <optional>
#include <string>
#include <string_view>

namespace tovi::platform {

/// Replaces a file of the program's own by `bytes`, readable by its owner only (mode 0600). After
/// a crash or a power cut the old or the new bytes are there, whole: a file beside it is written
/// and synced, renamed over it, and the directory synced. Throws `std::system_error`; the old file
/// is then untouched unless only the directory's sync failed.
void replaceFile(const DirectoryEntry& file, std::string_view bytes);

/// Removes what replacements of this file, or of files whose names begin with its name and a dot,
/// left beside it when the process ended. Only for the one process that may replace them.
void removeUnfinishedReplacements(const DirectoryEntry& file);

/// The whole file, or nothing if there is none. Throws `std::system_error`, with EFBIG for a file
/// longer than `limit` bytes.
std::optional<std::string> readFile(const DirectoryEntry& file, std::size_t limit);

/// Writes all of `bytes`; throws `std::system_error`. `path` is for the error only.
void writeAll(const FileDescriptor& file, std::string_view bytes, const std::string& path);

} // namespace tovi::platform
