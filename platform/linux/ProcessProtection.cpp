#include "platform/ProcessProtection.h"

#include <mutex>

#include <sys/prctl.h>
#include <sys/resource.h>

namespace tovi::platform {
namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isEffective = false;
#else
constexpr bool isEffective = true;
#endif

/// The process has one state for all objects: what to go back to when the last one ends.
struct State {
    std::mutex mutex;
    int count = 0;
    int dumpable = 1;
    rlimit cores{};
};

State& state() {
    static State shared;
    return shared;
}

} // namespace

ProcessProtection::ProcessProtection() {
    if (!isEffective) return;
    const std::lock_guard lock(state().mutex);
    if (state().count++ > 0) return;
    state().dumpable = ::prctl(PR_GET_DUMPABLE);
    ::getrlimit(RLIMIT_CORE, &state().cores);
    const rlimit none{0, state().cores.rlim_max};
    ::setrlimit(RLIMIT_CORE, &none);
    ::prctl(PR_SET_DUMPABLE, 0);
}

ProcessProtection::~ProcessProtection() {
    if (!isEffective) return;
    const std::lock_guard lock(state().mutex);
    if (--state().count > 0) return;
    ::setrlimit(RLIMIT_CORE, &state().cores);
    ::prctl(PR_SET_DUMPABLE, state().dumpable);
}

} // namespace tovi::platform
