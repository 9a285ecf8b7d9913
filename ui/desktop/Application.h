#pragma once

#include "app/cleanup/CleanupModel.h"
#include "app/runtime/Runtime.h"
#include "app/vault/SessionLock.h"
#include "ui/desktop/DesktopIntegration.h"
#include "ui/desktop/DesktopPorts.h"
#include "ui/desktop/ScreenModels.h"
#include "ui/desktop/VaultDialogs.h"

#include <QQmlApplicationEngine>

class QQuickWindow;

namespace tovi {

/// The models of the desktop program and its window. Needs a
/// QGuiApplication; at most one in the life of a process, because QML's types are the process's.
class Application {
  public:
    struct Options {
        std::string dataDirectory; // absolute
        bool isDataDirectoryGiven = false;
        std::string decoderProgram; // the path of tovi-decoder
        QString section;            // shown first; empty for the usual one
        bool isWindowShown = true;  // at once
    };

    Application(const Options& options, FileOpener& opener);

    AppModel& model() { return model_; }
    CleanupModel& cleanup() { return cleanup_; }
    VaultModel& vault() { return vault_; }
    DesktopIntegration& integration() { return integration_; }
    /// None if the screens could not be loaded.
    QQuickWindow* window() const;

  private:
    Runtime runtime_;
    WindowFolderPicker folderPicker_;
    SystemClipboard clipboard_;
    VaultDialogs vaultDialogs_;
    AppModel model_;
    ScreenModels screens_{model_, runtime_};
    CleanupModel cleanup_;
    VaultModel vault_;
    std::unique_ptr<platform::SessionSignals> session_;
    SessionLock sessionLock_;
    QQmlApplicationEngine engine_;
    DesktopIntegration integration_;
};

} // namespace tovi
