#include "ui/desktop/DesktopPorts.h"

#include <QClipboard>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QGuiApplication>
#include <filesystem>
#include <utility>

namespace tovi {
namespace {

constexpr const char* fileManager = "org.freedesktop.FileManager1";

QString decoded(const std::string& path) {
    return QFile::decodeName(QByteArray::fromStdString(path));
}

/// Whether something on the session bus shows files, or can be started to.
bool hasFileManager(const QDBusConnection& bus) {
    if (!bus.isConnected()) return false;
    const QString name = QString::fromLatin1(fileManager);
    const QDBusConnectionInterface* names = bus.interface();
    return names->isServiceRegistered(name).value() ||
           names->activatableServiceNames().value().contains(name);
}

} // namespace

void WindowFolderPicker::pick(const Request& request, Answer answer) {
    answer_ = std::move(answer);
    const QString directory = request.directory ? decoded(*request.directory) : QString();
    Q_EMIT requested(QString::fromStdString(request.title), QString::fromStdString(request.message),
                     QString::fromStdString(request.button),
                     directory.isEmpty() ? QUrl() : QUrl::fromLocalFile(directory));
}

void WindowFolderPicker::finish(const QUrl& folder) {
    const Answer answer = std::exchange(answer_, nullptr);
    if (!answer) return;
    if (folder.isLocalFile()) {
        answer(QFile::encodeName(folder.toLocalFile()).toStdString());
    } else {
        answer(std::nullopt);
    }
}

bool SystemClipboard::setText(const std::string& text) {
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QString wanted = QString::fromStdString(text);
    clipboard->setText(wanted);
    return clipboard->text() == wanted;
}

bool SystemFileOpener::open(const std::string& path) {
    return std::filesystem::exists(std::filesystem::symlink_status(path)) && launcher_.open(path);
}

bool SystemFileOpener::reveal(const std::string& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!hasFileManager(bus)) return open(std::filesystem::path(path).parent_path().string());
    QDBusMessage call = QDBusMessage::createMethodCall(
        QString::fromLatin1(fileManager), QStringLiteral("/org/freedesktop/FileManager1"),
        QString::fromLatin1(fileManager), QStringLiteral("ShowItems"));
    const QString address = QUrl::fromLocalFile(decoded(path)).toString(QUrl::FullyEncoded);
    call << QStringList{address} << QString();
    return bus.send(call);
}

} // namespace tovi
