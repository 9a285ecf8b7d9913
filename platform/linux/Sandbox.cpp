#include "platform/Sandbox.h"

#include "base/FileDescriptor.h"
#include "base/SystemError.h"

#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <linux/sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>

namespace tovi::platform {
namespace {

// Landlock's interface as of version 6; the headers of older distributions end at version 2.
// https://docs.kernel.org/userspace-api/landlock.html
struct LandlockRuleset {
    std::uint64_t handledFiles = 0;
    std::uint64_t handledNetwork = 0;
    std::uint64_t scoped = 0;
};
struct [[gnu::packed]] LandlockFolder {
    std::uint64_t allowed = 0;
    std::int32_t folder = -1;
};
constexpr std::uint64_t readFile = 1 << 2;
constexpr std::uint64_t readFolder = 1 << 3;
constexpr unsigned folderRule = 1;
constexpr unsigned askVersion = 1;

std::uint64_t lowestBits(int count) {
    return (std::uint64_t{1} << count) - 1;
}

LandlockRuleset everythingHandledBy(int version) {
    LandlockRuleset ruleset;
    // Thirteen file rights at first; then linking across folders, truncating, device controls.
    ruleset.handledFiles = lowestBits(13);
    if (version >= 2) ruleset.handledFiles |= 1 << 13;
    if (version >= 3) ruleset.handledFiles |= 1 << 14;
    if (version >= 5) ruleset.handledFiles |= 1 << 15;
    if (version >= 4) ruleset.handledNetwork = lowestBits(2);
    if (version >= 6) ruleset.scoped = lowestBits(2);
    return ruleset;
}

void enterLandlock(int version, const std::vector<std::string>& readableFolders) {
    const LandlockRuleset handled = everythingHandledBy(version);
    const FileDescriptor ruleset(
        static_cast<int>(::syscall(SYS_landlock_create_ruleset, &handled, sizeof handled, 0)));
    if (!ruleset.isOpen()) throw systemError("Landlock");
    for (const std::string& path : readableFolders) {
        const FileDescriptor folder(::open(path.c_str(), O_PATH | O_CLOEXEC | O_DIRECTORY));
        if (!folder.isOpen()) continue;
        const LandlockFolder rule{readFile | readFolder, folder.get()};
        if (::syscall(SYS_landlock_add_rule, ruleset.get(), folderRule, &rule, 0) != 0)
            throw systemError("Landlock");
    }
    if (::syscall(SYS_landlock_restrict_self, ruleset.get(), 0) != 0) throw systemError("Landlock");
}

class Filter {
  public:
    explicit Filter(std::uint32_t otherwise) : context_(seccomp_init(otherwise)) {
        if (context_ == nullptr) throw systemError("seccomp", ENOMEM);
    }

    void set(scmp_filter_attr attribute, std::uint32_t value) {
        check(seccomp_attr_set(context_.get(), attribute, value));
    }
    void add(std::uint32_t action, int call, std::initializer_list<scmp_arg_cmp> conditions = {}) {
        check(seccomp_rule_add_array(context_.get(), action, call,
                                     static_cast<unsigned>(conditions.size()), conditions.begin()));
    }
    void allow(std::initializer_list<int> calls) {
        for (const int call : calls)
            add(SCMP_ACT_ALLOW, call);
    }
    void load() { check(seccomp_load(context_.get())); }

  private:
    static void check(int result) {
        if (result < 0) throw systemError("seccomp", -result);
    }
    struct Release {
        void operator()(void* context) const { seccomp_release(context); }
    };
    std::unique_ptr<void, Release> context_;
};

scmp_arg_cmp where(unsigned argument, scmp_compare compare, std::uint64_t a, std::uint64_t b = 0) {
    return {argument, compare, a, b};
}

void enterDecoderFilter(bool mayOpenForReading) {
    Filter filter(SCMP_ACT_ERRNO(EPERM));
    filter.set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS);
    filter.set(SCMP_FLTATR_CTL_TSYNC, 1);

    for (const int call :
         {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv),
          SCMP_SYS(process_vm_writev), SCMP_SYS(socket), SCMP_SYS(socketpair), SCMP_SYS(connect),
          SCMP_SYS(bind)}) {
        filter.add(SCMP_ACT_KILL_PROCESS, call);
    }

