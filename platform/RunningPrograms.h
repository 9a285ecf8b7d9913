#pragma once

#include <string>

namespace tovi::platform {

/// Tells which folders the running programs use.
class RunningPrograms {
  public:
    virtual ~RunningPrograms() = default;

    /// Whether a program other than this one runs from below `directory` (absolute, links
    /// resolved), has a file there open or mapped, or stands in it. Programs of other users that
    /// the system hides are not seen.
    virtual bool use(const std::string& directory) const = 0;
};

/// As the system's table of processes tells (/proc).
class SystemRunningPrograms final : public RunningPrograms {
  public:
    bool use(const std::string& directory) const override;
};

} // namespace tovi::platform
