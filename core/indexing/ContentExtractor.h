#pragma once

#include "core/indexing/ContentReaders.h"
#include "core/records/FileKind.h"
#include "platform/RootedFile.h"

#include <cstdint>
#include <stop_token>
#include <string>

namespace tovi {

/// The status texts that tell people how, or why not, a file's content was read.
namespace contentStatus {
inline constexpr const char* textIndexed = "Text indexed";
inline constexpr const char* textTruncated = "Text indexed — truncated at 200,000 characters";
inline constexpr const char* textTooLarge = "Metadata only — text exceeds 2 MiB limit";
inline constexpr const char* notText = "Metadata only — non-UTF-8 or binary text";
inline constexpr const char* formatPending = "Metadata only — format extraction pending";
inline constexpr const char* metadataOnly = "Metadata only";
inline constexpr const char* pdfIndexed = "PDF text indexed";
inline constexpr const char* pdfPartial =
    "PDF text indexed — partial (100-page / 200,000-character limit)";
inline constexpr const char* pdfWithoutText =
    "PDF has no extractable text — scanned PDF OCR pending";
inline constexpr const char* pdfLocked = "Metadata only — encrypted PDF";
inline constexpr const char* pdfTooLarge = "Metadata only — PDF exceeds 50 MiB limit";
inline constexpr const char* pictureText = "Apple Vision OCR — verify against original";
inline constexpr const char* pictureWithoutText = "OCR completed — no text recognized";
inline constexpr const char* pictureTooLarge = "Metadata only — image exceeds 30 MiB limit";
inline constexpr const char* unavailable = "Unavailable locally — content not read";
inline constexpr const char* sourceDisabled = "Metadata only — source content disabled";
inline constexpr const char* failed = "Extraction failed";
} // namespace contentStatus

struct ExtractedContent {
    std::string content;
    std::string status;
};

/// Reads the searchable text of a file within fixed limits. Plain text is read here; PDFs and
/// pictures go to the readers, which must outlive the extractor. May be called from any thread.
class ContentExtractor {
  public:
    ContentExtractor(PdfReader& pdfReader, PictureTextReader& pictureReader)
        : pdfReader_(pdfReader), pictureReader_(pictureReader) {}

    /// `size`, in bytes, is what the scan saw; limits are tested against it before the file is
    /// opened. Throws `std::exception` where the file cannot be read, and `Cancelled`.
    ExtractedContent extract(const platform::RootedFile& file, FileKind kind, std::int64_t size,
                             const ReadOptions& options, const std::stop_token& stop) const;

  private:
    ExtractedContent readPdf(const platform::RootedFile& file, std::int64_t size,
                             const ReadOptions& options, const std::stop_token& stop) const;
    ExtractedContent readPicture(const platform::RootedFile& file, std::int64_t size,
                                 const ReadOptions& options, const std::stop_token& stop) const;

    PdfReader& pdfReader_;
    PictureTextReader& pictureReader_;
};

} // namespace tovi
