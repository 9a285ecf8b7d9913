#include "platform/RecentlyUsed.h"

#include "platform/AtomicFile.h"

#include <charconv>
#include <string_view>
#include <system_error>

#include <pugixml.hpp>

namespace tovi::platform {
namespace {

constexpr std::size_t longestList = 16'777'216; // bytes
constexpr std::string_view fileScheme = "file://";

std::string percentDecoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned value = 0;
        const char* digits = text.data() + at + 1;
        if (text[at] == '%' && at + 2 < text.size() &&
            std::from_chars(digits, digits + 2, value, 16).ptr == digits + 2) {
            result += static_cast<char>(value);
            at += 2;
        } else {
            result += text[at];
        }
    }
    return result;
}

/// From "2024-03-04T12:00:00.123Z"; the fraction is dropped.
std::optional<Date> dateFrom(const char* text) {
    std::tm time{};
    const char* rest = ::strptime(text, "%Y-%m-%dT%H:%M:%S", &time);
    if (rest == nullptr) return std::nullopt;
    return Date{static_cast<double>(::timegm(&time))};
}

} // namespace

RecentlyUsed::RecentlyUsed(const std::string& dataHome) {
    std::optional<std::string> text;
    try {
        text = readFile(DirectoryEntry::open(dataHome + "/recently-used.xbel"), longestList);
    } catch (const std::system_error&) {
        return;
    }
    pugi::xml_document list;
    if (!text || !list.load_buffer(text->data(), text->size())) return;
    for (const pugi::xml_node& item : list.child("xbel").children("bookmark")) {
        const std::string_view address = item.attribute("href").value();
        const auto date = dateFrom(item.attribute("visited").value());
        if (!date || !address.starts_with(fileScheme)) continue;
        dates_.emplace(percentDecoded(address.substr(fileScheme.size())), *date);
    }
}

std::optional<Date> RecentlyUsed::lastUsed(const std::string& path) const {
    const auto found = dates_.find(path);
    if (found == dates_.end()) return std::nullopt;
    return found->second;
}

} // namespace tovi::platform
