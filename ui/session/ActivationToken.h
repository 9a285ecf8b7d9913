#pragma once

#include <QVariantMap>

class QWindow;

namespace tovi {

/// The word of the program that starts or calls this one that the user wants it in front, as
/// org.freedesktop.Application passes it: "activation-token" on Wayland, "desktop-startup-id" on
/// X11. Desktops keep a window without one behind the others.

/// What this process was started with. To be asked before the QGuiApplication, which takes it.
QVariantMap startedPlatformData();

/// Shows the window and brings it to the front.
void activate(QWindow& window, const QVariantMap& platformData);

} // namespace tovi
