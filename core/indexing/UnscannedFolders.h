#pragma once

#include <string>
#include <vector>

namespace tovi {

/// The folders that no scan enters wherever they lie: the one of the program's own data and the
/// Trash. Absolute, with the links resolved as those of a connected folder are.
std::vector<std::string> unscannedFolders(const std::string& dataDirectory);

} // namespace tovi
