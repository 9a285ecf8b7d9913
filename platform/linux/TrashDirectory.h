#pragma once

#include "base/Date.h"
#include "platform/DirectoryEntry.h"

#include <memory>
#include <optional>
#include <string>

namespace tovi::platform {

struct OpenDirectory {
    std::shared_ptr<const FileDescriptor> descriptor;
    std::string path;
};

/// The directory furthest up from the item that is still on its mount and file system.
OpenDirectory topDirectoryOf(const DirectoryEntry& item);

/// One trash of the user, its directories held open; they are no links and the user's own.
class TrashDirectory {
  public:
    /// The home trash, made if it is missing; nothing if it is not on `device`. Throws
    /// `std::system_error` or `TrashError`, as the next two do.
    static std::optional<TrashDirectory> ofHome(const std::string& dataHome, std::uint64_t device);

    /// `.Trash/UID`, if an administrator made a safe `.Trash`.
    static std::optional<TrashDirectory> sharedAt(const OpenDirectory& top);

    /// `.Trash-UID`, made if it is missing.
    static std::optional<TrashDirectory> ownAt(const OpenDirectory& top);

    /// The trash that an item lies in; nothing if the path is not that of a trashed item or the
    /// trash cannot be opened.
    static std::optional<TrashDirectory> containing(const std::string& trashedPath);

    DirectoryEntry item(const std::string& name) const;
    DirectoryEntry note(const std::string& itemName) const;

    /// The most bytes a note's name may have.
    std::size_t longestName() const;

    /// Makes the note, on the disk when this returns; false if its name is taken. Throws
    /// `std::system_error` and leaves none behind.
    bool writeNote(const DirectoryEntry& note, const std::string& originalPath, Date now) const;

    /// Adds a trashed directory to the size cache. What cannot be measured or written stays out
    /// of it, which the cache's readers expect.
    void recordDirectorySize(const std::string& name) const;

    /// As `Trash::forget`.
    void forget(const std::string& name, const std::string& originalPath) const;

  private:
    TrashDirectory(OpenDirectory base, std::string topPath, bool create);

    void rewriteDirectorySizes(const std::string& name, const std::string& newLine) const;

    OpenDirectory base_;
    std::string topPath_; // empty for the home trash, whose notes hold absolute paths
    std::shared_ptr<const FileDescriptor> items_;
    std::shared_ptr<const FileDescriptor> notes_;
};

} // namespace tovi::platform
