#include "tests/support/Program.h"

#include "tests/support/TemporaryTree.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace tovi::test {

namespace {

/// `actions` say what becomes of its standard streams, and are destroyed.
pid_t spawn(const std::string& program, const std::vector<std::string>& arguments,
            posix_spawn_file_actions_t& actions) {
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);
    pid_t child = 0;
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    const int failure =
        posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) throw std::runtime_error("cannot start " + program);
    return child;
}

int exitCodeOf(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace

ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments) {
    const TemporaryTree outputs;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    const int create = O_WRONLY | O_CREAT;
    posix_spawn_file_actions_addopen(&actions, 1, outputs.path("out").c_str(), create, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, outputs.path("err").c_str(), create, 0600);
    const int exitCode = exitCodeOf(spawn(program, arguments, actions));
    return {exitCode, readFile(outputs.path("out")), readFile(outputs.path("err"))};
}

RunningProgram::RunningProgram(const std::string& program,
                               const std::vector<std::string>& arguments) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("cannot make a pipe");
    output_ = FileDescriptor(ends[0]);
    const FileDescriptor input(ends[1]);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.get(), 1);
    process_ = spawn(program, arguments, actions);
}

RunningProgram::~RunningProgram() {
    if (process_ > 0) end(SIGKILL);
}

std::string RunningProgram::nextLine() {
    constexpr int minute = 60'000; // milliseconds
    for (;;) {
        if (const auto length = read_.find('\n'); length != std::string::npos) {
            const std::string line = read_.substr(0, length);
            read_.erase(0, length + 1);
            return line;
        }
        pollfd source{output_.get(), POLLIN, 0};
        std::array<char, 4096> buffer{};
        if (::poll(&source, 1, minute) <= 0) return {};
        const ssize_t count = ::read(output_.get(), buffer.data(), buffer.size());
        if (count <= 0) return {};
        read_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

int RunningProgram::end(int signal) {
    ::kill(process_, signal);
    return exitCodeOf(std::exchange(process_, -1));
}

} // namespace tovi::test
