#include "core/files/AuthorizedFolders.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace tovi {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 8> protectedPrefixes{
    "/System/",         "/Library/",          "/usr/",         "/bin/", "/sbin/",
    "/private/var/db/", "/private/var/root/", "/Applications/"};

fs::path standardized(const std::string& path) {
    fs::path result = fs::path(path).lexically_normal();
    return result.has_filename() ? result : result.parent_path();
}

} // namespace

std::optional<std::string> resolvedFolders(const std::string& path) {
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
    const fs::path item = standardized(path);
    if (item == "/") return item.string();
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(item.parent_path(), error);
    if (error) return std::nullopt;
    return (folder / item.filename()).string();
}

std::optional<std::string> canonicalPath(const std::string& path) {
    if (!path.starts_with('/') || path.find('\0') != std::string::npos) return std::nullopt;
    std::error_code error;
    const fs::path resolved = fs::weakly_canonical(standardized(path), error);
    if (error) return std::nullopt;
    return resolved.string();
}

AuthorizedFolders::AuthorizedFolders(const std::vector<std::string>& roots) {
    for (const std::string& root : roots) {
        if (auto resolved = canonicalPath(root)) roots_.push_back(std::move(*resolved));
    }
}

bool AuthorizedFolders::contains(const std::string& resolved) const {
    return std::any_of(roots_.begin(), roots_.end(),
                       [&](const std::string& root) { return isSameOrBelow(resolved, root); });
}

bool isProtectedPath(const std::string& path) {
    if (std::any_of(protectedPrefixes.begin(), protectedPrefixes.end(),
                    [&](std::string_view prefix) { return path.starts_with(prefix); })) {
        return true;
    }
    const fs::path components(path);
    return std::any_of(components.begin(), components.end(), [](const fs::path& component) {
        return component == "Library" || component.native().starts_with('.');
    });
}

} // namespace tovi
