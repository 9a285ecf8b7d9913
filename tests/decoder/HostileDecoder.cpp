// hostile_decoder CONFINEMENT ATTEMPT [PATH]: enters the decoder's sandbox and then tries to get
// out. Ends with 0 if the attempt succeeded, with 10 if it was refused, or killed by the filter.
#include "platform/Sandbox.h"

#include <csignal>
#include <cstring>
#include <map>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Attempt = bool (*)(const char* path);

bool opens(const char* path, int flags) {
    return ::open(path, flags, 0600) >= 0;
}

const std::map<std::string, Attempt> attempts = {
    {"read", [](const char* path) { return opens(path, O_RDONLY); }},
    {"write", [](const char* path) { return opens(path, O_WRONLY); }},
    {"create", [](const char* path) { return opens(path, O_WRONLY | O_CREAT | O_EXCL); }},
    {"remove", [](const char* path) { return ::unlink(path) == 0; }},
    {"rename",
     [](const char* path) { return ::rename(path, (path + std::string("2")).c_str()) == 0; }},
    {"folder", [](const char* path) { return ::mkdir(path, 0700) == 0; }},
    {"look",
     [](const char* path) {
         struct stat status;
         return ::stat(path, &status) == 0;
     }},
    {"look-as-if-open",
     [](const char* path) {
         struct stat status;
         return ::fstatat(AT_FDCWD, path, &status, AT_EMPTY_PATH) == 0;
     }},
    {"internet", [](const char*) { return ::socket(AF_INET, SOCK_STREAM, 0) >= 0; }},
    {"local-socket", [](const char*) { return ::socket(AF_UNIX, SOCK_STREAM, 0) >= 0; }},
    {"start-program",
     [](const char*) { return ::execl("/bin/true", "true", static_cast<char*>(nullptr)) == 0; }},
    {"fork",
     [](const char*) {
         const pid_t child = ::fork();
         if (child == 0) ::_exit(0);
         return child > 0 && ::waitpid(child, nullptr, 0) == child;
     }},
    {"trace", [](const char*) { return ::ptrace(PTRACE_TRACEME, 0, 0, 0) == 0; }},
    {"signal-parent", [](const char*) { return ::kill(::getppid(), 0) == 0; }},
    {"change-limit",
     [](const char*) {
         const rlimit none{0, 0};
         return ::setrlimit(RLIMIT_CORE, &none) == 0;
     }},
    {"run-made-code",
     [](const char*) {
         return ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE | PROT_EXEC,
                       MAP_PRIVATE | MAP_ANONYMOUS, -1, 0) != MAP_FAILED;
     }},
    {"make-code-runnable",
     [](const char*) {
         void* page =
             ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
         return ::mprotect(page, 4096, PROT_READ | PROT_EXEC) == 0;
     }},
    {"take-2-gib",
     [](const char*) {
         return ::mmap(nullptr, 2ul << 30, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0) != MAP_FAILED;
     }},
    {"start-thread",
     [](const char*) {
         bool ran = false;
         std::thread([&] { ran = true; }).join();
         return ran;
     }},
};

} // namespace

int main(int argc, char** argv) {
    const std::string confinement = argv[1];
    const Attempt attempt = attempts.at(argv[2]);
    tovi::platform::DecoderSandbox sandbox;
    sandbox.useLandlock = confinement != "filter";
    if (confinement == "folders")
        sandbox.readableFolders = {"/usr/share/poppler", "/nonexistent", "/usr/share/fonts"};
    if (confinement != "none") tovi::platform::enterDecoderSandbox(sandbox);
    ::_exit(attempt(argc > 3 ? argv[3] : "") ? 0 : 10);
}
