#pragma once

#include <string>

namespace tovi::test {

/// Mounts made through it are seen by this process only and end with the object. Where the
/// machine allows no mounts `isAvailable` is false.
class MountNamespace {
  public:
    MountNamespace();
    ~MountNamespace();
    MountNamespace(const MountNamespace&) = delete;
    MountNamespace& operator=(const MountNamespace&) = delete;

    bool isAvailable() const { return original_ >= 0; }
    void mountMemory(const std::string& directory, const std::string& options = "") const;
    void bind(const std::string& source, const std::string& directory) const;
    void makeReadOnly(const std::string& directory) const;

  private:
    int original_ = -1;
};

} // namespace tovi::test
