#include "core/search/CalendarPeriods.h"

#include <cmath>
#include <memory>

#include <unicode/calendar.h>
#include <unicode/gregocal.h>

namespace tovi {
namespace {

// Beyond it calendars are slow or wrong, and no file is that old.
constexpr std::int64_t mostYears = 100'000;

std::unique_ptr<icu::TimeZone> zoneOf(const UserCalendar& user) {
    const icu::UnicodeString name = icu::UnicodeString::fromUTF8(user.timeZone);
    return std::unique_ptr<icu::TimeZone>(icu::TimeZone::createTimeZone(name));
}

void resolveClockChanges(icu::Calendar& calendar) {
    calendar.setSkippedWallTimeOption(UCAL_WALLTIME_NEXT_VALID);
    calendar.setRepeatedWallTimeOption(UCAL_WALLTIME_FIRST);
}

double wholeMilliseconds(Date date) {
    return std::floor(date.seconds * 1000);
}

/// At `now`, or nothing where the calendar cannot be there.
std::unique_ptr<icu::Calendar> calendarAt(const UserCalendar& user, Date now) {
    constexpr double mostSeconds = static_cast<double>(mostYears) * 366 * 86'400;
    if (!(std::abs(now.seconds) < mostSeconds)) return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
        zoneOf(user).release(), icu::Locale(user.locale.c_str()), status));
    if (U_FAILURE(status)) return nullptr;
    resolveClockChanges(*calendar);
    calendar->setTime(wholeMilliseconds(now), status);
    if (U_FAILURE(status)) return nullptr;
    return calendar;
}

void setTimeOfDay(icu::Calendar& calendar, int hour) {
    calendar.set(UCAL_HOUR_OF_DAY, hour);
    calendar.set(UCAL_MINUTE, 0);
    calendar.set(UCAL_SECOND, 0);
    calendar.set(UCAL_MILLISECOND, 0);
}

} // namespace

std::optional<Date> CalendarPeriods::startOf(CalendarUnit unit, int offset, Date now) const {
    const auto calendar = calendarAt(calendar_, now);
    if (!calendar) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    // Days are counted at noon, which no change of the clock moves to another day.
    setTimeOfDay(*calendar, 12);
    switch (unit) {
    case CalendarUnit::day:
        calendar->add(UCAL_DATE, offset, status);
        break;
    case CalendarUnit::week: {
        const int weekday = calendar->get(UCAL_DAY_OF_WEEK, status);
        const int passed = (weekday - calendar->getFirstDayOfWeek(status) + 7) % 7;
        calendar->add(UCAL_DATE, 7 * offset - passed, status);
        break;
    }
    case CalendarUnit::month:
        calendar->set(UCAL_DATE, 1);
        calendar->add(UCAL_MONTH, offset, status);
        break;
    case CalendarUnit::year:
        calendar->set(UCAL_DAY_OF_YEAR, 1);
        calendar->add(UCAL_YEAR, offset, status);
        break;
    }
    setTimeOfDay(*calendar, 0);
    const double start = calendar->getTime(status);
    if (U_FAILURE(status)) return std::nullopt;
    return Date{start / 1000};
}

std::optional<Date> CalendarPeriods::before(Date now, std::int64_t count, CalendarUnit unit) const {
    struct Field {
        UCalendarDateFields field;
        std::int64_t perYear;
    };
    constexpr Field fields[] = {
        {UCAL_DATE, 365}, {UCAL_WEEK_OF_YEAR, 52}, {UCAL_MONTH, 12}, {UCAL_YEAR, 1}};
    const auto& [field, perYear] = fields[static_cast<std::size_t>(unit)];

    const auto calendar = calendarAt(calendar_, now);
    if (!calendar || count > mostYears * perYear) return std::nullopt;
    UErrorCode status = U_ZERO_ERROR;
    calendar->add(field, -static_cast<std::int32_t>(count), status);
    const double moved = calendar->getTime(status);
    if (U_FAILURE(status)) return std::nullopt;
    return now + (moved - wholeMilliseconds(now)) / 1000;
}

std::optional<Date> CalendarPeriods::startOf(std::chrono::year_month_day day) const {
    UErrorCode status = U_ZERO_ERROR;
    icu::GregorianCalendar calendar(zoneOf(calendar_).release(), status);
    if (U_FAILURE(status)) return std::nullopt;
    resolveClockChanges(calendar);
    calendar.set(static_cast<int>(day.year()), static_cast<int>(unsigned{day.month()}) - 1,
                 static_cast<int>(unsigned{day.day()}));
    setTimeOfDay(calendar, 0);
    const double start = calendar.getTime(status);
    if (U_FAILURE(status)) return std::nullopt;
    return Date{start / 1000};
}

} // namespace tovi
