#pragma once

#include "platform/FileAttributes.h"

#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace tovi::platform {

/// A name in a directory that is held open, whether something has that name or not. The directory
/// is reached from "/" one component at a time without following a link, and every operation is
/// taken from it, so no later change to the tree above leads anywhere else.
class DirectoryEntry {
  public:
    /// `path` is absolute, without ".", ".." or doubled slashes, and not "/" itself. Throws
    /// `std::system_error`; a link among the directories gives ENOTDIR.
    static DirectoryEntry open(const std::string& path);

    /// `directory` is the open directory that `path` ends in.
    DirectoryEntry(std::shared_ptr<const FileDescriptor> directory, std::string path);

    const std::string& path() const { return path_; }
    const char* name() const { return path_.c_str() + nameOffset_; }
    std::string directoryPath() const;
    const FileDescriptor& directory() const { return *directory_; }

    /// Another name in the same directory.
    DirectoryEntry sibling(const std::string& name) const;

    /// Of what has the name, links not followed; nothing if it is free. Throws
    /// `std::system_error`.
    std::optional<FileAttributes> attributes() const;

    /// Opens a regular file for reading. Throws `std::system_error`; a link gives ELOOP, anything
    /// else that is not a regular file EINVAL.
    FileDescriptor openRegularFile() const;

    /// Writes the directory itself to the disk; the error if that failed.
    std::error_code syncDirectory() const;

  private:
    std::shared_ptr<const FileDescriptor> directory_;
    std::string path_;
    std::size_t nameOffset_;
};

/// Opens a directory to work below it (O_PATH), reached as an entry's directory is.
FileDescriptor openDirectory(const std::string& path);

/// The number of the file system that holds an open item. It stays the same across restarts where
/// the file system has an identifier of its own (statfs f_fsid), else it is the device number.
std::uint64_t volumeNumber(const FileDescriptor& item, const std::string& path);

} // namespace tovi::platform
