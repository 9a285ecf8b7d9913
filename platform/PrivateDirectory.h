#pragma once

#include <string>

namespace tovi::platform {

/// Makes a directory of the program's own, and those above it that are missing, readable by its
/// owner only (mode 0700). One that is there is left as it is. Throws `std::system_error`.
void makePrivateDirectory(const std::string& path);

} // namespace tovi::platform
