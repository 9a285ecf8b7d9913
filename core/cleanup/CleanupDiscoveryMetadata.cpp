#include "core/cleanup/CleanupDiscoveryMetadata.h"

#include "base/Text.h"
#include "core/files/BinaryPropertyList.h"
#include "core/files/XmlPropertyList.h"
#include "platform/ScreenCapture.h"

#include <span>

#include <fcntl.h>

namespace tovi {
namespace {

std::optional<PropertyList> valueOf(const platform::ExtendedAttributes& attributes,
                                    std::string_view name) {
    const auto bytes = attributes.read(name, maximumPropertyListBytes);
    if (!bytes) return std::nullopt;
    return readPropertyList(std::as_bytes(std::span(*bytes)));
}

} // namespace

bool CleanupDiscoveryMetadata::isScreenCapture(const std::string& path,
                                               const FileDescriptor& directory) {
    const std::string name(lastPathComponent(path));
    if (platform::isScreenCaptureName(name)) return true;
    const auto flag = valueOf(platform::ExtendedAttributes(path, directory),
                              "com.apple.metadata:kMDItemIsScreenCapture");
    if (flag) {
        const bool* isSet = flag->as<bool>();
        const std::int64_t* number = flag->as<std::int64_t>();
        if ((isSet != nullptr && *isSet) || (number != nullptr && *number == 1)) return true;
    }
    if (lowercasedExtension(name) != "png") return false;
    const FileDescriptor picture(
        ::openat(directory.get(), name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    return picture.isOpen() && platform::isTaggedAsScreenCapture(picture);
}

std::optional<Date>
CleanupDiscoveryMetadata::lastUsed(const std::string& path,
                                   const platform::ExtendedAttributes& attributes) const {
    if (const auto value = valueOf(attributes, "com.apple.metadata:kMDItemLastUsedDate")) {
        if (const Date* date = value->as<Date>()) return *date;
    }
    return recentlyUsed_.lastUsed(path);
}

} // namespace tovi
