#include "platform/SessionSignals.h"

#include "base/FileDescriptor.h"
#include "base/SystemError.h"

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-login.h>
#include <unistd.h>

namespace tovi::platform {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr int retryMilliseconds = 30'000;
constexpr std::uint64_t callMicroseconds = 2'000'000;

struct BusCloser {
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct MessageCloser {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, BusCloser>;
using Message = std::unique_ptr<sd_bus_message, MessageCloser>;

/// The calls of the library return a negative errno value when they fail.
int check(int result) {
    if (result < 0) throw systemError("System bus", -result);
    return result;
}

/// A program started by the desktop may run outside its session: the one on the user's display is
/// then meant.
std::optional<std::string> ownSession() {
    if (const char* name = std::getenv("XDG_SESSION_ID"); name != nullptr && *name != '\0') {
        return name;
    }
    char* found = nullptr;
    if (sd_pid_get_session(0, &found) < 0 && sd_uid_get_display(::getuid(), &found) < 0) return {};
    std::string name = found;
    std::free(found); // NOLINT: the library allocates so
    return name;
}

/// One connection; used on one thread.
class Connection {
  public:
    /// Throws std::system_error.
    explicit Connection(const SessionSignals::Handler& handler) : handler_(handler) {
        sd_bus* opened = nullptr;
        check(sd_bus_open_system(&opened));
        bus_.reset(opened);
        // Only this thread reads the bus: a call that waits keeps `stop` waiting.
        check(sd_bus_set_method_call_timeout(bus_.get(), callMicroseconds));
        listen<&Connection::prepareForSleep>(service, managerPath, managerInterface,
                                             "PrepareForSleep");
        listen<&Connection::ownerChanged>("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                          "org.freedesktop.DBus", "NameOwnerChanged");
        const auto session = ownSession();
        const bool followsSession = session && followSession(*session);
        if (!delaySleep() && !followsSession) throw systemError(service, EHOSTUNREACH);
    }

    /// Works until `stop` can be read. Throws std::system_error when the connection breaks.
    void run(int stop) {
        for (;;) {
            while (check(sd_bus_process(bus_.get(), nullptr)) > 0) {
            }
            pollfd waits[] = {{check(sd_bus_get_fd(bus_.get())),
                               static_cast<short>(check(sd_bus_get_events(bus_.get()))), 0},
                              {stop, POLLIN, 0}};
            if (::poll(waits, std::size(waits), -1) < 0 && errno != EINTR) {
                throw systemError("System bus");
            }
            if (waits[1].revents != 0) return;
        }
    }

  private:
    template <auto method>
    void listen(const char* sender, const char* path, const char* interface, const char* member) {
        const auto call = [](sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
            try {
                (static_cast<Connection*>(self)->*method)(message);
            } catch (const std::system_error&) {
                // A signal of another shape than the one documented says nothing.
            }
            return 0;
        };
        check(
            sd_bus_match_signal(bus_.get(), nullptr, sender, path, interface, member, call, this));
    }

    bool followSession(const std::string& name) {
        sd_bus_message* answer = nullptr;
        const int result = sd_bus_call_method(bus_.get(), service, managerPath, managerInterface,
                                              "GetSession", nullptr, &answer, "s", name.c_str());
        const Message owner(answer);
        if (result < 0) return false;
        const char* path = nullptr;
        check(sd_bus_message_read(answer, "o", &path));
        listen<&Connection::lock>(service, path, sessionInterface, "Lock");
        listen<&Connection::propertiesChanged>(service, path, "org.freedesktop.DBus.Properties",
                                               "PropertiesChanged");
        return true;
    }

    /// Asks for the delay that the next sleep hands out. Without one sleep is heard of, perhaps
    /// too late.
    bool delaySleep() {
        sd_bus_message* answer = nullptr;
        const int result = sd_bus_call_method(
            bus_.get(), service, managerPath, managerInterface, "Inhibit", nullptr, &answer, "ssss",
            "sleep", "Tovi", "Locks the vault before the computer sleeps", "delay");
        const Message owner(answer);
        int descriptor = -1;
        if (result < 0 || sd_bus_message_read(answer, "h", &descriptor) < 0) return false;
        delay_ = FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
        return true;
    }

    void prepareForSleep(sd_bus_message* message) {
        int isStarting = 0;
        check(sd_bus_message_read(message, "b", &isStarting));
        if (isStarting == 0) {
            delaySleep();
            return;
        }
        handler_({SessionSignals::Kind::sleep,
                  std::make_shared<const FileDescriptor>(std::move(delay_))});
    }

    /// A session manager that was started anew knows nothing of the delay.
    void ownerChanged(sd_bus_message* message) {
        const char* name = nullptr;
        const char* before = nullptr;
        const char* after = nullptr;
        check(sd_bus_message_read(message, "sss", &name, &before, &after));
        if (std::string_view(name) == service && *after != '\0') delaySleep();
    }

    void lock(sd_bus_message* /*message*/) { handler_({SessionSignals::Kind::locked, nullptr}); }

    void propertiesChanged(sd_bus_message* message) {
        const char* interface = nullptr;
        check(sd_bus_message_read(message, "s", &interface));
        if (std::string_view(interface) != sessionInterface) return;
        check(sd_bus_message_enter_container(message, 'a', "{sv}"));
        while (check(sd_bus_message_enter_container(message, 'e', "sv")) > 0) {
            const char* name = nullptr;
            check(sd_bus_message_read(message, "s", &name));
            const std::string_view property = name;
            if (property == "Active" || property == "LockedHint") {
                int value = 0;
                check(sd_bus_message_read(message, "v", "b", &value));
                if (property == "Active" && value == 0) {
                    handler_({SessionSignals::Kind::left, nullptr});
                }
                if (property == "LockedHint" && value != 0) {
                    handler_({SessionSignals::Kind::locked, nullptr});
                }
            } else {
                check(sd_bus_message_skip(message, "v"));
            }
            check(sd_bus_message_exit_container(message));
        }
    }

    const SessionSignals::Handler& handler_;
    FileDescriptor delay_;
    Bus bus_; // goes first: its callbacks use the others
};

class LoginSignals final : public SessionSignals {
  public:
    ~LoginSignals() override { stop(); }

    void start(Handler handler) override {
        stop();
        stop_ = FileDescriptor(::eventfd(0, EFD_CLOEXEC));
        if (!stop_.isOpen()) throw systemError("Session signals");
        thread_ = std::thread([this, handler = std::move(handler)] { follow(handler); });
    }

    void stop() override {
        if (!thread_.joinable()) return;
        ::eventfd_write(stop_.get(), 1);
        thread_.join();
    }

  private:
    void follow(const Handler& handler) {
        for (bool isSilent = false;;) {
            try {
                Connection connection(handler);
                isSilent = false;
                handler({Kind::connected, nullptr});
                connection.run(stop_.get());
                return;
            } catch (const std::system_error&) {
                if (!std::exchange(isSilent, true)) handler({Kind::disconnected, nullptr});
            }
            pollfd wait{stop_.get(), POLLIN, 0};
            ::poll(&wait, 1, retryMilliseconds);
            if (wait.revents != 0) return;
        }
    }

    FileDescriptor stop_;
    std::thread thread_;
};

} // namespace

std::unique_ptr<SessionSignals> makeSessionSignals() {
    return std::make_unique<LoginSignals>();
}

} // namespace tovi::platform
