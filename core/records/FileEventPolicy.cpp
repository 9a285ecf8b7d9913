#include "core/records/FileEventPolicy.h"

#include "base/Text.h"
#include "core/records/IndexingPolicy.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace tovi {
namespace {

/// Events were lost, or the volume is another one.
constexpr std::uint32_t anythingMayHaveChanged =
    fileEvent::userDropped | fileEvent::kernelDropped | fileEvent::identifiersWrapped |
    fileEvent::rootChanged | fileEvent::mounted | fileEvent::unmounted;

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> shortNames{
    {{"/private/tmp", "/tmp"}, {"/private/var", "/var"}, {"/private/etc", "/etc"}}};

bool concernsIndex(std::string_view relative) {
    while (!relative.empty()) {
        const std::size_t slash = relative.find('/');
        const bool isLast = slash == std::string_view::npos;
        const std::string_view component = relative.substr(0, slash);
        if (isLast && component == ".gitignore") return true;
        if (component.starts_with('.') || IndexingPolicy::isExcludedName(component) ||
            IndexingPolicy::isSensitiveName(component)) {
            return false;
        }
        relative.remove_prefix(isLast ? relative.size() : slash + 1);
    }
    return true;
}

} // namespace

std::string FileEventPolicy::normalize(std::string_view path) {
    std::string result;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        at = end + 1;
        if (component.empty() || component == ".") continue;
        if (component == "..") {
            result.resize(result.empty() ? 0 : result.rfind('/'));
        } else {
            result += '/';
            result += component;
        }
    }
    if (result.empty()) return "/";
    for (const auto& [longName, shortName] : shortNames) {
        if (!isSameOrBelow(result, longName)) continue;
        return result.replace(0, longName.size(), shortName);
    }
    return result;
}

bool FileEventPolicy::requiresRescan(std::string_view path, std::uint32_t flags,
                                     std::span<const std::string> watchedPaths) {
    if ((flags & anythingMayHaveChanged) != 0) return true;
    if (flags == fileEvent::historyDone) return false;

    const std::string changed = normalize(path);
    std::optional<std::string> root;
    for (const std::string& watched : watchedPaths) {
        std::string candidate = normalize(watched);
        if (!isSameOrBelow(changed, candidate)) continue;
        if (!root || candidate.size() > root->size()) root = std::move(candidate);
    }
    if (!root) return false;
    const std::size_t start = *root == "/" ? 1 : root->size() + 1;
    return concernsIndex(std::string_view(changed).substr(std::min(start, changed.size())));
}

} // namespace tovi
