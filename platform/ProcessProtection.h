#pragma once

namespace tovi::platform {

/// While at least one lives, the process writes no core dump and other processes of the user can
/// neither trace it nor read its memory. Without effect in builds with sanitizers, which trace the
/// process themselves. May be made and destroyed on any thread.
class ProcessProtection {
  public:
    ProcessProtection();
    ProcessProtection(const ProcessProtection&) = delete;
    ProcessProtection& operator=(const ProcessProtection&) = delete;
    ~ProcessProtection();
};

} // namespace tovi::platform
