#include "core/indexing/ContentExtractor.h"

#include "base/Text.h"
#include "platform/ReadFile.h"

#include <algorithm>
#include <array>

namespace tovi {
namespace {

constexpr std::int64_t mebibyte = 1024 * 1024;
constexpr std::int64_t largestText = 2 * mebibyte;
constexpr std::int64_t largestPdf = 50 * mebibyte;
constexpr std::int64_t largestPicture = 30 * mebibyte;
constexpr std::size_t maximumCharacters = 200'000;
constexpr int maximumPages = 100;
constexpr int maximumPictureSide = 2400; // pixels

constexpr std::array<std::string_view, 28> textExtensions{
    "txt",  "md",  "markdown", "csv", "tsv", "log",  "swift", "py", "js", "jsx",
    "ts",   "tsx", "rs",       "go",  "c",   "h",    "cpp",   "m",  "mm", "json",
    "yaml", "yml", "toml",     "sh",  "css", "html", "xml",   "sql"};

constexpr std::array<std::string_view, 4> textNames{"README", "LICENSE", "Makefile", "Dockerfile"};

bool isReadableAsText(std::string_view name) {
    const auto contains = [](const auto& list, std::string_view wanted) {
        return std::find(list.begin(), list.end(), wanted) != list.end();
    };
    return contains(textExtensions, lowercasedExtension(name)) || contains(textNames, name);
}

ExtractedContent without(const char* status) {
    return {{}, status};
}

ExtractedContent readText(const platform::RootedFile& file, std::int64_t size) {
    if (size > largestText) return without(contentStatus::textTooLarge);
    std::string text =
        platform::readFile(file.open(), static_cast<std::size_t>(largestText), file.path());
    if (!isValidUtf8(text) || text.find('\0') != std::string::npos) {
        return without(contentStatus::notText);
    }
    const std::size_t kept = firstCharacters(text, maximumCharacters).size();
    if (kept == text.size()) return {std::move(text), contentStatus::textIndexed};
    text.resize(kept);
    return {std::move(text), contentStatus::textTruncated};
}

} // namespace

ExtractedContent ContentExtractor::extract(const platform::RootedFile& file, FileKind kind,
                                           std::int64_t size, const ReadOptions& options,
                                           const std::stop_token& stop) const {
    switch (kind) {
    case FileKind::pdf:
        return readPdf(file, size, options, stop);
    case FileKind::image:
        return readPicture(file, size, options, stop);
    case FileKind::code:
    case FileKind::document:
        if (isReadableAsText(file.name())) return readText(file, size);
        return without(contentStatus::formatPending);
    default:
        return without(contentStatus::metadataOnly);
    }
}

ExtractedContent ContentExtractor::readPdf(const platform::RootedFile& file, std::int64_t size,
                                           const ReadOptions& options,
                                           const std::stop_token& stop) const {
    if (size > largestPdf) return without(contentStatus::pdfTooLarge);
    const PdfText pdf =
        pdfReader_.readPdf(file.open(), maximumPages, maximumCharacters, options, stop);
    if (pdf.locked) return without(contentStatus::pdfLocked);
    const std::string_view text = trimmed(firstCharacters(pdf.text, maximumCharacters));
    if (text.empty()) return without(contentStatus::pdfWithoutText);
    const bool partial = pdf.pagesRead < pdf.pageCount || pdf.reachedCharacterLimit;
    return {std::string(text), partial ? contentStatus::pdfPartial : contentStatus::pdfIndexed};
}

ExtractedContent ContentExtractor::readPicture(const platform::RootedFile& file, std::int64_t size,
                                               const ReadOptions& options,
                                               const std::stop_token& stop) const {
    if (size > largestPicture) return without(contentStatus::pictureTooLarge);
    const std::string text = pictureReader_.readPictureText(file.open(), maximumPictureSide,
                                                            maximumCharacters, options, stop);
    if (text.empty()) return without(contentStatus::pictureWithoutText);
    return {std::string(firstCharacters(text, maximumCharacters)), contentStatus::pictureText};
}

} // namespace tovi
