#include "base/Text.h"
#include "core/indexing/ContentExtractor.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

struct FixedReader final : PdfReader, PictureTextReader {
    PdfText pdf;
    std::string picture;

    PdfText readPdf(const FileDescriptor&, int maximumPages, std::size_t maximumCharacters,
                    const ReadOptions&, const std::stop_token&) override {
        EXPECT_EQ(maximumPages, 100);
        EXPECT_EQ(maximumCharacters, 200'000U);
        return pdf;
    }
    std::string readPictureText(const FileDescriptor&, int maximumSide, std::size_t,
                                const ReadOptions&, const std::stop_token&) override {
        EXPECT_EQ(maximumSide, 2400);
        return picture;
    }
};

class ContentExtractorTest : public testing::Test {
  protected:
    ExtractedContent extract(const std::string& name, std::int64_t size) {
        auto root = std::make_shared<const FileDescriptor>(
            ::open(tree.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const platform::RootedFile file(root, tree.path(name), tree.path().size() + 1);
        return ContentExtractor(reader, reader).extract(file, classify(name, false), size, {}, {});
    }
    ExtractedContent extractWritten(const std::string& name, const std::string& bytes) {
        tree.write(name, bytes);
        return extract(name, static_cast<std::int64_t>(bytes.size()));
    }
    std::string statusOf(const std::string& name, const std::string& bytes) {
        return extractWritten(name, bytes).status;
    }

    test::TemporaryTree tree;
    FixedReader reader;
};

TEST_F(ContentExtractorTest, ReadsTextUpToTwoMebibytes) {
    constexpr std::size_t limit = 2'097'152;
    EXPECT_EQ(extractWritten("a.txt", "words").content, "words");
    EXPECT_EQ(statusOf("b.txt", std::string(limit, 'x')),
              "Text indexed — truncated at 200,000 characters");
    EXPECT_EQ(statusOf("c.txt", std::string(limit + 1, 'x')),
              "Metadata only — text exceeds 2 MiB limit");
    EXPECT_EQ(statusOf("empty.md", ""), "Text indexed");
}

TEST_F(ContentExtractorTest, CutsTextAtCharactersNotBytes) {
    std::string accents;
    for (int n = 0; n < 200'000; ++n)
        accents += "e\u0301";
    const ExtractedContent whole = extractWritten("whole.txt", accents);
    EXPECT_EQ(whole.status, "Text indexed");
    EXPECT_EQ(whole.content, accents);
    const ExtractedContent cut = extractWritten("cut.txt", accents + "z");
    EXPECT_EQ(cut.status, "Text indexed — truncated at 200,000 characters");
    EXPECT_EQ(cut.content, accents);
}

TEST_F(ContentExtractorTest, TakesUtf8WithoutNulOnly) {
    const std::string refused = "Metadata only — non-UTF-8 or binary text";
    EXPECT_EQ(statusOf("latin.txt", "caf\xe9"), refused);
    EXPECT_EQ(statusOf("nul.txt", std::string("a\0b", 3)), refused);
    EXPECT_EQ(statusOf("wide.txt", "\xff\xfe"
                                   "a"),
              refused);
    EXPECT_EQ(extractWritten("mark.txt", "\ufeffa").content, "\ufeffa");
}

TEST_F(ContentExtractorTest, ChoosesTheReaderByKindAndName) {
    const std::pair<const char*, const char*> table[] = {
        {"README", "Text indexed"},
        {"page.HTML", "Text indexed"},
        {"letter.docx", "Metadata only — format extraction pending"},
        {"letter.rtf", "Metadata only — format extraction pending"},
        {"film.mp4", "Metadata only"},
        {"song.mp3", "Metadata only"},
        {"files.zip", "Metadata only"},
        {"unknown", "Metadata only"},
    };
    for (const auto& [name, status] : table)
        EXPECT_EQ(statusOf(name, "text"), status) << name;
}

TEST_F(ContentExtractorTest, SaysHowMuchOfAPdfWasRead) {
    const std::pair<PdfText, ExtractedContent> table[] = {
        {{.pageCount = 2, .pagesRead = 2, .text = "\n one\ntwo \n"},
         {"one\ntwo", "PDF text indexed"}},
        {{.pageCount = 150, .pagesRead = 100, .text = "short"},
         {"short", "PDF text indexed — partial (100-page / 200,000-character limit)"}},
        {{.pageCount = 1,
          .pagesRead = 1,
          .reachedCharacterLimit = true,
          .text = std::string(200'001, 'x')},
         {std::string(200'000, 'x'),
          "PDF text indexed — partial (100-page / 200,000-character limit)"}},
        {{.pageCount = 3, .pagesRead = 3, .text = " \n\n"},
         {"", "PDF has no extractable text — scanned PDF OCR pending"}},
        {{.locked = true, .text = ""}, {"", "Metadata only — encrypted PDF"}},
    };
    for (const auto& [pdf, expected] : table) {
        reader.pdf = pdf;
        const ExtractedContent found = extractWritten("a.pdf", "%PDF");
        EXPECT_EQ(found.content, expected.content);
        EXPECT_EQ(found.status, expected.status);
    }
}

TEST_F(ContentExtractorTest, SaysWhatAPictureHeld) {
    EXPECT_EQ(statusOf("a.png", "x"), "OCR completed — no text recognized");
    reader.picture = "SALE\nToday";
    const ExtractedContent found = extractWritten("a.png", "x");
    EXPECT_EQ(found.content, "SALE\nToday");
    EXPECT_EQ(found.status, "Apple Vision OCR — verify against original");
    reader.picture = std::string(200'001, 'x');
    EXPECT_EQ(extractWritten("a.png", "x").content.size(), 200'000U);
}

TEST_F(ContentExtractorTest, TestsSizesBeforeItOpensAFile) {
    EXPECT_EQ(extract("missing.txt", 2'097'153).status, "Metadata only — text exceeds 2 MiB limit");
    EXPECT_EQ(extract("missing.pdf", 52'428'801).status,
              "Metadata only — PDF exceeds 50 MiB limit");
    EXPECT_EQ(extract("missing.png", 31'457'281).status,
              "Metadata only — image exceeds 30 MiB limit");
    EXPECT_THROW(extract("missing.pdf", 52'428'800), std::system_error);
    EXPECT_THROW(extract("missing.png", 31'457'280), std::system_error);
    EXPECT_THROW(extract("missing.txt", 2'097'152), std::system_error);
}

} // namespace
} // namespace tovi
