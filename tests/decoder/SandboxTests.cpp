#include "platform/Sandbox.h"
#include "tests/support/TemporaryTree.h"

#include <csignal>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovi {
namespace {

enum class Fate { succeeds, isRefused, isKilled, somethingElse };

Fate attempt(std::string confinement, std::string what, std::string path = "") {
    std::string program = TOVI_HOSTILE_DECODER;
    char* arguments[] = {program.data(), confinement.data(), what.data(), path.data(), nullptr};
    char* environment[] = {nullptr};
    pid_t child = 0;
    if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environment) != 0)
        return Fate::somethingElse;
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGSYS) return Fate::isKilled;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return Fate::succeeds;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 10) return Fate::isRefused;
    return Fate::somethingElse;
}

struct Case {
    std::string what;
    std::string path;
    Fate fate;
};

std::vector<Case> forbidden(const test::TemporaryTree& home) {
    const std::string secret = home.write(".ssh/id_rsa", "secret");
    return {
        {"read", secret, Fate::isRefused},
        {"read", "/etc/passwd", Fate::isRefused},
        {"write", secret, Fate::isRefused},
        {"create", home.path("new"), Fate::isRefused},
        {"folder", home.path("folder"), Fate::isRefused},
        {"look", secret, Fate::isRefused},
        {"look-as-if-open", secret, Fate::isRefused},
        {"fork", "", Fate::isRefused},
        {"signal-parent", "", Fate::isRefused},
        {"change-limit", "", Fate::isRefused},
        {"run-made-code", "", Fate::isRefused},
        {"make-code-runnable", "", Fate::isRefused},
        {"take-2-gib", "", Fate::isRefused},
        {"internet", "", Fate::isKilled},
        {"local-socket", "", Fate::isKilled},
        {"start-program", "", Fate::isKilled},
        {"trace", "", Fate::isKilled},
        {"rename", secret, Fate::isRefused},
        {"remove", secret, Fate::isRefused},
    };
}

class HostileDecoder : public testing::TestWithParam<const char*> {};

TEST_P(HostileDecoder, GetsNothing) {
    const test::TemporaryTree home;
    for (const Case& each : forbidden(home))
        EXPECT_EQ(attempt(GetParam(), each.what, each.path), each.fate) << each.what;
    EXPECT_EQ(test::readFile(home.path(".ssh/id_rsa")), "secret");
    EXPECT_EQ(attempt(GetParam(), "start-thread"), Fate::succeeds);
}

// With Landlock and without it, and with folders that the PDF decoders may read.
INSTANTIATE_TEST_SUITE_P(Confinements, HostileDecoder,
                         testing::Values("whole", "filter", "folders"));

TEST(Sandbox, IsWhatStopsTheHostileDecoder) {
    const test::TemporaryTree home;
    for (const Case& each : forbidden(home)) {
        // Renamed away by the attempt before it.
        const std::string path = each.what == "remove" ? each.path + "2" : each.path;
        EXPECT_EQ(attempt("none", each.what, path), Fate::succeeds) << each.what;
    }
}

TEST(Sandbox, OpensReadableFoldersOnlyUnderLandlock) {
    const std::string table = "/usr/share/poppler/cidToUnicode/Adobe-Japan1";
    EXPECT_EQ(attempt("folders", "read", table),
              platform::landlockVersion() > 0 ? Fate::succeeds : Fate::isRefused);
    EXPECT_EQ(attempt("folders", "write", table), Fate::isRefused);
    EXPECT_EQ(attempt("whole", "read", table), Fate::isRefused);
}

bool makesSocket(long family) {
    const long made = ::syscall(SYS_socket, family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (made >= 0) ::close(static_cast<int>(made));
    return made >= 0;
}

#ifdef __x86_64__
/// socket(AF_INET, SOCK_STREAM, 0) as a 32-bit program calls it.
int socketByOldConvention() {
    int result = 0;
    asm volatile("int $0x80" : "=a"(result) : "a"(359), "b"(AF_INET), "c"(SOCK_STREAM), "d"(0));
    return result;
}
#endif

/// Runs in a process of its own, as the filter stays for good.
[[noreturn]] void checkRefusals() {
    if (!platform::canMakeInternetSocket()) ::_exit(2);
    platform::refuseInternetSockets();
    if (platform::canMakeInternetSocket()) ::_exit(3);
    for (const long family : {AF_INET, AF_INET6, AF_PACKET, AF_NETLINK, AF_VSOCK}) {
        if (makesSocket(family)) ::_exit(4);
    }
    if (!makesSocket(AF_UNIX)) ::_exit(5);
#ifdef __x86_64__
    if (socketByOldConvention() >= 0) ::_exit(6);
    if (::syscall(0x40000000 | SYS_socket, AF_INET, SOCK_STREAM, 0) >= 0) ::_exit(7);
#endif
    if (::syscall(SYS_io_uring_setup, 1, nullptr) >= 0 || errno != EPERM) ::_exit(8);
    ::_exit(0);
}

TEST(InternetSockets, AreRefusedAndLocalOnesAreNot) {
    EXPECT_EXIT(checkRefusals(), testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace tovi
