#include "decoder/process/PdfPage.h"

#include "decoder/process/WrongFormat.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>

namespace tovi::decoder {
namespace {

constexpr double pointsPerInch = 72;

} // namespace

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
