#include "core/indexing/ExclusionRules.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

TEST(MatchesExclusion, TakesPathsAndGlobs) {
    struct Case {
        const char* pattern;
        const char* relative;
        bool matches;
    };
    const Case table[] = {
        {"*.pem", "a/b/server.pem", true},
        {"credentials*", "a/credentials.txt", true},
        {"Projects/old", "Projects/old", true},
        {"Projects/*", "Projects/new/deep.txt", true},
        {"old", "Projects/older", false},
        {"/root/a", "a", true},
        {"/root/a", "a/b.txt", true},
        {"/root/a/", "a/b.txt", true},
        {"/root/a", "ab", false},
        {"[", "[", true},
        {"", "a", false},
    };
    for (const auto& [pattern, relative, matches] : table) {
        EXPECT_EQ(matchesExclusion(pattern, "/root/" + std::string(relative), relative), matches)
            << pattern << " on " << relative;
    }
}

TEST(IgnoreRules, MatchNamesAndPathsBelowTheirFolder) {
    const IgnoreRules rules = IgnoreRules::parse(
        "# comment\n!kept\n\n  trailing  \r\n/anchored/\n*.o\ndoc/*.txt\nsrc/gen\n[ab]c\n/\n");
    for (const char* path : {"trailing", "x/trailing", "anchored", "x/anchored", "x/y.o",
                             "doc/a.txt", "src/gen", "bc"}) {
        EXPECT_TRUE(rules.matches(path)) << path;
    }
    for (const char* path :
         {"kept", "comment", "doc/deep/a.txt", "x/doc/a.txt", "gen", "x/src/gen", "y.oo", "cc"}) {
        EXPECT_FALSE(rules.matches(path)) << path;
    }
}

TEST(IgnoreRules, StandAnyBytes) {
    EXPECT_TRUE(IgnoreRules::parse("").isEmpty());
    EXPECT_TRUE(IgnoreRules::parse("\xff*").isEmpty());
    EXPECT_TRUE(IgnoreRules::parse("///\n#\n!").isEmpty());
    EXPECT_TRUE(IgnoreRules::parse(std::string("a\0b", 3)).isEmpty());
    std::string stars;
    for (int n = 0; n < 1000; ++n)
        stars += "*a";
    EXPECT_FALSE(IgnoreRules::parse(stars + "b").matches(std::string(255, 'a')));
}

} // namespace
} // namespace tovi
