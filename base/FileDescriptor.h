#pragma once

#include <utility>

#include <unistd.h>

namespace tovi {

/// Owns one POSIX file descriptor and closes it.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int value) : value_(value) {}
    FileDescriptor(FileDescriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    int get() const { return value_; }
    bool isOpen() const { return value_ >= 0; }
    int release() { return std::exchange(value_, -1); }
    void reset() {
        if (value_ >= 0) ::close(std::exchange(value_, -1));
    }

  private:
    int value_ = -1;
};

} // namespace tovi
