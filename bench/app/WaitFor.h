#pragma once

#include <QCoreApplication>
#include <QEventLoop>

namespace tovi::bench {

/// Lets the event loop run until `condition` holds, which is looked at after every turn.
template <typename Condition>
void waitFor(Condition condition) {
    // As QCoreApplication::exec: without EventLoopExec GLib's timers, and with them the frames,
    // share the turns of what is posted.
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::EventLoopExec);
}

} // namespace tovi::bench
