#pragma once

#include <stdexcept>

namespace tovi::decoder {

/// The bytes cannot be taken for the format at all; `what()` is the sentence for the user.
struct WrongFormat : std::runtime_error {
    using std::runtime_error::runtime_error;
};

} // namespace tovi::decoder
