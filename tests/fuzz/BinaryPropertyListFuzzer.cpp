#include "core/files/BinaryPropertyList.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tovi::readBinaryPropertyList(std::as_bytes(std::span(data, size)));
    return 0;
}
