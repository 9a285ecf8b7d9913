#include "ui/desktop/VaultDialogs.h"

#include <QFile>
#include <QStandardPaths>
#include <utility>

namespace tovi {

void VaultDialogs::chooseFiles(const OpenRequest& request, OpenAnswer answer) {
    openAnswer_ = std::move(answer);
    Q_EMIT filesRequested(QString::fromStdString(request.title),
                          QString::fromStdString(request.message));
}

void VaultDialogs::chooseDestination(const SaveRequest& request, SaveAnswer answer) {
    saveAnswer_ = std::move(answer);
    Q_EMIT destinationRequested(
        QString::fromStdString(request.title), QString::fromStdString(request.message),
        QString::fromStdString(request.name), QString::fromStdString(request.nameIdentifier),
        QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), request.size);
}

void VaultDialogs::close() {
    cancel();
    Q_EMIT closed();
}

void VaultDialogs::chooseFiles(const QStringList& files) {
    std::vector<std::string> paths;
    for (const QString& file : files)
        paths.push_back(QFile::encodeName(file).toStdString());
    if (const OpenAnswer answer = std::exchange(openAnswer_, nullptr)) answer(std::move(paths));
}

void VaultDialogs::chooseDestination(const QString& folder, const QString& name) {
    if (const SaveAnswer answer = std::exchange(saveAnswer_, nullptr))
        answer(Destination{QFile::encodeName(folder).toStdString(), name.toStdString()});
}

void VaultDialogs::cancel() {
    if (const OpenAnswer answer = std::exchange(openAnswer_, nullptr)) answer({});
    if (const SaveAnswer answer = std::exchange(saveAnswer_, nullptr)) answer(std::nullopt);
}

} // namespace tovi
