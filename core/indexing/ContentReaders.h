#pragma once

#include "base/FileDescriptor.h"

#include <cstddef>
#include <stop_token>
#include <string>

namespace tovi {

struct ReadOptions {
    /// Scales the deadlines of the reader; below 1 for a file that failed before.
    double deadlineFactor = 1;
};

struct PdfText {
    bool locked = false; // needs a password to be read
    int pageCount = 0;
    int pagesRead = 0;
    bool reachedCharacterLimit = false;
    std::string text; // the texts of the pages that have one, joined by "\n"; not trimmed
};

/// Reads the text of a PDF, pages 0 to `maximumPages` - 1, stopping once `maximumCharacters`
/// characters (as a person sees them) are collected. Called from several threads.
class PdfReader {
  public:
    virtual ~PdfReader() = default;
    /// Throws `IntelligenceError` for what is not a PDF, `std::exception` for other failures and
    /// `Cancelled`.
    virtual PdfText readPdf(const FileDescriptor& file, int maximumPages,
                            std::size_t maximumCharacters, const ReadOptions& options,
                            const std::stop_token& stop) = 0;
};

/// Recognises the text of a picture scaled down to `maximumSide` pixels, orientation applied.
/// Called from several threads.
class PictureTextReader {
  public:
    virtual ~PictureTextReader() = default;
    /// The recognised lines joined by "\n", empty if there are none. Throws `std::exception` and
    /// `Cancelled`.
    virtual std::string readPictureText(const FileDescriptor& file, int maximumSide,
                                        std::size_t maximumCharacters, const ReadOptions& options,
                                        const std::stop_token& stop) = 0;
};

} // namespace tovi
