#include "decoder/process/PdfPage.h"
#include "decoder/process/PdfText.h"
#include "decoder/process/Picture.h"
#include "decoder/process/PictureText.h"
#include "decoder/process/Service.h"
#include "decoder/process/WrongFormat.h"
#include "tests/decoder/PdfMaker.h"
#include "tests/support/TemporaryTree.h"

#include <memory>
#include <random>
#include <string>

#include <allheaders.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <vips/vips.h>

/// Fontconfig keeps what it read of the fonts until the process ends.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

namespace tovi::decoder {
namespace {

using testing::AnyOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;

std::span<const std::byte> bytesOf(const std::string& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

std::string fixture(const std::string& name) {
    return test::readFile(std::string(TOVI_TEST_DATA) + "/decoder/" + name);
}

PdfContent readPdf(const std::string& pdf, std::size_t characters = 200'000,
                   std::size_t bytes = 1'000'000) {
    prepare(Task::pdfText);
    return readPdfText(bytesOf(pdf), 100, characters, bytes, [](int) {});
}

TEST(PdfText, JoinsThePagesThatHaveText) {
    prepare(Task::pdfText);
    std::vector<int> progress;
    const std::string pdf = test::makePdf({"(First page)", "", "(Caf\\351 \\(3\\))"});
    const PdfContent content =
        readPdfText(bytesOf(pdf), 100, 1000, 1000, [&](int pages) { progress.push_back(pages); });
    EXPECT_EQ(content.text, "First page\nCaf\u00e9 (3)");
    EXPECT_EQ(content.pagesRead, 3);
    EXPECT_EQ(content.pageCount, 3);
    EXPECT_FALSE(content.locked || content.reachedCharacterLimit);
    EXPECT_EQ(progress, (std::vector{1, 2, 3}));
    EXPECT_EQ(readPdf(test::makePdf({""})).text, "");
}

TEST(PdfText, ReadsAHundredPagesAtMost) {
    const PdfContent content = readPdf(test::makePdf(std::vector<std::string>(150, "(page)")));
    EXPECT_EQ(content.pagesRead, 100);
    EXPECT_EQ(content.pageCount, 150);
    EXPECT_FALSE(content.reachedCharacterLimit);
}

TEST(PdfText, StopsAtTheCharacterLimitAsAPersonCounts) {
    // A letter, an accent that stays apart in NFKC, and so one character in three bytes.
    const std::string pdf =
        test::makePdf({"<0071030700710307>", "<00710307>", "<0078>"}, test::unicodeFont());
    EXPECT_EQ(readPdf(pdf).text, "q\u0307q\u0307\nq\u0307\nx");
    const struct {
        std::size_t characters, bytes;
        std::string text;
        int pages;
        bool limit;
    } cases[] = {
        {1, 100, "q\u0307", 1, true},
        {2, 100, "q\u0307q\u0307", 1, true},
        {3, 100, "q\u0307q\u0307\n", 2, true},
        {6, 100, "q\u0307q\u0307\nq\u0307\nx", 3, true},
        {7, 100, "q\u0307q\u0307\nq\u0307\nx", 3, false},
        {7, 5, "q\u0307q", 1, true}, // five bytes end inside the second accent
    };
    for (const auto& each : cases) {
        const PdfContent content = readPdf(pdf, each.characters, each.bytes);
        EXPECT_EQ(content.text, each.text);
        EXPECT_EQ(content.pagesRead, each.pages);
        EXPECT_EQ(content.reachedCharacterLimit, each.limit);
    }
}

TEST(PdfText, ReadsOtherScripts) {
    EXPECT_EQ(readPdf(test::makePdf({"<93fa967b8cea>"}, test::japaneseFont("90ms-RKSJ-H"))).text,
              "\u65e5\u672c\u8a9e");
    EXPECT_EQ(readPdf(test::makePdf({"<65e5672c8a9e>"}, test::japaneseFont("UniJIS-UTF16-H"))).text,
              "\u65e5\u672c\u8a9e");
    // Arabic comes in visual order and as letter shapes; it is stored as it is typed.
    EXPECT_EQ(readPdf(test::makePdf({"<fe94fed0fee0fedf>"}, test::unicodeFont())).text,
              "\u0644\u0644\u063a\u0629");
    EXPECT_EQ(readPdf(test::makePdf({"<fb010078>"}, test::unicodeFont())).text, "fix");
}

TEST(PdfText, KnowsWhichPasswordKeepsAReaderOut) {
    EXPECT_TRUE(readPdf(fixture("user-password.pdf")).locked);
    EXPECT_EQ(readPdf(fixture("owner-password.pdf")).text, "Behind a password");
}

TEST(PdfText, SaysWhatIsNoPdf) {
    for (const std::string bytes : {"", "Just words.", "%PDF-1.7\n", "\x89PNG\r\n"})
        EXPECT_THROW(readPdf(bytes), WrongFormat) << bytes;
}

/// Reads what it can of damaged files; anything but a crash is right.
template <typename Read>
void damage(const std::string& whole, int rounds, const Read& read) {
    const auto attempt = [&](const std::string& bytes) {
        try {
            read(bytes);
        } catch (const std::exception&) {
        }
    };
    for (std::size_t size = 0; size < whole.size(); size += whole.size() / 20 + 1)
        attempt(whole.substr(0, size));
    std::mt19937 random(7);
    for (int round = 0; round < rounds; ++round) {
        std::string bytes = whole;
        for (int i = 0; i < 10; ++i)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        attempt(bytes);
    }
}

TEST(PdfPage, IsDrawnOnWhite) {
    prepare(Task::pdfPixels);
    const std::string pdf = test::makePdf({"(x) Tj ET 1 0 0 rg 0 0 306 792 re f BT (y)", ""});
    for (const int side : {1, 50, 2048}) {
        const Picture page = drawFirstPage(bytesOf(pdf), side);
        EXPECT_EQ(page.height, side);
        EXPECT_NEAR(page.width, side * 612.0 / 792, 1); // points
        ASSERT_EQ(page.pixels.size(), static_cast<std::size_t>(page.width * page.height * 3));
        if (side == 1) continue;
        EXPECT_EQ(page.pixels[1], std::byte{0}) << "red at the left";
        EXPECT_EQ(page.pixels[page.pixels.size() - 2], std::byte{255}) << "white at the right";
    }
    EXPECT_THROW(drawFirstPage(bytesOf("words"), 9), WrongFormat);
    EXPECT_THROW(drawFirstPage(bytesOf(test::makePdf({})), 9), std::runtime_error);
    EXPECT_THROW(drawFirstPage(bytesOf(fixture("user-password.pdf")), 9), std::runtime_error);
    damage(pdf, 100, [](const auto& bytes) { drawFirstPage(bytesOf(bytes), 32); });
}

TEST(PdfText, SurvivesDamage) {
    damage(test::makePdf({"(One)", "(Two)"}), 300, [](const auto& bytes) { readPdf(bytes); });
    damage(test::makePdf({"<93fa967b>"}, test::japaneseFont("90ms-RKSJ-H")), 300,
           [](const auto& bytes) { readPdf(bytes); });
}

class PictureTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { prepare(Task::pictureText); }

    static Picture load(const std::string& bytes, int side) {
        return loadPicture(bytesOf(bytes), side, Colours::rgb);
    }
    static std::string recognise(const std::string& bytes) {
        return readPictureText(bytesOf(bytes), 2400, 200'000, 1'000'000);
    }
};

struct FreePix {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using PixPointer = std::unique_ptr<Pix, FreePix>;

std::string written(Pix* pix, l_int32 format) {
    l_uint8* data = nullptr;
    std::size_t size = 0;
    if (pixWriteMem(&data, &size, pix, format) != 0) std::abort();
    std::string bytes(reinterpret_cast<char*>(data), size);
    lept_free(data);
    return bytes;
}

PixPointer pixOf(const std::string& bytes) {
    return PixPointer(pixReadMem(reinterpret_cast<const l_uint8*>(bytes.data()), bytes.size()));
}

/// Left half red, right half blue, 64 x 32, as libvips writes it with `suffix`, after `change`.
template <typename Change>
std::string redAndBlue(const char* suffix, const Change& change) {
    std::vector<unsigned char> rgb;
    for (int i = 0; i < 64 * 32; ++i) {
        const bool left = i % 64 < 32;
        rgb.insert(rgb.end(), {static_cast<unsigned char>(left ? 255 : 0), 0,
                               static_cast<unsigned char>(left ? 0 : 255)});
    }
    VipsImage* image =
        vips_image_new_from_memory_copy(rgb.data(), rgb.size(), 64, 32, 3, VIPS_FORMAT_UCHAR);
    vips_image_init_fields(image, 64, 32, 3, VIPS_FORMAT_UCHAR, VIPS_CODING_NONE,
                           VIPS_INTERPRETATION_sRGB, 1, 1);
    image = change(image);
    void* data = nullptr;
    std::size_t size = 0;
    if (vips_image_write_to_buffer(image, suffix, &data, &size, nullptr) != 0)
        vips_error_exit(nullptr);
    std::string bytes(static_cast<char*>(data), size);
    g_free(data);
    g_object_unref(image);
    return bytes;
}

std::string redAndBlue(const char* suffix) {
    return redAndBlue(suffix, [](VipsImage* image) { return image; });
}

/// What an operation of libvips makes of an image, which it takes over.
template <typename Operation>
VipsImage* after(VipsImage* image, const Operation& operation) {
    VipsImage* changed = nullptr;
    if (operation(image, &changed) != 0) vips_error_exit(nullptr);
    g_object_unref(image);
    return changed;
}

VipsImage* inSpace(VipsImage* image, VipsInterpretation space) {
    return after(
        image, [space](auto* in, auto** out) { return vips_colourspace(in, out, space, nullptr); });
}

/// "R", "B" or "?" for the pixel at `x`, `y`.
char colourAt(const Picture& picture, int x, int y) {
    const std::byte* pixel =
        picture.pixels.data() + 3 * (static_cast<std::ptrdiff_t>(y) * picture.width + x);
    const auto red = std::to_integer<int>(pixel[0]);
    const auto blue = std::to_integer<int>(pixel[2]);
    if (red > 180 && blue < 90) return 'R';
    return blue > 120 && red < 110 ? 'B' : '?';
}

TEST_F(PictureTest, ReadsEveryFormatAndColourSpaceAsRgb) {
    const std::map<std::string, std::string> pictures = {
        {"JPEG", redAndBlue(".jpg")},
        {"PNG", redAndBlue(".png")},
        {"WebP", redAndBlue(".webp")},
        {"TIFF", redAndBlue(".tif")},
        {"GIF", redAndBlue(".gif")},
        {"BMP", written(pixOf(redAndBlue(".png")).get(), IFF_BMP)},
        {"16 bit",
         redAndBlue(".png",
                    [](VipsImage* image) { return inSpace(image, VIPS_INTERPRETATION_RGB16); })},
        {"CMYK",
         redAndBlue(".jpg",
                    [](VipsImage* image) { return inSpace(image, VIPS_INTERPRETATION_CMYK); })},
    };
    for (const auto& [name, bytes] : pictures) {
        const Picture picture = load(bytes, 32);
        EXPECT_EQ(picture.width, 32) << name;
        EXPECT_EQ(picture.height, 16) << name;
        ASSERT_EQ(picture.pixels.size(), 32u * 16 * 3) << name;
        EXPECT_EQ(colourAt(picture, 4, 8), 'R') << name;
        EXPECT_EQ(colourAt(picture, 28, 8), 'B') << name;
    }
    EXPECT_EQ(load(redAndBlue(".png"), 2048).width, 64) << "nothing is enlarged";
    const Picture heic = load(fixture("scan.heic"), 620);
    EXPECT_EQ(heic.width, 620);
    EXPECT_EQ(heic.height, 210);
}

TEST_F(PictureTest, ReadsUnusualPictures) {
    const std::string clear = redAndBlue(".png[palette]", [](VipsImage* image) {
        return after(image, [](auto* in, auto** out) {
            return vips_bandjoin_const1(in, out, 0, nullptr); // all of it transparent
        });
    });
    EXPECT_THAT(load(clear, 64).pixels, Each(std::byte{255})) << "on white";
    const std::string animated = redAndBlue(".gif", [](VipsImage* image) {
        VipsImage* both = after(image, [](auto* in, auto** out) {
            return vips_embed(in, out, 0, 0, 64, 64, nullptr); // a black frame follows
        });
        vips_image_set_int(both, "page-height", 32);
        return both;
    });
    EXPECT_EQ(load(animated, 64).fullHeight, 32);
    for (const char* suffix : {".png", ".jpg", ".tif"}) {
        const std::string line = redAndBlue(suffix, [](VipsImage* image) {
            return after(image, [](auto*, auto** out) {
                return vips_black(out, 1, 60'000, "bands", 3, nullptr);
            });
        });
        EXPECT_EQ(load(line, 768).pixels.size(), 768U * 3) << suffix;
    }
}

TEST_F(PictureTest, TurnsUprightAsTheCameraSays) {
    const std::string exif = redAndBlue(".jpg", [](VipsImage* image) {
        vips_image_set_int(image, "orientation", 6);
        return image;
    });
    for (const std::string& bytes : {exif, fixture("turned.avif")}) {
        const Picture picture = load(bytes, 64);
        ASSERT_EQ(picture.width, 32);
        ASSERT_EQ(picture.height, 64);
        EXPECT_EQ(picture.fullHeight, 64);
        EXPECT_EQ(colourAt(picture, 16, 8), 'R');
        EXPECT_EQ(colourAt(picture, 16, 56), 'B');
    }
}

TEST_F(PictureTest, TrustsNoSmallerCopyInTheFile) {
    const auto mirrored = [](const std::string& bytes) {
        PixPointer pix = pixOf(bytes);
        pixFlipLR(pix.get(), pix.get());
        return pix;
    };
    const std::string lie = written(mirrored(redAndBlue(".png")).get(), IFF_JFIF_JPEG);
    const std::string jpeg = redAndBlue(".jpg", [&](VipsImage* image) {
        vips_image_set_blob_copy(image, "jpeg-thumbnail-data", lie.data(), lie.size());
        return image;
    });
    ASSERT_THAT(jpeg, HasSubstr(lie));
    const test::TemporaryTree tree;
    const std::string tiff = tree.path("levels.tif");
    const PixPointer level(pixScale(mirrored(redAndBlue(".png")).get(), 0.5, 0.5));
    pixWriteTiff(tiff.c_str(), pixOf(redAndBlue(".png")).get(), IFF_TIFF, "w");
    pixWriteTiff(tiff.c_str(), level.get(), IFF_TIFF, "a");
    for (const std::string& bytes : {jpeg, test::readFile(tiff), fixture("lying-thumbnail.heic")}) {
        const Picture picture = load(bytes, 16);
        EXPECT_EQ(colourAt(picture, 2, 4), 'R');
        EXPECT_EQ(colourAt(picture, 14, 4), 'B');
    }
}

TEST_F(PictureTest, RefusesBombsBeforeDecodingThem) {
    // Headers only: reading any further fails with another sentence.
    const auto png = [](std::uint32_t width, std::uint32_t height) {
        std::string bytes = redAndBlue(".png").substr(0, 33);
        const auto put = [&](std::size_t at, std::uint32_t value) {
            for (int shift = 24; shift >= 0; shift -= 8)
                bytes[at++] = static_cast<char>((value >> shift) & 0xff);
        };
        put(16, width);
        put(20, height);
        std::uint32_t crc = ~0u;
        for (std::size_t i = 12; i < 29; ++i) {
            crc ^= static_cast<unsigned char>(bytes[i]);
            for (int bit = 0; bit < 8; ++bit)
                crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1)));
        }
        put(29, ~crc);
        return bytes + std::string("\x00\x00\x40\x00IDAT", 8) + std::string(5000, 'x');
    };
    const auto failure = [](const std::string& bytes) -> std::string {
        try {
            load(bytes, 768);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "decoded";
    };
    const std::string tooLarge = "The picture has more than 100 million pixels.";
    EXPECT_EQ(failure(png(17, 5'882'353)), tooLarge) << "by one pixel";
    EXPECT_THAT(failure(png(10'000, 10'000)), Not(AnyOf(tooLarge, "decoded")));
    const std::string whole = redAndBlue(".jpg");
    EXPECT_NE(failure(whole.substr(0, whole.size() - 20)), "decoded") << "it would look alike";
    std::string bmp = written(pixOf(redAndBlue(".png")).get(), IFF_BMP);
    bmp.replace(18, 8, std::string("\x60\xea\x00\x00\x60\xea\x00\x00", 8));
    EXPECT_EQ(failure(bmp), tooLarge);
}

TEST_F(PictureTest, RefusesOtherFormats) {
    const std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>";
    for (const std::string& bytes : {svg, test::makePdf({"(x)"}), std::string("words")})
        EXPECT_THROW(load(bytes, 100), WrongFormat) << bytes;
}

TEST_F(PictureTest, SurvivesDamage) {
    for (const std::string& whole :
         {redAndBlue(".jpg"), redAndBlue(".png"), redAndBlue(".webp"), redAndBlue(".tif"),
          redAndBlue(".gif"), written(pixOf(redAndBlue(".png")).get(), IFF_BMP)})
        damage(whole, 100, [](const auto& bytes) { load(bytes, 32); });
    damage(fixture("scan.heic"), 20, [](const auto& bytes) { load(bytes, 32); });
}

constexpr const char* lines = "Quarterly budget review\n"
                              "The heating invoice for November is due on the twelfth.\n"
                              "Please send the signed lease agreement to Margarethe Olsen\n"
                              "before the insurance renewal closes at the end of the week.\n"
                              "Train tickets to Copenhagen were booked under number 48213.\n"
                              "Remember the blue folder with the passport photographs.";

TEST_F(PictureTest, RecognisesScreenshotsAndPhotographs) {
    EXPECT_EQ(recognise(fixture("screenshot.png")), lines);
    EXPECT_EQ(recognise(fixture("scan.heic")), lines);
    EXPECT_EQ(readPictureText(bytesOf(fixture("screenshot.png")), 2400, 9, 1000), "Quarterly");
}

TEST_F(PictureTest, RecognisesSkewedAndTurnedScans) {
    const PixPointer upright = pixOf(fixture("scan.png"));
    const PixPointer skewed(
        pixRotate(upright.get(), 0.021f, L_ROTATE_AREA_MAP, L_BRING_IN_WHITE, 0, 0)); // 1.2 degrees
    EXPECT_EQ(recognise(written(skewed.get(), IFF_PNG)), lines);
    for (const int quarters : {1, 2, 3}) {
        const PixPointer turned(pixRotateOrth(upright.get(), quarters));
        EXPECT_EQ(recognise(written(turned.get(), IFF_PNG)), lines) << quarters;
    }
}

TEST_F(PictureTest, FindsNoTextWhereThereIsNone) {
    EXPECT_EQ(recognise(redAndBlue(".jpg")), "");
    VipsImage* noise = nullptr;
    ASSERT_EQ(vips_perlin(&noise, 1200, 900, "cell_size", 60, "uchar", TRUE, nullptr), 0);
    void* data = nullptr;
    std::size_t size = 0;
    ASSERT_EQ(vips_jpegsave_buffer(noise, &data, &size, nullptr), 0);
    EXPECT_EQ(recognise(std::string(static_cast<char*>(data), size)), "");
    g_free(data);
    g_object_unref(noise);
}

} // namespace
} // namespace tovi::decoder
