#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <cstdint>

namespace tovi {

/// The shortcut that opens the quick search panel over any program. Registered with the X server;
/// where there is none, the desktop has to bind the command, and `message` says so.
class GlobalHotKey : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
    Q_PROPERTY(bool isRegistered READ isRegistered NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)

  public:
    GlobalHotKey();
    ~GlobalHotKey() override;

    /// Lets go of the present shortcut, then takes "commandShiftSpace" (Super for Command) or
    /// "controlOptionSpace" (Alt for Option); nothing for "disabled". After a
    /// failure nothing is registered.
    void registerChoice(const QString& choice);

    bool isRegistered() const { return isRegistered_; }
    /// Why the chosen shortcut is not registered; empty where it is, or where none is wanted.
    QString message() const { return message_; }

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  Q_SIGNALS:
    void changed();
    void pressed();
    /// Another program has the shortcut.
    void refused();

  private:
    void unregister();
    bool grab();
    void ungrab() const;

    QString choice_;
    QString message_;
    bool isRegistered_ = false;
    std::uint16_t modifiers_ = 0;
    std::uint8_t keyCode_ = 0;
};

} // namespace tovi
