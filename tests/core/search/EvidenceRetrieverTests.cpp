#include "core/search/EvidenceRetriever.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

FileRecord textFile(const std::string& path, const std::string& content) {
    FileRecord file;
    file.path = path;
    file.content = content;
    return file;
}

std::string repeated(const std::string& piece, std::size_t count) {
    std::string text;
    for (; count > 0; --count)
        text += piece;
    return text;
}

TEST(EvidenceRetriever, SplitsAQuestionIntoItsWords) {
    const struct {
        std::string question;
        std::vector<std::string> words;
    } cases[] = {
        {"Where's the RENT, the rent?", {"where's", "the", "rent"}},
        {"a b c \u00e9 ?", {}},
        {"\U0001F600\U0001F600 \U0001F468\u200D\U0001F469", {}},
        {"\u00c4RGER im B\u00fcro 2024", {"\u00e4rger", "im", "b\u00fcro", "2024"}},
        {"", {}},
    };
    for (const auto& [question, words] : cases)
        EXPECT_EQ(EvidenceRetriever::words(question), words) << question;
}

TEST(EvidenceRetriever, CutsExcerptsOfTheStoredTextAtCharacters) {
    const std::string accented = "e\u0301"; // one character
    const std::string dotted = "\u0130";    // its lower case is longer
    const struct {
        std::string text;
        std::string excerpt;
    } cases[] = {
        {"Some RENT is due", "Some RENT is due"},
        {repeated("x", 119) + "RENT", repeated("x", 119) + "RENT"},
        {repeated("x", 500) + "RENT" + repeated("y", 500),
         repeated("x", 120) + "RENT" + repeated("y", 476)},
        {repeated(accented, 500) + "RENT" + repeated(accented, 500),
         repeated(accented, 120) + "RENT" + repeated(accented, 476)},
        {repeated(dotted, 500) + "Rent", repeated(dotted, 120) + "Rent"},
        {repeated("\r\n", 200) + "rent", repeated("\r\n", 120) + "rent"},
    };
    for (const auto& [text, excerpt] : cases) {
        const auto citations = EvidenceRetriever::answer("rent", {textFile("/f", text)});
        ASSERT_EQ(citations.size(), 1U) << text;
        EXPECT_EQ(citations[0].excerpt, excerpt);
        EXPECT_EQ(citations[0].file.content, text);
    }
}

TEST(EvidenceRetriever, RanksPassagesByTheWordsTheyHold) {
    const std::vector<FileRecord> files{
        textFile("/none", "nothing of it"),
        textFile("/one", "rent"),
        textFile("/late", "rent" + repeated(" filler", 300) + " heating"),
        textFile("/both", "the heating and the Rent"),
        textFile("/inside", "current"),
        textFile("/empty", ""),
    };
    std::vector<std::string> paths;
    for (const auto& citation : EvidenceRetriever::answer("rent heating heating", files))
        paths.push_back(citation.file.path);
    EXPECT_THAT(paths, ElementsAre("/both", "/one", "/late", "/inside"));
    EXPECT_THAT(EvidenceRetriever::answer("x y z", files), IsEmpty());
}

TEST(EvidenceRetriever, FindsTheFirstOfVeryManyWords) {
    std::string question;
    for (int n = 0; n < 100'000; ++n)
        question += "w" + std::to_string(n) + "x ";
    const std::string lead(1'000, '-');
    const auto citations = EvidenceRetriever::answer(
        question + "absent absentee",
        {textFile("/f", lead + "w w1 w12 w99999x w5x"), textFile("/g", "w100000x absentees")});
    ASSERT_EQ(citations.size(), 2U);
    EXPECT_EQ(citations[0].excerpt, std::string(111, '-') + "w w1 w12 w99999x w5x");
    EXPECT_EQ(citations[1].excerpt, "w100000x absentees");
}

} // namespace
} // namespace tovi
