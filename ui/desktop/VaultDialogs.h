#pragma once

#include "app/vault/VaultPanels.h"

#include <QList>
#include <QObject>
#include <QUrl>

namespace tovi {

/// The file dialogs of the vault; they are in QML, where they look like the rest.
class VaultDialogs final : public QObject, public VaultPanels {
    Q_OBJECT

  public:
    void chooseFiles(const OpenRequest& request, OpenAnswer answer) override;
    void chooseDestination(const SaveRequest& request, SaveAnswer answer) override;
    void close() override;

    /// The answers of the dialogs.
    Q_INVOKABLE void chooseFiles(const QList<QUrl>& files);
    Q_INVOKABLE void chooseDestination(const QUrl& folder, const QString& name);
    /// Does nothing once the dialog has answered.
    Q_INVOKABLE void cancel();

    /// The path of a file's address.
    Q_INVOKABLE static QString path(const QUrl& file) { return file.toLocalFile(); }

  Q_SIGNALS:
    void filesRequested(const QString& title, const QString& message);
    void destinationRequested(const QString& title, const QString& message, const QString& name,
                              const QString& nameIdentifier, const QUrl& folder, qint64 size);
    void closed();

  private:
    OpenAnswer openAnswer_;
    SaveAnswer saveAnswer_;
};

} // namespace tovi
