#pragma once

#include "base/FileDescriptor.h"

#include <optional>
#include <string>

namespace tovi {

/// Starts the programs that files are opened with. It is a process of its own, forked before this
/// one gives up internet sockets, because what a process gives up its children never have, and a
/// browser needs them. It ends with this process.
class Launcher {
  public:
    /// Forks the process. To be called first in `main`, before any thread. Throws
    /// `std::system_error`.
    static Launcher start();

    /// Opens the file with the program its owner has chosen for its kind; an absolute path. Returns
    /// whether the launcher was reached, without waiting for the program.
    bool open(const std::string& path) const;

    /// Readable when there is a failure to take.
    int failures() const { return socket_.get(); }
    /// A file that no program would open, if one is waiting to be told of.
    std::optional<std::string> takeFailure() const;

  private:
    explicit Launcher(FileDescriptor socket) : socket_(std::move(socket)) {}

    FileDescriptor socket_;
};

} // namespace tovi
