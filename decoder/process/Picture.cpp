#include "decoder/process/Picture.h"

#include "decoder/process/WrongFormat.h"
#include "decoder/protocol/Message.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <allheaders.h>
#include <dlfcn.h>
#include <gmodule.h>
#include <vips/vips.h>
// After vips.h, whose types it uses.
#include <vips/vector.h>

namespace tovi::decoder {
namespace {

constexpr std::array loaders = {"VipsForeignLoadJpeg",  "VipsForeignLoadPng",
                                "VipsForeignLoadWebp",  "VipsForeignLoadTiff",
                                "VipsForeignLoadNsgif", "VipsForeignLoadHeif"};

struct Unref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Unref>;

struct FreePix {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};

[[noreturn]] void failDecoding() {
    const std::string all = vips_error_buffer();
    vips_error_clear();
    throw std::runtime_error("The picture could not be decoded: " + all.substr(0, all.find('\n')));
}

/// Runs one operation of libvips, which makes a new image or fails.
template <typename Operation>
Image make(const Operation& operation) {
    VipsImage* out = nullptr;
    if (operation(&out) != 0) failDecoding();
    return Image(out);
}

void refuseHugePictures(std::int64_t width, std::int64_t height) {
    if (width * height > maximumPixels)
        throw std::runtime_error("The picture has more than 100 million pixels.");
}

/// HEIC and AVIF are in a module of their own; the others, such as ImageMagick, stay out.
void loadHeifModule() {
    Dl_info library{};
    if (::dladdr(reinterpret_cast<void*>(&vips_init), &library) == 0) return;
    const auto modules =
        "vips-modules-" + std::to_string(vips_version(0)) + "." + std::to_string(vips_version(1));
    const auto path =
        std::filesystem::path(library.dli_fname).parent_path() / modules / "vips-heif.so";
    if (GModule* module = g_module_open(path.c_str(), G_MODULE_BIND_LAZY))
        g_module_make_resident(module);
}

bool isBmp(std::span<const std::byte> bytes) {
    return bytes.size() > 26 && std::memcmp(bytes.data(), "BM", 2) == 0;
}

std::int64_t integerAt(std::span<const std::byte> bytes, std::size_t offset) {
    std::int32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return std::abs(std::int64_t{value});
}

/// A picture in the pipeline, and how large it is in its file, upright.
struct Loaded {
    Image image;
    int fullWidth;
    int fullHeight;
};

Loaded loadBmp(std::span<const std::byte> bytes, int maximumSide) {
    refuseHugePictures(integerAt(bytes, 18), integerAt(bytes, 22));
    const auto* data = reinterpret_cast<const l_uint8*>(bytes.data());
    const std::unique_ptr<Pix, FreePix> stored(pixReadMemBmp(data, bytes.size()));
    if (stored == nullptr) throw std::runtime_error("The picture could not be decoded: BMP");
    const std::unique_ptr<Pix, FreePix> pix(pixConvertTo32(stored.get()));
    if (pix == nullptr) throw std::runtime_error("The picture could not be decoded: BMP");
    const int width = pixGetWidth(pix.get());
    const int height = pixGetHeight(pix.get());
    std::vector<std::byte> rgb(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                               3);
    std::byte* out = rgb.data();
    for (int y = 0; y < height; ++y) {
        const l_uint32* row =
            pixGetData(pix.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix.get());
        for (int x = 0; x < width; ++x) {
            for (const int shift : {L_RED_SHIFT, L_GREEN_SHIFT, L_BLUE_SHIFT})
                *out++ = static_cast<std::byte>((row[x] >> shift) & 0xff);
        }
    }
    const Image whole(vips_image_new_from_memory_copy(rgb.data(), rgb.size(), width, height, 3,
                                                      VIPS_FORMAT_UCHAR));
    if (whole == nullptr) failDecoding();
    Image small = make([&](VipsImage** image) {
        return vips_thumbnail_image(whole.get(), image, maximumSide, "height", maximumSide, "size",
                                    VIPS_SIZE_DOWN, nullptr);
    });
    return {std::move(small), width, height};
}

enum class Damage { accepted, refused };

bool isSupported(std::string_view loader) {
    return std::ranges::any_of(
        loaders, [loader](std::string_view supported) { return loader.starts_with(supported); });
}

/// The picture, to be read from top to bottom once. Loaders that leave out details leave out what
/// is not wanted at `scale`; thumbnails and smaller copies in the file, which may show anything,
/// are not used.
Image open(std::span<const std::byte> bytes, std::string_view loader, Damage damage, double scale) {
    std::string options = "[access=sequential";
    if (damage == Damage::refused) options += ",fail_on=error";
    if (loader.starts_with("VipsForeignLoadJpeg")) {
        int shrink = 1;
        while (shrink < 8 && scale * shrink * 2 <= 1)
            shrink *= 2;
        options += ",shrink=" + std::to_string(shrink);
    } else if (loader.starts_with("VipsForeignLoadWebp") && scale < 1) {
        options += ",scale=" + std::to_string(scale);
    }
    Image image(
        vips_image_new_from_buffer(bytes.data(), bytes.size(), (options + ']').c_str(), nullptr));
    if (image == nullptr) failDecoding();
    return image;
}

Loaded loadOther(std::span<const std::byte> bytes, int maximumSide, Damage damage) {
    const char* found = vips_foreign_find_load_buffer(bytes.data(), bytes.size());
    const std::string loader = found != nullptr ? found : "";
    if (!isSupported(loader)) {
        vips_error_clear();
        throw WrongFormat("The picture format is not supported.");
    }
    Image image = open(bytes, loader, damage, 1);
    int fullWidth = vips_image_get_width(image.get());
    int fullHeight = vips_image_get_height(image.get());
    refuseHugePictures(fullWidth, fullHeight);
    if (vips_image_get_orientation_swap(image.get()) != 0) std::swap(fullWidth, fullHeight);
    // A side of no pixels would make libvips end the process.
    const double scale =
        std::max(1.0 / std::min(fullWidth, fullHeight),
                 static_cast<double>(maximumSide) / std::max(fullWidth, fullHeight));
    if (scale < 1) image = open(bytes, loader, damage, scale);
    // Without a profile of its own the picture needs no other's, which takes 5 ms.
    const bool hasProfile = vips_image_get_typeof(image.get(), VIPS_META_ICC_NAME) != 0;
    Image small = make([&](VipsImage** out) {
        return vips_thumbnail_image(image.get(), out, maximumSide, "height", maximumSide, "size",
                                    VIPS_SIZE_DOWN, "export_profile", hasProfile ? "srgb" : nullptr,
                                    nullptr);
    });
    return {std::move(small), fullWidth, fullHeight};
}

Image onWhite(Image image) {
    if (vips_image_hasalpha(image.get()) == 0) return image;
    const double white[] = {255};
    VipsArrayDouble* background = vips_array_double_new(white, 1);
    Image flat = make([&](VipsImage** out) {
        return vips_flatten(image.get(), out, "background", background, nullptr);
    });
    vips_area_unref(VIPS_AREA(background));
    return flat;
}

Image converted(const Image& image, VipsInterpretation space) {
    return make(
        [&](VipsImage** out) { return vips_colourspace(image.get(), out, space, nullptr); });
}

} // namespace

void preparePictures() {
    ::setenv("VIPSHOME", "/nonexistent", 1); // where it would look for modules
    if (VIPS_INIT("tovi-decoder") != 0) throw std::runtime_error("libvips does not start.");
    loadHeifModule();
    vips_vector_set_enabled(FALSE); // it would make memory executable
    vips_concurrency_set(1);
    vips_cache_set_max(0);
    vips_operation_block_set("VipsForeignLoad", TRUE);
    for (const char* loader : loaders)
        vips_operation_block_set(loader, FALSE);
    setMsgSeverity(L_SEVERITY_NONE);
}

Picture loadPicture(std::span<const std::byte> bytes, int maximumSide, Colours colours) {
    // The text of half a picture is worth finding, but half a picture is not what it looks like.
    const Damage damage = colours == Colours::grey ? Damage::accepted : Damage::refused;
    const Loaded loaded =
        isBmp(bytes) ? loadBmp(bytes, maximumSide) : loadOther(bytes, maximumSide, damage);
    Image image = onWhite(converted(loaded.image, VIPS_INTERPRETATION_sRGB));
    if (colours == Colours::grey) image = converted(image, VIPS_INTERPRETATION_B_W);
    image = make([&](VipsImage** out) { return vips_cast_uchar(image.get(), out, nullptr); });

    const int channels = colours == Colours::grey ? 1 : 3;
    if (vips_image_get_bands(image.get()) != channels)
        throw std::runtime_error("The picture could not be decoded: unusual colours.");
    std::size_t size = 0;
    const std::unique_ptr<void, void (*)(void*)> memory(
        vips_image_write_to_memory(image.get(), &size), g_free);
    if (memory == nullptr) failDecoding();
    const auto* first = static_cast<const std::byte*>(memory.get());
    return {vips_image_get_width(image.get()),
            vips_image_get_height(image.get()),
            loaded.fullWidth,
            loaded.fullHeight,
            {first, first + size}};
}

} // namespace tovi::decoder
