#pragma once

#include "base/Date.h"
#include "platform/DirectoryEntry.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <system_error>

namespace tovi::platform {

/// Why an item could not be moved to the Trash; `what()` is the whole sentence for the user.
class TrashError : public std::runtime_error {
    using runtime_error::runtime_error;
};

struct TrashedItem {
    std::string path;          // where the item is now
    std::error_code syncError; // set if the move could not be written to the disk
};

/// The desktop's Trash. It never deletes, copies or replaces an item.
class Trash {
  public:
    /// Hears every place that is about to be tried, before anything there is made.
    using Announce = std::function<void(const std::string& destination)>;

    virtual ~Trash() = default;

    /// Throws `TrashError`, and what `announce` throws, with the item where it was.
    virtual TrashedItem move(const DirectoryEntry& item, const Announce& announce) = 0;

    /// Removes the Trash's note about an item that is not at `trashedPath`, because it was
    /// restored or never came. Does nothing if something is there, or if the note is written and
    /// names another original than `originalPath`.
    virtual void forget(const std::string& trashedPath, const std::string& originalPath) = 0;
};

/// The Trash as freedesktop.org defines it (version 1.0): the home trash for its own file
/// system, else `.Trash/UID` or `.Trash-UID` at the top of the item's file system.
/// https://specifications.freedesktop.org/trash-spec/1.0/
class SystemTrash : public Trash {
  public:
    /// `dataHome` is the folder that holds the home trash.
    SystemTrash(std::string dataHome, Clock clock);

    TrashedItem move(const DirectoryEntry& item, const Announce& announce) override;
    void forget(const std::string& trashedPath, const std::string& originalPath) override;

  private:
    std::string dataHome_;
    Clock clock_;
};

} // namespace tovi::platform
