#include "core/photos/PhotoPrint.h"
#include "tests/core/photos/Scenes.h"

#include <bit>

#include <gtest/gtest.h>

namespace tovi {
namespace {

using test::scene;

DecodedPicture filled(int width, int height, const std::string& pixel) {
    DecodedPicture picture{width, height, {}, width, height};
    for (int i = 0; i < width * height; ++i)
        picture.pixels += pixel;
    return picture;
}

TEST(PhotoPrint, IsNearForEditsAndFarForOtherPictures) {
    const PhotoPrint original = makePhotoPrint(scene(1, 240, 180));
    for (const auto& edited : {scene(1, 120, 90), scene(1, 240, 180, 0.8F), scene(1, 250, 190)}) {
        const PhotoPrint print = makePhotoPrint(edited);
        EXPECT_LT(distance(original.feature, print.feature), 0.2F);
        EXPECT_LE(std::popcount(original.differenceHash ^ print.differenceHash), 4);
    }
    for (unsigned other = 2; other < 12; ++other)
        EXPECT_GT(distance(original.feature, makePhotoPrint(scene(other, 240, 180)).feature), 0.4F);
}

TEST(PhotoPrint, HashesWhatGetsDarkerToTheRight) {
    // 9 x 8 pixels are hashed as they are; the row 3 falls from left to right, and the last pair
    // of the row 7.
    DecodedPicture picture = filled(9, 8, std::string(3, '\x10'));
    for (std::size_t x = 0; x < 9; ++x)
        picture.pixels.replace((3 * 9 + x) * 3, 3, 3, static_cast<char>(100 - 10 * x));
    picture.pixels.replace((7 * 9 + 8) * 3, 3, 3, '\x0f');
    EXPECT_EQ(makePhotoPrint(picture).differenceHash, 0x8000'0000'ff00'0000U);
}

TEST(PhotoPrint, TellsColourByTheMeans) {
    const PhotoPrint red = makePhotoPrint(filled(64, 64, "\xff\x01\x01"));
    constexpr double luma = 1 + 0.299 * 254;
    EXPECT_NEAR(red.feature[767], luma / 255, 1e-4);
    EXPECT_NEAR(red.feature[768], 2 * 0.564 * (1 - luma) / 255, 1e-4);
    EXPECT_NEAR(red.feature[769], 2 * 0.713 * (255 - luma) / 255, 1e-4);
}

TEST(PhotoPrint, TellsPagesOfTextFromPictures) {
    // Lines of short strokes, ten pixels high, on paper of this luma and with ink of that one.
    const auto page = [](int paper, int ink, std::size_t stroke) {
        DecodedPicture picture = filled(300, 400, std::string(3, static_cast<char>(paper)));
        for (std::size_t at = 0; at < 300 * 400; ++at) {
            const bool isInk = at / 300 % 20 < 10 && at % 300 % (4 * stroke) < stroke;
            if (isInk) picture.pixels.replace(3 * at, 3, 3, static_cast<char>(ink));
        }
        return makePhotoPrint(picture).looksLikeText;
    };
    EXPECT_TRUE(page(255, 0, 2));
    EXPECT_TRUE(page(30, 220, 3)) << "light on dark";
    EXPECT_FALSE(page(255, 0, 15)) << "shapes";
    EXPECT_FALSE(page(200, 170, 2)) << "grain";
    for (unsigned seed = 1; seed < 12; ++seed)
        EXPECT_FALSE(makePhotoPrint(scene(seed, 240, 180, 2)).looksLikeText) << seed;
}

TEST(PhotoPrint, IsFiniteForEveryShape) {
    for (const auto& [width, height] : {std::pair(1, 768), {768, 1}, {1, 1}, {2, 3}, {127, 129}}) {
        const PhotoPrint print = makePhotoPrint(scene(3, width, height));
        EXPECT_TRUE(std::isfinite(distance(print.feature, FeaturePrint{})));
        EXPECT_TRUE(std::isfinite(print.sharpness));
        EXPECT_DOUBLE_EQ(print.aspectRatio, static_cast<double>(width) / height);
    }
    EXPECT_GT(makePhotoPrint(scene(1, 100, 100)).sharpness,
              makePhotoPrint(scene(1, 400, 400)).sharpness)
        << "the same drawn larger is softer";
}

} // namespace
} // namespace tovi
