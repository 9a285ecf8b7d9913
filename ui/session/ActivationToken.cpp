#include "ui/session/ActivationToken.h"

#include "ui/session/X11Connection.h"

#include <QWindow>
#include <algorithm>
#include <memory>

#include <xcb/xcb.h>

namespace tovi {
namespace {

const QString tokenKey = QStringLiteral("activation-token");
const QString startupKey = QStringLiteral("desktop-startup-id");

class RootMessages {
  public:
    explicit RootMessages(xcb_connection_t* connection)
        : connection_(connection),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}

    /// Asks the window manager (https://specifications.freedesktop.org/wm-spec, _NET_ACTIVE_WINDOW)
    /// on behalf of a click at `time`.
    void activate(xcb_window_t window, std::uint32_t time) const {
        xcb_client_message_event_t event = message(window, 32, "_NET_ACTIVE_WINDOW");
        event.data.data32[0] = 1; // an application asks
        event.data.data32[1] = time;
        send(event, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT);
        xcb_flush(connection_);
    }

    /// Ends the busy pointer: the text in pieces of 20 bytes, its end included
    /// (https://www.freedesktop.org/wiki/Specifications/startup-notification-spec).
    void endStartup(xcb_window_t window, const QByteArray& id) const {
        const QByteArray text = "remove: ID=" + id;
        const char* kind = "_NET_STARTUP_INFO_BEGIN";
        for (qsizetype at = 0; at <= text.size(); at += 20) {
            xcb_client_message_event_t event = message(window, 8, kind);
            const auto length = std::min<qsizetype>(20, text.size() - at);
            std::copy_n(text.data() + at, length, event.data.data8);
            send(event, XCB_EVENT_MASK_PROPERTY_CHANGE);
            kind = "_NET_STARTUP_INFO";
        }
        xcb_flush(connection_);
    }

  private:
    xcb_client_message_event_t message(xcb_window_t window, std::uint8_t format,
                                       const char* kind) const {
        const auto length = static_cast<std::uint16_t>(qstrlen(kind));
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
            xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, length, kind),
                                  nullptr),
            &std::free);
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = format;
        event.window = window;
        if (atom) event.type = atom->atom;
        return event;
    }

    void send(const xcb_client_message_event_t& event, std::uint32_t mask) const {
        xcb_send_event(connection_, 0, root_, mask, reinterpret_cast<const char*>(&event));
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

/// The time of the click that a startup notification's name ends with; 0 without one.
std::uint32_t timeOf(const QString& startupId) {
    const qsizetype at = startupId.lastIndexOf(QLatin1String("_TIME"));
    return at < 0 ? 0 : startupId.mid(at + 5).toUInt();
}

} // namespace

QVariantMap startedPlatformData() {
    QVariantMap data;
    const auto pass = [&](const QString& key, const char* variable) {
        const QString value = qEnvironmentVariable(variable);
        if (!value.isEmpty()) data.insert(key, value);
    };
    pass(tokenKey, "XDG_ACTIVATION_TOKEN");
    pass(startupKey, "DESKTOP_STARTUP_ID");
    return data;
}

void activate(QWindow& window, const QVariantMap& platformData) {
    const QString startup = platformData.value(startupKey).toString();
    if (!x11Connection()) {
        // Desktops of before 2023 pass the token under the name of X11.
        const QString token = platformData.value(tokenKey, startup).toString();
        // From there Qt's Wayland platform takes it, as it takes that of a click in the tray.
        const char* given = "XDG_ACTIVATION_TOKEN";
        if (!token.isEmpty()) qputenv(given, token.toUtf8());
        // Without one desktops bring only a window to the front that is new to them.
        if (qEnvironmentVariableIsEmpty(given) && window.isExposed() && !window.isActive())
            window.hide();
    }
    window.setWindowStates(window.windowStates() & ~Qt::WindowMinimized);
    window.setVisible(true);
    window.raise();
    window.requestActivate();
    if (!x11Connection() || startup.isEmpty()) return;
    const RootMessages messages(x11Connection());
    const auto native = static_cast<xcb_window_t>(window.winId());
    if (const std::uint32_t time = timeOf(startup)) messages.activate(native, time);
    messages.endStartup(native, startup.toUtf8());
}

} // namespace tovi
