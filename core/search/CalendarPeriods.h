#pragma once

#include "base/Date.h"
#include "core/search/UserCalendar.h"

#include <chrono>
#include <cstdint>
#include <optional>

namespace tovi {

enum class CalendarUnit { day, week, month, year };

/// Days, weeks and months as a person's calendar cuts them. A day starts at midnight, or at the
/// first moment after it where the clock is put forward then. What the calendar cannot hold gives
/// nothing.
class CalendarPeriods {
  public:
    explicit CalendarPeriods(UserCalendar calendar) : calendar_(std::move(calendar)) {}

    /// The start of the day, week or month that is `offset` after the one containing `now`.
    std::optional<Date> startOf(CalendarUnit unit, int offset, Date now) const;

    /// The same time of day, `count` units before `now`.
    std::optional<Date> before(Date now, std::int64_t count, CalendarUnit unit) const;

    /// The start of a day of the Gregorian calendar.
    std::optional<Date> startOf(std::chrono::year_month_day day) const;

  private:
    UserCalendar calendar_;
};

} // namespace tovi
