#include "app/library/TimelineModel.h"

#include "app/lists/QtConversions.h"

#include <cmath>
#include <limits>

namespace tovi {
namespace {

constexpr Date endOfTime{std::numeric_limits<double>::max()};

QString idOf(Date start) {
    return QString::number(toMilliseconds(start), 'f', 0);
}

QString nameOf(CalendarUnit unit) {
    switch (unit) {
    case CalendarUnit::week:
        return QStringLiteral("week");
    case CalendarUnit::month:
        return QStringLiteral("month");
    default:
        return QStringLiteral("day");
    }
}

} // namespace

TimelineModel::TimelineModel(Executor& executor, std::function<UserCalendar()> calendar)
    : executor_(executor),
      calendar_(std::move(calendar)),
      periods_([](const TimelinePeriod& period) { return fromQt(idOf(period.start)); },
               {{"id", [](const TimelinePeriod& period) { return idOf(period.start); }},
                {"end", [](const TimelinePeriod& period) { return toMilliseconds(period.end); }},
                {"count",
                 [](const TimelinePeriod& period) {
                     return QVariant::fromValue<qint64>(period.summary.total.files);
                 }},
                {"bytes",
                 [](const TimelinePeriod& period) {
                     return QVariant::fromValue<qint64>(period.summary.total.bytes);
                 }}}),
      files_({{"period", [this](const FileRecord& file) { return periodOf(file); }}}) {}

QString TimelineModel::periodOf(const FileRecord& file) const {
    const auto after = starts_.upper_bound(file.modifiedAt);
    return after == starts_.begin() ? QString() : idOf(*std::prev(after));
}

void TimelineModel::setIndex(std::shared_ptr<IndexStore> index) {
    index_ = std::move(index);
    clear();
}

void TimelineModel::clear() {
    periodsGeneration_.cancel();
    filesGeneration_.cancel();
    isLoading_ = hasLoaded_ = hasMorePeriods_ = hasMoreFiles_ = false;
    shownPeriods_ = periodsAtOnce;
    shownFiles_ = filesAtOnce;
    error_.clear();
    before_.reset();
    periods_.replace({});
    files_.replace({});
    Q_EMIT changed();
}

QString TimelineModel::unit() const {
    return nameOf(unit_);
}

void TimelineModel::setUnit(const QString& unit) {
    for (const CalendarUnit known : {CalendarUnit::day, CalendarUnit::week, CalendarUnit::month}) {
        if (unit != nameOf(known) || known == unit_) continue;
        unit_ = known;
        clear();
        refresh();
    }
}

double TimelineModel::before() const {
    return before_ ? toMilliseconds(*before_) : std::numeric_limits<double>::quiet_NaN();
}

void TimelineModel::refresh() {
    if (!index_) return;
    loadPeriods(shownPeriods_);
    loadFiles(shownFiles_);
}

void TimelineModel::jumpTo(double moment) {
    before_.reset();
    if (!std::isnan(moment)) {
        const Date date{moment / 1000};
        before_ = CalendarPeriods(calendar_()).startOf(CalendarUnit::day, 1, date);
    }
    loadFiles(filesAtOnce);
}

void TimelineModel::loadMorePeriods() {
    if (hasMorePeriods_) loadPeriods(shownPeriods_ + periodsAtOnce);
}

void TimelineModel::loadMoreFiles() {
    if (hasMoreFiles_) loadFiles(shownFiles_ + filesAtOnce);
}

void TimelineModel::loadPeriods(std::size_t count) {
    shownPeriods_ = count;
    if (!index_) return;
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, periodsGeneration_,
        [index = index_, calendar = calendar_, unit = unit_, count](const std::stop_token& stop) {
            return timeline(*index, CalendarPeriods(calendar()), unit, endOfTime, count, stop);
        },
        [this, count](Outcome<std::vector<TimelinePeriod>> outcome) {
            isLoading_ = false;
            error_ = toQt(outcome.error);
            if (outcome) {
                hasLoaded_ = true;
                hasMorePeriods_ = outcome.value->size() == count;
                periods_.replace(*std::move(outcome.value));
            }
            Q_EMIT changed();
        });
}

void TimelineModel::loadFiles(std::int64_t count) {
    shownFiles_ = count;
    if (!index_) return;
    runLatest(
        executor_, this, filesGeneration_,
        [index = index_, calendar = calendar_, unit = unit_, before = before_,
         count](const std::stop_token& stop) {
            const CalendarPeriods periods(calendar());
            SearchQuery query;
            query.modifiedBefore = before;
            Files shown;
            shown.files = index->search(query, count, 0, IndexStore::Content::leftOut, stop);
            std::optional<Date> start;
            for (const FileRecord& file : shown.files) {
                if (start && file.modifiedAt >= *start) continue;
                start = periods.startOf(unit, 0, file.modifiedAt);
                if (start) shown.starts.insert(*start);
            }
            return shown;
        },
        [this, count](Outcome<Files> outcome) {
            if (!outcome) {
                error_ = toQt(outcome.error);
            } else {
                starts_ = std::move(outcome.value->starts);
                hasMoreFiles_ = static_cast<std::int64_t>(outcome.value->files.size()) == count;
                files_.replace(std::move(outcome.value->files));
            }
            Q_EMIT changed();
        });
}

} // namespace tovi
