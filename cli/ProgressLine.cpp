#include "cli/ProgressLine.h"

#include "base/Text.h"
#include "cli/Format.h"

#include <algorithm>
#include <cstdio>

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

constexpr auto pause = std::chrono::milliseconds(100);
constexpr std::size_t barWidth = 20;
constexpr const char* clearLine = "\r\x1b[K";

std::size_t terminalWidth() {
    winsize size{};
    if (::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
    return size.ws_col;
}

std::string bar(std::int64_t count, std::int64_t total) {
    const double share =
        std::clamp(static_cast<double>(count) / static_cast<double>(total), 0., 1.);
    const auto filled = static_cast<std::size_t>(share * barWidth);
    return '[' + std::string(filled, '#') + std::string(barWidth - filled, '.') + "] ";
}

} // namespace

ProgressLine::ProgressLine(std::int64_t total, std::string noun, bool enabled)
    : total_(total),
      noun_(std::move(noun)),
      enabled_(enabled && isTerminal(STDERR_FILENO)),
      started_(std::chrono::steady_clock::now()) {}

ProgressLine::~ProgressLine() {
    if (enabled_) fmt::print(stderr, "{}", clearLine);
}

void ProgressLine::show(std::int64_t count, std::string_view item) {
    if (!enabled_) return;
    const Time now = std::chrono::steady_clock::now();
    if (now - shown_ < pause) return;
    shown_ = now;
    const double seconds = std::chrono::duration<double>(now - started_).count();
    const auto rate =
        static_cast<std::int64_t>(static_cast<double>(count) / std::max(seconds, 0.1));
    const std::string line =
        fmt::format("{}{} {}, {}/s  {}", total_ > 0 ? bar(count, total_) : "", formatCount(count),
                    noun_, formatCount(rate), printable(item));
    fmt::print(stderr, "{}{}", clearLine, firstCharacters(line, terminalWidth() - 1));
    std::fflush(stderr);
}

} // namespace tovi::cli
