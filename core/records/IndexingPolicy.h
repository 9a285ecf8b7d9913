#pragma once

#include <string_view>

namespace tovi {

/// The rules that keep the index private and small.
struct IndexingPolicy {
    /// Directory names that are never entered, compared exactly.
    static bool isExcludedName(std::string_view name);

    /// Names that look like credentials; such files are never recorded.
    static bool isSensitiveName(std::string_view name);

    /// Whether a path lies in a tree that is the system's and holds no file of a user's.
    static bool isSystemLocation(std::string_view path);

    /// Whether a folder may be connected. `path` is absolute, links resolved.
    static bool acceptsRoot(std::string_view path);
};

} // namespace tovi
