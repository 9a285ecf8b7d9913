#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tovi::platform {

/// The extended attributes of one file, their names read once. Names are those the system uses on
/// every platform; on Linux they live in the "user." namespace, which is added here.
class ExtendedAttributes {
  public:
    /// Links are not followed. What cannot be read counts as having none.
    explicit ExtendedAttributes(std::string path);

    /// Of an item of any depth: `directory` is the open directory that holds it, by which items
    /// are reached whose paths are too long. It must stay open while this is read.
    ExtendedAttributes(const std::string& path, const FileDescriptor& directory);

    bool contains(std::string_view name) const;

    /// The value, or nothing if it is missing, unreadable or longer than `limit` bytes.
    std::optional<std::string> read(std::string_view name, std::size_t limit) const;

  private:
    std::string path_;
    std::vector<std::string> names_;
};

} // namespace tovi::platform
