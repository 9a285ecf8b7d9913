#include "core/indexing/DownloadMetadata.h"

#include "base/Text.h"
#include "core/files/BinaryPropertyList.h"
#include "core/records/DownloadOrigin.h"
#include "platform/DiscoveryMetadata.h"

#include <span>
#include <vector>

namespace tovi {
namespace {

/// The items of an attribute's list, or its only value.
PropertyList::Array valuesOf(const platform::ExtendedAttributes& extended, std::string_view name) {
    const auto bytes = extended.read(name, maximumPropertyListBytes);
    if (!bytes) return {};
    auto list = readBinaryPropertyList(std::as_bytes(std::span(*bytes)));
    if (!list) return {};
    if (auto* items = std::get_if<PropertyList::Array>(&list->value)) return std::move(*items);
    return {std::move(*list)};
}

std::vector<std::string> whereFroms(const platform::ExtendedAttributes& extended) {
    std::vector<std::string> addresses;
    for (const PropertyList& item : valuesOf(extended, "com.apple.metadata:kMDItemWhereFroms")) {
        if (const auto* text = item.as<std::string>()) addresses.push_back(*text);
    }
    if (addresses.empty()) addresses = platform::discoveryMetadata(extended).whereFroms;
    std::erase_if(addresses, [](const std::string& text) {
        return !isValidUtf8(text) || text.find('\0') != std::string::npos;
    });
    return addresses;
}

std::optional<Date> downloadedDate(const platform::ExtendedAttributes& extended) {
    for (const PropertyList& item :
         valuesOf(extended, "com.apple.metadata:kMDItemDownloadedDate")) {
        if (const auto* date = item.as<Date>()) return *date;
    }
    return std::nullopt;
}

bool isInDownloads(const std::string& path, const std::optional<std::string>& downloadsFolder) {
    if (path.find("/Downloads/") != std::string::npos) return true;
    return downloadsFolder && isSameOrBelow(path, *downloadsFolder);
}

} // namespace

DownloadMetadata DownloadMetadata::read(const std::string& path,
                                        const platform::ExtendedAttributes& extended,
                                        const platform::FileAttributes& attributes,
                                        bool isAvailableLocally,
                                        const std::optional<std::string>& downloadsFolder) {
    DownloadMetadata metadata;
    if (isAvailableLocally) {
        metadata.sourceURL = DownloadOrigin::preferredURL(whereFroms(extended));
        metadata.downloadedAt = downloadedDate(extended);
    }
    if (!metadata.downloadedAt && isInDownloads(path, downloadsFolder)) {
        metadata.downloadedAt = attributes.createdAt;
    }
    return metadata;
}

} // namespace tovi
