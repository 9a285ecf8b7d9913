#pragma once

#include <functional>
#include <memory>

namespace tovi::platform {

/// What the user's login session tells of locking, switching and sleep.
class SessionSignals {
  public:
    enum class Kind {
        sleep,        // the machine is about to sleep
        locked,       // the session was locked, or is asked to be
        left,         // another session came to the front
        connected,    // signals arrive from now on
        disconnected, // none can arrive; the connection is tried again now and then
    };
    struct Signal {
        Kind kind;
        /// With `sleep`, where the system allows it: holds sleep back while any copy lives, as long
        /// as the system lets programs do that (usually 5 seconds).
        std::shared_ptr<const void> sleepDelay;
    };
    /// Called on a thread of the signals' own.
    using Handler = std::function<void(Signal)>;

    virtual ~SessionSignals() = default;

    /// Returns at once. Replaces the handler of an earlier call.
    virtual void start(Handler handler) = 0;
    /// The handler is not called after this has returned.
    virtual void stop() = 0;
};

/// The signals of the system's session manager, over the system bus (`org.freedesktop.login1`,
/// https://www.freedesktop.org/software/systemd/man/org.freedesktop.login1.html). Stopped when
/// destroyed.
std::unique_ptr<SessionSignals> makeSessionSignals();

} // namespace tovi::platform
