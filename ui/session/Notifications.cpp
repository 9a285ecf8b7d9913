#include "ui/session/Notifications.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QVariantMap>
#include <utility>

namespace tovi {
namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

} // namespace

Notifications::Notifications(QDBusConnection bus) : bus_(std::move(bus)) {
    if (!bus_.isConnected()) return;
    [[maybe_unused]] const bool areHeard =
        bus_.connect(service, path, service, QStringLiteral("ActionInvoked"), this,
                     SLOT(invoke(uint, QString))) &&
        bus_.connect(service, path, service, QStringLiteral("ActivationToken"), this,
                     SLOT(keepToken(uint, QString))) &&
        bus_.connect(service, path, service, QStringLiteral("NotificationClosed"), this,
                     SLOT(forget(uint)));
    Q_ASSERT(areHeard);
}

void Notifications::show(const QString& title, const QString& text, const QList<Action>& actions) {
    if (!bus_.isConnected()) return;
    QStringList offered;
    if (!actions.isEmpty()) offered << QStringLiteral("default") << actions.first().text;
    for (qsizetype at = 0; at < actions.size(); ++at)
        offered << QString::number(at) << actions[at].text;
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, service, QStringLiteral("Notify"));
    call << QStringLiteral("Tovi") << 0U << QStringLiteral("app.ardeno.Tovi") << title << text
         << offered
         << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("app.ardeno.Tovi")}} << -1;
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, actions] {
        answer->deleteLater();
        const QDBusPendingReply<uint> notification = *answer;
        if (!notification.isError()) shown_.insert(notification.value(), actions);
    });
}

void Notifications::invoke(uint notification, const QString& action) {
    const QList<Action> actions = shown_.value(notification);
    const int at = action == QLatin1String("default") ? 0 : action.toInt();
    const QString token = std::exchange(token_, {});
    if (at >= 0 && at < actions.size()) actions[at].act(token);
}

void Notifications::keepToken(uint notification, const QString& token) {
    if (shown_.contains(notification)) token_ = token;
}

void Notifications::forget(uint notification) {
    shown_.remove(notification);
}

} // namespace tovi
