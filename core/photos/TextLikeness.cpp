#include "core/photos/TextLikeness.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace tovi {
namespace {

// Pages of documents are far on one side of these, photographs and drawings on the other.
constexpr int paperTolerance = 20;      // of luma, 0 to 255
constexpr double leastPaper = 0.6;      // of all pixels
constexpr double longestStroke = 6;     // pixels of a row, on average
constexpr int strokesOfText = 10;       // in a row
constexpr double leastTextRows = 0.1;   // of all rows
constexpr double leastContrast = 45;    // of luma, on average
constexpr std::int64_t mostColour = 20; // mean distance from the mean chroma
constexpr int rowStep = 4;              // what lies between is not looked at

struct Pixel {
    int luma;
    int blue; // without the luma
    int red;
};

/// Calls `startRow()`, then `visit(pixel)` for each pixel of the row.
template <typename StartRow, typename Visit>
void visitRows(const DecodedPicture& picture, const StartRow& startRow, const Visit& visit) {
    const auto width = static_cast<std::size_t>(picture.width);
    for (int y = 0; y < picture.height; y += rowStep) {
        const auto* rgb = reinterpret_cast<const std::uint8_t*>(picture.pixels.data()) +
                          static_cast<std::size_t>(y) * width * 3;
        startRow();
        for (std::size_t x = 0; x < width; ++x, rgb += 3) {
            const int luma = (77 * rgb[0] + 150 * rgb[1] + 29 * rgb[2]) >> 8;
            visit(Pixel{luma, rgb[2] - luma, rgb[0] - luma});
        }
    }
}

struct Overview {
    std::array<int, 256> lumas{};
    int blue = 0; // means
    int red = 0;
    int pixels = 0;
    int rows = 0;
};

Overview overviewOf(const DecodedPicture& picture) {
    Overview all;
    std::int64_t blue = 0;
    std::int64_t red = 0;
    visitRows(
        picture, [&] { ++all.rows; },
        [&](const Pixel& pixel) {
            ++all.lumas[static_cast<std::size_t>(pixel.luma)];
            blue += pixel.blue;
            red += pixel.red;
            ++all.pixels;
        });
    all.blue = static_cast<int>(blue / std::max(all.pixels, 1));
    all.red = static_cast<int>(red / std::max(all.pixels, 1));
    return all;
}

/// The luma around which most pixels lie.
int paperOf(const Overview& all) {
    int best = 0;
    int most = -1;
    for (int middle = 0; middle < 256; ++middle) {
        int count = 0;
        for (int luma = std::max(middle - paperTolerance, 0);
             luma <= std::min(middle + paperTolerance, 255); ++luma)
            count += all.lumas[static_cast<std::size_t>(luma)];
        if (count > most) {
            most = count;
            best = middle;
        }
    }
    return best;
}

} // namespace

bool looksLikeText(const DecodedPicture& picture) {
    const Overview all = overviewOf(picture);
    const int paper = paperOf(all);
    int ink = 0; // pixels
    int contrast = 0;
    int strokes = 0;
    int strokesOfRow = 0;
    int textRows = 0;
    std::int64_t colour = 0;
    bool isInside = false;
    visitRows(
        picture,
        [&] {
            strokesOfRow = 0;
            isInside = false;
        },
        [&](const Pixel& pixel) {
            colour += std::abs(pixel.blue - all.blue) + std::abs(pixel.red - all.red);
            const int apart = std::abs(pixel.luma - paper);
            const bool isInk = apart > paperTolerance;
            if (isInk) {
                ++ink;
                contrast += apart;
                if (!isInside) {
                    ++strokes;
                    if (++strokesOfRow == strokesOfText) ++textRows;
                }
            }
            isInside = isInk;
        });
    return all.pixels - ink >= leastPaper * all.pixels && textRows >= leastTextRows * all.rows &&
           ink <= longestStroke * strokes && contrast >= leastContrast * ink &&
           colour <= mostColour * all.pixels;
}

} // namespace tovi
