#pragma once

#include "ui/shortcut/HotKeySource.h"

#include <memory>

namespace tovi {

/// The shortcut that opens the quick search panel over any program, and the true state of its
/// registration. Where the desktop gives none, it has to bind the command, and `message` says so.
class GlobalHotKey : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isRegistered READ isRegistered NOTIFY changed)
    Q_PROPERTY(QString keys READ keys NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)

  public:
    explicit GlobalHotKey(std::unique_ptr<HotKeySource> source);
    ~GlobalHotKey() override;

    /// Lets go of the present shortcut, then takes the chosen one; none for "disabled". After a
    /// failure nothing is registered.
    void registerChoice(const QString& choice);

    bool isRegistered() const { return isRegistered_; }
    /// How the desktop names the registered keys; empty where it says nothing.
    QString keys() const { return keys_; }
    /// Why the chosen shortcut is not registered; empty where it is, or where none is wanted.
    QString message() const { return message_; }

  Q_SIGNALS:
    void changed();
    void pressed(const QString& activationToken);
    /// Another program has the shortcut.
    void refused();

  private:
    void settle(HotKeySource::State state, const QString& keys);

    std::unique_ptr<HotKeySource> source_;
    QString choice_;
    QString keys_;
    QString message_;
    bool isRegistered_ = false;
};

/// The source of the desktop that the program runs on.
std::unique_ptr<HotKeySource> makeHotKeySource();

} // namespace tovi
