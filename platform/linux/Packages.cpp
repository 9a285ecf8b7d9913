#include "platform/Packages.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string>

namespace tovi::platform {
namespace {

// Folders that other systems and programs show as one document or program; they travel on shared
// and external disks.
constexpr std::array<std::string_view, 22> packageExtensions{
    "app",    "bundle",        "framework",    "plugin",     "kext",          "xpc",
    "appex",  "prefpane",      "qlgenerator",  "mdimporter", "pkg",           "mpkg",
    "rtfd",   "photoslibrary", "musiclibrary", "tvlibrary",  "imovielibrary", "fcpbundle",
    "logicx", "band",          "xcodeproj",    "xcworkspace"};

} // namespace

bool isPackage(std::string_view directoryName) {
    if (directoryName.find('.') == std::string_view::npos) return false;
    const std::string extension = lowercasedExtension(directoryName);
    return std::find(packageExtensions.begin(), packageExtensions.end(), extension) !=
           packageExtensions.end();
}

} // namespace tovi::platform
