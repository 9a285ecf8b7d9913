#include "base/Cancelled.h"
#include "core/photos/SimilarPhotoScanner.h"
#include "platform/FileAttributes.h"
#include "platform/ReadFile.h"
#include "tests/core/photos/Scenes.h"
#include "tests/support/TemporaryTree.h"

#include <atomic>
#include <filesystem>
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;

/// "scene SEED [WIDTH HEIGHT]" is a picture; anything else cannot be decoded.
class SceneDecoder final : public PictureDecoder {
  public:
    DecodedPicture decodePicture(const FileDescriptor& file, int,
                                 const std::stop_token& stop) override {
        throwIfCancelled(stop);
        ++calls;
        const std::string text = platform::readFile(file, 100, "test");
        unsigned seed = 0;
        int width = 96;
        int height = 72;
        if (std::sscanf(text.c_str(), "scene %u %d %d", &seed, &width, &height) < 1)
            throw std::runtime_error("The picture could not be decoded.");
        if (whileDecoding) whileDecoding();
        return test::scene(seed, width, height);
    }
    std::atomic<int> calls = 0;
    std::function<void()> whileDecoding;
};

class SimilarPhotos : public testing::Test {
  protected:
    /// The later a photo is added, the older it is.
    void add(const std::string& name, const std::string& text) {
        tree_.write(name, text);
        tree_.setModified(name, 1'000'000 - static_cast<double>(files_.size()));
        const auto attributes = platform::attributesOf(tree_.path(name));
        FileRecord& file = files_.emplace_back();
        file.path = tree_.path(name);
        file.kind = FileKind::image;
        file.size = static_cast<std::int64_t>(text.size());
        file.modifiedAt = attributes.modifiedAt;
    }
    SimilarPhotoReport scan(const SimilarPhotoOptions& options = {}, std::stop_token stop = {}) {
        return similarPhotos(files_, {tree_.path()}, options, progress_, decoder_, availability_,
                             cache_, stop);
    }
    std::vector<std::vector<std::string>> names(const SimilarPhotoReport& report) {
        std::vector<std::vector<std::string>> result;
        for (const auto& group : report.groups) {
            auto& members = result.emplace_back();
            for (const FileRecord& file : group.files)
                members.push_back(file.path.substr(tree_.path().size() + 1));
        }
        return result;
    }

    test::TemporaryTree tree_;
    std::vector<FileRecord> files_;
    SceneDecoder decoder_;
    platform::SystemAvailability availability_;
    PhotoPrintCache cache_;
    SimilarPhotoProgressHandler progress_;
};

TEST_F(SimilarPhotos, AreGroupedInTheOrderOfTheirDates) {
    add("b1.jpg", "scene 2");
    add("a1.png", "scene 1 64 48");
    add("turned.jpg", "scene 2 72 96"); // another aspect is never compared
    add("a2.heic", "scene 1");
    add("alone.jpg", "scene 3");
    add("b2.JPG", "scene 2");
    add("broken.jpg", "nothing");
    std::vector<std::pair<std::string, int>> heard;
    progress_ = [&](const SimilarPhotoProgress& progress) {
        heard.emplace_back(progress.phase, progress.completed);
    };
    const SimilarPhotoReport report = scan();
    EXPECT_THAT(names(report),
                ElementsAre(ElementsAre("b1.jpg", "b2.JPG"), ElementsAre("a1.png", "a2.heic")));
    EXPECT_EQ(report.considered, 7);
    EXPECT_EQ(report.analyzed, 6);
    EXPECT_EQ(report.skipped, 1);
    EXPECT_FALSE(report.limited);
    const SimilarPhotoGroup& group = report.groups[1];
    EXPECT_EQ(group.id(), tree_.path("a1.png"));
    EXPECT_EQ(group.keeper(), std::optional(1U)) << "it has more pixels";
    EXPECT_EQ(group.potentialBytes(), 7);
    ASSERT_EQ(heard.size(), 7U + 6U);
    EXPECT_EQ(heard[6], std::pair(std::string("Reading photos"), 7));
    EXPECT_EQ(heard[7], std::pair(std::string("Comparing photos"), 0));

    decoder_.calls = 0;
    EXPECT_EQ(names(scan()), names(report));
    EXPECT_EQ(decoder_.calls, 1) << "only what failed is read again";
}

