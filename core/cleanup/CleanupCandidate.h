#pragma once

#include "core/cleanup/CleanupCategory.h"
#include "core/cleanup/CleanupFileIdentity.h"

#include <optional>
#include <string>

namespace tovi {

/// One item proposed for cleanup.
struct CleanupCandidate {
    std::string path; // absolute
    std::string name;
    std::int64_t size = 0; // bytes; of an application, what was measured of its bundle
    Date modifiedAt;
    CleanupCategory category = CleanupCategory::largeFiles;
    CleanupFileIdentity identity;
    std::optional<Date> lastUsedAt;              // of applications only
    std::optional<std::string> reviewOnlyReason; // why it is shown but not moved

    bool isWholeMeasured = true; // false where `size` is only of a part

    bool canMoveToTrash() const { return !reviewOnlyReason; }
};

} // namespace tovi
