#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tovi {

/// The path in its standard form, absolute, with the links of all its folders resolved but not
/// one at its end. What does not exist is kept as it stands. Nothing for a relative path or one
/// that cannot be resolved.
std::optional<std::string> resolvedFolders(const std::string& path);

/// The path in its standard form, absolute, with all links resolved, one at its end too.
std::optional<std::string> canonicalPath(const std::string& path);

/// The folders in which files may be changed.
class AuthorizedFolders {
  public:
    explicit AuthorizedFolders(const std::vector<std::string>& roots);

    /// Whether a path made by `resolvedFolders` is one of the folders or lies in one.
    bool contains(const std::string& resolved) const;

  private:
    std::vector<std::string> roots_;
};

/// Whether a path lies in the system, in applications, in a Library folder or in anything hidden.
bool isProtectedPath(const std::string& path);

} // namespace tovi