    // What it holds: its socket, its memory, the file of the moment.
    filter.allow({SCMP_SYS(sendmsg), SCMP_SYS(recvmsg), SCMP_SYS(read), SCMP_SYS(pread64),
                  SCMP_SYS(lseek), SCMP_SYS(close), SCMP_SYS(munmap), SCMP_SYS(mremap),
                  SCMP_SYS(madvise), SCMP_SYS(brk)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(mmap), {where(2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)});
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(mprotect), {where(2, SCMP_CMP_MASKED_EQ, PROT_EXEC, 0)});

    // Threads, which the C library makes with clone where clone3 does not exist.
    filter.add(SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3));
    filter.add(SCMP_ACT_ALLOW, SCMP_SYS(clone),
               {where(0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, CLONE_THREAD)});
    filter.allow({SCMP_SYS(futex), SCMP_SYS(set_robust_list), SCMP_SYS(rseq),
                  SCMP_SYS(rt_sigprocmask), SCMP_SYS(rt_sigreturn), SCMP_SYS(sched_yield),
                  SCMP_SYS(sched_getaffinity), SCMP_SYS(gettid), SCMP_SYS(getpid),
                  SCMP_SYS(restart_syscall), SCMP_SYS(exit), SCMP_SYS(exit_group)});

    filter.allow({SCMP_SYS(clock_gettime), SCMP_SYS(clock_getres), SCMP_SYS(gettimeofday),
                  SCMP_SYS(time), SCMP_SYS(nanosleep), SCMP_SYS(clock_nanosleep),
                  SCMP_SYS(getrandom)});

    if (mayOpenForReading) {
        constexpr std::uint64_t anythingElse = 0xffffffffu & ~std::uint64_t{O_CLOEXEC};
        filter.add(SCMP_ACT_ALLOW, SCMP_SYS(openat),
                   {where(2, SCMP_CMP_MASKED_EQ, anythingElse, O_RDONLY)});
        filter.allow({SCMP_SYS(fstat)});
    }
    filter.load();
}

void limit(__rlimit_resource resource, std::uint64_t value) {
    const rlimit both{value, value};
    if (::setrlimit(resource, &both) != 0) throw systemError("setrlimit");
}

void requireOneThread() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    if (std::distance(begin(threads), end(threads)) != 1)
        throw std::logic_error("A sandbox must be entered before threads are started.");
}

} // namespace

int landlockVersion() {
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, askVersion);
    return version > 0 ? static_cast<int>(version) : 0;
}

int enterDecoderSandbox(const DecoderSandbox& sandbox) {
    requireOneThread();
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NOFILE, 32);
    limit(RLIMIT_AS, sandbox.memoryBytes);
    limit(RLIMIT_CPU, sandbox.cpuSeconds);
    if (::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) != 0) throw systemError("PR_SET_DUMPABLE");
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) throw systemError("PR_SET_NO_NEW_PRIVS");

    const int version = sandbox.useLandlock ? landlockVersion() : 0;
    if (version > 0) enterLandlock(version, sandbox.readableFolders);
    enterDecoderFilter(version > 0 && !sandbox.readableFolders.empty());
    return version;
}

void refuseInternetSockets() {
    Filter filter(SCMP_ACT_ALLOW);
    filter.set(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_ERRNO(EPERM));
    filter.set(SCMP_FLTATR_CTL_TSYNC, 1);
    filter.add(SCMP_ACT_ERRNO(EACCES), SCMP_SYS(socket), {where(0, SCMP_CMP_NE, AF_UNIX)});
    filter.add(SCMP_ACT_ERRNO(EPERM), SCMP_SYS(io_uring_setup));
    filter.load();
}

bool canMakeInternetSocket() {
    for (const int family : {AF_INET, AF_INET6}) {
        for (const int type : {SOCK_STREAM, SOCK_DGRAM}) {
            if (FileDescriptor(::socket(family, type | SOCK_CLOEXEC, 0)).isOpen()) return true;
        }
    }
    return false;
}

} // namespace tovi::platform
