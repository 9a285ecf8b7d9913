#pragma once

#include "core/photos/PictureDecoder.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace tovi {

/// A point in a space where look-alike pictures are near each other: 770 numbers, with zeros to
/// fill whole vector registers.
///
/// It has three parts. Histograms of gradient orientations at four scales (Dalal and Triggs, 2005),
/// taken from the locally normalised logarithm of the luma, say what is drawn where, whatever the
/// light. The lowest frequencies of the discrete cosine transform, compressed by a square root,
/// say how light and dark are spread. The means of luma and chroma (ITU-R BT.601) say the colour.
using FeaturePrint = std::array<float, 784>;

/// The Euclidean distance.
float distance(const FeaturePrint& left, const FeaturePrint& right);

/// What a check for look-alikes keeps of a photo.
struct PhotoPrint {
    FeaturePrint feature{};
    /// Bit row * 8 + x: whether pixel x is brighter than pixel x + 1 in that row of the picture's
    /// luma, averaged down to 9 x 8 pixels.
    std::uint64_t differenceHash = 0;
    double aspectRatio = 1; // width / height
    int width = 0;          // of the picture in the file, upright
    int height = 0;
    /// The mean square of the Laplacian over the variance, which blur makes smaller and contrast
    /// leaves alone. Comparable between look-alikes only.
    double sharpness = 0;
    /// The point then says little of what is shown (`core/photos/TextLikeness.h`).
    bool looksLikeText = false;
};

/// `picture` has at least one pixel.
PhotoPrint makePhotoPrint(const DecodedPicture& picture);

} // namespace tovi
