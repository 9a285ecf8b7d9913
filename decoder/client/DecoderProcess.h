#pragma once

#include "base/FileDescriptor.h"
#include "decoder/protocol/Message.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

#include <sys/types.h>

namespace tovi::decoder {

/// What holds a decoder back, as the kernel reports it but for Landlock's version, which only the
/// process itself can know.
struct Confinement {
    int landlockVersion = 0; // 0 where the kernel has none
    bool systemCallFilter = false;
    bool noNewPrivileges = false;
    std::uint64_t memoryBytes = 0;
    std::uint64_t cpuSeconds = 0;
    std::uint64_t openFiles = 0;
    std::uint64_t coreBytes = 0;
};

/// One running decoder, serving one request at a time. The destructor kills and reaps it; there
/// is nothing in it to be lost. Used by one thread at a time.
class DecoderProcess {
  public:
    using Clock = std::chrono::steady_clock;

    /// Why a conversation came to nothing.
    enum class Trouble {
        gone,    // the process ended
        late,    // the deadline passed
        unlikely // it said what the protocol does not allow
    };

    /// A last reply, or trouble. After trouble the process is of no more use.
    struct Outcome {
        Trouble trouble = Trouble::gone;
        std::optional<Reply> reply;
    };

    struct Patience {
        Clock::duration step;  // until the first reply, and between one and the next
        Clock::duration whole; // for all of a request
    };

    /// Starts `program` for `task`. Throws `std::system_error`.
    DecoderProcess(const std::string& program, Task task);
    ~DecoderProcess();
    DecoderProcess(const DecoderProcess&) = delete;
    DecoderProcess& operator=(const DecoderProcess&) = delete;

    /// Waits until the process has locked itself in, and says how; nothing if that does not
    /// happen. Throws `Cancelled`.
    std::optional<Confinement> awaitReady(Clock::duration patience,
                                          const std::stop_token& stop) const;

    /// Sends one request with its file and waits for the end. Throws `Cancelled`, after which the
    /// process is of no more use.
    Outcome ask(const Request& request, int file, const Patience& patience,
                const std::stop_token& stop);

    /// The first `size` bytes of the result area, as they are now.
    std::string result(std::size_t size) const;

    /// Whether it has served long enough to be replaced by a fresh one.
    bool isWorn() const;

  private:
    Outcome nextReply(Clock::time_point deadline, const std::stop_token& stop) const;

    FileDescriptor socket_;
    FileDescriptor resultArea_;
    pid_t id_ = -1;
    int served_ = 0;
};

} // namespace tovi::decoder
