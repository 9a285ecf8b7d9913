#pragma once

#include <compare>
#include <ctime>
#include <functional>
#include <string>

namespace tovi {

/// A moment, in seconds since the Unix epoch. A double keeps a quarter of a microsecond for the
/// dates of files, so two readings of one file date are compared with `isSameFileDate`.
struct Date {
    double seconds = 0;

    static Date now();
    static constexpr Date fromTimespec(const timespec& time) {
        return {static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9};
    }

    /// Seconds since 2001-01-01 00:00:00 UTC, the form of dates in the program's JSON files.
    static constexpr Date fromReferenceSeconds(double value) { return {value + referenceOffset}; }
    constexpr double referenceSeconds() const { return seconds - referenceOffset; }

    // The linter takes the zero of a rewritten comparison for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend constexpr auto operator<=>(const Date&, const Date&) = default;
    friend constexpr Date operator+(Date date, double delta) { return {date.seconds + delta}; }
    friend constexpr Date operator-(Date date, double delta) { return {date.seconds - delta}; }
    friend constexpr double operator-(Date left, Date right) {
        return left.seconds - right.seconds;
    }

  private:
    static constexpr double referenceOffset = 978'307'200;
};

/// Whether two modification dates differ by less than a microsecond.
constexpr bool isSameFileDate(Date left, Date right) {
    const double difference = left - right;
    return difference < 1e-6 && difference > -1e-6;
}

/// Where an object that needs the time takes it from.
using Clock = std::function<Date()>;

/// ISO 8601 in UTC with milliseconds, for instance "2026-11-21T03:39:12.250Z".
std::string iso8601(Date date);

} // namespace tovi
