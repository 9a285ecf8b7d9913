#include "tests/ui/UiTestMain.h"

#include "platform/Sandbox.h"

#include <QGuiApplication>
#include <filesystem>

#include <gtest/gtest.h>

extern "C" const char* __asan_default_options();
// Qt keeps memory until the process ends.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

namespace tovi::test {
namespace {

const UiProcess* process = nullptr;

/// A stand-in for the desktop's own xdg-open: notes what it was to open, and whether it has the
/// internet.
constexpr const char* opener = R"(#!/usr/bin/env python3
import os, socket, sys
try:
    socket.socket(socket.AF_INET).close()
    reach = "online"
except OSError:
    reach = "offline"
with open(os.environ["TOVI_OPENED"] + ".new", "w") as out:
    out.write(sys.argv[1] + "\n" + reach)
os.rename(os.environ["TOVI_OPENED"] + ".new", os.environ["TOVI_OPENED"])
)";

} // namespace

const UiProcess& uiProcess() {
    return *process;
}

} // namespace tovi::test

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const tovi::test::TemporaryTree home;
    const std::string program = home.write("bin/xdg-open", tovi::test::opener);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    qputenv("PATH", QByteArray::fromStdString(home.path("bin")) + ':' + qgetenv("PATH"));
    qputenv("TOVI_OPENED", QByteArray::fromStdString(home.path("opened")));
    qputenv("HOME", QByteArray::fromStdString(home.path()));
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(home.makeDirectory("data")));
    home.makeDirectory("Documents");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");

    // As the program itself starts.
    const tovi::test::UiProcess process{home, tovi::Launcher::start()};
    tovi::platform::refuseInternetSockets();
    tovi::test::process = &process;
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
