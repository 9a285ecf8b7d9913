#include "platform/SessionSignals.h"
#include "tests/support/Environment.h"
#include "tests/support/Program.h"
#include "tests/support/TemporaryTree.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace tovi {
namespace {

using Kind = platform::SessionSignals::Kind;
using Signal = platform::SessionSignals::Signal;

/// The session manager's stand-in on a bus of its own, with the session "s1".
class SessionSignalsTest : public testing::Test {
  protected:
    static constexpr const char* manager = "/org/freedesktop/login1";
    static constexpr const char* session = "/org/freedesktop/login1/session/s1";

    void SetUp() override {
        const auto bus = test::runProgram(
            "/usr/bin/dbus-daemon", {"--session", "--fork", "--print-pid", "--address=" + address});
        ASSERT_EQ(bus.exitCode, 0) << bus.errors;
        bus_ = std::stoi(bus.output);
        manager_ =
            std::stoi(test::runProgram("/bin/sh", {"-c", "/usr/bin/python3 -m dbusmock --system "
                                                         "--template logind >" +
                                                             tree.path("log") + " 2>&1 & echo $!"})
                          .output);
        gdbus({"wait", "--system", "--timeout", "30", "org.freedesktop.login1"});
        ASSERT_TRUE(eventually([&] { return !inhibitors().empty(); })) << "no stand-in";
        call(manager, "org.freedesktop.DBus.Mock.AddSession",
             {"s1", "seat0", "1000", "tester", "true"});
    }
    void TearDown() override {
        signals->stop();
        end(manager_);
        end(bus_);
    }
    static void end(pid_t& process) {
        if (process > 0) ::kill(std::exchange(process, 0), SIGTERM);
    }

    static std::string gdbus(const std::vector<std::string>& arguments) {
        return test::runProgram("/usr/bin/gdbus", arguments).output;
    }
    static std::string call(const std::string& object, const std::string& method,
                            const std::vector<std::string>& values) {
        std::vector<std::string> arguments{"call", "--system", "-d", "org.freedesktop.login1",
                                           "-o",   object,     "-m", method};
        arguments.insert(arguments.end(), values.begin(), values.end());
        return gdbus(arguments);
    }
    static std::string inhibitors() {
        return call(manager, "org.freedesktop.login1.Manager.ListInhibitors", {});
    }
    static bool isSleepHeldBack() {
        return inhibitors().find("'sleep', 'Tovi'") != std::string::npos;
    }
    /// The stand-in hears of a closed descriptor in its own time; asking again takes some.
    template <typename Condition>
    static bool eventually(const Condition& condition) {
        for (int attempt = 0; attempt < 200; ++attempt) {
            if (condition()) return true;
        }
        return false;
    }
    static void sleep(const std::string& isStarting) {
        call(manager, "org.freedesktop.DBus.Mock.EmitSignal",
             {"org.freedesktop.login1.Manager", "PrepareForSleep", "b", "[<" + isStarting + ">]"});
    }
    static void setProperty(const std::string& value) {
        call(session, "org.freedesktop.DBus.Mock.UpdateProperties",
             {"org.freedesktop.login1.Session", "{" + value + "}"});
    }

    void start() {
        signals->start([this](Signal signal) {
            const std::lock_guard lock(mutex_);
            received_.push_back(std::move(signal));
            arrived_.notify_one();
        });
    }
    std::optional<Signal> next() {
        std::unique_lock lock(mutex_);
        if (!arrived_.wait_for(lock, std::chrono::seconds(30),
                               [&] { return !received_.empty(); })) {
            return std::nullopt;
        }
        Signal signal = std::move(received_.front());
        received_.pop_front();
        return signal;
    }
    std::optional<Kind> nextKind() {
        const auto signal = next();
        return signal ? std::optional(signal->kind) : std::nullopt;
    }

    test::TemporaryTree tree;
    const std::string address = "unix:path=" + tree.path("bus");
    test::EnvironmentVariable systemBus{"DBUS_SYSTEM_BUS_ADDRESS", address};
    test::EnvironmentVariable sessionName{"XDG_SESSION_ID", "s1"};
    std::unique_ptr<platform::SessionSignals> signals = platform::makeSessionSignals();
    pid_t bus_ = 0;

  private:
    pid_t manager_ = 0;
    std::mutex mutex_; // guards what follows
    std::condition_variable arrived_;
    std::deque<Signal> received_;
};

TEST_F(SessionSignalsTest, HoldsSleepBackUntilTheDelayIsGivenUp) {
    start();
    ASSERT_EQ(nextKind(), Kind::connected);
    EXPECT_TRUE(isSleepHeldBack());
    for (int night = 0; night < 2; ++night) {
        sleep("true");
        auto signal = next();
        ASSERT_TRUE(signal);
        EXPECT_EQ(signal->kind, Kind::sleep);
        EXPECT_TRUE(isSleepHeldBack());
        signal.reset();
        EXPECT_TRUE(eventually([&] { return !isSleepHeldBack(); }));
        sleep("false");
        EXPECT_TRUE(eventually([&] { return isSleepHeldBack(); }));
    }
    signals->stop();
    EXPECT_TRUE(eventually([&] { return !isSleepHeldBack(); }));
}

TEST_F(SessionSignalsTest, TellsOfLocksAndSwitchesOfItsOwnSession) {
    call(manager, "org.freedesktop.DBus.Mock.AddSession",
         {"s2", "seat0", "1001", "other", "false"});
    start();
    ASSERT_EQ(nextKind(), Kind::connected);
    call("/org/freedesktop/login1/session/s2", "org.freedesktop.login1.Session.Lock", {});
    setProperty("'Active': <true>, 'LockedHint': <false>, 'TTY': <'tty2'>");
    setProperty("'Active': <'of another type'>");
    setProperty("'IdleHint': <true>, 'Active': <false>");
    EXPECT_EQ(nextKind(), Kind::left);
    setProperty("'LockedHint': <true>");
    EXPECT_EQ(nextKind(), Kind::locked);
    call(session, "org.freedesktop.login1.Session.Lock", {});
    EXPECT_EQ(nextKind(), Kind::locked);
}

TEST_F(SessionSignalsTest, SaysWhenNoSignalCanArrive) {
    start();
    ASSERT_EQ(nextKind(), Kind::connected);
    end(bus_);
    EXPECT_EQ(nextKind(), Kind::disconnected);
    start();
    EXPECT_EQ(nextKind(), Kind::disconnected);
}

} // namespace
} // namespace tovi
