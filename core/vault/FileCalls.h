#pragma once

#include <cstddef>
#include <span>

#include <sys/types.h>

struct stat;

namespace tovi::vault {

/// Every system call the vault makes on files, with the calls' own results and errno, so that a
/// test can make any of them fail or change the world just before it.
class FileCalls {
  public:
    enum class Call {
        open,
        stat,
        read,
        write,
        sync,
        rename,
        link,
        unlink,
        lock,
        makeDirectory,
        changeMode,
        getAttribute,
        setAttribute,
        randomBytes,
    };

    virtual ~FileCalls() = default;

    int open(int directory, const char* name, int flags, mode_t mode = 0);
    int stat(int descriptor, struct stat& result);
    /// Links are not followed.
    int statAt(int directory, const char* name, struct stat& result);
    ssize_t read(int descriptor, std::span<std::byte> bytes);
    ssize_t write(int descriptor, std::span<const std::byte> bytes);
    int sync(int descriptor);
    /// `flags` are those of renameat2.
    int rename(int directory, const char* from, const char* to, unsigned flags);
    /// Gives a file another name; fails where the name exists.
    int link(int directory, const char* from, const char* to);
    int unlink(int directory, const char* name);
    /// An exclusive advisory lock, without waiting.
    int lock(int descriptor);
    int makeDirectory(const char* path, mode_t mode);
    int changeMode(int descriptor, mode_t mode);
    virtual ssize_t getAttribute(int descriptor, const char* name, std::span<char> value);
    int setAttribute(int descriptor, const char* name, std::span<const char> value);
    /// From the cryptographic generator.
    bool randomBytes(std::span<unsigned char> bytes);

  protected:
    /// Called before each call; an errno value makes it fail with that, 0 lets it happen. Several
    /// threads call at once.
    virtual int failureOf(Call call);

  private:
    bool fails(Call call);
};

} // namespace tovi::vault
