#pragma once

#include "core/files/PropertyList.h"

#include <cstddef>
#include <optional>
#include <span>

namespace tovi {

/// Longer property lists are not read.
inline constexpr std::size_t maximumPropertyListBytes = 1'048'576;

/// Reads a binary property list ("bplist00"; the format is described at the top of
/// https://opensource.apple.com/source/CF/CF-1153.18/CFBinaryPList.c). Made for hostile bytes:
/// depth, number and total length of the values are bounded, so lists that contain themselves or
/// share their parts end at once. What is malformed, over a limit or not finite gives nothing.
std::optional<PropertyList> readBinaryPropertyList(std::span<const std::byte> bytes);

} // namespace tovi
