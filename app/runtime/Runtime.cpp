#include "app/runtime/Runtime.h"

#include "platform/StandardLocations.h"

#include <algorithm>
#include <thread>

namespace tovi {

Runtime::Runtime(const std::string& decoderProgram)
    : trash_(platform::dataHome(), Date::now),
      decoders_({.program = decoderProgram}),
      extractor_(decoders_, decoders_),
      indexer_(availability_, extractor_,
               {.downloadsDirectory = platform::downloadsDirectory(),
                .readers = std::max(1U, std::thread::hardware_concurrency())}) {}

} // namespace tovi
