#include "decoder/protocol/Message.h"

#include <algorithm>
#include <cstdlib>

/// The decoder's end: whatever parses is within bounds and is the only way to say it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tovi::decoder;
    const auto bytes = std::as_bytes(std::span(data, size));
    const auto request = parseRequest(bytes);
    if (!request) return 0;
    if (!std::ranges::equal(encode(*request), bytes)) std::abort();
    if (request->maximumPages > maximumPagesPerRequest ||
        request->maximumCharacters > maximumCharactersPerRequest ||
        request->maximumSide > maximumRecognisedSide)
        std::abort();
    return 0;
}
