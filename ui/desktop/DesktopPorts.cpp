#include "ui/desktop/DesktopPorts.h"

#include "base/FileDescriptor.h"
#include "ui/session/Portal.h"

#include <QClipboard>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QFileInfo>
#include <QGuiApplication>
#include <QUrl>
#include <filesystem>
#include <utility>

#include <fcntl.h>

namespace tovi {
namespace {

constexpr const char* fileManager = "org.freedesktop.FileManager1";

QString decoded(const std::string& path) {
    return QFile::decodeName(QByteArray::fromStdString(path));
}

/// False as well where it cannot be told, as in a folder closed to the user.
bool isThere(const std::string& path) {
    std::error_code unknown;
    return std::filesystem::exists(std::filesystem::symlink_status(path, unknown));
}

} // namespace

void WindowFolderPicker::pick(const Request& request, Answer answer) {
    request_ = request;
    answer_ = std::move(answer);
    if (hasWindow_) ask();
}

void WindowFolderPicker::begin() {
    hasWindow_ = true;
    if (answer_) ask();
}

void WindowFolderPicker::ask() {
    Q_EMIT requested(QString::fromStdString(request_.title),
                     QString::fromStdString(request_.message),
                     QString::fromStdString(request_.button),
                     request_.directory ? decoded(*request_.directory) : QString());
}

void WindowFolderPicker::finish(const QString& folder) {
    const Answer answer = std::exchange(answer_, nullptr);
    if (!answer) return;
    if (folder.isEmpty()) {
        answer(std::nullopt);
    } else {
        answer(QFile::encodeName(folder).toStdString());
    }
}

bool SystemClipboard::setText(const std::string& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QString wanted = QString::fromStdString(text);
    clipboard->setText(wanted);
    return clipboard->text() == wanted;
}

SystemFileOpener::SystemFileOpener(const Launcher& launcher)
    : launcher_(launcher), failures_(launcher.failures(), QSocketNotifier::Read) {
    connect(&failures_, &QSocketNotifier::activated, this, &SystemFileOpener::tellFailure);
}

void SystemFileOpener::tellFailure() {
    const auto path = launcher_.takeFailure();
    if (!path) return failures_.setEnabled(false); // the launcher is gone
    Q_EMIT failed(tr("“%1” could not be opened: no program of this desktop opened it.")
                      .arg(QFileInfo(decoded(*path)).fileName()));
}

bool SystemFileOpener::open(const std::string& path) {
    return isThere(path) && launcher_.open(path);
}

bool SystemFileOpener::reveal(const std::string& path) {
    if (!isThere(path)) return false;
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return openFolder(path);
    QDBusMessage call = QDBusMessage::createMethodCall(
        QString::fromLatin1(fileManager), QStringLiteral("/org/freedesktop/FileManager1"),
        QString::fromLatin1(fileManager), QStringLiteral("ShowItems"));
    call << QStringList{QUrl::fromLocalFile(decoded(path)).toString(QUrl::FullyEncoded)}
         << QString();
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, path] {
        answer->deleteLater();
        if (answer->isError()) revealThroughPortal(path);
    });
    return true;
}

void SystemFileOpener::revealThroughPortal(const std::string& path) {
    const FileDescriptor file(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!file.isOpen()) {
        openFolder(path);
        return;
    }
    PortalRequest::send(QDBusConnection::sessionBus(),
                        QStringLiteral("org.freedesktop.portal.OpenURI"),
                        QStringLiteral("OpenDirectory"),
                        {QString(), QVariant::fromValue(QDBusUnixFileDescriptor(file.get()))}, {},
                        this, [this, path](PortalRequest::Result result, const QVariantMap&) {
                            if (result == PortalRequest::Result::Unavailable) openFolder(path);
                        });
}

bool SystemFileOpener::openFolder(const std::string& path) {
    return launcher_.open(std::filesystem::path(path).parent_path().string());
}

} // namespace tovi
