#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QUrl>
#include <QVariantMap>
#include <QWindow>

namespace tovi {

/// The desktop's own dialog for a folder (org.freedesktop.portal.FileChooser). QML knows this as
/// SystemFolderDialog.
class SystemFolderDialog : public QObject {
    Q_OBJECT

  public:
    explicit SystemFolderDialog(QDBusConnection bus);

    /// Over `parent`, beginning in the folder of this path. Answered with one signal, later; not to
    /// be opened again before.
    Q_INVOKABLE void open(QWindow* parent, const QString& title, const QString& acceptLabel,
                          const QString& folder);

  Q_SIGNALS:
    /// With its path.
    void accepted(const QString& folder);
    /// Also where the folder is of another machine.
    void rejected();
    /// This desktop has none.
    void unavailable();
    /// Why a folder was rejected. A whole sentence.
    void failed(const QString& sentence);

  private:
    void ask(const QVariantList& arguments, const QVariantMap& options);
    void take(const QUrl& folder);

    QDBusConnection bus_;
};

} // namespace tovi
