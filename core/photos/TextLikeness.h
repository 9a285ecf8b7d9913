#pragma once

#include "core/photos/PictureDecoder.h"

namespace tovi {

/// Whether the picture looks like a page or a screenshot of text: one colour nearly everywhere,
/// and on it many short strokes of little colour, side by side in rows. Two such pictures look
/// alike to a feature print whatever their words say. For pictures of some hundred pixels a side.
bool looksLikeText(const DecodedPicture& picture);

} // namespace tovi
