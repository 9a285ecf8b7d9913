#include "platform/BootClock.h"

#include <ctime>

namespace tovi::platform {

double secondsSinceBoot() {
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

} // namespace tovi::platform
