#pragma once

#include "platform/FileAttributes.h"

#include <memory>
#include <string>

namespace tovi::platform {

/// A file named by an open root directory and the path below it. Every step is taken from the
/// directory above without following a link, so nothing outside the root is ever reached, however
/// the tree changes, and paths longer than the system's limit still work.
class RootedFile {
  public:
    /// `path` is absolute; the root's own path is its first `rootLength` bytes, with the slash
    /// that ends it.
    RootedFile(std::shared_ptr<const FileDescriptor> root, std::string path,
               std::size_t rootLength);

    const std::string& path() const { return path_; }
    std::string_view name() const;

    /// Opens a regular file for reading. Throws `std::system_error`; what is not a regular file
    /// gives EINVAL, a link on the way ELOOP or ENOTDIR.
    FileDescriptor open() const;

    /// Throws `std::system_error`.
    FileAttributes attributes() const;

  private:
    FileDescriptor openParent() const;

    std::shared_ptr<const FileDescriptor> root_;
    std::string path_;
    std::size_t rootLength_;
};

} // namespace tovi::platform
