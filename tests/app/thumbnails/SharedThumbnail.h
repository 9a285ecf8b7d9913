#pragma once

#include <string>

namespace tovi::test {

inline std::string pngText(const std::string& key, const std::string& text) {
    const std::string data = key + '\0' + text;
    return std::string(3, '\0') + static_cast<char>(data.size()) + "tEXt" + data + "CRC?";
}

/// `png` with the texts that make it the desktop's thumbnail of a file.
inline std::string asThumbnailOf(const std::string& uri, const std::string& modified,
                                 const std::string& png) {
    std::string thumbnail = png;
    constexpr std::size_t afterHeader = 33;
    return thumbnail.insert(afterHeader,
                            pngText("Thumb::URI", uri) + pngText("Thumb::MTime", modified));
}

} // namespace tovi::test
