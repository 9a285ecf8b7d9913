#include "ui/session/ScreenSaver.h"

namespace tovi {

ScreenSaver::ScreenSaver(QDBusConnection bus) {
    if (!bus.isConnected()) return;
    // The interfaces are also the names; the objects lie where each desktop put them.
    for (const char* interface : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                  "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver"}) {
        const QString name = QString::fromLatin1(interface);
        [[maybe_unused]] const bool isHeard =
            bus.connect(name, {}, name, QStringLiteral("ActiveChanged"), this, SLOT(change(bool)));
        Q_ASSERT(isHeard);
    }
}

void ScreenSaver::change(bool isActive) {
    if (isActive) Q_EMIT locked();
}

} // namespace tovi
