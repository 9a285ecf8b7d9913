#pragma once

namespace tovi::platform {

/// Seconds of a clock that only goes forward and counts the time the machine sleeps.
double secondsSinceBoot();

} // namespace tovi::platform
