#include "ui/shortcut/PortalHotKey.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusServiceWatcher>
#include <optional>
#include <utility>

namespace tovi {
namespace {

const QString shortcuts = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");
const QString shortcutName = QStringLiteral("quick-search");

/// As the portal has it: (sa{sv}).
struct Shortcut {
    QString name;
    QVariantMap values;
};

QDBusArgument& operator<<(QDBusArgument& to, const Shortcut& shortcut) {
    to.beginStructure();
    to << shortcut.name << shortcut.values;
    to.endStructure();
    return to;
}

const QDBusArgument& operator>>(const QDBusArgument& from, Shortcut& shortcut) {
    from.beginStructure();
    from >> shortcut.name >> shortcut.values;
    from.endStructure();
    return from;
}

/// In the words of the freedesktop.org shortcuts description.
QString triggerOf(const QString& choice) {
    return choice == QLatin1String("controlOptionSpace") ? QStringLiteral("CTRL+ALT+space")
                                                         : QStringLiteral("LOGO+SHIFT+space");
}

} // namespace
} // namespace tovi

Q_DECLARE_METATYPE(tovi::Shortcut)

namespace tovi {

namespace {

/// How the desktop names the keys of the shortcut; none if it is not bound.
std::optional<QString> boundKeys(const QVariantMap& values) {
    const auto bound = qdbus_cast<QList<Shortcut>>(values.value(QStringLiteral("shortcuts")));
    if (bound.isEmpty()) return std::nullopt;
    return bound.first().values.value(QStringLiteral("trigger_description")).toString();
}

} // namespace

PortalHotKey::PortalHotKey(QDBusConnection bus) : bus_(std::move(bus)) {
    qDBusRegisterMetaType<Shortcut>();
    qDBusRegisterMetaType<QList<Shortcut>>();
    if (!bus_.isConnected()) return;
    [[maybe_unused]] const bool isHeard =
        bus_.connect(portal::service, portal::path, shortcuts, QStringLiteral("Activated"), this,
                     SLOT(activate(QDBusMessage)));
    Q_ASSERT(isHeard);
    auto* owner = new QDBusServiceWatcher(portal::service, bus_,
                                          QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString& now) {
                if (choice_.isEmpty()) return;
                if (!before.isEmpty()) sessionClosed();
                // Being asked starts a portal, which is no reason to ask again.
                if (!now.isEmpty() && !isAsking_) take(QString(choice_));
            });
}

PortalHotKey::~PortalHotKey() {
    PortalHotKey::release();
}

void PortalHotKey::take(const QString& choice) {
    choice_ = choice;
    isAsking_ = true;
    if (!bus_.isConnected()) return settle(State::Unavailable);
    PortalRequest::send(
        bus_, shortcuts, QStringLiteral("CreateSession"), {},
        {{QStringLiteral("session_handle_token"), portal::newToken()},
         {QStringLiteral("shortcuts"), wanted()}}, // Plasma 5.27 takes no other later
        this,
        [this, attempt = ++attempt_](PortalRequest::Result result, const QVariantMap& values) {
            if (attempt != attempt_) return;
            session_ = values.value(QStringLiteral("session_handle")).toString();
            if (result != PortalRequest::Result::Granted ||
                !session_.startsWith(QLatin1Char('/'))) {
                session_.clear();
                settle(State::Unavailable);
            } else if (const auto keys = boundKeys(values)) { // binding again would ask the user
                settle(keys->isEmpty() ? State::Refused : State::Registered, *keys);
            } else {
                bind();
            }
        });
}

QVariant PortalHotKey::wanted() const {
    return QVariant::fromValue(
        QList<Shortcut>{{shortcutName,
                         {{QStringLiteral("description"), tr("Quick search")},
                          {QStringLiteral("preferred_trigger"), triggerOf(choice_)}}}});
}

void PortalHotKey::bind() {
    bus_.connect(portal::service, session_, sessionInterface, QStringLiteral("Closed"), this,
                 SLOT(sessionClosed()));
    PortalRequest::send(
        bus_, shortcuts, QStringLiteral("BindShortcuts"),
        {QVariant::fromValue(QDBusObjectPath(session_)), wanted(), QString()}, {}, this,
        [this, attempt = attempt_](PortalRequest::Result result, const QVariantMap& values) {
            if (attempt != attempt_) return;
            const auto keys = boundKeys(values);
            if (result == PortalRequest::Result::Granted && keys) {
                settle(State::Registered, *keys);
            } else {
                settle(result == PortalRequest::Result::Unavailable ? State::Unavailable
                                                                    : State::Refused);
            }
        });
}

void PortalHotKey::release() {
    ++attempt_;
    isAsking_ = false;
    choice_.clear();
    if (session_.isEmpty()) return;
    bus_.send(QDBusMessage::createMethodCall(portal::service, std::exchange(session_, {}),
                                             sessionInterface, QStringLiteral("Close")));
}

void PortalHotKey::sessionClosed() {
    ++attempt_;
    session_.clear();
    settle(State::Unavailable);
}

void PortalHotKey::settle(State state, const QString& keys) {
    isAsking_ = false;
    Q_EMIT settled(state, keys);
}

void PortalHotKey::activate(const QDBusMessage& message) {
    const QVariantList values = message.arguments();
    if (session_.isEmpty() || values.size() < 4 ||
        values[0].value<QDBusObjectPath>().path() != session_ ||
        values[1].toString() != shortcutName) {
        return;
    }
    Q_EMIT pressed(
        qdbus_cast<QVariantMap>(values[3]).value(QStringLiteral("activation_token")).toString());
}

} // namespace tovi
