#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tovi {

/// Base64 with padding and without line breaks (RFC 4648).
std::string toBase64(std::string_view bytes);

/// Nothing where the text is anything else, white space included.
std::optional<std::string> fromBase64(std::string_view text);

} // namespace tovi
