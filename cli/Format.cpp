#include "cli/Format.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <ctime>

#include <fmt/format.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

std::string styled(const char* style, const std::string& text) {
    static const bool wanted = isTerminal(STDOUT_FILENO) && std::getenv("NO_COLOR") == nullptr;
    return wanted ? fmt::format("\x1b[{}m{}\x1b[0m", style, text) : text;
}

} // namespace

std::string formatCount(std::int64_t count) {
    const std::string digits = std::to_string(count);
    std::string text;
    for (std::size_t at = 0; at < digits.size(); ++at) {
        if (at > 0 && (digits.size() - at) % 3 == 0) text += ',';
        text += digits[at];
    }
    return text;
}

std::string formatCount(std::int64_t count, const char* noun) {
    return fmt::format("{} {}{}", formatCount(count), noun, count == 1 ? "" : "s");
}

std::string formatSize(std::int64_t bytes) {
    if (bytes < 1000) return fmt::format("{} B", bytes);
    constexpr std::array units{"KB", "MB", "GB", "TB", "PB", "EB"};
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    // 999.95 would be shown as 1000.0.
    while (value >= 999.95 && unit + 1 < units.size()) {
        value /= 1000;
        ++unit;
    }
    return fmt::format("{:.1f} {}", value, units[unit]);
}

std::string formatDate(Date date) {
    const auto seconds = static_cast<std::time_t>(std::floor(date.seconds));
    std::tm local{};
    if (::localtime_r(&seconds, &local) == nullptr) return "-";
    std::array<char, 32> text{};
    if (std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local) == 0) return "-";
    return text.data();
}

bool isTerminal(int descriptor) {
    return ::isatty(descriptor) == 1;
}

std::string bold(const std::string& text) {
    return styled("1", text);
}

std::string dim(const std::string& text) {
    return styled("2", text);
}

} // namespace tovi::cli
