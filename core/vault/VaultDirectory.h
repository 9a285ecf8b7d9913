#pragma once

#include "base/FileDescriptor.h"
#include "core/vault/FileCalls.h"

#include <string>

namespace tovi::vault {

/// The directory of a vault, open and locked against every other operation, of this process or
/// another, until it is destroyed.
class VaultDirectory {
  public:
    enum class IfMissing { fail, create };

    /// Never waits. Throws `VaultError`: `unsafePath` where the directory is not the user's own, or
    /// it or the lock file is a link or of another sort; `busy` where another holds the lock; `io`.
    VaultDirectory(FileCalls& calls, const std::string& path, IfMissing ifMissing);

    const FileDescriptor& descriptor() const { return directory_; }

  private:
    FileDescriptor directory_;
    FileDescriptor lock_;
};

} // namespace tovi::vault
