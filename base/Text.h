#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tovi {

bool isValidUtf8(std::string_view text);

/// One code point of UTF-8 text; `value` is negative where the bytes are not UTF-8.
struct CodePoint {
    std::int32_t value;
    std::size_t length; // bytes
};

/// The code point that begins at byte `at`, which lies inside the text.
CodePoint codePointAt(std::string_view text, std::size_t at);

/// The number of characters as a person sees them (extended grapheme clusters, UAX #29); CR LF is
/// one. `text` is valid UTF-8.
std::size_t countCharacters(std::string_view text);

/// The first `maximum` characters as a person sees them, never cut inside one. `text` is valid
/// UTF-8.
std::string_view firstCharacters(std::string_view text, std::size_t maximum);

/// The last `maximum` characters, likewise.
std::string_view lastCharacters(std::string_view text, std::size_t maximum);

/// Lower case by Unicode's rules, independent of the user's language.
std::string lowercased(std::string_view text);

/// Lower case of the letters A to Z only.
std::string asciiLowercased(std::string_view text);

/// Without white space and line ends (Unicode White_Space) at both ends.
std::string_view trimmed(std::string_view text);

/// The pieces between runs of white space and line ends (Unicode White_Space); none is empty.
std::vector<std::string_view> splitWhitespace(std::string_view text);

/// On one line and harmless on a terminal: control characters, bidirectional overrides and bytes
/// that are not UTF-8 become escapes such as "\n" and "\x1b".
std::string printable(std::string_view text);

/// The last path component of an absolute path; "/" for the root.
std::string_view lastPathComponent(std::string_view path);

/// What follows the last dot of a file name, in lower case; empty without one, and for a name
/// whose only dot is its first character.
std::string lowercasedExtension(std::string_view name);

/// Whether `path` is `ancestor` or lies below it. Both are absolute and without a slash at the
/// end, but for "/" itself.
bool isSameOrBelow(std::string_view path, std::string_view ancestor);

} // namespace tovi
