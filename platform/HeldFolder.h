#pragma once

#include "base/FileDescriptor.h"

#include <optional>
#include <string>

namespace tovi::platform {

/// A directory kept open: its inode number is given to no other, and it is found wherever it is
/// moved. May be used from any thread.
class HeldFolder {
  public:
    /// Holds a directory, unless that would keep a disk from being unmounted: only those on the
    /// mounts of "/" and of the home folder are held. Nothing also where it cannot be opened.
    static std::optional<HeldFolder> hold(const std::string& path);

    /// Where it lies now; nothing once it was deleted.
    std::optional<std::string> path() const;

    /// Whether `path` leads to it.
    bool isAt(const std::string& path) const;

  private:
    explicit HeldFolder(FileDescriptor directory) : directory_(std::move(directory)) {}

    FileDescriptor directory_;
};

} // namespace tovi::platform
