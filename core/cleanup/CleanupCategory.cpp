#include "core/cleanup/CleanupCategory.h"

namespace tovi {
namespace {

struct Texts {
    std::string_view rawValue;
    std::string_view title;
    std::string_view reason;
};

// In the order of the enumeration.
constexpr std::array<Texts, allCleanupCategories.size()> texts{{
    {"largeFiles", "Large files", "At least 100 MB. Size does not mean unused."},
    {"oldDownloads", "Old Downloads", "In Downloads, last modified at least 90 days ago."},
    {"oldScreenshots", "Old screenshots", "Screenshot, last modified at least 30 days ago."},
    {"installers", "Installers", "DMG or PKG, last modified at least 30 days ago."},
    {"unusedApps", "Unused apps",
     "Not opened in 90 days, according to your Mac. Check that you no longer need it."},
    {"cachesAndLogs", "Caches & logs",
     "User cache or log, last modified at least 7 days ago. Apps may rebuild caches; logs retain "
     "diagnostic history."},
}};

const Texts& textsOf(CleanupCategory category) {
    return texts.at(static_cast<std::size_t>(category));
}

} // namespace

std::string_view rawValue(CleanupCategory category) {
    return textsOf(category).rawValue;
}

std::optional<CleanupCategory> cleanupCategoryFromRawValue(std::string_view text) {
    for (const CleanupCategory category : allCleanupCategories) {
        if (rawValue(category) == text) return category;
    }
    return std::nullopt;
}

std::string_view title(CleanupCategory category) {
    return textsOf(category).title;
}

std::string_view reason(CleanupCategory category) {
    return textsOf(category).reason;
}

} // namespace tovi
