#include "base/Date.h"

#include <chrono>
#include <cmath>

#include <fmt/format.h>

namespace tovi {

Date Date::now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return {std::chrono::duration<double>(sinceEpoch).count()};
}

std::string iso8601(Date date) {
    // Years 0 to 9999: what the format can hold; a date beyond is shown at the nearest end.
    constexpr double first = -62'167'219'200.0;
    constexpr double last = 253'402'300'799.0;
    const double clamped =
        std::isnan(date.seconds) ? 0 : std::fmin(std::fmax(date.seconds, first), last);
    const auto milliseconds =
        std::chrono::milliseconds(static_cast<std::int64_t>(std::floor(clamped * 1000 + 0.5)));
    const auto day = std::chrono::floor<std::chrono::days>(milliseconds);
    const std::chrono::year_month_day calendar{std::chrono::sys_days{day}};
    const std::chrono::hh_mm_ss time{milliseconds - day};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:03}Z",
                       static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
                       static_cast<unsigned>(calendar.day()), time.hours().count(),
                       time.minutes().count(), time.seconds().count(), time.subseconds().count());
}

} // namespace tovi
