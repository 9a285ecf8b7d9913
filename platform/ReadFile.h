#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <string>

namespace tovi::platform {

/// The bytes of an open file from its start, at most `maximum` of them. Reads instead of mapping:
/// a file that shrinks meanwhile must not end the program. Throws `std::system_error`, for which
/// `path` is the name.
std::string readFile(const FileDescriptor& file, std::size_t maximum, const std::string& path);

} // namespace tovi::platform
