#include "base/Text.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

#include <fmt/format.h>
#include <simdjson.h>
#include <unicode/locid.h>
#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace tovi {
namespace {

bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// Walks the character boundaries of UTF-8 text. One per thread: opening ICU's rules is slow.
class CharacterIterator {
  public:
    CharacterIterator() {
        UErrorCode status = U_ZERO_ERROR;
        iterator_.reset(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
        if (U_FAILURE(status)) throw std::runtime_error("ICU has no character break rules");
    }

    /// Passes up to `maximum` characters of `text`; returns how many and how many bytes.
    std::pair<std::size_t, std::size_t> advance(std::string_view text, std::size_t maximum) {
        UText source = UTEXT_INITIALIZER;
        open(text, source);
        std::size_t characters = 0;
        std::int32_t bytes = 0;
        while (characters < maximum) {
            const std::int32_t next = ubrk_next(iterator_.get());
            if (next == UBRK_DONE) break;
            bytes = next;
            ++characters;
        }
        utext_close(&source);
        return {characters, static_cast<std::size_t>(bytes)};
    }

    /// Where the last `maximum` characters of `text` begin, in bytes.
    std::size_t retreat(std::string_view text, std::size_t maximum) {
        UText source = UTEXT_INITIALIZER;
        open(text, source);
        std::int32_t start = ubrk_last(iterator_.get());
        for (; maximum > 0 && start > 0; --maximum)
            start = ubrk_previous(iterator_.get());
        utext_close(&source);
        return static_cast<std::size_t>(start);
    }

  private:
    void open(std::string_view text, UText& source) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&source, text.data(), static_cast<std::int64_t>(text.size()), &status);
        ubrk_setUText(iterator_.get(), &source, &status);
        if (U_FAILURE(status)) throw std::runtime_error("ICU cannot read text");
    }

    struct Close {
        void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
    };
    std::unique_ptr<UBreakIterator, Close> iterator_;
};

CharacterIterator& characterIterator() {
    thread_local CharacterIterator iterator;
    return iterator;
}

/// Characters and bytes of the longest prefix of `text` with at most `maximum` characters.
///
/// Between two ASCII bytes there is always a boundary, except between CR and LF, so long ASCII
/// runs are counted bytewise; only what surrounds other bytes goes through ICU.
std::pair<std::size_t, std::size_t> measure(std::string_view text, std::size_t maximum) {
    constexpr std::size_t worthwhileRun = 64;
    CharacterIterator& iterator = characterIterator();
    std::size_t characters = 0;
    std::size_t at = 0;
    while (at < text.size() && characters < maximum) {
        std::size_t end = at;
        while (end < text.size() && isAscii(text[end]))
            ++end;
        if (end < text.size() && end > at) --end; // the last one may join what follows
        while (at < end && characters < maximum) {
            at += (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n') ? 2 : 1;
            ++characters;
        }
        if (at >= text.size() || characters == maximum) break;

        std::size_t ascii = 0;
        std::size_t stop = at;
        while (stop < text.size() && ascii < worthwhileRun) {
            ascii = isAscii(text[stop]) ? ascii + 1 : 0;
            ++stop;
        }
        if (stop < text.size()) {
            --stop; // between two ASCII bytes, and not inside CR LF
            if (text[stop - 1] == '\r' && text[stop] == '\n') --stop;
        }
        const auto [passed, bytes] =
            iterator.advance(text.substr(at, stop - at), maximum - characters);
        characters += passed;
        at += bytes;
    }
    return {characters, at};
}

bool isWhitespace(UChar32 character) {
    return character >= 0 && u_isUWhiteSpace(character) != 0;
}

bool isHarmless(UChar32 character) {
    switch (u_charType(character)) {
    case U_CONTROL_CHAR:
    case U_FORMAT_CHAR:
    case U_SURROGATE:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
        // The joiners shape Indic scripts and emoji; they cannot hide anything.
        return character == 0x200C || character == 0x200D;
    default:
        return true;
    }
}

} // namespace

bool isValidUtf8(std::string_view text) {
    return simdjson::validate_utf8(text.data(), text.size());
}

CodePoint codePointAt(std::string_view text, std::size_t at) {
    const std::size_t window = std::min<std::size_t>(text.size() - at, 4);
    UChar32 character = 0;
    std::int32_t length = 0;
// The macro narrows its own temporaries.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
    U8_NEXT(text.data() + at, length, static_cast<std::int32_t>(window), character);
#pragma GCC diagnostic pop
    return {character, static_cast<std::size_t>(length)};
}

std::size_t countCharacters(std::string_view text) {
    return measure(text, text.size()).first;
}

std::string_view firstCharacters(std::string_view text, std::size_t maximum) {
    if (text.size() <= maximum) return text;
    return text.substr(0, measure(text, maximum).second);
}

std::string_view lastCharacters(std::string_view text, std::size_t maximum) {
    if (text.size() <= maximum) return text;
    return text.substr(characterIterator().retreat(text, maximum));
}

std::string lowercased(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), isAscii)) return asciiLowercased(text);
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    std::string result;
    icu::UnicodeString::fromUTF8(piece).toLower(icu::Locale::getRoot()).toUTF8String(result);
    return result;
}

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return result;
}

std::string_view trimmed(std::string_view text) {
    std::size_t start = text.size();
    std::size_t end = 0;
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint decoded = codePointAt(text, at);
        if (!isWhitespace(decoded.value)) {
            start = std::min(start, at);
            end = at + decoded.length;
        }
        at += decoded.length;
    }
    return end == 0 ? std::string_view{} : text.substr(start, end - start);
}

std::vector<std::string_view> splitWhitespace(std::string_view text) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    const auto close = [&](std::size_t end) {
        if (end > start) pieces.push_back(text.substr(start, end - start));
    };
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint decoded = codePointAt(text, at);
        if (isWhitespace(decoded.value)) {
            close(at);
            start = at + decoded.length;
        }
        at += decoded.length;
    }
    close(text.size());
    return pieces;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint decoded = codePointAt(text, at);
        const std::string_view bytes = text.substr(at, decoded.length);
        if (decoded.value == '\n') {
            result += "\\n";
        } else if (decoded.value == '\t') {
            result += "\\t";
        } else if (decoded.value == '\r') {
            result += "\\r";
        } else if (decoded.value < 0) {
            for (const char byte : bytes) {
                result += fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
            }
        } else if (!isHarmless(decoded.value)) {
            result += decoded.value < 0x80
                          ? fmt::format("\\x{:02x}", static_cast<unsigned>(decoded.value))
                          : fmt::format("\\u{{{:x}}}", static_cast<unsigned>(decoded.value));
        } else {
            result += bytes;
        }
        at += decoded.length;
    }
    return result;
}

std::string_view lastPathComponent(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string_view::npos || path.size() == 1) return path;
    return path.substr(slash + 1);
}

std::string lowercasedExtension(std::string_view name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return lowercased(name.substr(dot + 1));
}

bool isSameOrBelow(std::string_view path, std::string_view ancestor) {
    if (ancestor == "/") return path.starts_with('/');
    if (!path.starts_with(ancestor)) return false;
    return path.size() == ancestor.size() || path[ancestor.size()] == '/';
}

} // namespace tovi
