#include "app/runtime/Runtime.h"

#include "platform/StandardLocations.h"

#include <algorithm>
#include <filesystem>
#include <thread>

namespace tovi {

Runtime::Runtime(const std::string& decoderProgram)
    : trash_(platform::dataHome(), Date::now),
      decoders_({.program = decoderProgram}),
      extractor_(decoders_, decoders_),
      indexer_(availability_, extractor_,
               {.downloadsDirectory = downloadsFolder(),
                .readers = std::max(1U, std::thread::hardware_concurrency())}) {}

std::optional<std::string> downloadsFolder() {
    const auto folder = platform::downloadsDirectory();
    std::error_code missing;
    if (!folder) return std::nullopt;
    return std::filesystem::weakly_canonical(*folder, missing).string();
}

} // namespace tovi
