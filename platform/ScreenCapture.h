#pragma once

#include "base/FileDescriptor.h"

#include <string_view>

namespace tovi::platform {

/// Whether the screenshot programs of this system name their pictures so.
bool isScreenCaptureName(std::string_view name);

/// Whether an open picture names such a program as the software that made it (the text chunks of
/// PNG, https://www.w3.org/TR/png-3/#11textinfo). Reads its first 16 KiB at the most; what cannot
/// be read says no.
bool isTaggedAsScreenCapture(const FileDescriptor& picture);

} // namespace tovi::platform
