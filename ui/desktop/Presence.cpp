#include "ui/desktop/Presence.h"

#include "app/background/Background.h"

namespace tovi {

void Presence::endAfter(double seconds) {
    runAfter(executor_, this, seconds, [this, use = ++uses_] {
        const Shown shown = shown_();
        if (use == uses_ && !shown.window && !shown.panel && !shown.tray) Q_EMIT ended();
    });
}

void Presence::loseTray() {
    ++uses_;
    runAfter(executor_, this, trayPatience, [this] {
        if (const Shown shown = shown_(); !shown.window && !shown.tray) Q_EMIT windowWanted();
    });
}

} // namespace tovi
