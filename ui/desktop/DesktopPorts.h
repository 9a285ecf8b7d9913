#pragma once

#include "app/model/Ports.h"
#include "ui/desktop/Launcher.h"

#include <QObject>
#include <QUrl>

namespace tovi {

/// Asks the window for a folder: the dialog is in QML, where it looks like the rest.
class WindowFolderPicker final : public QObject, public FolderPicker {
    Q_OBJECT

  public:
    void pick(const Request& request, Answer answer) override;

    /// The answer of the dialog; an empty address where nothing was chosen.
    Q_INVOKABLE void finish(const QUrl& folder);

  Q_SIGNALS:
    void requested(const QString& title, const QString& message, const QString& button,
                   const QUrl& directory);

  private:
    Answer answer_;
};

class SystemClipboard final : public Clipboard {
  public:
    bool setText(const std::string& text) override;
};

/// Opens files through the launcher, and shows them in the file manager that answers on the
/// session bus (org.freedesktop.FileManager1), else opens their folder.
class SystemFileOpener final : public FileOpener {
  public:
    explicit SystemFileOpener(const Launcher& launcher) : launcher_(launcher) {}

    bool open(const std::string& path) override;
    bool reveal(const std::string& path) override;

  private:
    const Launcher& launcher_;
};

} // namespace tovi
