#pragma once

#include "base/Date.h"
#include "base/FileDescriptor.h"
#include "platform/ExtendedAttributes.h"
#include "platform/RecentlyUsed.h"

#include <optional>
#include <string>

namespace tovi {

/// What the system recorded of how a file was made and when an application was last used. Values
/// in attributes are property lists under the names that Spotlight uses.
class CleanupDiscoveryMetadata {
  public:
    /// `dataHome` is the folder of the user's data.
    explicit CleanupDiscoveryMetadata(const std::string& dataHome) : recentlyUsed_(dataHome) {}

    /// Whether a picture or film shows the screen: by its name, by its attribute or by the
    /// software that a PNG names. `directory` is the open one that holds it.
    static bool isScreenCapture(const std::string& path, const FileDescriptor& directory);

    /// From the attribute of the item, else from the desktop's list.
    std::optional<Date> lastUsed(const std::string& path,
                                 const platform::ExtendedAttributes& attributes) const;

  private:
    platform::RecentlyUsed recentlyUsed_;
};

} // namespace tovi
