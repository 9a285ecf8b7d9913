#pragma once

#include "decoder/process/Picture.h"

#include <cstddef>
#include <span>

namespace tovi::decoder {

/// Draws the first page of a PDF on white, its longer side `side` pixels long. Throws `WrongFormat`
/// for what Poppler cannot open and `std::exception` for what needs a password or has no page.
/// After `preparePdfText`.
Picture drawFirstPage(std::span<const std::byte> bytes, int side);

} // namespace tovi::decoder
