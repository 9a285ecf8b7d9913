#pragma once

#include "base/FileDescriptor.h"
#include "platform/Mounts.h"

#include <string>
#include <vector>

namespace tovi::platform {

/// Tells when what is mounted, as this process sees it, has changed.
class MountTable {
  public:
    MountTable();

    /// Polls as POLLPRI after every change; not open where there is no /proc.
    int descriptor() const { return changes_.get(); }

    /// What is mounted at, above or below an absolute path, in the order of mounting.
    static std::vector<Mount> around(const std::string& path);

  private:
    FileDescriptor changes_;
};

} // namespace tovi::platform
