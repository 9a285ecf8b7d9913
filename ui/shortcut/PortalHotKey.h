#pragma once

#include "ui/session/Portal.h"
#include "ui/shortcut/HotKeySource.h"

namespace tovi {

/// Shortcuts of a desktop that hands them out through its portal
/// (org.freedesktop.portal.GlobalShortcuts). The user decides there which keys it gets.
class PortalHotKey final : public HotKeySource {
    Q_OBJECT

  public:
    explicit PortalHotKey(QDBusConnection bus);
    ~PortalHotKey() override;

    void take(const QString& choice) override;
    void release() override;

  private Q_SLOTS:
    void activate(const QDBusMessage& message);
    void sessionClosed();

  private: // NOLINT(readability-redundant-access-specifiers)
    QVariant wanted() const;
    void bind();
    void settle(State state, const QString& keys = {});

    QDBusConnection bus_;
    QString choice_;  // empty while none is wanted
    QString session_; // its path; empty without one
    int attempt_ = 0; // answers of earlier ones are not heard
    bool isAsking_ = false;
};

} // namespace tovi
