#pragma once

#include "base/FileDescriptor.h"

#include <cstdint>
#include <string>

namespace tovi {

/// The smallest thumbnail of at least `pixels` that the desktop keeps below `folder` of the file
/// `path`, whose modification date is `modified` in whole seconds; not open if there is none or it
/// belongs to another state of the file.
/// https://specifications.freedesktop.org/thumbnail-spec/latest/
FileDescriptor openSharedThumbnail(const std::string& folder, const std::string& path,
                                   std::int64_t modified, int pixels);

/// `path` as a URI, escaped as the desktop's programs do.
std::string fileUri(const std::string& path);

/// What the thumbnail of the file at `uri` is called in the folder of its size.
std::string sharedThumbnailName(const std::string& uri);

} // namespace tovi
