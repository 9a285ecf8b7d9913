#include "core/indexing/ExclusionRules.h"

#include "base/Text.h"

#include <algorithm>

#include <fnmatch.h>

namespace tovi {
namespace {

bool matchesGlob(const std::string& glob, std::string_view text, int flags = 0) {
    return ::fnmatch(glob.c_str(), std::string(text).c_str(), flags) == 0;
}

std::string_view withoutOuterSlashes(std::string_view text) {
    while (text.starts_with('/'))
        text.remove_prefix(1);
    while (text.ends_with('/'))
        text.remove_suffix(1);
    return text;
}

} // namespace

bool matchesExclusion(const std::string& pattern, const std::string& path,
                      const std::string& relative) {
    if (pattern.empty()) return false;
    if (pattern.front() == '/') {
        if (path == pattern) return true;
        return path.starts_with(pattern.back() == '/' ? pattern : pattern + '/');
    }
    return matchesGlob(pattern, lastPathComponent(path)) || matchesGlob(pattern, relative);
}

IgnoreRules IgnoreRules::parse(std::string_view text) {
    IgnoreRules rules;
    if (!isValidUtf8(text)) return rules;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('#') || line.starts_with('!')) continue;
        const std::string pattern(withoutOuterSlashes(line));
        if (pattern.empty() || pattern.find('\0') != std::string::npos) continue;
        const bool isPath = pattern.find('/') != std::string::npos;
        const bool isGlob = pattern.find_first_of("*?[\\") != std::string::npos;
        if (isGlob) {
            (isPath ? rules.pathGlobs_ : rules.nameGlobs_).push_back(pattern);
        } else {
            (isPath ? rules.paths_ : rules.names_).insert(pattern);
        }
    }
    return rules;
}

bool IgnoreRules::isEmpty() const {
    return names_.empty() && paths_.empty() && nameGlobs_.empty() && pathGlobs_.empty();
}

bool IgnoreRules::matches(const std::string& relative) const {
    const std::string name(lastPathComponent(relative));
    if (names_.contains(name) || paths_.contains(relative)) return true;
    if (std::any_of(nameGlobs_.begin(), nameGlobs_.end(),
                    [&](const std::string& glob) { return matchesGlob(glob, name); })) {
        return true;
    }
    return std::any_of(pathGlobs_.begin(), pathGlobs_.end(), [&](const std::string& glob) {
        return matchesGlob(glob, relative, FNM_PATHNAME) || relative.starts_with(glob + '/');
    });
}

} // namespace tovi
