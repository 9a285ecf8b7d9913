#include "decoder/process/PdfPage.h"

#include "decoder/process/WrongFormat.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>

namespace tovi::decoder {
namespace {

constexpr double pointsPerInch = 72;

} // namespace

void preparePdfPages() {
    // Drawing a letter of a font that is not in the document makes fontconfig read what it needs.
    static constexpr std::string_view letter =
        "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
        "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
        "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]/Contents 4 0 R"
        "/Resources<</Font<</F<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>>>>>>>endobj\n"
        "4 0 obj<</Length 18>>stream\nBT/F 9 Tf(x)Tj ET\n\nendstream endobj\n"
        "trailer<</Root 1 0 R>>\n";
    drawFirstPage(std::as_bytes(std::span(letter)), 9);
}

Picture drawFirstPage(std::span<const std::byte> bytes, int side) {
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_raw_data(
        reinterpret_cast<const char*>(bytes.data()), static_cast<int>(bytes.size())));
    if (document == nullptr) throw WrongFormat("Invalid PDF");
    if (document->is_locked()) throw std::runtime_error("The PDF needs a password.");
    const std::unique_ptr<poppler::page> page(document->create_page(0));
    if (page == nullptr) throw std::runtime_error("The PDF has no page that could be drawn.");

    const poppler::rectf box = page->page_rect();
    double width = box.width();
    double height = box.height();
    const auto orientation = page->orientation();
    if (orientation == poppler::page::landscape || orientation == poppler::page::seascape)
        std::swap(width, height);
    const double longer = std::max(width, height);
    if (!std::isfinite(longer) || std::min(width, height) <= 0)
        throw std::runtime_error("The PDF has no page that could be drawn.");
    const double scale = side / longer;

    poppler::page_renderer renderer;
    renderer.set_image_format(poppler::image::format_rgb24);
    renderer.set_render_hint(poppler::page_renderer::antialiasing);
    renderer.set_render_hint(poppler::page_renderer::text_antialiasing);
    const auto length = [&](double points) {
        return std::clamp(static_cast<int>(std::lround(points * scale)), 1, side);
    };
    const poppler::image image =
        renderer.render_page(page.get(), pointsPerInch * scale, pointsPerInch * scale, 0, 0,
                             length(width), length(height));
    if (!image.is_valid()) throw std::runtime_error("The page could not be drawn.");

    Picture picture{image.width(), image.height(), image.width(), image.height(), {}};
    const auto* row = reinterpret_cast<const std::byte*>(image.const_data());
    for (int y = 0; y < image.height(); ++y, row += image.bytes_per_row())
        picture.pixels.insert(picture.pixels.end(), row,
                              row + static_cast<std::ptrdiff_t>(image.width()) * 3);
    return picture;
}

} // namespace tovi::decoder
