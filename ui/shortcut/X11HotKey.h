#pragma once

#include "ui/shortcut/HotKeySource.h"

#include <QAbstractNativeEventFilter>
#include <cstdint>

namespace tovi {

/// Shortcuts of the X server. To be made where there is a connection to it.
class X11HotKey final : public HotKeySource, public QAbstractNativeEventFilter {
  public:
    X11HotKey();
    ~X11HotKey() override;

    void take(const QString& choice) override;
    void release() override;

    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;

  private:
    bool grab();
    void ungrab() const;

    bool isTaken_ = false;
    std::uint16_t modifiers_ = 0;
    std::uint8_t keyCode_ = 0;
};

} // namespace tovi
