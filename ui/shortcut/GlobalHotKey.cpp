#include "ui/shortcut/GlobalHotKey.h"

#include "ui/session/X11Connection.h"
#include "ui/shortcut/PortalHotKey.h"
#include "ui/shortcut/X11HotKey.h"

namespace tovi {
namespace {

using State = HotKeySource::State;

} // namespace

GlobalHotKey::GlobalHotKey(std::unique_ptr<HotKeySource> source) : source_(std::move(source)) {
    connect(source_.get(), &HotKeySource::settled, this, &GlobalHotKey::settle);
    connect(source_.get(), &HotKeySource::pressed, this, &GlobalHotKey::pressed);
}

GlobalHotKey::~GlobalHotKey() = default;

void GlobalHotKey::registerChoice(const QString& choice) {
    if (choice == choice_) return;
    choice_ = choice;
    source_->release();
    isRegistered_ = false;
    keys_.clear();
    message_.clear();
    if (choice == QLatin1String("disabled")) {
        Q_EMIT changed();
    } else {
        source_->take(choice);
    }
}

void GlobalHotKey::settle(State state, const QString& keys) {
    isRegistered_ = state == State::Registered;
    keys_ = keys;
    switch (state) {
    case State::Registered:
        message_.clear();
        break;
    case State::InUse:
        message_ = tr("The global shortcut is already in use. Choose another combination in "
                      "Settings. ⌘K still works in Tovi.");
        Q_EMIT refused();
        break;
    case State::Refused:
        message_ = tr("The desktop did not allow the shortcut. Choose another combination, or bind "
                      "the command “tovi --quick-search” to a key in the keyboard settings.");
        break;
    case State::Unavailable:
        message_ = tr("This desktop lets no program take a shortcut. Bind the command “tovi "
                      "--quick-search” to a key in the keyboard settings.");
        break;
    }
    Q_EMIT changed();
}

std::unique_ptr<HotKeySource> makeHotKeySource() {
    // An X server below a Wayland desktop hears only the keys that its own windows get.
    const bool isWayland = qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland") ||
                           qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    if (x11Connection() && !isWayland) {
        return std::make_unique<X11HotKey>();
    }
    return std::make_unique<PortalHotKey>(QDBusConnection::sessionBus());
}

} // namespace tovi
