#include "cli/Password.h"

#include "base/Cancelled.h"
#include "base/FileDescriptor.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

/// While it lives the terminal does not show what is typed.
class HiddenTyping {
  public:
    explicit HiddenTyping(int terminal) : terminal_(terminal) {
        if (::tcgetattr(terminal, &before_) != 0) throwNoTerminal();
        termios hidden = before_;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        hidden.c_lflag |= ECHONL;
        if (::tcsetattr(terminal, TCSAFLUSH, &hidden) != 0) throwNoTerminal();
    }
    HiddenTyping(const HiddenTyping&) = delete;
    HiddenTyping& operator=(const HiddenTyping&) = delete;
    ~HiddenTyping() { ::tcsetattr(terminal_, TCSAFLUSH, &before_); }

    [[noreturn]] static void throwNoTerminal() {
        throw std::runtime_error("There is no terminal to ask for the password on. Hand it over "
                                 "with --password-fd.");
    }

  private:
    int terminal_;
    termios before_{};
};

} // namespace

Password::~Password() {
    ::explicit_bzero(bytes_.data(), bytes_.size());
}

void Password::readLine(int descriptor, const std::stop_token& stop) {
    const FileDescriptor wake(::eventfd(0, EFD_CLOEXEC));
    const std::stop_callback onStop(stop, [&] { ::eventfd_write(wake.get(), 1); });
    while (size_ < bytes_.size()) {
        std::array<pollfd, 2> waiting{{{descriptor, POLLIN, 0}, {wake.get(), POLLIN, 0}}};
        if (::poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) break;
        throwIfCancelled(stop);
        if (waiting[0].revents == 0) continue;
        // Byte by byte: what follows the line is another reader's.
        const ssize_t count = ::read(descriptor, &bytes_[size_], 1);
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count < 0) {
            throw std::runtime_error("The password could not be read: " +
                                     std::generic_category().message(errno));
        }
        if (count == 0 || bytes_[size_] == '\n') return;
        ++size_;
    }
}

Password::Password(int descriptor, const std::stop_token& stop) {
    readLine(descriptor, stop);
}

Password::Password(const std::string& prompt, const std::stop_token& stop) {
    const FileDescriptor terminal(::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!terminal.isOpen()) HiddenTyping::throwNoTerminal();
    const HiddenTyping hidden(terminal.get());
    if (::write(terminal.get(), prompt.data(), prompt.size()) < 0) HiddenTyping::throwNoTerminal();
    readLine(terminal.get(), stop);
}

} // namespace tovi::cli
