#include "platform/Availability.h"
#include "platform/DiscoveryMetadata.h"
#include "platform/Packages.h"
#include "tests/support/TemporaryTree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/xattr.h>

namespace tovi::platform {
namespace {

using test::TemporaryTree;
using testing::ElementsAre;
using testing::IsEmpty;

class FileMetadata : public testing::Test {
  protected:
    void SetUp() override {
        path = tree.write("file.pdf", "bytes");
        if (::setxattr(path.c_str(), "user.probe", "", 0, 0) != 0) {
            GTEST_SKIP() << "this file system keeps no extended attributes";
        }
    }
    void set(const std::string& name, std::string_view value) const {
        ASSERT_EQ(::setxattr(path.c_str(), ("user." + name).c_str(), value.data(), value.size(), 0),
                  0);
    }

    TemporaryTree tree;
    std::string path;
};

TEST_F(FileMetadata, ReadsAttributesUpToALimit) {
    set("note", std::string("a\0b", 3));
    set("empty", "");
    const ExtendedAttributes attributes(path);
    EXPECT_EQ(attributes.read("note", 3), std::string("a\0b", 3));
    EXPECT_EQ(attributes.read("note", 2), std::nullopt);
    EXPECT_EQ(attributes.read("empty", 0), "");
    EXPECT_EQ(attributes.read("missing", 99), std::nullopt);
    EXPECT_FALSE(attributes.contains("not"));
}

TEST_F(FileMetadata, ReadsMoreNamesThanUsual) {
    for (int n = 0; n < 40; ++n)
        set("attribute-number-" + std::to_string(n), "x");
    EXPECT_TRUE(ExtendedAttributes(path).contains("attribute-number-39"));
}

TEST_F(FileMetadata, DoesNotFollowALink) {
    set("note", "x");
    EXPECT_FALSE(ExtendedAttributes(tree.link("link", path)).contains("note"));
    EXPECT_FALSE(ExtendedAttributes(tree.path("missing")).contains("note"));
}

TEST_F(FileMetadata, FindsTheOriginThenTheReferrer) {
    EXPECT_THAT(discoveryMetadata(ExtendedAttributes(path)).whereFroms, IsEmpty());
    set("xdg.referrer.url", "https://example.org/page");
    set("xdg.origin.url", "https://example.org/file.pdf");
    EXPECT_THAT(discoveryMetadata(ExtendedAttributes(path)).whereFroms,
                ElementsAre("https://example.org/file.pdf", "https://example.org/page"));
}

TEST_F(FileMetadata, KnowsPlaceholdersByMark) {
    const SystemAvailability availability;
    EXPECT_TRUE(availability.isAvailableLocally(path));
    set("nextcloud.hydrate_exec", "/usr/bin/nextcloud");
    EXPECT_FALSE(availability.isAvailableLocally(path));
}

TEST(Availability, KnowsPlaceholdersBySuffix) {
    const SystemAvailability availability;
    EXPECT_FALSE(availability.isAvailableLocally("/home/ann/Cloud/film.mkv.nextcloud"));
    EXPECT_FALSE(availability.isAvailableLocally("/home/ann/Cloud/film.mkv.owncloud"));
    EXPECT_TRUE(availability.isAvailableLocally("/home/ann/Cloud/about.nextcloud.txt"));
}

TEST(Packages, AreKnownByExtension) {
    for (const char* name : {"Tool.app", "Pictures.PhotosLibrary", "Kit.framework"}) {
        EXPECT_TRUE(isPackage(name)) << name;
    }
    for (const char* name : {"app", "Photos", "notes.d", "my.files"}) {
        EXPECT_FALSE(isPackage(name)) << name;
    }
}

} // namespace
} // namespace tovi::platform
