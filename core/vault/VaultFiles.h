#pragma once

#include "base/FileDescriptor.h"
#include "core/vault/FileCalls.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sys/stat.h>

namespace tovi::vault {

/// Reads until `bytes` is full or the file ends; returns how many. Throws `VaultError` (`io`).
std::size_t readFully(FileCalls& calls, const FileDescriptor& file, std::span<std::byte> bytes);

/// Throws `VaultError` (`io`).
void writeFully(FileCalls& calls, const FileDescriptor& file, std::span<const std::byte> bytes);

/// Flushes a file or a directory to stable storage. Throws `VaultError` (`io`).
void sync(FileCalls& calls, const FileDescriptor& file);

/// Opens a directory without following a final link. Throws `VaultError`: `unsafePath` where it is
/// a link or no directory, else `io`.
FileDescriptor openDirectory(FileCalls& calls, const std::string& path);

/// The names in an open directory but "." and "..". Throws `VaultError` (`io`).
std::vector<std::string> namesIn(FileCalls& calls, const FileDescriptor& directory);

/// Whether `path`, its links resolved, is `directory` or lies inside it, however it is reached.
/// What does not exist is judged by what exists above it.
bool isInside(const std::string& path, const std::string& directory);

/// A file under a random temporary name that is removed at the end unless it is kept.
class TemporaryFile {
  public:
    /// Creates it for the user alone in an open directory, which must outlive it. Throws
    /// `VaultError` (`io`).
    TemporaryFile(FileCalls& calls, const FileDescriptor& directory, std::string_view prefix);
    TemporaryFile(TemporaryFile&& other) noexcept;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile();

    const FileDescriptor& file() const { return file_; }
    /// Closes it; what remains to be done needs the name only.
    void close() { file_.reset(); }

    /// Gives it its name, never replacing anything, and returns 0; an errno value where that fails,
    /// EEXIST where the name is taken.
    [[nodiscard]] int publish(const std::string& name);
    /// Gives it its name in place of the file that has it, and keeps it.
    [[nodiscard]] int replace(const std::string& name);
    void keep() { name_.clear(); }

  private:
    FileCalls& calls_;
    const FileDescriptor& directory_;
    std::string name_; // empty once kept
    FileDescriptor file_;
    struct stat created_ {};
};

} // namespace tovi::vault
