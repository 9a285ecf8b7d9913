#pragma once

#include "base/Date.h"
#include "base/FileDescriptor.h"

#include <cstdint>
#include <ctime>
#include <string>

namespace tovi::platform {

enum class FileType { regular, directory, symbolicLink, other };

/// What the file system says of one item, links not followed.
struct FileAttributes {
    FileType type = FileType::other;
    std::int64_t size = 0; // bytes
    Date createdAt;        // the modification date unless `hasBirthTime`
    Date modifiedAt;
    timespec modified{}; // `modifiedAt` to the nanosecond
    timespec changed{};  // the last change of content, name or rights
    std::uint64_t inode = 0;
    std::uint64_t device = 0;
    std::uint64_t linkCount = 1; // names that lead to the item
    bool hasBirthTime = false;   // as the file system keeps it
};

/// Throws `std::system_error` with the path.
FileAttributes attributesOf(const std::string& path);

/// Of the open item itself; `path` is for the error only.
FileAttributes attributesOf(const FileDescriptor& item, const std::string& path);

/// Of the item `name` in an open directory; `path` is for the error only.
FileAttributes attributesAt(const FileDescriptor& directory, const char* name,
                            const std::string& path);

} // namespace tovi::platform
