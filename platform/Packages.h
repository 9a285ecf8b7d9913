#pragma once

#include <string_view>

namespace tovi::platform {

/// Whether a directory of this name is shown to users as one item, such as an application bundle.
bool isPackage(std::string_view directoryName);

} // namespace tovi::platform
