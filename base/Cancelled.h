#pragma once

#include <stop_token>

namespace tovi {

/// Thrown where work ends because its `std::stop_token` asked for it. Derives from nothing, so
/// that no `catch (const std::exception&)` takes it for a failure.
struct Cancelled {};

inline void throwIfCancelled(const std::stop_token& stop) {
    if (stop.stop_requested()) throw Cancelled{};
}

} // namespace tovi
