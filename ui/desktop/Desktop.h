#pragma once

namespace tovi {

/// The desktop program from its first instruction on: forks the launcher, gives up internet
/// sockets, builds the real objects and shows the window until it is closed. Returns the exit code.
int runDesktop(int argc, char** argv);

} // namespace tovi
