#pragma once

#include "app/vault/VaultPanels.h"

#include <QObject>
#include <QStringList>

namespace tovi {

/// The file dialogs of the vault; they are in QML, where they look like the rest.
class VaultDialogs final : public QObject, public VaultPanels {
    Q_OBJECT

  public:
    void chooseFiles(const OpenRequest& request, OpenAnswer answer) override;
    void chooseDestination(const SaveRequest& request, SaveAnswer answer) override;
    void close() override;

    /// The answers of the dialogs, in paths.
    Q_INVOKABLE void chooseFiles(const QStringList& files);
    Q_INVOKABLE void chooseDestination(const QString& folder, const QString& name);
    /// Does nothing once the dialog has answered.
    Q_INVOKABLE void cancel();

  Q_SIGNALS:
    void filesRequested(const QString& title, const QString& message);
    void destinationRequested(const QString& title, const QString& message, const QString& name,
                              const QString& nameIdentifier, const QString& folder, qint64 size);
    void closed();

  private:
    OpenAnswer openAnswer_;
    SaveAnswer saveAnswer_;
};

} // namespace tovi
