#pragma once

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <functional>

namespace tovi {

/// Tells the user through the desktop's notifications (org.freedesktop.Notifications, as
/// freedesktop.org has them); does nothing where there are none. Lives on the main thread.
class Notifications : public QObject {
    Q_OBJECT

  public:
    struct Action {
        QString text;
        /// `activationToken` lets a window come to the front, where the desktop gave one.
        std::function<void(const QString& activationToken)> act;
    };

    explicit Notifications(QDBusConnection bus);

    /// The first action is also that of the notification itself.
    void show(const QString& title, const QString& text, const QList<Action>& actions);

  private Q_SLOTS:
    void invoke(uint notification, const QString& action);
    void keepToken(uint notification, const QString& token);
    void forget(uint notification);

  private: // NOLINT(readability-redundant-access-specifiers)
    QDBusConnection bus_;
    QHash<uint, QList<Action>> shown_;
    QString token_; // of the action that is about to come
};

} // namespace tovi
