#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tovi {

/// Whether one entry of the user's skip list matches an item. An entry that starts with "/" is
/// an absolute path and takes everything below it; any other is a glob (fnmatch(3)) for the
/// item's name or for its path relative to the root.
bool matchesExclusion(const std::string& pattern, const std::string& path,
                      const std::string& relative);

/// The rules of one ".gitignore", for items below its folder. Negations are dropped, so what is
/// ignored stays ignored.
class IgnoreRules {
  public:
    /// Text that is not UTF-8 gives no rules.
    static IgnoreRules parse(std::string_view text);

    bool isEmpty() const;

    /// `relative` is the item's path below the rules' folder. The folders on the way to it must
    /// have been tested before and not matched, as a walk does.
    bool matches(const std::string& relative) const;

  private:
    // Names and paths without wildcards are looked up; a file of any length stays cheap.
    std::unordered_set<std::string> names_;
    std::unordered_set<std::string> paths_;
    std::vector<std::string> nameGlobs_;
    std::vector<std::string> pathGlobs_;
};

} // namespace tovi
