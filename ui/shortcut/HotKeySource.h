#pragma once

#include <QObject>

namespace tovi {

/// Where a shortcut that works over all programs can be had. Lives on the main thread.
class HotKeySource : public QObject {
    Q_OBJECT

  public:
    enum class State {
        Registered,
        InUse,       // another program has it
        Refused,     // the user or the desktop said no
        Unavailable, // the desktop has none to give
    };

    /// Takes "commandShiftSpace" (Super for Command) or "controlOptionSpace" (Alt for Option);
    /// nothing may be taken yet. Answers with `settled`, at once or later.
    virtual void take(const QString& choice) = 0;
    /// Lets go of what was taken; nothing is settled or pressed after it.
    virtual void release() = 0;

  Q_SIGNALS:
    /// Also when what was registered is lost. `keys` is how the desktop names the registered keys,
    /// which may be others than those asked for; empty where it says nothing.
    void settled(tovi::HotKeySource::State state, const QString& keys);
    /// `activationToken` lets a window come to the front, where the desktop gave one.
    void pressed(const QString& activationToken);
};

} // namespace tovi
