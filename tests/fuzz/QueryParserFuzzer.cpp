#include "base/Text.h"
#include "core/search/QueryParser.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const tovi::QueryParser parser({"en_US", "America/New_York"});
    const std::string text(data, data + size);
    const tovi::SearchQuery query = parser.parse(text, tovi::Date{1'710'345'600});
    bool isSound = tovi::isValidUtf8(query.text) && query.minimumSize.value_or(0) >= 0;
    for (const std::string& chip : query.chips)
        isSound = isSound && tovi::isValidUtf8(chip);
    if (!isSound) std::abort();
    return 0;
}
