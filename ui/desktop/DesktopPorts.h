#pragma once

#include "app/model/Ports.h"
#include "ui/desktop/Launcher.h"

#include <QObject>
#include <QSocketNotifier>

namespace tovi {

/// Asks the window for a folder: the dialog is in QML, where it looks like the rest. What is asked
/// before there is a window waits for it.
class WindowFolderPicker final : public QObject, public FolderPicker {
    Q_OBJECT

  public:
    void pick(const Request& request, Answer answer) override;
    /// There is a window.
    void begin();

    /// The answer of the dialog, a path; empty where nothing was chosen.
    Q_INVOKABLE void finish(const QString& folder);

  Q_SIGNALS:
    /// `directory` is the path of a folder that is offered, or empty.
    void requested(const QString& title, const QString& message, const QString& button,
                   const QString& directory);

  private:
    void ask();

    bool hasWindow_ = false;
    Request request_;
    Answer answer_;
};

class SystemClipboard final : public Clipboard {
  public:
    bool setText(const std::string& text) override;
};

/// Opens files through the launcher, and shows them in the file manager that answers on the
/// session bus (org.freedesktop.FileManager1), else through the desktop's portal; where neither
/// can, their folder is opened.
class SystemFileOpener final : public QObject, public FileOpener {
    Q_OBJECT

  public:
    explicit SystemFileOpener(const Launcher& launcher);

    bool open(const std::string& path) override;
    bool reveal(const std::string& path) override;

  Q_SIGNALS:
    /// No program opened what one was asked to. A whole sentence.
    void failed(const QString& sentence);

  private:
    void tellFailure();
    void revealThroughPortal(const std::string& path);
    bool openFolder(const std::string& path);

    const Launcher& launcher_;
    QSocketNotifier failures_;
};

} // namespace tovi
