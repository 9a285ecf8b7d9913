#include "core/photos/PhotoPrint.h"

#include "core/photos/TextLikeness.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

namespace tovi {
namespace {

constexpr std::size_t side = 128; // of the grid that the gradients are taken from, pixels
constexpr int hashWidth = 9;
constexpr int hashHeight = 8;
constexpr int orientations = 8;
constexpr int cellsAcross = 4;
constexpr int scales = 4;
constexpr std::size_t frequencySide = 32; // of the grid that the frequencies are taken from
constexpr int frequencies = 16;           // kept in each direction
constexpr float gradientWeight = 0.72F;
constexpr float frequencyWeight = 0.24F;
constexpr float chromaWeight = 2;
constexpr float epsilon = 1e-6F;

/// Numbers that are worked on together, so that the compiler keeps them in vector registers.
constexpr std::size_t lanes = 16;
using Lanes = std::array<float, lanes>;

/// A square of numbers, row by row; its side is a multiple of `lanes`.
struct Grid {
    explicit Grid(std::size_t size) : length(size), values(size * size) {}
    float* row(std::size_t y) { return values.data() + y * length; }
    const float* row(std::size_t y) const { return values.data() + y * length; }

    std::size_t length;
    std::vector<float> values;
};

/// The pixels, whole and in part, that one of `count` equal cells of a line covers; the weights
/// add up to 1.
struct Cover {
    std::size_t first = 0;
    std::vector<float> weights;
};

std::vector<Cover> covers(int length, int count) {
    std::vector<Cover> result;
    for (std::int64_t cell = 0; cell < count; ++cell) {
        const std::int64_t begin = cell * length; // a pixel is `count` long
        const std::int64_t end = begin + length;
        Cover& cover = result.emplace_back();
        cover.first = static_cast<std::size_t>(begin / count);
        for (std::int64_t pixel = begin / count; pixel * count < end; ++pixel) {
            const std::int64_t overlap =
                std::min(end, (pixel + 1) * count) - std::max(begin, pixel * count);
            cover.weights.push_back(static_cast<float>(overlap) / static_cast<float>(length));
        }
    }
    return result;
}

float covered(const Cover& cover, std::span<const float> line) {
    float sum = 0;
    for (std::size_t i = 0; i < cover.weights.size(); ++i)
        sum += cover.weights[i] * line[cover.first + i];
    return sum;
}

struct Averages {
    Grid luma{side};               // 0 to 255
    std::array<float, 3> colour{}; // red, green, blue over the whole picture, 0 to 255
    std::array<std::uint8_t, hashWidth * hashHeight> hashed{};
};

float luma(float red, float green, float blue) {
    return 0.299F * red + 0.587F * green + 0.114F * blue;
}

/// Averages areas in one pass over the picture.
Averages average(const DecodedPicture& picture) {
    static_assert(side % hashHeight == 0);
    constexpr std::size_t rowsPerHash = side / hashHeight;
    const auto width = static_cast<std::size_t>(picture.width);
    const std::size_t stride = width * 3;
    const auto* pixels = reinterpret_cast<const std::uint8_t*>(picture.pixels.data());
    const std::vector<Cover> rows = covers(picture.height, side);
    const std::vector<Cover> columns = covers(picture.width, side);
    const std::vector<Cover> hashColumns = covers(picture.width, hashWidth);

    Averages result;
    std::vector<float> strip(stride);
    std::vector<float> whole(stride);
    std::vector<float> lumas(width);
    std::vector<float> hashLumas(width);
    for (std::size_t y = 0; y < side; ++y) {
        std::fill(strip.begin(), strip.end(), 0.F);
        for (std::size_t i = 0; i < rows[y].weights.size(); ++i) {
            const float weight = rows[y].weights[i];
            const std::uint8_t* row = pixels + (rows[y].first + i) * stride;
            for (std::size_t x = 0; x < stride; ++x)
                strip[x] += weight * static_cast<float>(row[x]);
        }
        for (std::size_t x = 0; x < stride; ++x)
            whole[x] += strip[x];
        for (std::size_t x = 0; x < width; ++x) {
            lumas[x] = luma(strip[3 * x], strip[3 * x + 1], strip[3 * x + 2]);
            hashLumas[x] += lumas[x] / rowsPerHash;
        }
        for (std::size_t x = 0; x < side; ++x)
            result.luma.row(y)[x] = covered(columns[x], lumas);
        if ((y + 1) % rowsPerHash != 0) continue;
        for (std::size_t x = 0; x < hashWidth; ++x) {
            result.hashed[y / rowsPerHash * hashWidth + x] =
                static_cast<std::uint8_t>(std::lround(covered(hashColumns[x], hashLumas)));
        }
        std::fill(hashLumas.begin(), hashLumas.end(), 0.F);
    }
    for (std::size_t x = 0; x < stride; ++x)
        result.colour[x % 3] += whole[x] / static_cast<float>(side * width);
    return result;
}

std::uint64_t differenceHash(const Averages& averages) {
    std::uint64_t bits = 0;
    for (unsigned y = 0; y < hashHeight; ++y) {
        const std::uint8_t* row = averages.hashed.data() + static_cast<std::size_t>(y) * hashWidth;
        for (unsigned x = 0; x + 1 < hashWidth; ++x)
            bits |= std::uint64_t{row[x] > row[x + 1]} << (y * 8 + x);
    }
    return bits;
}

/// A Gaussian cut off at three sigma, its sum 1.
std::vector<float> gaussian(double sigma) {
    const int radius = static_cast<int>(3 * sigma);
    std::vector<double> exact;
    double sum = 0;
    for (int x = -radius; x <= radius; ++x)
        sum += exact.emplace_back(std::exp(-x * x / (2 * sigma * sigma)));
    std::vector<float> kernel;
    for (const double value : exact)
        kernel.push_back(static_cast<float>(value / sum));
    return kernel;
}

/// The grid convolved with a kernel in both directions, its edges replicated.
Grid blurred(const Grid& grid, const std::vector<float>& kernel) {
    const std::size_t length = grid.length;
    const std::size_t radius = kernel.size() / 2;
    const auto convolve = [&](const float* const* taps, std::size_t x, float* out) {
        Lanes sum{};
        for (std::size_t k = 0; k < kernel.size(); ++k) {
            for (std::size_t lane = 0; lane < lanes; ++lane)
                sum[lane] += kernel[k] * taps[k][x + lane];
        }
        std::copy(sum.begin(), sum.end(), out + x);
    };
    Grid across(length);
    std::vector<float> padded(length + 2 * radius);
    std::vector<const float*> taps(kernel.size());
    for (std::size_t k = 0; k < kernel.size(); ++k)
        taps[k] = padded.data() + k;
    for (std::size_t y = 0; y < length; ++y) {
        const float* row = grid.row(y);
        std::fill_n(padded.begin(), radius, row[0]);
        std::copy_n(row, length, padded.begin() + static_cast<std::ptrdiff_t>(radius));
        std::fill_n(padded.end() - static_cast<std::ptrdiff_t>(radius), radius, row[length - 1]);
        for (std::size_t x = 0; x < length; x += lanes)
            convolve(taps.data(), x, across.row(y));
    }
    Grid result(length);
    for (std::size_t y = 0; y < length; ++y) {
        for (std::size_t k = 0; k < kernel.size(); ++k)
            taps[k] = across.row(std::clamp(y + k, radius, length - 1 + radius) - radius);
        for (std::size_t x = 0; x < length; x += lanes)
            convolve(taps.data(), x, result.row(y));
    }
    return result;
}

/// The logarithm of the luma without what varies slowly, in units of how much it varies nearby.
Grid locallyNormalised(const Grid& luma) {
    static const std::vector<float> kernel = gaussian(12);
    Grid result(side);
    std::ranges::transform(luma.values, result.values.begin(),
                           [](float value) { return std::log1p(value); });
    const Grid mean = blurred(result, kernel);
    Grid square(side);
    for (std::size_t i = 0; i < result.values.size(); ++i) {
        result.values[i] -= mean.values[i];
        square.values[i] = result.values[i] * result.values[i];
    }
    const Grid variance = blurred(square, kernel);
    for (std::size_t i = 0; i < result.values.size(); ++i)
        result.values[i] /= 0.2F + std::sqrt(variance.values[i]);
    return result;
}

void normalise(std::span<float> values, float length) {
    float sum = 0;
    for (const float value : values)
        sum += value * value;
    const float factor = length / (std::sqrt(sum) + epsilon);
    for (float& value : values)
        value *= factor;
}

/// How much each position of a line belongs to each of its cells: triangles around the cells'
/// centres that reach to those of their neighbours.
std::vector<std::array<float, cellsAcross>> cellWeights(std::size_t length) {
    std::vector<std::array<float, cellsAcross>> weights(length);
    const float halfWidth = static_cast<float>(length) / cellsAcross;
    for (std::size_t cell = 0; cell < cellsAcross; ++cell) {
        const float centre = (static_cast<float>(cell) + 0.5F) * halfWidth;
        float sum = 0;
        for (std::size_t at = 0; at < length; ++at) {
            const float apart = std::abs(static_cast<float>(at) + 0.5F - centre);
            sum += weights[at][cell] = std::max(0.F, 1 - apart / halfWidth);
        }
        for (auto& weight : weights)
            weight[cell] /= sum;
    }
    return weights;
}

/// Histograms of the orientations of gradients, one for each of 4 x 4 cells.
void describeGradients(const Grid& grid, std::span<float> out) {
    const std::size_t length = grid.length;
    const auto weights = cellWeights(length);
    constexpr std::size_t rowSize = std::size_t{cellsAcross} * orientations;
    std::fill(out.begin(), out.end(), 0.F);
    for (std::size_t y = 0; y < length; ++y) {
        const float* above = grid.row(y == 0 ? 0 : y - 1);
        const float* below = grid.row(std::min(y + 1, length - 1));
        const float* row = grid.row(y);
        std::array<float, rowSize> histograms{};
        for (std::size_t x = 0; x < length; ++x) {
            const float across = row[std::min(x + 1, length - 1)] - row[x == 0 ? 0 : x - 1];
            const float down = below[x] - above[x];
            const float magnitude = std::sqrt(across * across + down * down);
            float turn = std::atan2(down, across) * (orientations / std::numbers::pi_v<float>);
            if (turn < 0) turn += orientations;
            const auto whole = static_cast<std::size_t>(turn);
            const float upper = magnitude * (turn - static_cast<float>(whole));
            const float lower = magnitude - upper;
            const std::size_t bin = whole % orientations;
            const std::size_t next = (bin + 1) % orientations;
            for (std::size_t cell = 0; cell < cellsAcross; ++cell) {
                histograms[cell * orientations + bin] += weights[x][cell] * lower;
                histograms[cell * orientations + next] += weights[x][cell] * upper;
            }
        }
        for (std::size_t cell = 0; cell < cellsAcross; ++cell) {
            for (std::size_t i = 0; i < rowSize; ++i)
                out[cell * rowSize + i] += weights[y][cell] * histograms[i];
        }
    }
    for (float& value : out)
        value = std::sqrt(value);
    normalise(out, 0.5F);
}

Grid halved(const Grid& grid) {
    static const std::vector<float> kernel = gaussian(1);
    const Grid smooth = blurred(grid, kernel);
    Grid result(grid.length / 2);
    for (std::size_t y = 0; y < result.length; ++y) {
        const float* upper = smooth.row(2 * y);
        const float* lower = smooth.row(2 * y + 1);
        for (std::size_t x = 0; x < result.length; ++x)
            result.row(y)[x] =
                (upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1]) / 4;
    }
    return result;
}

/// The lowest frequencies of the orthonormal DCT-II but the mean.
void describeFrequencies(const Grid& luma, std::span<float> out) {
    constexpr std::size_t count = frequencySide;
    using Basis = std::array<std::array<float, count>, frequencies>;
    static const Basis basis = [] {
        Basis made{};
        for (std::size_t k = 0; k < frequencies; ++k) {
            const double scale = std::sqrt((k == 0 ? 1.0 : 2.0) / count);
            for (std::size_t n = 0; n < count; ++n)
                made[k][n] = static_cast<float>(
                    scale * std::cos(std::numbers::pi / count * (static_cast<double>(n) + 0.5) *
                                     static_cast<double>(k)));
        }
        return made;
    }();
    constexpr std::size_t block = side / frequencySide;
    std::array<std::array<float, frequencies>, count> rows{};
    for (std::size_t y = 0; y < count; ++y) {
        for (std::size_t x = 0; x < count; ++x) {
            float sum = 0;
            for (std::size_t i = 0; i < block; ++i) {
                for (std::size_t j = 0; j < block; ++j)
                    sum += luma.row(y * block + i)[x * block + j];
            }
            for (std::size_t k = 0; k < frequencies; ++k)
                rows[y][k] += sum / (block * block) * basis[k][x];
        }
    }
    std::size_t at = 0;
    for (std::size_t vertical = 0; vertical < frequencies; ++vertical) {
        for (std::size_t horizontal = vertical == 0 ? 1 : 0; horizontal < frequencies;
             ++horizontal) {
            float sum = 0;
            for (std::size_t y = 0; y < count; ++y)
                sum += basis[vertical][y] * rows[y][horizontal];
            out[at++] = std::copysign(std::sqrt(std::abs(sum)), sum);
        }
    }
    normalise(out, frequencyWeight);
}

FeaturePrint featurePrint(const Averages& averages) {
    constexpr std::size_t perScale = std::size_t{cellsAcross} * cellsAcross * orientations;
    constexpr std::size_t gradientCount = scales * perScale;
    constexpr std::size_t frequencyCount = std::size_t{frequencies} * frequencies - 1;
    FeaturePrint print{};
    const std::span all(print);
    Grid grid = locallyNormalised(averages.luma);
    for (std::size_t scale = 0; scale < scales; ++scale) {
        if (scale > 0) grid = halved(grid);
        describeGradients(grid, all.subspan(scale * perScale, perScale));
    }
    for (float& value : all.first(gradientCount))
        value *= gradientWeight;
    describeFrequencies(averages.luma, all.subspan(gradientCount, frequencyCount));

    const auto [red, green, blue] = averages.colour;
    const float mean = luma(red, green, blue);
    print[gradientCount + frequencyCount] = mean / 255;
    print[gradientCount + frequencyCount + 1] = chromaWeight * 0.564F * (blue - mean) / 255;
    print[gradientCount + frequencyCount + 2] = chromaWeight * 0.713F * (red - mean) / 255;
    return print;
}

double sharpnessOf(const DecodedPicture& picture) {
    if (picture.width < 3 || picture.height < 3) return 0;
    const std::size_t stride = static_cast<std::size_t>(picture.width) * 3;
    const auto* row = reinterpret_cast<const std::uint8_t*>(picture.pixels.data());
    double laplacians = 0; // sum of squares
    double squares = 0;
    double values = 0;
    for (int y = 1; y + 1 < picture.height; ++y) {
        row += stride;
        std::uint32_t rowLaplacians = 0; // at most 1020 squared for each of 3 x 768 numbers
        std::uint32_t rowSquares = 0;
        std::uint32_t rowValues = 0;
        for (std::size_t x = 3; x < stride - 3; ++x) {
            const int laplacian =
                4 * row[x] - row[x - 3] - row[x + 3] - (row - stride)[x] - (row + stride)[x];
            rowLaplacians += static_cast<std::uint32_t>(laplacian * laplacian);
            rowSquares += static_cast<std::uint32_t>(row[x] * row[x]);
            rowValues += row[x];
        }
        laplacians += rowLaplacians;
        squares += rowSquares;
        values += rowValues;
    }
    const double count = static_cast<double>(picture.height - 2) * static_cast<double>(stride - 6);
    const double variance = squares - values * values / count;
    return variance > 0 ? laplacians / variance : 0;
}

} // namespace

float distance(const FeaturePrint& left, const FeaturePrint& right) {
    static_assert(std::tuple_size_v<FeaturePrint> % lanes == 0);
    Lanes sums{};
    for (std::size_t i = 0; i < left.size(); i += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const float apart = left[i + lane] - right[i + lane];
            sums[lane] += apart * apart;
        }
    }
    float sum = 0;
    for (const float part : sums)
        sum += part;
    return std::sqrt(sum);
}

PhotoPrint makePhotoPrint(const DecodedPicture& picture) {
    const Averages averages = average(picture);
    PhotoPrint print;
    print.feature = featurePrint(averages);
    print.differenceHash = differenceHash(averages);
    print.aspectRatio = static_cast<double>(picture.width) / picture.height;
    print.width = picture.fullWidth;
    print.height = picture.fullHeight;
    print.sharpness = sharpnessOf(picture);
    print.looksLikeText = looksLikeText(picture);
    return print;
}

} // namespace tovi
