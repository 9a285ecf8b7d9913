#include "ui/session/Tray.h"

#include "core/library/LibraryOrder.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QQmlComponent>
#include <utility>

namespace tovi {
namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

} // namespace

Tray::Tray(QDBusConnection bus, QQmlEngine& engine, Executor& executor, AppModel& model)
    : bus_(std::move(bus)), engine_(engine), executor_(executor), model_(model) {}

void Tray::appear() {
    if (!bus_.isConnected() || std::exchange(isWanted_, true)) return;
    auto* owner =
        new QDBusServiceWatcher(watcherName, bus_, QDBusServiceWatcher::WatchForOwnerChange, this);
    // A new watcher knows nothing of the icon.
    connect(owner, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] {
        setShown(false);
        findHost();
    });
    for (const char* change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        [[maybe_unused]] const bool isHeard =
            bus_.connect(watcherName, watcherPath, watcherName, QString::fromLatin1(change), this,
                         SLOT(findHost()));
        Q_ASSERT(isHeard);
    }
    findHost();
}

Tray::~Tray() = default;

/// Qt asks once in a process whether there is a tray, so the icon must not be made before.
void Tray::findHost() {
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherName, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call.setAutoStartService(false);
    call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* answer = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> hasHost = *answer;
        setShown(!hasHost.isError() && hasHost.value().variant().toBool());
    });
}

void Tray::setShown(bool isShown) {
    if (isShown == this->isShown()) return;
    if (isShown) {
        QQmlComponent component(&engine_,
                                QUrl(QStringLiteral("qrc:/qt/qml/Tovi/session/TrayIcon.qml")));
        icon_.reset(component.create());
        if (!icon_) return qCritical("%s", qUtf8Printable(component.errorString()));
    } else {
        icon_.reset();
    }
    Q_EMIT shownChanged();
}

void Tray::refresh() {
    if (!model_.index()) return;
    runLatest(
        executor_, this, generation_,
        [index = model_.index()](const std::stop_token& stop) {
            return latestDownloads(index->reader.downloads(stop), latestCount);
        },
        [this](Outcome<std::vector<FileRecord>> found) {
            latest_.replace(std::move(found.value).value_or(std::vector<FileRecord>()));
        });
}

} // namespace tovi
