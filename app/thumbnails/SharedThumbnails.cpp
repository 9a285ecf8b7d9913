#include "app/thumbnails/SharedThumbnails.h"

#include "platform/ReadFile.h"

#include <array>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/stat.h>

namespace tovi {
namespace {

constexpr std::array<std::pair<int, const char*>, 4> sizes{
    {{128, "normal"}, {256, "large"}, {512, "x-large"}, {1024, "xx-large"}}};
constexpr std::size_t maximumHead = 65'536; // bytes in which the texts are looked for

constexpr std::string_view hexadecimalDigits = "0123456789abcdef";

std::string md5(const std::string& text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (EVP_Digest(text.data(), text.size(), digest.data(), &length, EVP_md5(), nullptr) != 1)
        return {};
    std::string result;
    for (unsigned i = 0; i < length; ++i) {
        result += hexadecimalDigits[digest[i] >> 4];
        result += hexadecimalDigits[digest[i] & 15];
    }
    return result;
}

/// The texts of a PNG that come before its pixels, by their keys. https://www.w3.org/TR/png/
std::map<std::string, std::string> textsOf(std::string_view png) {
    std::map<std::string, std::string> texts;
    constexpr std::string_view signature = "\x89PNG\r\n\x1a\n";
    if (!png.starts_with(signature)) return texts;
    png.remove_prefix(signature.size());
    constexpr std::size_t around = 12; // length, type and checksum of a chunk
    while (png.size() >= around) {
        std::size_t length = 0;
        for (std::size_t i = 0; i < 4; ++i)
            length = length << 8 | static_cast<unsigned char>(png[i]);
        const std::string_view type = png.substr(4, 4);
        if (type == "IDAT" || length > png.size() - around) break;
        const std::string_view data = png.substr(8, length);
        const std::size_t end = data.find('\0');
        if (type == "tEXt" && end != std::string_view::npos)
            texts.emplace(data.substr(0, end), data.substr(end + 1));
        png.remove_prefix(around + length);
    }
    return texts;
}

bool isPlain(char c) {
    constexpr std::string_view others = "-._~!$&'()*+,=:@/";
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           others.find(c) != std::string_view::npos;
}

} // namespace

std::string fileUri(const std::string& path) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(c)) {
            uri += c;
        } else {
            uri += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return uri;
}

std::string sharedThumbnailName(const std::string& uri) {
    return md5(uri) + ".png";
}

FileDescriptor openSharedThumbnail(const std::string& folder, const std::string& path,
                                   std::int64_t modified, int pixels) {
    const std::string uri = fileUri(path);
    const std::string name = sharedThumbnailName(uri);
    for (const auto& [size, sizeFolder] : sizes) {
        if (size < pixels) continue;
        const std::string thumbnail =
            std::string(folder).append("/").append(sizeFolder).append("/").append(name);
        FileDescriptor file(
            ::open(thumbnail.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
            continue;
        try {
            const auto texts = textsOf(platform::readFile(file, maximumHead, thumbnail));
            const auto has = [&](const char* key, const std::string& value) {
                const auto found = texts.find(key);
                return found != texts.end() && found->second == value;
            };
            if (has("Thumb::URI", uri) && has("Thumb::MTime", std::to_string(modified)))
                return file;
        } catch (const std::exception&) {
            // One that cannot be read is none.
        }
    }
    return {};
}

} // namespace tovi
