#include "platform/Availability.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tovi::platform {
namespace {

// Virtual files of Nextcloud and ownCloud: a one-byte file with a suffix of the client's, or, with
// newer clients, a sparse file under its own name that carries an attribute until it is downloaded.
constexpr std::array<std::string_view, 2> placeholderSuffixes{".nextcloud", ".owncloud"};
constexpr std::array<std::string_view, 2> placeholderAttributes{"nextcloud.hydrate_exec",
                                                                "owncloud.hydrate_exec"};

} // namespace

bool SystemAvailability::isAvailableLocally(const std::string& path,
                                            const ExtendedAttributes& attributes) const {
    return std::none_of(placeholderSuffixes.begin(), placeholderSuffixes.end(),
                        [&](std::string_view suffix) { return path.ends_with(suffix); }) &&
           std::none_of(placeholderAttributes.begin(), placeholderAttributes.end(),
                        [&](std::string_view name) { return attributes.contains(name); });
}

} // namespace tovi::platform
