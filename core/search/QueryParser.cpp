#include "core/search/QueryParser.h"

#include "base/Text.h"
#include "core/records/DownloadOrigin.h"
#include "core/search/CalendarPeriods.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <utility>

#include <fmt/format.h>
#include <unicode/locid.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

namespace tovi {
namespace {

/// A compiled regular expression; one that ICU does not accept matches nothing.
class Pattern {
  public:
    explicit Pattern(std::string_view expression, std::uint32_t flags = UREGEX_CASE_INSENSITIVE) {
        UErrorCode status = U_ZERO_ERROR;
        compiled_.reset(
            icu::RegexPattern::compile(icu::UnicodeString::fromUTF8(expression), flags, status));
        if (U_FAILURE(status)) compiled_.reset();
    }

    std::unique_ptr<icu::RegexMatcher> matcher(const icu::UnicodeString& text) const {
        if (!compiled_) return nullptr;
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::RegexMatcher> matcher(compiled_->matcher(text, status));
        if (U_FAILURE(status)) return nullptr;
        return matcher;
    }

  private:
    std::unique_ptr<const icu::RegexPattern> compiled_;
};

std::string utf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

std::string uppercased(const icu::UnicodeString& text) {
    return utf8(icu::UnicodeString(text).toUpper(icu::Locale::getRoot()));
}

std::string lowercased(const icu::UnicodeString& text) {
    return utf8(icu::UnicodeString(text).toLower(icu::Locale::getRoot()));
}

/// With the digits of every script as 0 to 9.
std::string withPlainDigits(const icu::UnicodeString& text) {
    icu::UnicodeString result;
    for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        const UChar32 character = text.char32At(at);
        const std::int32_t digit = u_charDigitValue(character);
        result.append(digit >= 0 ? static_cast<UChar32>('0' + digit) : character);
    }
    return utf8(result);
}

struct Match {
    icu::UnicodeString whole;
    std::array<icu::UnicodeString, 2> groups;
};

/// The text while filters are cut out of it.
class Phrase {
  public:
    explicit Phrase(std::string_view text) : text_(icu::UnicodeString::fromUTF8(text)) {}

    /// Cuts out the first match, leaving a space.
    std::optional<Match> consume(const Pattern& pattern) {
        const auto matcher = pattern.matcher(text_);
        UErrorCode status = U_ZERO_ERROR;
        if (!matcher || !matcher->find(status) || U_FAILURE(status)) return std::nullopt;
        Match match;
        match.whole = matcher->group(status);
        for (std::int32_t i = 0; i < std::min(matcher->groupCount(), 2); ++i) {
            match.groups[static_cast<std::size_t>(i)] = matcher->group(i + 1, status);
        }
        const std::int32_t start = matcher->start(status);
        text_.replace(start, match.whole.length(), u' ');
        return match;
    }

    void replaceAll(const Pattern& pattern) {
        UErrorCode status = U_ZERO_ERROR;
        if (const auto matcher = pattern.matcher(text_)) {
            icu::UnicodeString replaced = matcher->replaceAll(u" ", status);
            if (U_SUCCESS(status)) text_ = std::move(replaced);
        }
    }

    void append(const icu::UnicodeString& words) { text_.append(u' ').append(words); }

    std::string normalized() const {
        const std::string text = utf8(text_);
        return fmt::format("{}", fmt::join(splitWhitespace(text), " "));
    }

  private:
    icu::UnicodeString text_;
};

void addChip(SearchQuery& query, std::string chip, const Match& match) {
    query.chips.push_back(std::move(chip));
    query.chipWords.push_back(utf8(match.whole));
}

void takeScreenshots(Phrase& phrase, SearchQuery& query) {
    static const Pattern pattern(R"(\b(?:screenshots?|screen shots?)\b)");
    const auto match = phrase.consume(pattern);
    if (!match) return;
    query.kind = FileKind::image;
    query.screenshotsOnly = true;
    addChip(query, "Screenshots", *match);
}

void takeKind(Phrase& phrase, SearchQuery& query) {
    static const std::pair<Pattern, FileKind> table[] = {
        {Pattern(R"(\b(?:type:)?pdfs?\b)"), FileKind::pdf},
        {Pattern(R"(\b(?:type:)?(?:images?|photos?|pictures?)\b)"), FileKind::image},
        {Pattern(R"(\b(?:type:)?videos?\b)"), FileKind::video},
        {Pattern(R"(\b(?:type:)?(?:audio|music|songs?)\b)"), FileKind::audio},
        {Pattern(R"(\b(?:type:)?(?:documents?|docs?)\b)"), FileKind::document},
        {Pattern(R"(\b(?:type:)?(?:archives?|zips?)\b)"), FileKind::archive},
        {Pattern(R"(\b(?:type:)?(?:applications?|apps?)\b)"), FileKind::application},
        {Pattern(R"(\b(?:type:)?folders?\b)"), FileKind::folder},
        {Pattern(R"(\b(?:type:)?(?:code|repositories)\b)"), FileKind::code},
    };
    for (const auto& [pattern, kind] : table) {
        if (query.kind) return;
        const auto match = phrase.consume(pattern);
        if (!match) continue;
        query.kind = kind;
        addChip(query, "Type: " + std::string(title(kind)), *match);
    }
}

/// `text` is digits with at most one dot among them.
double readNumber(const std::string& text) {
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec == std::errc::result_out_of_range) {
        const bool isTiny = text.find_first_not_of('0') == text.find('.');
        return isTiny ? 0 : HUGE_VAL;
    }
    return number;
}

