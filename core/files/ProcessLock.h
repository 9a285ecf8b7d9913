#pragma once

#include "base/FileDescriptor.h"

#include <optional>
#include <string>

namespace tovi {

/// Held by the one process that may write something; ends with the object or the process.
class ProcessLock {
  public:
    /// Takes the lock on the file at `path`, which is made if it is missing (mode 0600); nothing
    /// if another holder has it. Never waits. Throws `std::system_error`.
    static std::optional<ProcessLock> tryTake(const std::string& path);

  private:
    explicit ProcessLock(FileDescriptor file) : file_(std::move(file)) {}

    FileDescriptor file_;
};

} // namespace tovi
