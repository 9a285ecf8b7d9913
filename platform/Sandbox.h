#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tovi::platform {

struct DecoderSandbox {
    /// Folders whose files stay readable where Landlock is in force. Without it no file can be
    /// opened at all, because a system-call filter cannot tell one path from another.
    std::vector<std::string> readableFolders;
    std::uint64_t memoryBytes = 1536ull * 1024 * 1024;
    std::uint64_t cpuSeconds = 600;
    bool useLandlock = true;
};

/// Takes every right from the calling process for the rest of its life, but to use the memory and
/// the descriptors it has, to receive further ones, and to start threads:
///   - Landlock: no file or folder but `readableFolders`, no TCP, no signal or abstract socket of
///     others (as far as the kernel's version goes);
///   - a system-call filter that allows what computing needs, answers EPERM to the rest and kills
///     the process for starting a program, tracing another process or making a socket. No memory
///     can become executable;
///   - limits on memory, processor time and open files, no core dump, not dumpable.
/// Returns Landlock's version, 0 where it is not in force. Throws `std::system_error` if anything
/// else cannot be enforced, and `std::logic_error` in a process that runs threads already, which
/// Landlock would not cover. https://docs.kernel.org/userspace-api/landlock.html
int enterDecoderSandbox(const DecoderSandbox& sandbox);

/// Landlock's version in this kernel, 0 if it has none or it is switched off.
int landlockVersion();

/// From now on this process and all it starts can make no sockets but local ones (AF_UNIX), in
/// any of the processor's calling conventions, and no io_uring, which could make them unseen.
/// Covers threads that run already. Throws `std::system_error`.
void refuseInternetSockets();

/// Whether every process that runs `program` (an absolute path) under the name `name` has a
/// system-call filter; nothing where none runs.
std::optional<bool> runsWithFilter(const std::string& program, const std::string& name);

/// Tries to make an IPv4 and an IPv6 socket, and closes them again.
bool canMakeInternetSocket();

} // namespace tovi::platform
