#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tovi {

/// Why an item is proposed for cleanup.
enum class CleanupCategory {
    largeFiles,
    oldDownloads,
    oldScreenshots,
    installers,
    unusedApps,
    cachesAndLogs,
};

inline constexpr std::array allCleanupCategories{
    CleanupCategory::largeFiles, CleanupCategory::oldDownloads, CleanupCategory::oldScreenshots,
    CleanupCategory::installers, CleanupCategory::unusedApps,   CleanupCategory::cachesAndLogs};

/// The form in JSON, for instance "largeFiles".
std::string_view rawValue(CleanupCategory category);
std::optional<CleanupCategory> cleanupCategoryFromRawValue(std::string_view text);

/// For people.
std::string_view title(CleanupCategory category);
std::string_view reason(CleanupCategory category);

} // namespace tovi
