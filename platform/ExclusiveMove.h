#pragma once

#include "platform/DirectoryEntry.h"

#include <system_error>

namespace tovi::platform {

/// Moves an item within its file system and never replaces anything.
class ExclusiveMove {
  public:
    virtual ~ExclusiveMove() = default;

    /// Throws `std::system_error` where nothing was moved: EEXIST where something has the new
    /// name, EXDEV for another file system, ENOTSUP where the file system offers no safe way.
    /// Returns the error if the move was made but could not be written to the disk.
    virtual std::error_code move(const DirectoryEntry& from, const DirectoryEntry& to) = 0;

    /// Ends a move that was cut off while the item had both names: takes the name `from` away if
    /// both still lead to one file. Throws `std::system_error`.
    virtual void finish(const DirectoryEntry& from, const DirectoryEntry& to) = 0;
};

/// Renames with RENAME_NOREPLACE; files on file systems without it are linked under the new name
/// before the old name is taken away.
class SystemExclusiveMove final : public ExclusiveMove {
  public:
    std::error_code move(const DirectoryEntry& from, const DirectoryEntry& to) override;
    void finish(const DirectoryEntry& from, const DirectoryEntry& to) override;
};

} // namespace tovi::platform
