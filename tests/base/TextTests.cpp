#include "base/Text.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467"; // one character
const std::string flag = "\U0001F1E9\U0001F1EA";                         // one character
const std::string accented = "e\u0301";                                  // one character

TEST(Text, CountsCharactersAsAPersonSeesThem) {
    EXPECT_EQ(countCharacters(""), 0U);
    EXPECT_EQ(countCharacters("plain"), 5U);
    EXPECT_EQ(countCharacters("a\r\nb\n\r"), 5U);
    EXPECT_EQ(countCharacters(family + flag + accented), 3U);
    EXPECT_EQ(countCharacters("x" + accented + "y\r\n" + family), 5U);
    EXPECT_EQ(countCharacters("\u0600"
                              "1"),
              1U)
        << "a prepended mark joins an ASCII digit";
}

TEST(Text, CountsTheSameHoweverItIsMixed) {
    // Every place of one combining mark in a long ASCII text: no fast path may cut before it.
    for (std::size_t at = 1; at < 200; ++at) {
        std::string text(200, 'a');
        text.insert(at, "\u0301");
        text.insert(0, "\u00e9");
        EXPECT_EQ(countCharacters(text), 201U) << at;
    }
    for (std::size_t gap = 60; gap < 70; ++gap) {
        const std::string text = "\u00e9" + std::string(gap, 'a') + "\r\n" + std::string(80, 'b');
        EXPECT_EQ(countCharacters(text), gap + 82) << gap;
        const std::string marked = "\u00e9" + std::string(gap, 'a') + accented + "b";
        EXPECT_EQ(countCharacters(marked), gap + 3) << gap;
    }
}

TEST(Text, NeverCutsInsideACharacter) {
    EXPECT_EQ(firstCharacters("abc", 2), "ab");
    EXPECT_EQ(firstCharacters("abc", 3), "abc");
    EXPECT_EQ(firstCharacters("a\r\nb", 2), "a\r\n");
    EXPECT_EQ(firstCharacters(flag + accented + "z", 1), flag);
    EXPECT_EQ(firstCharacters(flag + accented + "z", 2), flag + accented);
    EXPECT_EQ(firstCharacters(accented, 0), "");
    EXPECT_EQ(lastCharacters("abc", 2), "bc");
    EXPECT_EQ(lastCharacters("a\r\nb", 2), "\r\nb");
    EXPECT_EQ(lastCharacters("z" + flag + flag + accented, 2), flag + accented);
    EXPECT_EQ(lastCharacters("z" + accented, 5), "z" + accented);
    EXPECT_EQ(lastCharacters(accented, 0), "");
}

TEST(Text, ValidatesUtf8) {
    EXPECT_TRUE(isValidUtf8(family));
    for (const char* bytes :
         {"\xff", "\xc0\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "a\xe2\x82"}) {
        EXPECT_FALSE(isValidUtf8(bytes));
    }
}

TEST(Text, SplitsAndTrimsAtUnicodeWhiteSpace) {
    EXPECT_EQ(trimmed(" \t\u00a0 a b\u3000\r\n"), "a b");
    EXPECT_EQ(trimmed(" \n"), "");
    const std::vector<std::string_view> expected{"one", "two", "three"};
    EXPECT_EQ(splitWhitespace("  one\u2003two\nthree "), expected);
    EXPECT_TRUE(splitWhitespace(" \u0085 ").empty());
}

TEST(Text, MakesNamesPrintable) {
    EXPECT_EQ(printable("a\nb\x1b[31m"), "a\\nb\\x1b[31m");
    EXPECT_EQ(printable("evil\u202efdp.exe"), "evil\\u{202e}fdp.exe");
    EXPECT_EQ(printable("caf\xe9.txt"), "caf\\xe9.txt");
    EXPECT_EQ(printable(family + "\u00fc"), family + "\u00fc");
}

TEST(Text, ReadsPathParts) {
    EXPECT_EQ(lastPathComponent("/a/b.txt"), "b.txt");
    EXPECT_EQ(lastPathComponent("/"), "/");
    EXPECT_EQ(lowercasedExtension("Photo.JPEG"), "jpeg");
    EXPECT_EQ(lowercasedExtension("a.tar.gz"), "gz");
    EXPECT_EQ(lowercasedExtension(".env"), "");
    EXPECT_EQ(lowercasedExtension("none"), "");
    EXPECT_TRUE(isSameOrBelow("/a/b", "/a"));
    EXPECT_TRUE(isSameOrBelow("/a", "/a"));
    EXPECT_TRUE(isSameOrBelow("/a", "/"));
    EXPECT_FALSE(isSameOrBelow("/ab", "/a"));
}

} // namespace
} // namespace tovi
