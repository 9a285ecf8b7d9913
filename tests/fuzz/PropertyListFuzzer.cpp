#include "core/files/XmlPropertyList.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tovi::readPropertyList(std::as_bytes(std::span(data, size)));
    return 0;
}
