#pragma once

#include "platform/DirectoryEntry.h"

#include <optional>
#include <string>
#include <vector>

namespace tovi::platform {

/// Finds a file again after it was renamed within its file system.
class Bookmarks {
  public:
    struct Location {
        std::string path;
        bool stale; // the file is no longer where the bookmark was made
    };

    virtual ~Bookmarks() = default;

    /// Bytes that only `locate` understands. Throws `std::system_error`.
    virtual std::string create(const DirectoryEntry& item) = 0;

    /// Looks for the very file, whatever its content is now: at the bookmark's own path, at
    /// `likelyPath`, in the directories of both and, where the system allows it, everywhere on its
    /// file system. A file that had several names is looked for at the two paths only. Nothing if
    /// it is not found or the bookmark cannot be read.
    virtual std::optional<Location> locate(const std::string& bookmark,
                                           const std::string& likelyPath) = 0;
};

/// Recognises a file by its file system, its inode and its birth time. Looking everywhere needs
/// CAP_DAC_READ_SEARCH and a file system with file handles.
class SystemBookmarks final : public Bookmarks {
  public:
    std::string create(const DirectoryEntry& item) override;
    std::optional<Location> locate(const std::string& bookmark,
                                   const std::string& likelyPath) override;
};

} // namespace tovi::platform
