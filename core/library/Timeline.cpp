#include "core/library/Timeline.h"

#include "base/Cancelled.h"

namespace tovi {

std::vector<TimelinePeriod> timeline(IndexStore& index, const CalendarPeriods& calendar,
                                     CalendarUnit unit, Date before, std::size_t limit,
                                     const std::stop_token& stop) {
    std::vector<TimelinePeriod> periods;
    while (periods.size() < limit) {
        throwIfCancelled(stop);
        const auto newest = index.newestBefore(before);
        if (!newest) break;
        const auto start = calendar.startOf(unit, 0, *newest);
        const auto end = calendar.startOf(unit, 1, *newest);
        if (!start || !end || *start >= *end) {
            before = *newest;
            continue;
        }
        TimelinePeriod period{*start, *end, {}};
        for (const auto& [kind, files, bytes] : index.modifiedBetween(*start, *end))
            period.summary.add(kind, files, bytes);
        periods.push_back(std::move(period));
        before = *start;
    }
    return periods;
}

} // namespace tovi
