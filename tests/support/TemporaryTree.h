#pragma once

#include <string>
#include <string_view>

namespace tovi::test {

/// A directory of its own for one test, removed with everything in it at the end.
class TemporaryTree {
  public:
    TemporaryTree();
    ~TemporaryTree();
    TemporaryTree(const TemporaryTree&) = delete;
    TemporaryTree& operator=(const TemporaryTree&) = delete;

    const std::string& path() const { return path_; }
    std::string path(std::string_view relative) const;

    /// Writes a file, making the directories above it; returns its path.
    std::string write(std::string_view relative, std::string_view bytes = "") const;
    std::string makeDirectory(std::string_view relative) const;
    std::string link(std::string_view relative, std::string_view target) const;

    /// Sets the modification time, in seconds since the epoch.
    void setModified(std::string_view relative, double seconds) const;

  private:
    std::string path_;
};

std::string readFile(const std::string& path);

/// For its lifetime permissions count even where the tests run as root, who lacks none: the
/// process acts as the unprivileged user "nobody", who then owns the tree.
class WithoutPrivileges {
  public:
    explicit WithoutPrivileges(const TemporaryTree& tree);
    ~WithoutPrivileges();
    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;
};

} // namespace tovi::test
