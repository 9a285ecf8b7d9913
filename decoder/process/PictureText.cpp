#include "decoder/process/PictureText.h"

#include "base/Text.h"
#include "decoder/process/Picture.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include <allheaders.h>
#include <tesseract/baseapi.h>

namespace tovi::decoder {
namespace {

constexpr int enlargeBelow = 2000;          // pixels of the longer side
constexpr float minimumWordConfidence = 40; // percent
constexpr double convincing = 70;           // percent
constexpr std::size_t maximumLanguages = 6;

struct FreePix {
    void operator()(Pix* pix) const { pixDestroy(&pix); }
};
using Image = std::unique_ptr<Pix, FreePix>;

Image checked(Pix* pix) {
    if (pix == nullptr) throw std::runtime_error("The picture could not be prepared.");
    return Image(pix);
}

struct Engines {
    tesseract::TessBaseAPI text;
    tesseract::TessBaseAPI orientation;
    bool knowsOrientation = false;
};

Engines& engines() {
    static auto* both = new Engines; // not destroyed: what it refers to in Tesseract goes first
    return *both;
}

std::string languagesOf(tesseract::TessBaseAPI& english) {
    std::vector<std::string> installed;
    english.GetAvailableLanguagesAsVector(&installed);
    std::sort(installed.begin(), installed.end());
    std::string languages = "eng";
    std::size_t count = 1;
    for (const std::string& language : installed) {
        const bool isText = language != "eng" && language != "osd" && language != "equ";
        if (isText && count++ < maximumLanguages) languages += "+" + language;
    }
    return languages;
}

Image toPix(const Picture& picture) {
    Image pix = checked(pixCreate(picture.width, picture.height, 8));
    const auto* in = picture.pixels.data();
    for (int y = 0; y < picture.height; ++y) {
        l_uint32* row =
            pixGetData(pix.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix.get());
        for (int x = 0; x < picture.width; ++x)
            SET_DATA_BYTE(row, x, std::to_integer<l_uint8>(*in++));
    }
    return pix;
}

struct Reading {
    std::vector<std::string> lines;
    double confidence = 0; // percent, weighted by length
    double weight = 0;
};

/// A word counts if the engine stands by it and it has a letter or a digit: from textures it
/// reads dashes and bars.
bool isWord(std::string_view word, float confidence) {
    return confidence >= minimumWordConfidence && std::any_of(word.begin(), word.end(), [](char c) {
               return (c & 0x80) != 0 || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
                      (c >= 'A' && c <= 'Z');
           });
}

Reading recognise(Pix* pix) {
    tesseract::TessBaseAPI& engine = engines().text;
    engine.SetImage(pix);
    engine.SetSourceResolution(300);
    if (engine.Recognize(nullptr) != 0) throw std::runtime_error("The text recognition failed.");
    Reading reading;
    const std::unique_ptr<tesseract::ResultIterator> at(engine.GetIterator());
    if (at == nullptr) return reading;
    std::string line;
    do {
        const std::unique_ptr<char[]> word(at->GetUTF8Text(tesseract::RIL_WORD));
        const float confidence = at->Confidence(tesseract::RIL_WORD);
        if (word != nullptr && isWord(word.get(), confidence)) {
            const std::string_view text = trimmed(word.get());
            if (!line.empty()) line += ' ';
            line += text;
            reading.confidence +=
                static_cast<double>(confidence) * static_cast<double>(text.size());
            reading.weight += static_cast<double>(text.size());
        }
        if (at->IsAtFinalElement(tesseract::RIL_TEXTLINE, tesseract::RIL_WORD) && !line.empty())
            reading.lines.push_back(std::exchange(line, {}));
    } while (at->Next(tesseract::RIL_WORD));
    if (reading.weight > 0) reading.confidence /= reading.weight;
    engine.Clear();
    return reading;
}

/// Quarter turns clockwise that bring the picture upright, 0 if none is plain.
int quarterTurns(Pix* pix) {
    if (!engines().knowsOrientation) return 0;
    tesseract::TessBaseAPI& engine = engines().orientation;
    engine.SetImage(pix);
    engine.SetSourceResolution(300);
    int degrees = 0;
    float confidence = 0;
    const char* script = nullptr;
    float scriptConfidence = 0;
    const bool found =
        engine.DetectOrientationScript(&degrees, &confidence, &script, &scriptConfidence);
    engine.Clear();
    return found ? (4 - degrees / 90) % 4 : 0;
}

Image withoutSkew(Pix* pix) {
    return checked(pixDeskew(pix, 0));
}

} // namespace

void preparePictureText() {
    Engines& both = engines();
    if (both.text.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0)
        throw std::runtime_error("Tesseract's English data is not installed.");
    const std::string languages = languagesOf(both.text);
    if (languages != "eng" &&
        both.text.Init(nullptr, languages.c_str(), tesseract::OEM_LSTM_ONLY) != 0)
        throw std::runtime_error("Tesseract's languages cannot be loaded.");
    both.text.SetPageSegMode(tesseract::PSM_AUTO);
    both.knowsOrientation = both.orientation.Init(nullptr, "osd") == 0;
    both.orientation.SetPageSegMode(tesseract::PSM_OSD_ONLY);
}

std::string readPictureText(std::span<const std::byte> bytes, int maximumSide,
                            std::size_t maximumCharacters, std::size_t maximumBytes) {
    Image pix = toPix(loadPicture(bytes, maximumSide, Colours::grey));
    if (std::max(pixGetWidth(pix.get()), pixGetHeight(pix.get())) < enlargeBelow)
        pix = checked(pixScale(pix.get(), 2, 2));
    pix = withoutSkew(pix.get());
    Reading reading = recognise(pix.get());
    if (reading.confidence < convincing) {
        if (const int turns = quarterTurns(pix.get()); turns != 0) {
            const Image upright = withoutSkew(checked(pixRotateOrth(pix.get(), turns)).get());
            Reading other = recognise(upright.get());
            if (other.confidence * other.weight > reading.confidence * reading.weight)
                reading = std::move(other);
        }
    }
    std::string text;
    for (const std::string& line : reading.lines) {
        if (text.size() + 1 + line.size() > maximumBytes) break;
        if (!text.empty()) text += '\n';
        text += line;
    }
    text.resize(firstCharacters(text, maximumCharacters).size());
    return text;
}

} // namespace tovi::decoder
