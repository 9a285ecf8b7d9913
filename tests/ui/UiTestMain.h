#pragma once

#include "tests/support/TemporaryTree.h"
#include "ui/desktop/Launcher.h"

namespace tovi::test {

/// What the process of the tests began with, like the program: a launcher, then no internet. Home,
/// data and the programs that files are opened with lie in `home`.
struct UiProcess {
    const TemporaryTree& home;
    Launcher launcher;
};

const UiProcess& uiProcess();

} // namespace tovi::test
