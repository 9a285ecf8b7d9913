#pragma once

#include <string>

namespace tovi {

/// Where and how a person reads dates.
struct UserCalendar {
    /// An ICU locale such as "de_DE"; it decides the calendar and the first day of the week.
    std::string locale;
    std::string timeZone; // an IANA name such as "Europe/Berlin"

    /// From LC_ALL, LC_TIME or LANG, and from TZ or the system's time zone. Read anew on each
    /// call, not while another thread changes the environment.
    static UserCalendar current();
};

} // namespace tovi
