#include "app/thumbnails/SharedThumbnails.h"
#include "app/thumbnails/ThumbnailMaker.h"
#include "platform/FileAttributes.h"
#include "tests/app/thumbnails/SharedThumbnail.h"
#include "tests/decoder/PdfMaker.h"
#include "tests/support/TemporaryTree.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

class OnTheDisk final : public platform::Availability {
  public:
    using Availability::isAvailableLocally;
    bool isAvailableLocally(const std::string&,
                            const platform::ExtendedAttributes&) const override {
        return answer;
    }
    bool answer = true;
};

class ThumbnailMakerTest : public testing::Test {
  protected:
    static std::string fixture(const std::string& name) {
        return test::readFile(std::string(TOVI_TEST_DATA) + "/decoder/" + name);
    }
    FileThumbnailKey keyOf(const std::string& name, int pixels) const {
        const auto attributes = platform::attributesOf(tree_.path(name));
        return {tree_.path(name), attributes.modifiedAt, attributes.size, pixels};
    }
    Thumbnail make(const FileThumbnailKey& key) const { return maker_.make(key, {}); }

    test::TemporaryTree tree_;
    test::TemporaryTree shared_;
    decoder::DecoderPool decoders_{{.program = TOVI_DECODER, .processes = 1}};
    OnTheDisk availability_;
    ThumbnailMaker maker_{decoders_, availability_, shared_.path()};
};

TEST_F(ThumbnailMakerTest, ShrinksPicturesAndDrawsPdfs) {
    tree_.write("scan.png", fixture("scan.png"));
    tree_.write("page.PDF", test::makePdf({"(x) Tj ET 1 0 0 rg 0 0 306 792 re f BT (y)"}));
    const Thumbnail picture = make(keyOf("scan.png", 100));
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(std::max(picture->width, picture->height), 100);
    const Thumbnail page = make(keyOf("page.PDF", 132));
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->width, 102); // of 612 x 792 points
    EXPECT_EQ(page->height, 132);
    const std::size_t row = std::size_t{66} * 102 * 3;
    EXPECT_EQ(page->pixels.substr(row + 20 * 3, 3), std::string("\xff\0\0", 3));
    EXPECT_EQ(page->pixels.substr(row + 80 * 3, 3), "\xff\xff\xff");

    availability_.answer = false;
    EXPECT_EQ(make(keyOf("scan.png", 100)), nullptr);
}

TEST_F(ThumbnailMakerTest, HasNoneOfWhatIsDamagedOrChanged) {
    tree_.write("words.png", "words");
    tree_.write("words.pdf", "words");
    tree_.write("page.jpg", test::makePdf({"(x)"}));
    tree_.write("locked.pdf", fixture("user-password.pdf"));
    for (const char* name : {"words.png", "words.pdf", "page.jpg", "locked.pdf"})
        EXPECT_THROW(make(keyOf(name, 64)), std::exception) << name;
    tree_.write("scan.png", fixture("scan.png"));
    const FileThumbnailKey before = keyOf("scan.png", 64);
    tree_.write("scan.png", fixture("screenshot.png"));
    EXPECT_EQ(make(before), nullptr);
    tree_.link("link.png", tree_.path("scan.png"));
    FileThumbnailKey link = keyOf("scan.png", 64);
    link.path = tree_.path("link.png");
    EXPECT_THROW(make(link), std::exception);
}

TEST_F(ThumbnailMakerTest, TakesTheDesktopsThumbnailIfItIsSound) {
    tree_.write("page.pdf", test::makePdf({""}));
    tree_.setModified("page.pdf", 77.9);
    const auto share = [&](const std::string& png) {
        const std::string uri = fileUri(tree_.path("page.pdf"));
        shared_.write("large/" + sharedThumbnailName(uri), test::asThumbnailOf(uri, "77", png));
    };
    share(fixture("screenshot.png"));
    const Thumbnail shared = make(keyOf("page.pdf", 200));
    ASSERT_NE(shared, nullptr);
    EXPECT_GT(shared->width, shared->height) << "the page is upright, the screenshot is not";
    share(fixture("screenshot.png").substr(0, 33)); // no pixels
    const Thumbnail made = make(keyOf("page.pdf", 200));
    ASSERT_NE(made, nullptr);
    EXPECT_LT(made->width, made->height);
}

} // namespace
} // namespace tovi
