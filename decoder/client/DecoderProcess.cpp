#include "decoder/client/DecoderProcess.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"
#include "decoder/protocol/Channel.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <fstream>
#include <string_view>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>

namespace tovi::decoder {
namespace {

/// A decoder that has seen many files, or used half of the processor time that its limit gives
/// it, makes room for a fresh one.
constexpr int maximumServed = 500;
constexpr time_t maximumCpuSeconds = 300;

/// Above the descriptors that the child expects, so that placing one never closes the other.
FileDescriptor movedUp(FileDescriptor low) {
    constexpr int firstFree = resultDescriptor + 1;
    FileDescriptor high(::fcntl(low.get(), F_DUPFD_CLOEXEC, firstFree));
    if (!high.isOpen()) throw systemError("fcntl");
    return high;
}

FileDescriptor makeResultArea() {
    FileDescriptor area(::memfd_create("tovi-result", MFD_CLOEXEC | MFD_ALLOW_SEALING));
    if (!area.isOpen()) throw systemError("memfd_create");
    if (::ftruncate(area.get(), static_cast<off_t>(resultCapacity)) != 0 ||
        ::fcntl(area.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
        throw systemError("memfd_create");
    return movedUp(std::move(area));
}

void check(int code, const std::string& path) {
    if (code != 0) throw systemError(path, code);
}

/// What a child is born with: a fixed environment, nothing open but /dev/null, the socket and the
/// result area, no blocked or ignored signals, and a process group of its own, so that Ctrl-C in
/// a terminal is the client's to handle.
class Birth {
  public:
    Birth(int socket, int resultArea) {
        check(::posix_spawn_file_actions_init(&actions_), "posix_spawn");
        check(::posix_spawnattr_init(&attributes_), "posix_spawn");
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            check(::posix_spawn_file_actions_addopen(&actions_, standard, "/dev/null", O_RDWR, 0),
                  "/dev/null");
        check(::posix_spawn_file_actions_adddup2(&actions_, socket, socketDescriptor), "dup2");
        check(::posix_spawn_file_actions_adddup2(&actions_, resultArea, resultDescriptor), "dup2");
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setpgroup(&attributes_, 0);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF |
                                                     POSIX_SPAWN_SETPGROUP);
    }
    ~Birth() {
        ::posix_spawn_file_actions_destroy(&actions_);
        ::posix_spawnattr_destroy(&attributes_);
    }
    Birth(const Birth&) = delete;
    Birth& operator=(const Birth&) = delete;

    pid_t give(const std::string& program, Task task) const {
        std::string path = program;
        std::string name(nameOf(task));
        std::array arguments = {path.data(), name.data(), static_cast<char*>(nullptr)};
        std::string threads = "OMP_THREAD_LIMIT=1";
        std::string vector = "VIPS_NOVECTOR=1";
        std::string language = "LANG=C.UTF-8";
        std::array environment = {threads.data(), vector.data(), language.data(),
                                  static_cast<char*>(nullptr)};
        pid_t id = -1;
        check(::posix_spawn(&id, program.c_str(), &actions_, &attributes_, arguments.data(),
                            environment.data()),
              program);
        return id;
    }

  private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

int millisecondsUntil(DecoderProcess::Clock::time_point deadline) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::ceil<milliseconds>(deadline - DecoderProcess::Clock::now());
    return static_cast<int>(std::clamp(left, milliseconds(0), milliseconds(1'000'000)).count());
}

/// The value of one line of /proc/PID/status.
std::string statusOf(pid_t id, std::string_view key) {
    std::ifstream lines("/proc/" + std::to_string(id) + "/status");
    for (std::string word; lines >> word;) {
        if (word == key && lines >> word) return word;
    }
    return {};
}

std::uint64_t limitOf(pid_t id, __rlimit_resource resource) {
    rlimit limit{};
    if (::prlimit(id, resource, nullptr, &limit) != 0) throw systemError("prlimit");
    return limit.rlim_max;
}

} // namespace

DecoderProcess::DecoderProcess(const std::string& program, Task task)
    : resultArea_(makeResultArea()) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
        throw systemError("socketpair");
    socket_ = FileDescriptor(ends[0]);
    const FileDescriptor theirs = movedUp(FileDescriptor(ends[1]));
    id_ = Birth(theirs.get(), resultArea_.get()).give(program, task);
}

DecoderProcess::~DecoderProcess() {
    ::kill(id_, SIGKILL);
    while (::waitpid(id_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::optional<Confinement> DecoderProcess::awaitReady(Clock::duration patience,
                                                      const std::stop_token& stop) const {
    const Outcome outcome = nextReply(Clock::now() + patience, stop);
    const auto* ready = outcome.reply ? std::get_if<Ready>(&*outcome.reply) : nullptr;
    if (ready == nullptr) return std::nullopt;
    Confinement confinement;
    confinement.landlockVersion =
        static_cast<int>(std::min<std::uint32_t>(ready->landlockVersion, INT32_MAX));
    confinement.systemCallFilter = statusOf(id_, "Seccomp:") == "2";
    confinement.noNewPrivileges = statusOf(id_, "NoNewPrivs:") == "1";
    confinement.memoryBytes = limitOf(id_, RLIMIT_AS);
    confinement.cpuSeconds = limitOf(id_, RLIMIT_CPU);
    confinement.openFiles = limitOf(id_, RLIMIT_NOFILE);
    confinement.coreBytes = limitOf(id_, RLIMIT_CORE);
    return confinement;
}

DecoderProcess::Outcome DecoderProcess::ask(const Request& request, int file,
                                            const Patience& patience, const std::stop_token& stop) {
    ++served_;
    const Clock::time_point end = Clock::now() + patience.whole;
    if (!sendPacket(socket_.get(), encode(request), file)) return {Trouble::gone, {}};
    std::uint32_t pages = 0;
    while (true) {
        Outcome outcome = nextReply(std::min(end, Clock::now() + patience.step), stop);
        if (!outcome.reply) return outcome;
        if (!answers(*outcome.reply, request, pages)) return {Trouble::unlikely, {}};
        const auto* progress = std::get_if<Progress>(&*outcome.reply);
        if (progress == nullptr) return outcome;
        pages = progress->pages;
    }
}

DecoderProcess::Outcome DecoderProcess::nextReply(Clock::time_point deadline,
                                                  const std::stop_token& stop) const {
    const std::stop_callback wake(stop, [this] { ::shutdown(socket_.get(), SHUT_RDWR); });
    pollfd waiting{socket_.get(), POLLIN, 0};
    int ready = 0;
    do {
        ready = ::poll(&waiting, 1, millisecondsUntil(deadline));
    } while (ready < 0 && errno == EINTR);
    throwIfCancelled(stop);
    if (ready <= 0) return {Trouble::late, {}};
    auto received = receivePacket(socket_.get());
    if (!received) return {Trouble::gone, {}};
    const auto reply = received->file.isOpen() ? std::nullopt : parseReply(received->packet);
    return {Trouble::unlikely, reply};
}

std::string DecoderProcess::result(std::size_t size) const {
    std::string bytes(std::min(size, resultCapacity), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::pread(resultArea_.get(), bytes.data() + done, bytes.size() - done,
                                      static_cast<off_t>(done));
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) throw systemError("memfd");
        done += static_cast<std::size_t>(count);
    }
    return bytes;
}

bool DecoderProcess::isWorn() const {
    clockid_t clock{};
    timespec used{};
    if (::clock_getcpuclockid(id_, &clock) != 0 || ::clock_gettime(clock, &used) != 0) return true;
    return served_ >= maximumServed || used.tv_sec >= maximumCpuSeconds;
}

} // namespace tovi::decoder
