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

    /// Of the item `name` in an open directory, which must stay open while this is read.
    ExtendedAttributes(const FileDescriptor& directory, std::string_view name);

    bool contains(std::string_view name) const;

    /// The value, or nothing if it is missing, unreadable or longer than `limit` bytes.
    std::optional<std::string> read(std::string_view name, std::size_t limit) const;

  private:
    std::string path_;
    std::vector<std::string> names_;
};

} // namespace tovi::platform
