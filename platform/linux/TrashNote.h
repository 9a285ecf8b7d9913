#pragma once

#include "base/Date.h"

#include <optional>
#include <string>
#include <string_view>

namespace tovi::platform {

/// The form of the Trash's `.trashinfo` files and of the lines of `directorysizes`.
/// https://specifications.freedesktop.org/trash-spec/1.0/

constexpr std::string_view trashNoteSuffix = ".trashinfo";

/// Percent-encoded (RFC 3986), "/" and unreserved characters kept.
std::string percentEncoded(std::string_view bytes);
std::string percentDecoded(std::string_view text);

/// `path` is absolute, or relative to the top directory; the date is written in local time.
std::string trashNote(std::string_view path, Date deletedAt);

/// The decoded path of a note.
std::optional<std::string> pathOfTrashNote(std::string_view note);

/// A name for the item called `name`: itself for the first attempt, then with a number before its
/// extension. Cut between characters so that the note's name has at most `maximum` bytes.
std::string trashName(std::string_view name, unsigned attempt, std::size_t maximum);

} // namespace tovi::platform
