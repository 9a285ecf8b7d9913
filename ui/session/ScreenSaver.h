#pragma once

#include <QDBusConnection>
#include <QObject>

namespace tovi {

/// Hears from the desktop's screen saver that it covers or locks the screen, also where the login
/// session is not told of it. Lives on the main thread.
class ScreenSaver : public QObject {
    Q_OBJECT

  public:
    explicit ScreenSaver(QDBusConnection bus);

  Q_SIGNALS:
    void locked();

  private Q_SLOTS:
    void change(bool isActive);
};

} // namespace tovi
