#include "core/records/DownloadOrigin.h"
#include "core/search/CalendarPeriods.h"
#include "core/search/QueryParser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const UserCalendar newYork{"en_US", "America/New_York"};
const UserCalendar berlin{"de_DE", "Europe/Berlin"};

// Wednesday, 2024-03-13 12:00 in New York, the week in which the clock went forward there.
constexpr Date now{1'710'345'600};

SearchQuery parse(std::string_view text, const UserCalendar& calendar = newYork) {
    return QueryParser(calendar).parse(text, now);
}

std::string joined(const SearchQuery& query) {
    std::string result;
    for (const std::string& chip : query.chips)
        result += "[" + chip + "]";
    return result;
}

TEST(QueryParser, CutsFiltersOutAndNamesThem) {
    struct Row {
        const char* phrase;
        const char* text;
        const char* chips;
    };
    const Row table[] = {
        {"", "", ""},
        {" \t\n", "", ""},
        {"screenshots from last week", "", "[Screenshots][Modified: last calendar week]"},
        {"Screen Shot pdf", "pdf", "[Screenshots][Text: pdf]"},
        {"pdf images", "images", "[Type: Pdf][Text: images]"},
        {"images pdf", "images", "[Type: Pdf][Text: images]"},
        {"type:photos in Rome", "in Rome", "[Type: Image][Text: in Rome]"},
        {"VIDEOS", "", "[Type: Video]"},
        {"songs", "", "[Type: Audio]"},
        {"docs", "", "[Type: Document]"},
        {"zip", "", "[Type: Archive]"},
        {"apps", "", "[Type: Application]"},
        {"folders", "", "[Type: Folder]"},
        {"repositories", "", "[Type: Code]"},
        {"pdfx snapdoc", "pdfx snapdoc", "[Text: pdfx snapdoc]"},
        {"pdf pdf", "pdf", "[Type: Pdf][Text: pdf]"},
        {"other", "other", "[Text: other]"},
        {"pdfs from last week over 5 mb", "",
         "[Type: Pdf][Size ≥ 5 MB][Modified: last calendar week]"},
        {"find all files about taxes", "find all files about taxes",
         "[Text: find all files about taxes]"},
        {"find pdfs about  taxes", "taxes", "[Type: Pdf][Text: taxes]"},
        {"Find pdfs", "Find", "[Type: Pdf][Text: Find]"},
        {"report before 2024-13-45", "report before 2024-13-45",
         "[Text: report before 2024-13-45]"},
        {"modified After 2024-02-30 report pdf", "report modified After 2024-02-30",
         "[Type: Pdf][Text: report modified After 2024-02-30]"},
        {"after 0000-01-01", "after 0000-01-01", "[Text: after 0000-01-01]"},
        {"after 2024-1-1", "after 2024-1-1", "[Text: after 2024-1-1]"},
        {"over 10 tib", "over 10 tib", "[Text: over 10 tib]"},
        {"older than a week", "older than a week", "[Text: older than a week]"},
        {"older  than 2 days", "older than 2 days", "[Text: older than 2 days]"},
        {"letters older than  3   Weeks", "letters",
         "[Modified: older than 3 Weeks][Text: letters]"},
        {"x", "x", "[Text: x]"},
        {"before 2024-02-01 from gmail over 1 kb after 2024-01-01 photo today show me rome", "rome",
         "[Type: Image][Size ≥ 1 KB][Modified: today][Modified after: 2024-01-01]"
         "[Modified before: 2024-02-01][From: Gmail][Text: rome]"},
    };
    for (const Row& row : table) {
        const SearchQuery query = parse(row.phrase);
        EXPECT_EQ(query.text, row.text) << row.phrase;
        EXPECT_EQ(joined(query), row.chips) << row.phrase;
    }
    EXPECT_EQ(parse(""), SearchQuery{});
    EXPECT_THAT(parse("Rome from last week  Pdfs over  5mb from x about me").chipWords,
                ElementsAre("Pdfs", "over  5mb", "from last week", "from x", "Rome"));
    EXPECT_EQ(parse("screenshots").kind, FileKind::image);
    EXPECT_TRUE(parse("screenshots").screenshotsOnly);
    EXPECT_FALSE(parse("pictures").screenshotsOnly);
}

TEST(QueryParser, ReadsMinimumSizes) {
    struct Row {
        std::string phrase;
        std::int64_t bytes;
        std::string chip;
    };
    const std::string huge(400, '9');
    const Row table[] = {
        {"over 2 mb", 2'000'000, "Size ≥ 2 MB"},
        {"over 2 mib", 2'097'152, "Size ≥ 2 MIB"},
        {"larger than 1.5 GB", 1'500'000'000, "Size ≥ 1.5 GB"},
        {"bigger than 1tb", 1'000'000'000'000, "Size ≥ 1 TB"},
        {"at least 300 bytes", 300, "Size ≥ 300 BYTES"},
        {"size:>1.5kib", 1536, "Size ≥ 1.5 KIB"},
        {"over 2.3 gb", 2'300'000'000, "Size ≥ 2.3 GB"},
        {"over ٢ mb", 2'000'000, "Size ≥ ٢ MB"},
        {"over 9223372036854775807 bytes", 9'223'372'036'854'771'712,
         "Size ≥ 9223372036854775807 BYTES"},
        {"over " + huge + " gb", 9'223'372'036'854'771'712, "Size ≥ " + huge + " GB"},
        {"over 0." + std::string(400, '0') + "1 gb", 0,
         "Size ≥ 0." + std::string(400, '0') + "1 GB"},
    };
    for (const Row& row : table) {
        const SearchQuery query = parse(row.phrase);
        EXPECT_EQ(query.minimumSize, row.bytes) << row.phrase;
        EXPECT_THAT(query.chips, ElementsAre(row.chip));
    }
}

TEST(QueryParser, ReadsRelativeDates) {
    struct Row {
        const char* phrase;
        UserCalendar calendar;
        const char* after;
        const char* before;
    };
    const UserCalendar cairo{"ar_EG", "Africa/Cairo"};
    const Row table[] = {
        {"today", newYork, "2024-03-13T04:00:00.000Z", "2024-03-14T04:00:00.000Z"},
        {"yesterday", newYork, "2024-03-12T04:00:00.000Z", "2024-03-13T04:00:00.000Z"},
        // Of several, the one that is looked for last decides.
        {"yesterday today", newYork, "2024-03-12T04:00:00.000Z", "2024-03-13T04:00:00.000Z"},
        {"last month this week", newYork, "2024-02-01T05:00:00.000Z", "2024-03-01T05:00:00.000Z"},
        // Weeks start on Sunday in the United States; this one has 167 hours.
        {"this week", newYork, "2024-03-10T05:00:00.000Z", "2024-03-17T04:00:00.000Z"},
        {"from Last Week", newYork, "2024-03-03T05:00:00.000Z", "2024-03-10T05:00:00.000Z"},
        // The same hour of the day a week ago, when the clock was still back.
        {"past week", newYork, "2024-03-06T17:00:00.000Z", "2024-03-13T16:00:00.000Z"},
        {"last 7 days", berlin, "2024-03-06T16:00:00.000Z", "2024-03-13T16:00:00.000Z"},
        {"last month", newYork, "2024-02-01T05:00:00.000Z", "2024-03-01T05:00:00.000Z"},
        {"this week", berlin, "2024-03-10T23:00:00.000Z", "2024-03-17T23:00:00.000Z"},
        {"this week", cairo, "2024-03-08T22:00:00.000Z", "2024-03-15T22:00:00.000Z"},
        {"last month", cairo, "2024-01-31T22:00:00.000Z", "2024-02-29T22:00:00.000Z"},
        // Esfand 1402 began on 2024-02-20, Bahman on 2024-01-21.
        {"last month", {"fa_IR", "UTC"}, "2024-01-21T00:00:00.000Z", "2024-02-20T00:00:00.000Z"},
    };
    for (const Row& row : table) {
        const SearchQuery query = parse(row.phrase, row.calendar);
        ASSERT_TRUE(query.modifiedAfter && query.modifiedBefore) << row.phrase;
        EXPECT_EQ(iso8601(*query.modifiedAfter), row.after) << row.phrase << row.calendar.locale;
        EXPECT_EQ(iso8601(*query.modifiedBefore), row.before) << row.phrase << row.calendar.locale;
        EXPECT_FALSE(query.source) << row.phrase;
    }
}

TEST(QueryParser, ReadsAges) {
    const std::pair<std::string, const char*> table[] = {
        {"older than 0 days", "2024-03-13T16:00:00.000Z"},
        {"older than 4 day", "2024-03-09T17:00:00.000Z"},
        {"older than 1 WEEK", "2024-03-06T17:00:00.000Z"},
        {"older than 1 month", "2024-02-13T17:00:00.000Z"},
        {"older than ١٠ years", "2014-03-13T16:00:00.000Z"},
        {"older than 99999999999999999999 years", "2024-03-13T16:00:00.000Z"}, // unreadable: 0
    };
    for (const auto& [phrase, before] : table) {
        const SearchQuery query = parse(phrase);
        ASSERT_TRUE(query.modifiedBefore) << phrase;
        EXPECT_EQ(iso8601(*query.modifiedBefore), before) << phrase;
        EXPECT_FALSE(query.modifiedAfter) << phrase;
    }
    const SearchQuery impossible = parse("older than 9999999999 days");
    EXPECT_FALSE(impossible.modifiedBefore);
    EXPECT_THAT(impossible.chips, ElementsAre("Modified: older than 9999999999 days"));
}

TEST(QueryParser, ReadsExplicitDates) {
    const SearchQuery both = parse("before 2024-11-04 modified after 2024-11-03");
    EXPECT_EQ(iso8601(*both.modifiedAfter), "2024-11-03T04:00:00.000Z");
    EXPECT_EQ(iso8601(*both.modifiedBefore), "2024-11-04T05:00:00.000Z");
    EXPECT_THAT(both.chips,
                ElementsAre("Modified after: 2024-11-03", "Modified before: 2024-11-04"));
    EXPECT_EQ(iso8601(*parse("after ٢٠٢٤-٠٣-٠١", berlin).modifiedAfter),
              "2024-02-29T23:00:00.000Z");
    // The Gregorian calendar whatever the user's is, and the first moment of a day whose
    // midnight the clock skipped.
    const UserCalendar bangkok{"th_TH", "Asia/Bangkok"};
    EXPECT_EQ(iso8601(*parse("after 2024-03-01", bangkok).modifiedAfter),
              "2024-02-29T17:00:00.000Z");
    const UserCalendar cairo{"ar_EG", "Africa/Cairo"};
    EXPECT_EQ(iso8601(*parse("after 2024-04-26", cairo).modifiedAfter), "2024-04-25T22:00:00.000Z");
}

TEST(QueryParser, ReadsSources) {
    struct Row {
        const char* phrase;
        const char* source;
        const char* chip;
    };
    const Row table[] = {
        {"from Google Drive", "drive.google.com", "From: Google Drive"},
        {"source:SLACK", "slack.com", "From: Slack"},
        {"from x", "x.com", "From: X"},
        {"from Example.org", "example.org", "From: example.org"},
        {"from www.example.org", "www.example.org", "From: example.org"},
        {"from a..-b.com", "a..-b.com", "From: a..-b.com"},
    };
    for (const Row& row : table) {
        const SearchQuery query = parse(row.phrase);
        EXPECT_EQ(query.source, row.source);
        EXPECT_THAT(query.chips, ElementsAre(row.chip));
    }
    for (const char* phrase : {"from my mother", "from xerox", "source: slack", "x.com"})
        EXPECT_FALSE(parse(phrase).source) << phrase;
}

TEST(QueryParser, MapsEveryServiceWordToAHostOfThatService) {
    for (const char* word :
         {"google drive", "gmail", "slack", "github", "chatgpt", "figma", "notion", "dropbox",
          "canva", "whatsapp", "pinterest", "twitter", "claude", "instagram", "x"}) {
        const SearchQuery query = parse(std::string("from ") + word);
        const auto origin = DownloadOrigin::from("https://" + query.source.value_or(""));
        ASSERT_TRUE(origin) << word;
        const bool isTwitter = std::string_view(word) == "twitter";
        const std::string name = isTwitter ? "x" : word;
        EXPECT_TRUE(origin->id == name || origin->name == "Google Drive") << word;
        EXPECT_NE(origin->symbol, "globe") << word;
    }
}

TEST(QueryParser, TakesAnyBytes) {
    EXPECT_EQ(parse("a\xff\xfe pdf\xc0").text, "a\uFFFD\uFFFD \uFFFD");
    EXPECT_EQ(parse(R"("quo"ted" (.*)+ [a-z] \b % _ ' ; --)").text,
              R"("quo"ted" (.*)+ [a-z] \b % _ ' ; --)");
    EXPECT_EQ(parse(std::string_view("a\0b", 3)).text, std::string_view("a\0b", 3));
    EXPECT_EQ(parse("caf\u00e9\u3000pdf\u2028x").text, "caf\u00e9 x");
    for (const char* piece : {"from a.b.", "over 1.", "after ", "older than 1 ", "\u0301", "x "}) {
        std::string text;
        while (text.size() < 100'000)
            text += piece;
        EXPECT_THAT(parse(text).modifiedBefore, testing::Eq(std::nullopt)) << piece;
    }
}

TEST(QueryParser, LeavesDatesEmptyThatNoCalendarHolds) {
    const SearchQuery query = QueryParser(newYork).parse("this week", Date{1e300});
    EXPECT_FALSE(query.modifiedAfter || query.modifiedBefore);
    EXPECT_THAT(query.text, IsEmpty());
}

TEST(CalendarPeriods, StartsYearsInTheUsersCalendar) {
    const CalendarPeriods gregorian(newYork);
    EXPECT_EQ(iso8601(*gregorian.startOf(CalendarUnit::year, -1, now)), "2023-01-01T05:00:00.000Z");
    const CalendarPeriods persian({"fa_IR", "UTC"});
    EXPECT_EQ(iso8601(*persian.startOf(CalendarUnit::year, 1, now)), "2024-03-20T00:00:00.000Z");
}

} // namespace
} // namespace tovi
