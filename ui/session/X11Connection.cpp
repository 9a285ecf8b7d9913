#include "ui/session/X11Connection.h"

#include <QGuiApplication>

namespace tovi {

xcb_connection_t* x11Connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

} // namespace tovi
