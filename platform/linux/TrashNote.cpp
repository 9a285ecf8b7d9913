#include "platform/linux/TrashNote.h"

#include <cctype>
#include <cmath>
#include <random>

#include <fmt/chrono.h>
#include <fmt/format.h>

namespace tovi::platform {
namespace {

bool isUnreserved(unsigned char byte) {
    return byte < 0x80 && (std::isalnum(byte) != 0 || byte == '/' || byte == '-' || byte == '_' ||
                           byte == '.' || byte == '~');
}

int hexadecimalValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string_view cutBetweenCharacters(std::string_view text, std::size_t maximum) {
    if (text.size() <= maximum) return text;
    while (maximum > 0 && (static_cast<unsigned char>(text[maximum]) & 0xc0) == 0x80)
        --maximum;
    return text.substr(0, maximum);
}

} // namespace

std::string percentEncoded(std::string_view bytes) {
    std::string result;
    for (const char byte : bytes) {
        if (isUnreserved(static_cast<unsigned char>(byte))) {
            result += byte;
        } else {
            result += fmt::format("%{:02X}", static_cast<unsigned char>(byte));
        }
    }
    return result;
}

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const int high =
            text[at] == '%' && at + 2 < text.size() ? hexadecimalValue(text[at + 1]) : -1;
        const int low = high >= 0 ? hexadecimalValue(text[at + 2]) : -1;
        if (low < 0) {
            result += text[at];
        } else {
            result += static_cast<char>(high * 16 + low);
            at += 2;
        }
    }
    return result;
}

std::string trashNote(std::string_view path, Date deletedAt) {
    const auto seconds = static_cast<time_t>(std::floor(deletedAt.seconds));
    tm local{};
    ::localtime_r(&seconds, &local);
    return fmt::format("[Trash Info]\nPath={}\nDeletionDate={:%Y-%m-%dT%H:%M:%S}\n",
                       percentEncoded(path), local);
}

std::optional<std::string> pathOfTrashNote(std::string_view note) {
    constexpr std::string_view key = "\nPath=";
    const std::size_t start = note.find(key);
    if (start == std::string_view::npos) return std::nullopt;
    const std::string_view rest = note.substr(start + key.size());
    return percentDecoded(rest.substr(0, rest.find('\n')));
}

std::string trashName(std::string_view name, unsigned attempt, std::size_t maximum) {
    constexpr unsigned countedAttempts = 20;
    constexpr std::size_t longestExtension = 16;
    std::string number;
    if (attempt > countedAttempts) {
        static thread_local std::mt19937 random{std::random_device{}()};
        number = fmt::format(" {:08x}", random());
    } else if (attempt > 1) {
        number = fmt::format(" {}", attempt);
    }
    const std::size_t dot = name.rfind('.');
    const bool hasExtension =
        dot != std::string_view::npos && dot > 0 && name.size() - dot <= longestExtension;
    const std::string_view extension = hasExtension ? name.substr(dot) : std::string_view{};
    const std::size_t room = maximum - trashNoteSuffix.size() - number.size() - extension.size();
    const std::string_view stem = name.substr(0, name.size() - extension.size());
    return fmt::format("{}{}{}", cutBetweenCharacters(stem, room), number, extension);
}

} // namespace tovi::platform
