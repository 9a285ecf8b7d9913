#include "core/records/IndexingPolicy.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace tovi {
namespace {

constexpr std::array<std::string_view, 24> excludedNames{
    ".git",  ".svn",   ".hg",    "node_modules", "vendor",  "Pods",   "DerivedData", ".build",
    "build", "dist",   "Caches", "Cache",        "Library", "System", ".Trash",      ".ssh",
    ".aws",  ".azure", ".gnupg", ".kube",        ".config", ".npm",   ".cache",      "keychains"};

constexpr std::array<std::string_view, 8> sensitiveExtensions{
    "pem", "key", "p8", "p12", "pfx", "keychain", "keychain-db", "mobileprovision"};

constexpr std::array<std::string_view, 3> protectedPaths{"/", "/private", "/var"};

constexpr std::array<std::string_view, 14> protectedTrees{
    "/System", "/Library", "/private/etc", "/private/var/db", "/dev", "/bin", "/sbin",
    "/usr",    "/var/db",  "/etc",         "/proc",           "/sys", "/run", "/boot"};

// Desktops mount the user's own drives here, inside a tree that is otherwise the system's.
constexpr std::string_view userMounts = "/run/media";

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

bool IndexingPolicy::isExcludedName(std::string_view name) {
    return contains(excludedNames, name);
}

bool IndexingPolicy::isSensitiveName(std::string_view name) {
    const std::string lower = lowercased(name);
    if (lower == ".env" || lower.starts_with(".env.")) return true;
    if (lower.find("credential") != std::string::npos) return true;
    if (lower.find("secret") != std::string::npos) return true;
    if (lower == "id_rsa" || lower == "id_ed25519") return true;
    return contains(sensitiveExtensions, lowercasedExtension(lower));
}

bool IndexingPolicy::isSystemLocation(std::string_view path) {
    if (path != userMounts && isSameOrBelow(path, userMounts)) return false;
    return std::any_of(protectedTrees.begin(), protectedTrees.end(),
                       [&](std::string_view tree) { return isSameOrBelow(path, tree); });
}

bool IndexingPolicy::acceptsRoot(std::string_view path) {
    if (contains(protectedPaths, path) || isSystemLocation(path)) return false;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        at = end + 1;
        if (component.empty()) continue;
        if (component.front() == '.' || isExcludedName(component) || isSensitiveName(component)) {
            return false;
        }
    }
    return true;
}

} // namespace tovi
