#include "ui/session/SystemFolderDialog.h"

#include "ui/session/Portal.h"
#include "ui/session/X11Connection.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QTimer>
#include <utility>

namespace tovi {
namespace {

const QString fileChooser = QStringLiteral("org.freedesktop.portal.FileChooser");
constexpr uint firstWithFolders = 3; // version of the interface

/// What the portal knows a window by. Qt 6.4 cannot export one of Wayland.
QString handleOf(const QWindow& window) {
    return x11Connection() ? QStringLiteral("x11:%1").arg(window.winId(), 0, 16) : QString();
}

} // namespace

SystemFolderDialog::SystemFolderDialog(QDBusConnection bus) : bus_(std::move(bus)) {}

void SystemFolderDialog::open(QWindow* parent, const QString& title, const QString& acceptLabel,
                              const QString& folder) {
    if (!bus_.isConnected()) { // which answers no call
        QTimer::singleShot(0, this, &SystemFolderDialog::unavailable);
        return;
    }
    const QVariantMap options{{QStringLiteral("modal"), true},
                              {QStringLiteral("directory"), true},
                              {QStringLiteral("accept_label"), acceptLabel},
                              // With the zero that the portal wants at its end.
                              {QStringLiteral("current_folder"), QFile::encodeName(folder) + '\0'}};
    QDBusMessage call = QDBusMessage::createMethodCall(
        portal::service, portal::path, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    call << fileChooser << QStringLiteral("version");
    auto* reply = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(reply, &QDBusPendingCallWatcher::finished, this,
            [this, reply, arguments = QVariantList{handleOf(*parent), title}, options] {
                reply->deleteLater();
                const QDBusPendingReply<QDBusVariant> version = *reply;
                if (version.isError() || version.value().variant().toUInt() < firstWithFolders)
                    Q_EMIT unavailable();
                else
                    ask(arguments, options);
            });
}

void SystemFolderDialog::ask(const QVariantList& arguments, const QVariantMap& options) {
    PortalRequest::send(bus_, fileChooser, QStringLiteral("OpenFile"), arguments, options, this,
                        [this](PortalRequest::Result result, const QVariantMap& values) {
                            const QStringList folders =
                                values.value(QStringLiteral("uris")).toStringList();
                            if (result == PortalRequest::Result::Unavailable)
                                Q_EMIT unavailable();
                            else if (result == PortalRequest::Result::Granted && !folders.isEmpty())
                                take(QUrl::fromEncoded(folders.front().toUtf8()));
                            else
                                Q_EMIT rejected();
                        });
}

void SystemFolderDialog::take(const QUrl& folder) {
    if (folder.isLocalFile()) {
        Q_EMIT accepted(folder.toLocalFile());
    } else {
        Q_EMIT rejected();
        Q_EMIT failed(tr("“%1” is not on this machine.").arg(folder.toDisplayString()));
    }
}

} // namespace tovi
