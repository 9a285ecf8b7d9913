#include "ui/desktop/Launcher.h"

#include "base/SystemError.h"

#include <array>
#include <climits>
#include <csignal>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tovi {
namespace {

constexpr std::time_t startSeconds = 10; // what ends later has been open

/// Runs xdg-open and waits for it; returns whether the file was opened.
bool runOpener(char* path) {
    const std::time_t begun = ::time(nullptr);
    std::signal(SIGCHLD, SIG_DFL);
    const pid_t child = ::fork();
    if (child == 0) {
        ::setsid();
        const int nothing = ::open("/dev/null", O_RDWR);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::dup2(nothing, stream);
        ::execlp("xdg-open", "xdg-open", path, static_cast<char*>(nullptr));
        ::_exit(127);
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return child > 0 && (status == 0 || ::time(nullptr) - begun > startSeconds);
}

/// Opens every path that comes, until the other end is closed, and sends those back that could not
/// be opened.
[[noreturn]] void serve(int socket) {
    ::prctl(PR_SET_NAME, "tovi-launcher");
    std::signal(SIGCHLD, SIG_IGN); // nobody waits for the programs
    std::array<char, PATH_MAX + 1> path{};
    for (;;) {
        const ssize_t length = ::recv(socket, path.data(), path.size() - 1, 0);
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) ::_exit(0);
        path[static_cast<std::size_t>(length)] = '\0';
        if (::fork() != 0) continue;
        if (!runOpener(path.data()))
            ::send(socket, path.data(), static_cast<std::size_t>(length), MSG_NOSIGNAL);
        ::_exit(0);
    }
}

} // namespace

Launcher Launcher::start() {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        throw systemError("socketpair");
    }
    FileDescriptor ours(ends[0]);
    const FileDescriptor theirs(ends[1]);
    const pid_t child = ::fork();
    if (child < 0) throw systemError("fork");
    if (child == 0) {
        ::close(ends[0]);
        serve(ends[1]);
    }
    return Launcher(std::move(ours));
}

bool Launcher::open(const std::string& path) const {
    if (path.empty() || path.front() != '/' || path.size() > PATH_MAX) return false;
    return ::send(socket_.get(), path.data(), path.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(path.size());
}

std::optional<std::string> Launcher::takeFailure() const {
    std::string path(PATH_MAX, '\0');
    const ssize_t length = ::recv(socket_.get(), path.data(), path.size(), MSG_DONTWAIT);
    if (length <= 0) return std::nullopt;
    path.resize(static_cast<std::size_t>(length));
    return path;
}

} // namespace tovi
