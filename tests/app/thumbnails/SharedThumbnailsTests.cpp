#include "app/thumbnails/SharedThumbnails.h"
#include "tests/app/thumbnails/SharedThumbnail.h"
#include "tests/support/TemporaryTree.h"

#include <gtest/gtest.h>

namespace tovi {
namespace {

/// The example of the freedesktop standard.
constexpr const char* photo = "/home/jens/photos/me.png";
constexpr const char* photoUri = "file:///home/jens/photos/me.png";
const std::string photoName = "c6ee772d9e49320e97ec29a7eb5b1697.png";

TEST(SharedThumbnails, NameFilesAsTheDesktopDoes) {
    EXPECT_EQ(fileUri(photo), photoUri);
    EXPECT_EQ(fileUri("/a;b/c=d!$&'()*+,:@~\u00e9 #%\xff.jpg"), // as `gio info` prints it
              "file:///a%3Bb/c=d!$&'()*+,:@~%C3%A9%20%23%25%FF.jpg");
}

TEST(SharedThumbnails, AreUsedWhenTheyBelongToTheFileAsItIs) {
    const std::string header =
        "\x89PNG\r\n\x1a\n" + std::string(3, '\0') + "\rIHDR" + std::string(17, '\0');
    const std::string right = test::asThumbnailOf(photoUri, "77", header);
    const auto isFound = [](const std::string& thumbnail, const std::string& size, int pixels) {
        const test::TemporaryTree tree;
        tree.write(size + "/" + photoName, thumbnail);
        return openSharedThumbnail(tree.path(), photo, 77, pixels).isOpen();
    };
    EXPECT_TRUE(isFound(right, "large", 256));
    EXPECT_TRUE(isFound(right, "xx-large", 1)) << "a larger one serves";
    EXPECT_FALSE(isFound(right, "normal", 129)) << "a smaller one does not";
    EXPECT_FALSE(isFound(right, "huge", 1));
    for (const std::string& wrong : {test::asThumbnailOf(photoUri, "78", header),
                                     test::asThumbnailOf("file:///me.png", "77", header), header,
                                     right.substr(0, 60), "words" + right, std::string()})
        EXPECT_FALSE(isFound(wrong, "large", 256)) << wrong;

    const test::TemporaryTree tree;
    tree.write("large/real.png", right);
    tree.link("large/" + photoName, tree.path("large/real.png"));
    EXPECT_FALSE(openSharedThumbnail(tree.path(), photo, 77, 256).isOpen());
}

} // namespace
} // namespace tovi
