#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace tovi::decoder {

/// Loads the installed languages, English first. Called once, after `preparePictures`.
void preparePictureText();

/// The lines of text that are recognised in a picture, joined by "\n"; empty if there are none.
/// The picture is scaled down to `maximumSide` pixels first. Throws as `loadPicture` does.
std::string readPictureText(std::span<const std::byte> bytes, int maximumSide,
                            std::size_t maximumCharacters, std::size_t maximumBytes);

} // namespace tovi::decoder
