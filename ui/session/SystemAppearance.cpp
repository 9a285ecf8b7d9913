#include "ui/session/SystemAppearance.h"

#include "ui/session/Portal.h"

#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <utility>

namespace tovi {
namespace {

const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString space = QStringLiteral("org.freedesktop.appearance");

using Values = QMap<QString, QVariantMap>; // by their space

} // namespace

SystemAppearance::SystemAppearance(QDBusConnection bus) : bus_(std::move(bus)) {
    qRegisterMetaType<QDBusVariant>();
    qDBusRegisterMetaType<Values>();
    if (!bus_.isConnected()) return;
    [[maybe_unused]] const bool isHeard =
        bus_.connect(portal::service, portal::path, settings, QStringLiteral("SettingChanged"),
                     this, SLOT(change(QString, QString, QDBusVariant)));
    Q_ASSERT(isHeard);
    auto* owner = new QDBusServiceWatcher(portal::service, bus_,
                                          QDBusServiceWatcher::WatchForRegistration, this);
    connect(owner, &QDBusServiceWatcher::serviceRegistered, this, &SystemAppearance::read);
    read();
}

void SystemAppearance::read() {
    QDBusMessage call = QDBusMessage::createMethodCall(portal::service, portal::path, settings,
                                                       QStringLiteral("ReadAll"));
    call << QStringList{space};
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<Values> found = *answer;
        if (found.isError()) return;
        const QVariantMap values = found.value().value(space);
        for (auto value = values.begin(); value != values.end(); ++value)
            change(space, value.key(), QDBusVariant(value.value()));
    });
}

void SystemAppearance::change(const QString& where, const QString& key, const QDBusVariant& value) {
    static const QMap<QString, Wish> wishes{{QStringLiteral("color-scheme"), Wish::Scheme},
                                            {QStringLiteral("contrast"), Wish::Contrast},
                                            {QStringLiteral("reduced-motion"), Wish::Motion}};
    if (where != space || !wishes.contains(key)) return;
    wishes_.insert(wishes.value(key), value.variant().toUInt());
    Q_EMIT changed();
}

} // namespace tovi
