#pragma once

#include "core/photos/PictureDecoder.h"

#include <cmath>
#include <random>
#include <vector>

namespace tovi::test {

/// A picture of forty soft blots of colour, drawn at any size; every seed gives another one.
/// `exposure` multiplies its values.
inline DecodedPicture scene(unsigned seed, int width, int height, float exposure = 1) {
    struct Blot {
        float x, y, radius;
        float colour[3];
    };
    std::mt19937 random(seed);
    const auto number = [&] { return static_cast<float>(random() % 10'000) / 10'000; };
    std::vector<Blot> blots(40);
    for (Blot& blot : blots)
        blot = {number(), number(), 0.03F + 0.2F * number(), {number(), number(), number()}};
    DecodedPicture picture{width, height, {}, 4 * width, 4 * height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            float sums[3] = {0.1F, 0.1F, 0.1F};
            for (const Blot& blot : blots) {
                const float across = (static_cast<float>(x) + 0.5F) / static_cast<float>(width);
                const float down = (static_cast<float>(y) + 0.5F) / static_cast<float>(height);
                const float apart = std::hypot(across - blot.x, down - blot.y) / blot.radius;
                for (int c = 0; c < 3; ++c)
                    sums[c] += apart < 1 ? blot.colour[c] * (1 - apart) : 0;
            }
            for (const float sum : sums)
                picture.pixels += static_cast<char>(std::min(255.F, exposure * 160 * sum));
        }
    }
    return picture;
}

} // namespace tovi::test
