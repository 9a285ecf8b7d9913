#pragma once

#include "platform/Mounts.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tovi {

/// Decides which mounted file systems a scan enters: none when the whole system is scanned, else
/// all with files of users, and no part of a file system twice.
class MountRules {
  public:
    /// `root` is the folder of the scan, its links resolved.
    MountRules(const std::string& root, const std::vector<platform::Mount>& mounts);

    /// Why the directory that a walk has come to is not entered; nothing if it may be.
    std::optional<std::string> reasonToSkip(const std::string& directory);

  private:
    struct Part {
        std::uint64_t device;
        std::string path;
    };

    bool isWholeSystem_;
    std::unordered_map<std::string, platform::Mount> mounts_;
    std::vector<Part> entered_;
};

} // namespace tovi
