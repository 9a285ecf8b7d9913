#include "platform/StandardLocations.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

#include <pwd.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

std::string withoutFinalSlash(std::string path) {
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

std::optional<std::string> absoluteFromEnvironment(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || *value != '/') return std::nullopt;
    return withoutFinalSlash(value);
}

std::string baseDirectory(const char* name, const char* below) {
    if (auto value = absoluteFromEnvironment(name)) return *value;
    return withoutFinalSlash(homeDirectory()) + "/" + below;
}

} // namespace

std::string homeDirectory() {
    if (auto home = absoluteFromEnvironment("HOME")) return *home;
    const passwd* user = ::getpwuid(::geteuid());
    return user != nullptr && user->pw_dir != nullptr ? withoutFinalSlash(user->pw_dir) : "/";
}

std::string dataHome() {
    return baseDirectory("XDG_DATA_HOME", ".local/share");
}

std::string cacheHome() {
    return baseDirectory("XDG_CACHE_HOME", ".cache");
}

std::optional<std::string> downloadsDirectory() {
    // One shell assignment a line: XDG_DOWNLOAD_DIR="$HOME/Downloads" or an absolute path, with
    // backslash escapes.
    std::ifstream file(baseDirectory("XDG_CONFIG_HOME", ".config") + "/user-dirs.dirs");
    constexpr std::string_view key = "XDG_DOWNLOAD_DIR=\"";
    for (std::string line; std::getline(file, line);) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.starts_with(key)) continue;
        std::string value;
        for (std::size_t at = key.size(); at < line.size() && line[at] != '"'; ++at) {
            if (line[at] == '\\' && at + 1 < line.size()) ++at;
            value += line[at];
        }
        constexpr std::string_view homePrefix = "$HOME";
        if (value.starts_with(homePrefix)) value.replace(0, homePrefix.size(), homeDirectory());
        value = withoutFinalSlash(value);
        // A value equal to the home folder means that the user has no such folder.
        if (!value.starts_with('/') || value == homeDirectory()) return std::nullopt;
        std::error_code failure;
        return std::filesystem::weakly_canonical(value, failure).string();
    }
    return std::nullopt;
}

} // namespace tovi::platform
