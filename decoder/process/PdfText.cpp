#include "decoder/process/PdfText.h"

#include "base/Text.h"
#include "decoder/process/WrongFormat.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <iconv.h>
#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-global.h>
#include <poppler/cpp/poppler-page.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

namespace tovi::decoder {
namespace {

bool isAscii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; });
}

/// NFKC, so that ligatures and full-width letters are found by plain words; without the marks that
/// embed and override the direction of writing.
std::string plainText(std::string_view text) {
    if (isAscii(text)) return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* nfkc = icu::Normalizer2::getNFKCInstance(status);
    if (U_FAILURE(status)) throw std::runtime_error("ICU cannot normalise text");
    icu::UnicodeString characters =
        icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    characters = nfkc->normalize(characters, status);
    if (U_FAILURE(status)) throw std::runtime_error("ICU cannot normalise text");
    icu::UnicodeString kept;
    for (std::int32_t i = 0; i < characters.length(); ++i) {
        const char16_t unit = characters[i];
        if (unit < 0x202A || unit > 0x202E) kept.append(unit);
    }
    std::string result;
    return kept.toUTF8String(result);
}

std::string textOf(const poppler::document& document, int index) {
    const std::unique_ptr<poppler::page> page(document.create_page(index));
    if (page == nullptr) return {};
    const poppler::byte_array bytes =
        page->text(poppler::rectf(), poppler::page::non_raw_non_physical_layout).to_utf8();
    return plainText(trimmed(std::string_view(bytes.data(), bytes.size())));
}

bool isOpen(iconv_t converter) {
    return reinterpret_cast<std::intptr_t>(converter) != -1;
}

/// At most `maximum` bytes, not cut inside a character of Unicode.
std::string_view firstBytes(std::string_view text, std::size_t maximum) {
    if (text.size() <= maximum) return text;
    while (maximum > 0 && (static_cast<unsigned char>(text[maximum]) & 0xC0) == 0x80)
        --maximum;
    return text.substr(0, maximum);
}

} // namespace

void preparePdfText() {
    poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);

    // Poppler forgets its font tables and encodings with its last document, so one stays open.
    static constexpr std::string_view empty =
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
        "2 0 obj<</Type/Pages/Kids[]/Count 0>>endobj\ntrailer<</Root 1 0 R>>\n";
    static const std::unique_ptr<poppler::document> keeper(
        poppler::document::load_from_raw_data(empty.data(), static_cast<int>(empty.size())));

    // The C library loads its converters when they are first opened and unloads them when unused.
    static const iconv_t toUtf16 = iconv_open("UTF-16", "UTF-8");
    static const iconv_t toUtf8 = iconv_open("UTF-8", "UTF-16");
    if (keeper == nullptr || !isOpen(toUtf16) || !isOpen(toUtf8))
        throw std::runtime_error("Poppler or the character set converters are incomplete.");
    plainText("\u00e9");
    countCharacters("\u00e9");
}

PdfContent readPdfText(std::span<const std::byte> bytes, int maximumPages,
                       std::size_t maximumCharacters, std::size_t maximumBytes,
                       const std::function<void(int)>& pageRead) {
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_raw_data(
        reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())));
    if (document == nullptr) throw WrongFormat("Invalid PDF");

    PdfContent content;
    content.locked = document->is_locked();
    if (content.locked) return content;
    content.pageCount = std::max(document->pages(), 0);
    std::size_t characters = 0;
    while (content.pagesRead < std::min(content.pageCount, maximumPages) &&
           characters < maximumCharacters && content.text.size() < maximumBytes) {
        const std::string page = textOf(*document, content.pagesRead);
        pageRead(++content.pagesRead);
        if (page.empty()) continue;
        if (!content.text.empty()) {
            content.text += '\n';
            ++characters;
        }
        content.text += page;
        characters += countCharacters(page);
    }
    content.reachedCharacterLimit =
        characters >= maximumCharacters || content.text.size() >= maximumBytes;
    if (content.reachedCharacterLimit) {
        content.text.resize(
            firstBytes(firstCharacters(content.text, maximumCharacters), maximumBytes).size());
    }
    return content;
}

} // namespace tovi::decoder
