// decoder_bench pool|libraries PROGRAM FOLDER: reads every PDF and picture below FOLDER, through
// sandboxed decoders or by calling Poppler and Tesseract in this process, and prints what that
// took.
#include "base/Text.h"
#include "decoder/client/DecoderPool.h"
#include "decoder/process/Picture.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <thread>

#include <allheaders.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-global.h>
#include <poppler/cpp/poppler-page.h>
#include <sys/resource.h>
#include <tesseract/baseapi.h>

namespace {

using namespace tovi;
namespace fs = std::filesystem;

using Reader = std::function<std::size_t(const std::string& path)>; // bytes of text

std::vector<std::string> filesBelow(const std::string& folder,
                                    const std::vector<std::string>& extensions) {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        const std::string extension = lowercasedExtension(entry.path().filename().string());
        if (entry.is_regular_file() &&
            std::find(extensions.begin(), extensions.end(), extension) != extensions.end())
            found.push_back(entry.path().string());
    }
    std::sort(found.begin(), found.end());
    return found;
}

double seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

rusage used(__rusage_who who) {
    rusage usage{};
    ::getrusage(who, &usage);
    return usage;
}

double cpuSeconds() {
    double sum = 0;
    for (const auto who : {RUSAGE_SELF, RUSAGE_CHILDREN})
        sum += seconds(used(who).ru_utime) + seconds(used(who).ru_stime);
    return sum;
}

void measure(const char* what, const std::vector<std::string>& files, unsigned threads,
             const Reader& read, const std::function<void()>& finish) {
    if (files.empty()) return;
    const double cpuBefore = cpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    std::atomic<std::size_t> next = 0;
    std::atomic<std::size_t> bytes = 0;
    std::atomic<int> failed = 0;
    {
        std::vector<std::jthread> workers;
        for (unsigned i = 0; i < threads; ++i) {
            workers.emplace_back([&] {
                for (std::size_t at = next++; at < files.size(); at = next++) {
                    try {
                        bytes += read(files[at]);
                    } catch (const std::exception& error) {
                        ++failed;
                        fmt::print(stderr, "{}: {}\n", files[at], error.what());
                    }
                }
            });
        }
    }
    finish();
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    fmt::print("{:9} {:5} files {:3} failed {:10} bytes of text  wall {:6.2f} s  cpu {:6.2f} s  "
               "peak {:4} MB here, {:4} MB in one child\n",
               what, files.size(), failed.load(), bytes.load(), wall.count(),
               cpuSeconds() - cpuBefore, used(RUSAGE_SELF).ru_maxrss / 1024,
               used(RUSAGE_CHILDREN).ru_maxrss / 1024);
}

std::size_t readPdfDirectly(const std::string& path) {
    const std::unique_ptr<poppler::document> document(poppler::document::load_from_file(path));
    if (document == nullptr) throw std::runtime_error("not a PDF");
    std::size_t bytes = 0;
    for (int i = 0; i < std::min(document->pages(), 100) && bytes < 200'000; ++i) {
        const std::unique_ptr<poppler::page> page(document->create_page(i));
        bytes += page->text(poppler::rectf(), poppler::page::non_raw_non_physical_layout)
                     .to_utf8()
                     .size();
    }
    return bytes;
}

std::size_t recogniseDirectly(tesseract::TessBaseAPI& engine, const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    const decoder::Picture picture = decoder::loadPicture(
        std::as_bytes(std::span(bytes.data(), bytes.size())), 2400, decoder::Colours::grey);
    engine.SetImage(reinterpret_cast<const unsigned char*>(picture.pixels.data()), picture.width,
                    picture.height, 1, picture.width);
    engine.SetSourceResolution(300);
    const std::unique_ptr<char[]> text(engine.GetUTF8Text());
    return std::string_view(text.get()).size();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        fmt::print(stderr, "usage: decoder_bench pool|libraries PATH-OF-TOVI-DECODER FOLDER\n");
        return 2;
    }
    const auto pdfs = filesBelow(argv[3], {"pdf"});
    const auto pictures =
        filesBelow(argv[3], {"jpg", "jpeg", "png", "heic", "webp", "tif", "tiff", "gif", "bmp"});
    if (std::string_view(argv[1]) == "libraries") {
        poppler::set_debug_error_function([](const std::string&, void*) {}, nullptr);
        measure("PDF", pdfs, 1, readPdfDirectly, [] {});
        decoder::preparePictures();
        tesseract::TessBaseAPI engine;
        if (engine.Init(nullptr, "eng", tesseract::OEM_LSTM_ONLY) != 0) return 1;
        engine.SetPageSegMode(tesseract::PSM_AUTO);
        measure(
            "pictures", pictures, 1,
            [&](const std::string& path) { return recogniseDirectly(engine, path); }, [] {});
        return 0;
    }
    decoder::DecoderPool pool({argv[2], 0});
    const auto opened = [](const std::string& path) {
        return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    };
    const unsigned threads = std::max(std::thread::hardware_concurrency(), 1u);
    measure(
        "PDF", pdfs, threads,
        [&](const std::string& path) {
            return pool.readPdf(opened(path), 100, 200'000, {}, {}).text.size();
        },
        [&] { pool.endIdle(); });
    measure(
        "pictures", pictures, threads,
        [&](const std::string& path) {
            return pool.readPictureText(opened(path), 2400, 200'000, {}, {}).size();
        },
        [&] { pool.endIdle(); });
}
