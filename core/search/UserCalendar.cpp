#include "core/search/UserCalendar.h"

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include <unicode/locid.h>
#include <unicode/timezone.h>

namespace tovi {
namespace {

std::string currentLocale() {
    // The first one that is set and not empty decides, as setlocale(3) has it.
    for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(name);
        if (value == nullptr || *value == '\0') continue;
        const std::string_view language =
            std::string_view(value).substr(0, std::string_view(value).find_first_of(".@"));
        if (language == "C" || language == "POSIX") break;
        const icu::Locale locale = icu::Locale::createCanonical(value);
        if (locale.isBogus() || *locale.getLanguage() == '\0') break;
        return locale.getName();
    }
    return "en_US_POSIX";
}

/// The name of the zone whose rules lie at `path`, for instance below /usr/share/zoneinfo.
std::string zoneNameIn(std::string_view path) {
    constexpr std::string_view folder = "/zoneinfo/";
    const std::size_t at = path.rfind(folder);
    if (at == std::string_view::npos) return {};
    path.remove_prefix(at + folder.size());
    for (const std::string_view variant : {"posix/", "right/"}) {
        if (path.starts_with(variant)) path.remove_prefix(variant.size());
    }
    return std::string(path);
}

bool isKnownZone(const std::string& name) {
    const std::unique_ptr<icu::TimeZone> zone(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name)));
    return *zone != icu::TimeZone::getUnknown();
}

std::string currentTimeZone() {
    std::string name;
    if (const char* variable = std::getenv("TZ"); variable != nullptr) {
        name = *variable == ':' ? variable + 1 : variable;
        if (name.empty()) return "UTC";
        if (name.front() == '/') name = zoneNameIn(name);
    } else {
        std::error_code unreadable;
        name = zoneNameIn(std::filesystem::canonical("/etc/localtime", unreadable).string());
    }
    if (isKnownZone(name)) return name;
    const std::unique_ptr<icu::TimeZone> detected(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString identifier;
    std::string result;
    detected->getID(identifier).toUTF8String(result);
    return result;
}

} // namespace

UserCalendar UserCalendar::current() {
    return {currentLocale(), currentTimeZone()};
}

} // namespace tovi
