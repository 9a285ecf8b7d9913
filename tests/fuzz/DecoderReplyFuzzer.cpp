#include "decoder/protocol/Message.h"

#include <algorithm>
#include <cstdlib>

/// The client's end: whatever parses and answers a request keeps to the result area and to what
/// was asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tovi::decoder;
    const auto bytes = std::as_bytes(std::span(data, size));
    const auto reply = parseReply(bytes);
    if (!reply) return 0;
    if (!std::ranges::equal(encode(*reply), bytes)) std::abort();
    const Request pdf{Task::pdfText, 100, 200'000, 0};
    const Request pixels{Task::picturePixels, 0, 0, 768};
    if (answers(*reply, pdf, 3)) {
        if (const auto* done = std::get_if<PdfDone>(&*reply)) {
            if (done->pagesRead > 100 || done->textBytes > resultCapacity) std::abort();
        }
    }
    if (answers(*reply, pixels, 0)) {
        if (const auto* done = std::get_if<PixelsDone>(&*reply)) {
            if (std::size_t{done->width} * done->height * 3 > resultCapacity) std::abort();
            if (done->width > 768 || done->height > 768) std::abort();
        }
    }
    return 0;
}
