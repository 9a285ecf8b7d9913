#pragma once

#include "ui/desktop/HotKeySource.h"

#include <QAbstractNativeEventFilter>
#include <cstdint>

struct xcb_connection_t;

namespace tovi {

/// The program's connection to the X server; none on other platforms.
xcb_connection_t* x11Connection();

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
