#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

namespace tovi {

/// SHA-256 of the open file from where it stands to its end, as 64 lower-case hexadecimal digits;
/// nothing if that is more than `limit` bytes. `path` is for the error only. Throws
/// `std::system_error` and `Cancelled`.
std::optional<std::string> digestOf(const FileDescriptor& file, std::uint64_t limit,
                                    const std::string& path, const std::stop_token& stop);

} // namespace tovi
