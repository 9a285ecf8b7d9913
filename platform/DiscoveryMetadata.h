#pragma once

#include "platform/ExtendedAttributes.h"

#include <string>
#include <vector>

namespace tovi::platform {

/// What the desktop itself recorded of a file, besides the attributes a browser wrote: on Linux
/// the freedesktop attributes for the origin of a download.
struct DiscoveryMetadata {
    std::vector<std::string> whereFroms; // the download's address first, then the referring page
};

DiscoveryMetadata discoveryMetadata(const ExtendedAttributes& attributes);

} // namespace tovi::platform
