#pragma once

#include "base/FileDescriptor.h"

#include <string>
#include <vector>

namespace tovi::platform {

/// The mounted file systems as this process sees them.
class MountTable {
  public:
    MountTable();

    /// Polls as POLLPRI after every change; not open where there is no /proc.
    int descriptor() const { return changes_.get(); }

    /// What is mounted at, above or below an absolute path, in the order of mounting.
    std::vector<std::string> around(const std::string& path) const;

  private:
    FileDescriptor changes_;
};

} // namespace tovi::platform
