#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace tovi::decoder {

struct PdfContent {
    bool locked = false;
    bool reachedCharacterLimit = false;
    int pageCount = 0;
    int pagesRead = 0;
    std::string text; // NFKC, without bidirectional marks
};

/// Loads what Poppler reads from files, and keeps it for the life of the process.
void preparePdfText();

/// Reads the pages from the first on. Stops once `maximumCharacters` characters (as a person sees
/// them) or `maximumBytes` are collected, and cuts there. `pageRead` hears the number of pages
/// done after each. Throws `WrongFormat` for what Poppler cannot open.
PdfContent readPdfText(std::span<const std::byte> bytes, int maximumPages,
                       std::size_t maximumCharacters, std::size_t maximumBytes,
                       const std::function<void(int)>& pageRead);

} // namespace tovi::decoder
