#pragma once

#include "core/library/LibraryOrder.h"
#include "core/search/CalendarPeriods.h"
#include "core/store/IndexStore.h"

#include <stop_token>
#include <vector>

namespace tovi {

/// A day, week, month or year in which files were modified.
struct TimelinePeriod {
    Date start; // included
    Date end;   // not included
    LibrarySummary summary;

    friend bool operator==(const TimelinePeriod&, const TimelinePeriod&) = default;
};

/// The newest `limit` periods before `before` that have files, the newest first. Periods are those
/// of the user's calendar; dates that it cannot hold are in none. The files of a period are a
/// search between its dates. Throws as `IndexStore`.
std::vector<TimelinePeriod> timeline(IndexStore& index, const CalendarPeriods& calendar,
                                     CalendarUnit unit, Date before, std::size_t limit,
                                     const std::stop_token& stop = {});

} // namespace tovi
