#include "ui/session/Portal.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QVariant>
#include <utility>

namespace tovi {

QString portal::newToken() {
    static int count = 0;
    return QStringLiteral("tovi_%1").arg(++count);
}

PortalRequest::PortalRequest(QDBusConnection bus, QObject* context, Answer answer)
    : QObject(context), bus_(std::move(bus)), answer_(std::move(answer)) {
    auto* owner = new QDBusServiceWatcher(portal::service, bus_,
                                          QDBusServiceWatcher::WatchForUnregistration, this);
    connect(owner, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { finish(Result::Unavailable, {}); });
}

void PortalRequest::send(const QDBusConnection& bus, const QString& interface,
                         const QString& method, const QVariantList& arguments, QVariantMap options,
                         QObject* context, Answer answer) {
    auto* request = new PortalRequest(bus, context, std::move(answer));
    const QString token = portal::newToken();
    QString sender = bus.baseService().mid(1); // without its colon
    // Before the call, so that no answer can be missed.
    request->listen(
        QStringLiteral("%1/request/%2/%3")
            .arg(portal::path, sender.replace(QLatin1Char('.'), QLatin1Char('_')), token));
    options.insert(QStringLiteral("handle_token"), token);
    QDBusMessage call =
        QDBusMessage::createMethodCall(portal::service, portal::path, interface, method);
    call.setArguments(QVariantList(arguments) << options);
    auto* reply = new QDBusPendingCallWatcher(bus.asyncCall(call), request);
    connect(reply, &QDBusPendingCallWatcher::finished, request, [request, reply] {
        const QDBusPendingReply<QDBusObjectPath> handle = *reply;
        if (handle.isError()) return request->finish(Result::Unavailable, {});
        request->listen(handle.value().path()); // portals before 0.9 choose another path
    });
}

void PortalRequest::listen(const QString& request) {
    if (request == request_) return;
    request_ = request;
    [[maybe_unused]] const bool isHeard =
        bus_.connect(portal::service, request, QStringLiteral("org.freedesktop.portal.Request"),
                     QStringLiteral("Response"), this, SLOT(respond(QDBusMessage)));
    Q_ASSERT(isHeard);
}

void PortalRequest::respond(const QDBusMessage& message) {
    const QVariantList values = message.arguments();
    if (values.size() != 2) return finish(Result::Unavailable, {});
    finish(values[0].toUInt() == 0 ? Result::Granted : Result::Refused,
           qdbus_cast<QVariantMap>(values[1]));
}

void PortalRequest::finish(Result result, const QVariantMap& values) {
    if (const Answer answer = std::exchange(answer_, nullptr)) answer(result, values);
    deleteLater();
}

} // namespace tovi
