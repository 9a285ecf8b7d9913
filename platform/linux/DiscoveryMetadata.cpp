#include "platform/DiscoveryMetadata.h"

namespace tovi::platform {
namespace {

// https://www.freedesktop.org/wiki/CommonExtendedAttributes/
constexpr std::string_view origin = "xdg.origin.url";
constexpr std::string_view referrer = "xdg.referrer.url";
constexpr std::size_t longestAddress = 65'536; // bytes

} // namespace

DiscoveryMetadata discoveryMetadata(const ExtendedAttributes& attributes) {
    DiscoveryMetadata result;
    for (const std::string_view name : {origin, referrer}) {
        if (auto address = attributes.read(name, longestAddress); address && !address->empty()) {
            result.whereFroms.push_back(std::move(*address));
        }
    }
    return result;
}

} // namespace tovi::platform
