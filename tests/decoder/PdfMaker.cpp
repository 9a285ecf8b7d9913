#include "tests/decoder/PdfMaker.h"

#include <fmt/format.h>

namespace tovi::test {
namespace {

std::string stream(const std::string& bytes) {
    return fmt::format("<</Length {}>>stream\n{}\nendstream", bytes.size(), bytes);
}

std::string file(const std::vector<std::string>& objects) {
    std::string out = "%PDF-1.4\n";
    std::string table;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        table += fmt::format("{:010} 00000 n \n", out.size());
        out += fmt::format("{} 0 obj\n{}\nendobj\n", i + 1, objects[i]);
    }
    return fmt::format("{}xref\n0 {}\n0000000000 65535 f \n{}trailer\n<</Size {}/Root 1 0 R>>\n"
                       "startxref\n{}\n%%EOF\n",
                       out, objects.size() + 1, table, objects.size() + 1, out.size());
}

PdfFont composite(const std::string& encoding, const std::string& ordering) {
    return {
        fmt::format("<</Type/Font/Subtype/Type0/BaseFont/Some/Encoding/{}"
                    "/DescendantFonts[4 0 R]/ToUnicode 6 0 R>>",
                    encoding),
        fmt::format("<</Type/Font/Subtype/CIDFontType0/BaseFont/Some/CIDSystemInfo"
                    "<</Registry(Adobe)/Ordering({})/Supplement 0>>/FontDescriptor 5 0 R>>",
                    ordering),
        "<</Type/FontDescriptor/FontName/Some/Flags 4/FontBBox[0 -200 1000 900]/ItalicAngle 0"
        "/Ascent 800/Descent -200/CapHeight 700/StemV 80>>",
    };
}

} // namespace

PdfFont latinFont() {
    return {"<</Type/Font/Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>"};
}

PdfFont japaneseFont(const std::string& encoding) {
    PdfFont font = composite(encoding, "Japan1");
    font.emplace_back("null");
    return font;
}

PdfFont unicodeFont() {
    PdfFont font = composite("Identity-H", "Identity");
    font.push_back(stream("/CIDInit /ProcSet findresource begin begincmap\n"
                          "1 begincodespacerange <0000> <ffff> endcodespacerange\n"
                          "1 beginbfrange <0000> <ffff> <0000> endbfrange\n"
                          "endcmap end"));
    return font;
}

std::string makePdf(const std::vector<std::string>& pages, const PdfFont& font) {
    std::vector<std::string> objects = {"<</Type/Catalog/Pages 2 0 R>>", ""};
    objects.insert(objects.end(), font.begin(), font.end());
    std::string kids;
    for (const std::string& page : pages) {
        objects.push_back(
            stream(page.empty() ? "0 0 50 50 re f" : "BT /F 12 Tf 72 700 Td " + page + " Tj ET"));
        objects.push_back(fmt::format("<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]"
                                      "/Resources<</Font<</F 3 0 R>>>>/Contents {} 0 R>>",
                                      objects.size()));
        kids += fmt::format("{} 0 R ", objects.size());
    }
    objects[1] = fmt::format("<</Type/Pages/Count {}/Kids[{}]>>", pages.size(), kids);
    return file(objects);
}

} // namespace tovi::test
