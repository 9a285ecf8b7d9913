#pragma once

#include "base/Date.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace tovi::platform {

/// When the user last opened files, as the desktop's list of them tells.
/// https://www.freedesktop.org/wiki/Specifications/desktop-bookmark-spec/
class RecentlyUsed {
  public:
    /// Reads the list in `dataHome`, the folder of the user's data. A missing list, a damaged one
    /// and one of more than 16 MiB know of nothing.
    explicit RecentlyUsed(const std::string& dataHome);

    std::optional<Date> lastUsed(const std::string& path) const;

  private:
    std::unordered_map<std::string, Date> dates_;
};

} // namespace tovi::platform