std::int64_t bytesOf(double number, std::string_view unit) {
    constexpr double mostBytes = 9223372036854771712.0;
    const double base = unit.find('i') != std::string_view::npos ? 1024 : 1000;
    const std::size_t exponent = std::string_view("bkmgt").find(unit.front());
    const double bytes = number * std::pow(base, static_cast<double>(exponent));
    return static_cast<std::int64_t>(std::min(bytes, mostBytes));
}

void takeMinimumSize(Phrase& phrase, SearchQuery& query) {
    static const Pattern pattern(
        R"(\b(?:over|larger than|bigger than|at least|size:>)\s*(\d+(?:\.\d+)?))"
        R"(\s*(kb|mb|gb|tb|kib|mib|gib|bytes?)\b)");
    const auto match = phrase.consume(pattern);
    if (!match) return;
    const auto& [number, unit] = match->groups;
    query.minimumSize = bytesOf(readNumber(withPlainDigits(number)), lowercased(unit));
    addChip(query, fmt::format("Size ≥ {} {}", utf8(number), uppercased(unit)), *match);
}

void takeRelativeDates(Phrase& phrase, SearchQuery& query, const CalendarPeriods& calendar,
                       Date now) {
    struct Period {
        Pattern pattern;
        const char* chip;
        std::optional<CalendarUnit> unit; // none: the seven days before `now`
        int first = 0;                    // counted from the current one
        int end = 0;
    };
    static const Period table[] = {
        {Pattern(R"(\b(?:from\s+)?last week\b)"), "Modified: last calendar week",
         CalendarUnit::week, -1, 0},
        {Pattern(R"(\b(?:from\s+)?this week\b)"), "Modified: this calendar week",
         CalendarUnit::week, 0, 1},
        {Pattern(R"(\b(?:from\s+)?(?:past week|last 7 days)\b)"), "Modified: past 7 days", {}},
        {Pattern(R"(\b(?:from\s+)?today\b)"), "Modified: today", CalendarUnit::day, 0, 1},
        {Pattern(R"(\b(?:from\s+)?yesterday\b)"), "Modified: yesterday", CalendarUnit::day, -1, 0},
        {Pattern(R"(\b(?:from\s+)?last month\b)"), "Modified: last calendar month",
         CalendarUnit::month, -1, 0},
    };
    for (const Period& period : table) {
        const auto match = phrase.consume(period.pattern);
        if (!match) continue;
        if (period.unit) {
            query.modifiedAfter = calendar.startOf(*period.unit, period.first, now);
            query.modifiedBefore = calendar.startOf(*period.unit, period.end, now);
        } else {
            query.modifiedAfter = calendar.before(now, 7, CalendarUnit::day);
            query.modifiedBefore = now;
        }
        addChip(query, period.chip, *match);
    }
}

void takeOlderThan(Phrase& phrase, SearchQuery& query, const CalendarPeriods& calendar, Date now) {
    static const Pattern pattern(R"(\bolder than\s+(\d+)\s+(days?|weeks?|months?|years?)\b)");
    const auto match = phrase.consume(pattern);
    if (!match) return;
    const auto& [number, unitText] = match->groups;
    const std::string digits = withPlainDigits(number);
    std::int64_t count = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), count);
    const std::string word = lowercased(unitText);
    const CalendarUnit unit = word.starts_with("day")     ? CalendarUnit::day
                              : word.starts_with("week")  ? CalendarUnit::week
                              : word.starts_with("month") ? CalendarUnit::month
                                                          : CalendarUnit::year;
    query.modifiedBefore = calendar.before(now, count, unit);
    addChip(query, fmt::format("Modified: older than {} {}", utf8(number), utf8(unitText)), *match);
}

