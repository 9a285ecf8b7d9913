#pragma once

#include "decoder/process/Picture.h"

#include <cstddef>
#include <span>

namespace tovi::decoder {

/// Makes drawing ready, and with it the list of the fonts of this machine. After
/// `preparePdfText`.
void preparePdfPages();

/// Draws the first page of a PDF on white, its longer side `side` pixels long. Throws `WrongFormat`
/// for what Poppler cannot open and `std::exception` for what needs a password or has no page.
/// After `preparePdfPages`. Letters of a font that neither the document nor the machine has are
/// left out.
Picture drawFirstPage(std::span<const std::byte> bytes, int side);

} // namespace tovi::decoder
