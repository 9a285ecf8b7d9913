#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace tovi::decoder {

enum class Colours { grey, rgb };

/// 8 bits a channel, one or three channels, rows from top to bottom without padding.
struct Picture {
    int width = 0;
    int height = 0;
    int fullWidth = 0; // before it was scaled down
    int fullHeight = 0;
    std::vector<std::byte> pixels;
};

/// Starts libvips with the formats that are read, and no other. Called once.
void preparePictures();

/// Reads JPEG, PNG, WebP, HEIC, AVIF, TIFF, GIF (its first frame) and BMP, turned upright, in
/// sRGB on white, scaled down so that no side is longer than `maximumSide` pixels. Throws
/// `WrongFormat` for other formats and `std::exception` for what is damaged or above 100 million
/// pixels. Of a damaged picture in grey whatever can be read is given.
Picture loadPicture(std::span<const std::byte> bytes, int maximumSide, Colours colours);

} // namespace tovi::decoder
