#pragma once

#include "base/FileDescriptor.h"

#include <stop_token>
#include <string>

namespace tovi {

/// RGB, 8 bits each, rows from top to bottom without padding.
struct DecodedPicture {
    int width = 0;
    int height = 0;
    std::string pixels;
    int fullWidth = 0; // of the picture in the file, upright
    int fullHeight = 0;
};

/// Reads pictures from open files. Called from several threads.
class PictureDecoder {
  public:
    virtual ~PictureDecoder() = default;
    /// The picture upright, on white, scaled down so that no side is longer than `maximumSide`
    /// pixels. Throws `std::exception` for what cannot be decoded or has more than 100,000,000
    /// pixels, and `Cancelled`.
    virtual DecodedPicture decodePicture(const FileDescriptor& file, int maximumSide,
                                         const std::stop_token& stop) = 0;
};

} // namespace tovi
