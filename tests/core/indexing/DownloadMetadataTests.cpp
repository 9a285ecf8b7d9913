#include "core/indexing/DownloadMetadata.h"
#include "tests/support/PropertyListWriter.h"
#include "tests/support/TemporaryTree.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

namespace tovi {
namespace {

using test::PropertyListWriter;

constexpr Date created{1'700'000'000};
constexpr double downloaded = 700'000'000; // seconds since 2001

class DownloadMetadataTest : public testing::Test {
  protected:
    void SetUp() override {
        if (::setxattr(tree_.write("probe").c_str(), "user.probe", "", 0, 0) != 0) {
            GTEST_SKIP() << "this file system keeps no extended attributes";
        }
    }

    void setWhereFroms(const std::vector<std::string>& addresses) {
        PropertyListWriter writer;
        std::vector<std::size_t> items;
        for (const std::string& address : addresses)
            items.push_back(writer.text(address));
        writer.array(items);
        set("com.apple.metadata:kMDItemWhereFroms", writer.finish());
    }

    void setDate() {
        PropertyListWriter writer;
        writer.array({writer.text("no date"), writer.date(downloaded)});
        set("com.apple.metadata:kMDItemDownloadedDate", writer.finish());
    }

    void set(const std::string& name, const std::string& value) {
        ASSERT_EQ(
            ::setxattr(file_.c_str(), ("user." + name).c_str(), value.data(), value.size(), 0), 0);
    }

    DownloadMetadata read(bool isAvailable = true) const {
        platform::FileAttributes attributes;
        attributes.createdAt = created;
        return DownloadMetadata::read(file_, platform::ExtendedAttributes(file_), attributes,
                                      isAvailable, std::nullopt);
    }

    test::TemporaryTree tree_;
    std::string file_ = tree_.write("file.pdf");
};

TEST_F(DownloadMetadataTest, ReadsWhatTheBrowserWrote) {
    EXPECT_EQ(read(), DownloadMetadata{});
    setWhereFroms({"message:%3C1%3E", "https://a.example/x.pdf", "https://b.example"});
    setDate();
    set("xdg.origin.url", "https://other.example/");
    const DownloadMetadata expected{"https://a.example/x.pdf",
                                    Date::fromReferenceSeconds(downloaded)};
    EXPECT_EQ(read(), expected);
    EXPECT_EQ(read(false), DownloadMetadata{}) << "a placeholder is left alone";
}

TEST_F(DownloadMetadataTest, FallsBackToWhatTheDesktopWrote) {
    set("xdg.origin.url", "blob:https://a.example/1");
    set("xdg.referrer.url", "https://a.example/page");
    EXPECT_EQ(read().sourceURL, "https://a.example/page");
    set("com.apple.metadata:kMDItemWhereFroms", "bplist00 broken");
    EXPECT_EQ(read().sourceURL, "https://a.example/page");
    set("xdg.referrer.url", "https://a.example/\xff");
    EXPECT_EQ(read().sourceURL, std::nullopt) << "an address is UTF-8";
    set("xdg.referrer.url", std::string("https://a.example/\0x", 20));
    EXPECT_EQ(read().sourceURL, std::nullopt);
}

TEST_F(DownloadMetadataTest, PrefersTheRecordedDateInDownloadsFolders) {
    file_ = tree_.write("Downloads/a.pdf");
    EXPECT_EQ(read().downloadedAt, created);
    EXPECT_EQ(read(false).downloadedAt, created);
    setDate();
    EXPECT_EQ(read().downloadedAt, Date::fromReferenceSeconds(downloaded));
}

TEST(DownloadMetadata, CountsFilesInDownloadsFolders) {
    struct Row {
        const char* path;
        std::optional<std::string> folder;
        bool isDownloaded;
    };
    const Row table[] = {
        {"/nowhere/Downloads/a", std::nullopt, true},
        {"/nowhere/Downloads/deep/er/a", "/nowhere/Transfers", true},
        {"/nowhere/downloads/a", std::nullopt, false},
        {"/nowhere/My Downloads/a", std::nullopt, false},
        {"/nowhere/Downloads", std::nullopt, false}, // a file of that name
        {"/nowhere/Transfers/deep/a", "/nowhere/Transfers", true},
        {"/nowhere/Transfers2/a", "/nowhere/Transfers", false},
    };
    platform::FileAttributes attributes;
    attributes.createdAt = created;
    for (const Row& row : table) {
        const auto metadata = DownloadMetadata::read(
            row.path, platform::ExtendedAttributes(row.path), attributes, true, row.folder);
        EXPECT_EQ(metadata.downloadedAt.has_value(), row.isDownloaded) << row.path;
    }
}

} // namespace
} // namespace tovi