/// `text` is a date as in "2024-03-31".
std::optional<std::chrono::year_month_day> readDay(const std::string& text) {
    const auto number = [&](std::size_t at, std::size_t length) {
        unsigned value = 0;
        std::from_chars(text.data() + at, text.data() + at + length, value);
        return value;
    };
    const std::chrono::year_month_day day{std::chrono::year(static_cast<int>(number(0, 4))),
                                          std::chrono::month(number(5, 2)),
                                          std::chrono::day(number(8, 2))};
    if (!day.ok() || day.year() < std::chrono::year(1)) return std::nullopt;
    return day;
}

void takeExplicitDate(Phrase& phrase, SearchQuery& query, const CalendarPeriods& calendar,
                      const Pattern& pattern, std::string_view keyword,
                      std::optional<Date> SearchQuery::*bound) {
    const auto match = phrase.consume(pattern);
    if (!match) return;
    const auto day = readDay(withPlainDigits(match->groups[0]));
    const auto midnight = day ? calendar.startOf(*day) : std::nullopt;
    if (!midnight) {
        phrase.append(match->whole);
        return;
    }
    query.*bound = midnight;
    addChip(query, fmt::format("Modified {}: {}", keyword, utf8(match->groups[0])), *match);
}

void takeExplicitDates(Phrase& phrase, SearchQuery& query, const CalendarPeriods& calendar) {
    static const Pattern after(R"(\b(?:modified\s+)?after\s+(\d{4}-\d{2}-\d{2})\b)");
    static const Pattern before(R"(\b(?:modified\s+)?before\s+(\d{4}-\d{2}-\d{2})\b)");
    takeExplicitDate(phrase, query, calendar, after, "after", &SearchQuery::modifiedAfter);
    takeExplicitDate(phrase, query, calendar, before, "before", &SearchQuery::modifiedBefore);
}

std::string hostOfService(const std::string& word) {
    // DownloadOrigin knows each of these hosts.
    static constexpr std::pair<std::string_view, std::string_view> table[] = {
        {"google drive", "drive.google.com"},
        {"gmail", "mail.google.com"},
        {"slack", "slack.com"},
        {"github", "github.com"},
        {"chatgpt", "chatgpt.com"},
        {"figma", "figma.com"},
        {"notion", "notion.so"},
        {"dropbox", "dropbox.com"},
        {"canva", "canva.com"},
        {"whatsapp", "whatsapp.com"},
        {"pinterest", "pinterest.com"},
        {"twitter", "twitter.com"},
        {"claude", "claude.ai"},
        {"instagram", "instagram.com"},
        {"x", "x.com"},
    };
    for (const auto& [service, host] : table) {
        if (service == word) return std::string(host);
    }
    return word;
}

void takeSource(Phrase& phrase, SearchQuery& query) {
    static const Pattern pattern(
        R"(\b(?:source:|from\s+)([a-zA-Z0-9][a-zA-Z0-9.\-]*\.[a-zA-Z]{2,}|google drive|gmail|)"
        R"(slack|github|chatgpt|figma|notion|dropbox|canva|whatsapp|pinterest|twitter|claude|)"
        R"(instagram|x)\b)");
    const auto match = phrase.consume(pattern);
    if (!match) return;
    query.source = hostOfService(lowercased(match->groups[0]));
    const auto origin = DownloadOrigin::from("https://" + *query.source);
    addChip(query, "From: " + (origin ? origin->name : utf8(match->groups[0])), *match);
}

void dropStopWords(Phrase& phrase) {
    static const Pattern pattern(R"(\b(?:find|show|me|files|all|about|with|and)\b)", 0);
    phrase.replaceAll(pattern);
}

} // namespace

QueryParser::QueryParser(UserCalendar calendar) : calendar_(std::move(calendar)) {}

SearchQuery QueryParser::parse(std::string_view text, Date now) const {
    // The order matters: the dates take their "from" before the source looks for one.
    const CalendarPeriods calendar(calendar_);
    Phrase phrase(text);
    SearchQuery query;
    takeScreenshots(phrase, query);
    takeKind(phrase, query);
    takeMinimumSize(phrase, query);
    takeRelativeDates(phrase, query, calendar, now);
    takeOlderThan(phrase, query, calendar, now);
    takeExplicitDates(phrase, query, calendar);
    takeSource(phrase, query);
    if (!query.chips.empty()) dropStopWords(phrase);
    query.text = phrase.normalized();
    if (!query.text.empty()) {
        query.chips.push_back("Text: " + query.text);
        query.chipWords.push_back(query.text);
    }
    return query;
}

} // namespace tovi
