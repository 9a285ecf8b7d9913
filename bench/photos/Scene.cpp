#include "bench/photos/Scene.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace tovi::bench {
namespace {

struct Colour {
    float r = 0, g = 0, b = 0;
};

Colour mix(const Colour& from, const Colour& to, float part) {
    return {from.r + (to.r - from.r) * part, from.g + (to.g - from.g) * part,
            from.b + (to.b - from.b) * part};
}

Colour times(const Colour& colour, float factor) {
    return {colour.r * factor, colour.g * factor, colour.b * factor};
}

/// Values at the corners of a grid, smoothly between them, in five octaves; about 0 to 1.
class Noise {
  public:
    explicit Noise(std::mt19937& random) : seed_(static_cast<std::uint32_t>(random())) {}

    float at(float x, float y) const {
        float sum = 0;
        float weight = 0.5F;
        for (int octave = 0; octave < 5; ++octave, weight /= 2, x *= 2.03F, y *= 2.03F)
            sum += weight * single(x, y);
        return sum;
    }

  private:
    float corner(int x, int y) const {
        std::uint32_t hash = seed_ ^ (static_cast<std::uint32_t>(x) * 0x9e3779b1U);
        hash = (hash ^ (hash >> 15)) * 0x85ebca77U + static_cast<std::uint32_t>(y) * 0xc2b2ae3dU;
        hash = (hash ^ (hash >> 13)) * 0x27d4eb2fU;
        return static_cast<float>((hash ^ (hash >> 16)) & 0xffffU) / 65535;
    }
    float single(float x, float y) const {
        const float left = std::floor(x);
        const float top = std::floor(y);
        const auto smooth = [](float t) { return t * t * (3 - 2 * t); };
        const float across = smooth(x - left);
        const float down = smooth(y - top);
        const int i = static_cast<int>(left);
        const int j = static_cast<int>(top);
        return std::lerp(std::lerp(corner(i, j), corner(i + 1, j), across),
                         std::lerp(corner(i, j + 1), corner(i + 1, j + 1), across), down);
    }

    std::uint32_t seed_;
};

class Dice {
  public:
    explicit Dice(std::mt19937& random) : random_(random) {}
    float between(float low, float high) {
        return low + (high - low) * static_cast<float>(random_() % 65'536) / 65'535;
    }
    Colour colour(float low, float high) {
        return {between(low, high), between(low, high), between(low, high)};
    }

  private:
    std::mt19937& random_;
};

struct Thing {
    float x, y, width, height, turn;
    bool isRound;
    Colour colour;
    float grain;
};

/// What a scene shows at a point; x goes from 0 to 4/3, y from 0 to 1.
class Scene {
  public:
    explicit Scene(unsigned seed)
        : random_(seed), dice_(random_), coarse_(random_), fine_(random_), kind_(seed % 4) {
        sky_ = {dice_.between(70, 120), dice_.between(120, 170), dice_.between(190, 240)};
        ground_ = dice_.colour(30, 150);
        other_ = dice_.colour(60, 220);
        scale_ = dice_.between(1.5F, 5);
        horizon_ = dice_.between(0.35F, 0.7F);
        for (Thing& thing : things_) {
            thing = {dice_.between(0, 1.33F),    dice_.between(0.1F, 1), dice_.between(0.05F, 0.3F),
                     dice_.between(0.05F, 0.3F), dice_.between(0, 3),    dice_.between(0, 1) < 0.6F,
                     dice_.colour(20, 235),      dice_.between(4, 60)};
        }
    }

    Colour at(float x, float y) const {
        switch (kind_) {
        case 0:
            return landscape(x, y);
        case 1:
            return table(x, y);
        case 2:
            return texture(x, y);
        default:
            return clouds(x, y, 2 * scale_);
        }
    }

  private:
    Colour clouds(float x, float y, float scale) const {
        const float cover = std::clamp(3.2F * coarse_.at(x * scale, y * scale) - 1.2F, 0.F, 1.F);
        return mix(mix(sky_, {225, 232, 245}, 0.6F * y), {244, 244, 246}, cover);
    }
    Colour landscape(float x, float y) const {
        const float ridge = horizon_ + 0.35F * (fine_.at(x * scale_, 7) - 0.5F);
        if (y < ridge) return clouds(x, y, scale_);
        const float near = (y - ridge) / (1 - ridge);
        const float grass = fine_.at(x * 60 / (0.3F + near), y * 60);
        const float patches = coarse_.at(x * scale_ * 2, y * scale_ * 4);
        return times(mix(ground_, other_, patches * 0.7F), 0.5F + 0.9F * grass);
    }
    Colour table(float x, float y) const {
        Colour seen = times(ground_, 0.6F + 0.8F * coarse_.at(x * 3 * scale_, y * 30));
        for (const Thing& thing : things_) {
            const float dx = x - thing.x;
            const float dy = y - thing.y;
            const float u = (dx * std::cos(thing.turn) + dy * std::sin(thing.turn)) / thing.width;
            const float v = (dy * std::cos(thing.turn) - dx * std::sin(thing.turn)) / thing.height;
            const float reach = thing.isRound ? u * u + v * v : std::max(std::abs(u), std::abs(v));
            if (reach > 1) continue;
            const float light = 1.1F - 0.5F * reach * (thing.isRound ? 1.F : 0.2F) - 0.2F * v;
            seen = times(thing.colour, light * (0.8F + 0.4F * fine_.at(u * thing.grain, v * 9)));
        }
        return seen;
    }
    Colour texture(float x, float y) const {
        const float bend = 1.5F * coarse_.at(x * scale_, y * scale_);
        const float grain = fine_.at(x * 4 * scale_ + bend * 3, y * 4 * scale_ - bend * 2);
        const float veins = 0.5F + 0.5F * std::sin(20 * (grain + bend));
        return mix(ground_, other_, veins);
    }

    std::mt19937 random_;
    Dice dice_;
    Noise coarse_;
    Noise fine_;
    unsigned kind_;
    Colour sky_, ground_, other_;
    float scale_ = 1;
    float horizon_ = 0.5F;
    std::array<Thing, 14> things_{};
};

} // namespace

std::vector<std::uint8_t> drawScene(unsigned seed) {
    const Scene scene(seed);
    std::mt19937 random(seed + 1'000'000);
    const auto byte = [&](float value) {
        // The sum of four is near enough to a normal deviation of 4.
        int grain = 0;
        for (std::uint32_t bits = static_cast<std::uint32_t>(random()), i = 0; i < 4;
             ++i, bits >>= 8)
            grain += static_cast<int>(bits & 255);
        return static_cast<std::uint8_t>(
            std::clamp(value + static_cast<float>(grain - 510) / 37, 0.F, 255.F));
    };
    std::vector<std::uint8_t> pixels;
    pixels.reserve(std::size_t{sceneWidth} * sceneHeight * 3);
    for (int y = 0; y < sceneHeight; ++y) {
        for (int x = 0; x < sceneWidth; ++x) {
            const Colour colour =
                scene.at(static_cast<float>(x) / sceneHeight, static_cast<float>(y) / sceneHeight);
            pixels.insert(pixels.end(), {byte(colour.r), byte(colour.g), byte(colour.b)});
        }
    }
    return pixels;
}

} // namespace tovi::bench
