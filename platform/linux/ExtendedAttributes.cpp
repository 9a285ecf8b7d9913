#include "platform/ExtendedAttributes.h"

#include <algorithm>
#include <cerrno>
#include <climits>

#include <sys/xattr.h>

namespace tovi::platform {
namespace {

constexpr std::string_view prefix = "user.";

} // namespace

ExtendedAttributes::ExtendedAttributes(std::string path) : path_(std::move(path)) {
    // Most files have none or a few; the system bounds the list at 64 KiB.
    std::string list(256, '\0');
    ssize_t length = ::llistxattr(path_.c_str(), list.data(), list.size());
    if (length < 0 && errno == ERANGE) {
        list.resize(65'536);
        length = ::llistxattr(path_.c_str(), list.data(), list.size());
    }
    if (length <= 0) return;
    list.resize(static_cast<std::size_t>(length));
    for (std::size_t at = 0; at < list.size();) {
        const std::size_t end = std::min(list.find('\0', at), list.size());
        if (list.compare(at, prefix.size(), prefix) == 0) {
            names_.push_back(list.substr(at + prefix.size(), end - at - prefix.size()));
        }
        at = end + 1;
    }
}

// The calls of this family take no directory. Its link in /proc leads to the open one itself, but
// three times slower than a path.
ExtendedAttributes::ExtendedAttributes(const std::string& path, const FileDescriptor& directory)
    : ExtendedAttributes(path.size() < PATH_MAX
                             ? path
                             : "/proc/self/fd/" + std::to_string(directory.get()) +
                                   path.substr(path.rfind('/'))) {}

bool ExtendedAttributes::contains(std::string_view name) const {
    return std::find(names_.begin(), names_.end(), name) != names_.end();
}

std::optional<std::string> ExtendedAttributes::read(std::string_view name,
                                                    std::size_t limit) const {
    if (!contains(name)) return std::nullopt;
    const std::string fullName = std::string(prefix) + std::string(name);
    const ssize_t length = ::lgetxattr(path_.c_str(), fullName.c_str(), nullptr, 0);
    if (length < 0 || static_cast<std::size_t>(length) > limit) return std::nullopt;
    std::string value(static_cast<std::size_t>(length), '\0');
    const ssize_t got = ::lgetxattr(path_.c_str(), fullName.c_str(), value.data(), value.size());
    if (got != length) return std::nullopt; // it changed between the two calls
    return value;
}

} // namespace tovi::platform
