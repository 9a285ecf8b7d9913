#include "platform/ScreenCapture.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include <unistd.h>

namespace tovi::platform {
namespace {

// "#" is a digit, "*" at the end anything, and "~" a number.
constexpr std::array<std::string_view, 9> namePatterns{
    "Screenshot from ####-##-## ##-##-##*", // GNOME, Cinnamon
    "Screenshot at ####-##-## ##-##-##*",   // MATE
    "Screenshot_########_######*",          // KDE
    "Screenshot_########-######*",          // ksnip, telephones
    "Screenshot_####-##-##_##-##-##*",      // Xfce
    "####-##-##-######_~x~_scrot.*",        // scrot
    "########_##h##m##s_grim.*",            // grim
    "####-##-##-######_hyprshot.*",         // hyprshot
    "swappy-########-######.*",             // swappy
};

constexpr std::array<std::string_view, 7> programs{
    "gnome-screenshot", "spectacle", "flameshot", "xfce4-screenshooter",
    "mate-screenshot",  "ksnip",     "shutter"};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool matches(std::string_view name, std::string_view pattern) {
    std::size_t at = 0;
    for (const char expected : pattern) {
        if (expected == '*') return true;
        if (expected == '~') {
            const std::size_t start = at;
            while (at < name.size() && isDigit(name[at]))
                ++at;
            if (at == start) return false;
            continue;
        }
        if (at == name.size()) return false;
        if (expected == '#' ? !isDigit(name[at]) : name[at] != expected) return false;
        ++at;
    }
    return at == name.size();
}

std::uint32_t bigEndian(std::string_view bytes) {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(0, 4))
        value = value << 8 | static_cast<unsigned char>(byte);
    return value;
}

/// The value of a text chunk with the key "Software": it follows the key and a zero byte.
std::optional<std::string> softwareOf(std::string_view type, std::string_view content) {
    constexpr std::string_view key("Software\0", 9);
    if ((type != "tEXt" && type != "iTXt") || !content.starts_with(key)) return std::nullopt;
    return asciiLowercased(content.substr(key.size()));
}

} // namespace

bool isScreenCaptureName(std::string_view name) {
    return std::any_of(namePatterns.begin(), namePatterns.end(),
                       [&](std::string_view pattern) { return matches(name, pattern); });
}

bool isTaggedAsScreenCapture(const FileDescriptor& picture) {
    constexpr std::string_view signature("\x89PNG\r\n\x1a\n", 8);
    constexpr std::size_t frame = 12; // length and type before a chunk's content, checksum after
    std::array<char, 16'384> bytes{};
    const ssize_t got = ::pread(picture.get(), bytes.data(), bytes.size(), 0);
    std::string_view rest(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (!rest.starts_with(signature)) return false;
    rest.remove_prefix(signature.size());
    while (rest.size() >= frame) {
        const std::size_t length = bigEndian(rest);
        const std::string_view type = rest.substr(4, 4);
        // Tags may stand after the picture too, but these programs write them in front.
        if (type == "IDAT" || length > rest.size() - frame) return false;
        if (const auto software = softwareOf(type, rest.substr(8, length))) {
            return std::any_of(programs.begin(), programs.end(), [&](std::string_view program) {
                return software->find(program) != std::string::npos;
            });
        }
        rest.remove_prefix(length + frame);
    }
    return false;
}

} // namespace tovi::platform
