#pragma once

#include <string>
#include <vector>

namespace tovi::test {

/// A font as the objects of a PDF, the first of which is number 3.
using PdfFont = std::vector<std::string>;

PdfFont latinFont();
/// A Japanese font that the document does not bring along, with a predefined encoding.
PdfFont japaneseFont(const std::string& encoding);
/// A font whose two-byte codes mean themselves, as UTF-16.
PdfFont unicodeFont();

/// One page for each string, which is the operand of the operator that shows text, such as
/// "(Hello)" or "<8ea7>"; pages for empty strings have no text.
std::string makePdf(const std::vector<std::string>& pages, const PdfFont& font = latinFont());

} // namespace tovi::test
