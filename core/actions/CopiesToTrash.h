#pragma once

#include "core/records/FileRecord.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace tovi {

/// Which copy of a group of equal files stays.
enum class KeepRule { newest, oldest, shortestPath };

/// "newest", "oldest" or "shortest-path".
std::string_view rawValue(KeepRule rule);
std::optional<KeepRule> keepRule(std::string_view rawValue);

/// The place of the copy that stays; of several that are as good, the first.
std::size_t keptBy(KeepRule rule, const std::vector<FileRecord>& files);

/// Some of many groups of alike files: as many as one plan takes, the rest only counted.
class CopiesToTrash {
  public:
    /// A file that goes, while there is room for it; false once the plan is full.
    bool add(const FileRecord& file);
    /// The files that do not stay, and with them those that must be there, unchanged, when they go;
    /// nothing where none stays.
    void addGroup(const std::vector<FileRecord>& files, const std::vector<bool>& stays);

    const std::vector<FileRecord>& files() const { return files_; }
    const std::vector<FileRecord>& keepers() const { return keepers_; }
    /// Files for a further plan.
    std::size_t left() const { return left_; }

  private:
    std::vector<FileRecord> files_;
    std::vector<FileRecord> keepers_;
    std::size_t left_ = 0;
};

} // namespace tovi
