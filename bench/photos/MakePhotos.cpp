// make-photos FOLDER SCENES: writes a labelled set of photos, SCENES drawn scenes and a quarter as
// many typeset pages of one style, each with its edits. A file is called photo or page, the number
// of what it shows, and the edit, with hyphens between. FOLDER.jpg is another photo, of 12
// megapixels.
#include "bench/photos/Scene.h"

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <vips/vips8>

namespace {

using namespace tovi::bench;
using vips::VImage;

VImage photoOf(unsigned seed) {
    auto pixels = drawScene(seed);
    return VImage::new_from_memory(pixels.data(), pixels.size(), sceneWidth, sceneHeight, 3,
                                   VIPS_FORMAT_UCHAR)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
        .copy_memory();
}

VImage ofText(const std::string& text, int width, const char* font) {
    return VImage::text(text.c_str(), VImage::option()->set("width", width)->set("font", font));
}

VImage pageOf(unsigned seed) {
    constexpr const char* syllables[] = {"ba", "den", "lor", "mi", "sa", "ter", "vo", "qui"};
    std::mt19937 random(seed);
    std::string text;
    while (text.size() < 1500) {
        for (auto count = 1 + random() % 4; count > 0; --count)
            text += syllables[random() % std::size(syllables)];
        text += random() % 70 == 0 ? "\n\n" : " ";
    }
    const VImage ink = ofText(text, sceneHeight - 160, "Sans 20");
    const VImage page = ink.embed(80, 80, sceneHeight, sceneWidth).invert();
    return VImage::bandjoin(std::vector<VImage>{page, page, page})
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

VImage cropped(const VImage& photo, double part) {
    const int across = static_cast<int>(photo.width() * part);
    const int down = static_cast<int>(photo.height() * part);
    return photo.extract_area(across / 2, down / 3, photo.width() - across, photo.height() - down);
}

VImage turned(const VImage& photo, double degrees) {
    // Without the corners that turning leaves empty.
    const double margin = std::sin(degrees * 3.14159265 / 180) * photo.width() / 2;
    const VImage whole = photo.similarity(VImage::option()->set("angle", degrees));
    const int inset = static_cast<int>(std::ceil(margin)) * 2;
    return whole.extract_area(inset, inset, whole.width() - 2 * inset, whole.height() - 2 * inset);
}

VImage watermarked(const VImage& photo) {
    const VImage mark = ofText("© Tovi pictures", photo.width() / 2, "Sans Bold 48");
    const VImage mask =
        mark.embed(photo.width() / 4, photo.height() - 150, photo.width(), photo.height());
    return (mask > 128).ifthenelse(photo * 0.4 + 150, photo);
}

VImage saturated(const VImage& photo, double factor) {
    const VImage lch = photo.colourspace(VIPS_INTERPRETATION_LCH);
    return (lch * std::vector<double>{1, factor, 1})
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_LCH))
        .colourspace(VIPS_INTERPRETATION_sRGB);
}

struct Edit {
    const char* name;
    std::function<VImage(const VImage&)> change;
    int quality = 90;
};

const std::vector<Edit>& edits() {
    static const std::vector<Edit> all = {
        {"original", [](const VImage& photo) { return photo; }, 92},
        {"quality40", [](const VImage& photo) { return photo; }, 40},
        {"half", [](const VImage& photo) { return photo.resize(0.5); }},
        {"crop3", [](const VImage& photo) { return cropped(photo, 0.03); }},
        {"crop6", [](const VImage& photo) { return cropped(photo, 0.06); }},
        {"crop10", [](const VImage& photo) { return cropped(photo, 0.10); }},
        {"brighter", [](const VImage& photo) { return photo * 1.3; }},
        {"darker", [](const VImage& photo) { return photo * 0.7; }},
        {"contrast", [](const VImage& photo) { return photo * 1.3 - 38; }},
        {"warmer",
         [](const VImage& photo) {
             return photo * std::vector<double>{1.1, 1, 0.85};
         }},
        {"saturated", [](const VImage& photo) { return saturated(photo, 1.4); }},
        {"grey", [](const VImage& photo) { return photo.colourspace(VIPS_INTERPRETATION_B_W); }},
        {"turned1", [](const VImage& photo) { return turned(photo, 1); }},
        {"turned3", [](const VImage& photo) { return turned(photo, 3); }},
        {"watermark", watermarked},
    };
    return all;
}

void write(const std::string& folder, const std::string& shown, const VImage& photo) {
    for (const Edit& edit : edits()) {
        edit.change(photo)
            .cast(VIPS_FORMAT_UCHAR)
            .jpegsave(fmt::format("{}/{}-{}.jpg", folder, shown, edit.name).c_str(),
                      VImage::option()->set("Q", edit.quality));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 || VIPS_INIT(argv[0]) != 0) return 2;
    try {
        const auto scenes = static_cast<unsigned>(std::stoul(argv[2]));
        for (unsigned number = 0; number < scenes; ++number)
            write(argv[1], fmt::format("photo-{:04}", number), photoOf(number));
        const VImage large = photoOf(scenes).resize(3.125);
        (large + (VImage::gaussnoise(large.width(), large.height()) - 128) * 0.2)
            .cast(VIPS_FORMAT_UCHAR)
            .jpegsave(fmt::format("{}.jpg", argv[1]).c_str(), VImage::option()->set("Q", 90));
        for (unsigned page = 0; page < scenes / 4; ++page)
            write(argv[1], fmt::format("page-{:04}", page), pageOf(page));
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
    return 0;
}
