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
const QString common = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString gnomeAccessibility = QStringLiteral("org.gnome.desktop.a11y.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");

} // namespace

SystemAppearance::SystemAppearance(QDBusConnection bus) : bus_(std::move(bus)) {
    qRegisterMetaType<QDBusVariant>();
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

/// One by one: of values that several portals know, ReadAll gives all and does not say whose.
void SystemAppearance::read() {
    for (const auto& [space, key] : {std::pair(common, "color-scheme"),
                                     {common, "contrast"},
                                     {common, "reduced-motion"},
                                     {gnomeAccessibility, "high-contrast"},
                                     {gnome, "enable-animations"},
                                     {kde, "AnimationDurationFactor"}}) {
        QDBusMessage call = QDBusMessage::createMethodCall(portal::service, portal::path, settings,
                                                           QStringLiteral("Read"));
        call << space << QString::fromLatin1(key);
        auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
        connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, call] {
            answer->deleteLater();
            const QDBusPendingReply<QDBusVariant> found = *answer;
            if (!found.isError())
                change(call.arguments()[0].toString(), call.arguments()[1].toString(),
                       found.value());
        });
    }
}

void SystemAppearance::change(const QString& space, const QString& key, const QDBusVariant& value) {
    QVariant plain = value.variant();
    if (plain.userType() == qMetaTypeId<QDBusVariant>())
        plain = plain.value<QDBusVariant>().variant();
    values_[space][key] = plain;
    Q_EMIT changed();
}

QVariant SystemAppearance::value(const QString& space, const char* key) const {
    return values_.value(space).value(QLatin1String(key));
}

bool SystemAppearance::knowsScheme() const {
    return value(common, "color-scheme").toUInt() != 0;
}

bool SystemAppearance::isDark() const {
    return value(common, "color-scheme").toUInt() == 1;
}

bool SystemAppearance::hasHighContrast() const {
    return value(common, "contrast").toUInt() == 1 ||
           value(gnomeAccessibility, "high-contrast").toBool();
}

bool SystemAppearance::hasReducedMotion() const {
    return value(common, "reduced-motion").toUInt() == 1 ||
           value(gnome, "enable-animations") == QVariant(false) ||
           value(kde, "AnimationDurationFactor") == QVariant(QStringLiteral("0"));
}

} // namespace tovi
