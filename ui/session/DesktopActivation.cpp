#include "ui/session/DesktopActivation.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <utility>

namespace tovi {
namespace {

const QString busName = QStringLiteral("app.ardeno.Tovi");
const QString objectPath = QStringLiteral("/app/ardeno/Tovi");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");

} // namespace

DesktopActivation::DesktopActivation(QDBusConnection bus) : bus_(std::move(bus)) {
    new DesktopApplicationAdaptor(*this);
}

DesktopActivation::Start DesktopActivation::start(const QString& action,
                                                  const QVariantMap& platformData) {
    if (!bus_.isConnected()) return Start::Alone;
    // The object before the name, so that no call finds the name without it.
    bus_.registerObject(objectPath, this);
    if (bus_.registerService(busName)) return Start::First;
    bus_.unregisterObject(objectPath);
    QDBusMessage call = QDBusMessage::createMethodCall(
        busName, objectPath, interfaceName,
        action.isEmpty() ? QStringLiteral("Activate") : QStringLiteral("ActivateAction"));
    if (!action.isEmpty()) call << action << QVariantList();
    call << platformData;
    const QDBusMessage answer = bus_.call(call);
    return answer.type() == QDBusMessage::ReplyMessage ? Start::HandedOver : Start::Alone;
}

void DesktopApplicationAdaptor::Activate(const QVariantMap& platformData) {
    Q_EMIT activation_.activated(platformData);
}

void DesktopApplicationAdaptor::Open(const QStringList&, const QVariantMap& platformData) {
    Q_EMIT activation_.activated(platformData);
}

void DesktopApplicationAdaptor::ActivateAction(const QString& name, const QVariantList&,
                                               const QVariantMap& platformData) {
    if (name == QLatin1String(DesktopActivation::quickSearchAction)) {
        Q_EMIT activation_.quickSearchRequested(platformData);
    }
}

} // namespace tovi
