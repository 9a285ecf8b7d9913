#include "ui/shortcut/X11HotKey.h"

#include "ui/session/X11Connection.h"

#include <QGuiApplication>
#include <array>
#include <cstdlib>
#include <memory>
#include <utility>

#include <xcb/xcb.h>
#include <xcb/xcb_keysyms.h>

namespace tovi {
namespace {

constexpr xcb_keysym_t spaceKey = 0x20;

// A grab is for exact modifiers: each state of Caps Lock and Num Lock needs its own.
constexpr std::array<std::uint16_t, 4> lockMasks{0, XCB_MOD_MASK_LOCK, XCB_MOD_MASK_2,
                                                 XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2};

xcb_window_t rootWindow() {
    return xcb_setup_roots_iterator(xcb_get_setup(x11Connection())).data->root;
}

std::uint8_t keyCodeOf(xcb_keysym_t symbol) {
    const std::unique_ptr<xcb_key_symbols_t, decltype(&xcb_key_symbols_free)> symbols(
        xcb_key_symbols_alloc(x11Connection()), &xcb_key_symbols_free);
    const std::unique_ptr<xcb_keycode_t, decltype(&std::free)> codes(
        xcb_key_symbols_get_keycode(symbols.get(), symbol), &std::free);
    return codes ? *codes : 0;
}

} // namespace

X11HotKey::X11HotKey() {
    qGuiApp->installNativeEventFilter(this);
}

X11HotKey::~X11HotKey() {
    X11HotKey::release();
}

void X11HotKey::take(const QString& choice) {
    modifiers_ = choice == QLatin1String("controlOptionSpace")
                     ? XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1
                     : XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;
    isTaken_ = grab();
    Q_EMIT settled(isTaken_ ? State::Registered : State::InUse, {});
}

void X11HotKey::release() {
    if (std::exchange(isTaken_, false)) ungrab();
}

bool X11HotKey::grab() {
    keyCode_ = keyCodeOf(spaceKey);
    bool isTaken = keyCode_ != 0;
    for (const std::uint16_t locks : lockMasks) {
        const xcb_void_cookie_t request = xcb_grab_key_checked(
            x11Connection(), 1, rootWindow(), static_cast<std::uint16_t>(modifiers_ | locks),
            keyCode_, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
        const std::unique_ptr<xcb_generic_error_t, decltype(&std::free)> error(
            xcb_request_check(x11Connection(), request), &std::free);
        isTaken = isTaken && !error;
    }
    if (!isTaken) ungrab();
    return isTaken;
}

void X11HotKey::ungrab() const {
    for (const std::uint16_t locks : lockMasks)
        xcb_ungrab_key(x11Connection(), keyCode_, rootWindow(),
                       static_cast<std::uint16_t>(modifiers_ | locks));
    xcb_flush(x11Connection());
}

bool X11HotKey::nativeEventFilter(const QByteArray& type, void* message, qintptr*) {
    if (!isTaken_ || type != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_KEY_PRESS) return false;
    const auto* key = static_cast<const xcb_key_press_event_t*>(message);
    const int relevant =
        XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    if (key->detail != keyCode_ || (key->state & relevant) != modifiers_) return false;
    // Qt takes the time of the key from the event, without which the panel would get no focus, and
    // only then is the panel shown.
    QMetaObject::invokeMethod(this, "pressed", Qt::QueuedConnection, Q_ARG(QString, QString()));
    return false;
}

} // namespace tovi