TEST_F(SimilarPhotos, StopAtTheLimits) {
    for (const char* name : {"1.jpg", "2.jpg", "3.jpg"})
        add(name, "scene 1");
    const SimilarPhotoReport one = scan({.maximumComparisons = 0});
    EXPECT_EQ(one.comparisons, 1);
    EXPECT_TRUE(one.limited);
    EXPECT_THAT(names(one), ElementsAre(ElementsAre("1.jpg", "2.jpg")));
    const SimilarPhotoReport all = scan({.maximumComparisons = 3});
    EXPECT_FALSE(all.limited);
    EXPECT_THAT(names(all), ElementsAre(ElementsAre("1.jpg", "2.jpg", "3.jpg")));
    const SimilarPhotoReport two = scan({.maximumImages = 2});
    EXPECT_EQ(two.considered, 2);
    EXPECT_EQ(scan({.maximumImages = -1}).considered, 1);
    EXPECT_EQ(scan({.maximumFileBytes = 6}).considered, 0);
}

TEST_F(SimilarPhotos, LeaveOutWhatIsNotEligible) {
    for (const char* name :
         {"a.gif", "a.svg", "a", ".hidden/a.jpg", "node_modules/a.jpg", "secret/a.jpg"})
        add(name, "scene 1");
    add("real/a.jpg", "scene 1");
    tree_.link("link", tree_.path("real"));
    tree_.link("link.jpg", tree_.path("real/a.jpg"));
    for (const char* name : {"link/a.jpg", "link.jpg"}) {
        files_.push_back(files_.back());
        files_.back().path = tree_.path(name);
    }
    files_.push_back(files_[6]);
    files_.back().kind = FileKind::other;
    files_.push_back(files_[6]);
    files_.back().path = "/elsewhere/a.jpg";
    EXPECT_EQ(scan().considered, 1);
}

TEST_F(SimilarPhotos, SkipWhatChanges) {
    for (const char* name : {"replaced.jpg", "larger.jpg", "later.jpg", "gone.jpg"})
        add(name, "scene 1");
    tree_.write("larger.jpg", "scene 1 96 72");
    tree_.setModified("later.jpg", 7);
    std::filesystem::remove(tree_.path("gone.jpg"));
    tree_.write("other.jpg", "scene 1");
    decoder_.whileDecoding = [this] {
        std::filesystem::rename(tree_.path("other.jpg"), tree_.path("replaced.jpg"));
    };
    const SimilarPhotoReport report = scan();
    EXPECT_EQ(report.considered, 4);
    EXPECT_EQ(report.skipped, 4);
    EXPECT_EQ(decoder_.calls, 1);
    for (const char* meanwhile : {"scene 1 grown", "scene"}) {
        files_.clear();
        add("open.jpg", "scene 1");
        decoder_.whileDecoding = [&] { tree_.write("open.jpg", meanwhile); };
        EXPECT_EQ(scan().skipped, 1) << meanwhile;
    }
}

TEST_F(SimilarPhotos, StopWhenAsked) {
    for (int i = 0; i < 200; ++i)
        add(std::to_string(i) + ".jpg", "scene 1");
    std::stop_source source;
    progress_ = [&](const SimilarPhotoProgress&) { source.request_stop(); };
    EXPECT_THROW(scan({}, source.get_token()), Cancelled);
    EXPECT_LT(decoder_.calls, 200);
}

TEST(PhotoPrintCache, ForgetsWhatWasNotUsedForTheLongestTime) {
    PhotoPrintCache cache(2);
    const auto file = [](const char* path, double modified) {
        FileRecord record;
        record.path = path;
        record.modifiedAt = {modified};
        return record;
    };
    cache.insert(file("a", 1), {});
    cache.insert(file("b", 1), {});
    EXPECT_TRUE(cache.find(file("a", 1)));
    EXPECT_FALSE(cache.find(file("a", 2)));
    cache.insert(file("c", 1), {});
    EXPECT_TRUE(cache.find(file("a", 1)));
    EXPECT_FALSE(cache.find(file("b", 1)));
}

} // namespace
} // namespace tovi
